#include "databasedesigner/PermisosBD.h"

#include "core/Funciones.h"
#include "core/Global.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Derecho
{
    QString titulo;
    QString accion; ///< number in sysprotects
    QString nombre; ///< in the statements, with the blanks that they have
    QString niega = u"DENY "_s;
};

/// By the column, from 1.
const std::array<Derecho, ColPermiso::UltimaVisible>& Derechos()
{
    static const std::array<Derecho, ColPermiso::UltimaVisible> derechos{{
        {u"Create Database"_s, u"203"_s, u"CREATE DATABASE"_s, u"DENY  "_s},
        {u"Create Table"_s, u"198"_s, u"CREATE TABLE"_s},
        {u"Create View"_s, u"207"_s, u"CREATE VIEW"_s},
        {u"Create Procedure"_s, u"222"_s, u"CREATE PROCEDURE"_s},
        {u"Create Rule"_s, u"236"_s, u"CREATE RULE"_s},
        {u"Create Function"_s, u"178"_s, u"CREATE FUNCTION"_s},
        {u"Backup Database"_s, u"228"_s, u"BACKUP DATABASE"_s},
        {u"Backup Log"_s, u"235"_s, u"BACKUP LOG "_s},
    }};
    return derechos;
}

const Derecho& DameDerecho(int columna)
{
    return Derechos().at(static_cast<std::size_t>(columna - ColPermiso::CrearBD));
}

void PonEstado(Matriz& permisos, int fila, const QString& accion, const QString& tipo)
{
    const QString estado = tipo == u"205"_s ? u"PE"_s : tipo == u"206"_s ? u"NP"_s : QString();
    if (estado.isEmpty())
        return;
    for (int columna = ColPermiso::CrearBD; columna <= ColPermiso::UltimaVisible; ++columna)
        if (DameDerecho(columna).accion == accion)
            permisos(fila, columna) = estado;
}

bool CargaEstados(Matriz& permisos, int fila, const QString& id)
{
    for (int columna = ColPermiso::CrearBD; columna <= ColPermiso::UltimaVisible; ++columna)
        permisos(fila, columna) = u"NA"_s;
    ado::Recordset protecciones;
    if (!CreaRecordset(ConexionSQL, protecciones,
                       u"select * from sysprotects "_s + u"where uid="_s + id +
                           u"and action IN(203,198,207,222,236,178,228,235 )"_s))
        return false;
    for (; !protecciones.Eof(); protecciones.MoveNext())
        PonEstado(permisos, fila, TextoCampo(protecciones, u"Action"_s),
                  TextoCampo(protecciones, u"protecttype"_s));
    return true;
}

bool CargaUsuario(Matriz& permisos, int fila, const QString& id)
{
    ado::Recordset vistas;
    if (!CreaRecordset(ConexionSQL, vistas,
                       u"Select t.name as tabla,t.id as id"_s + u" from "_s + PrefijoBD + u"sysobjects t,"_s +
                           PrefijoBD + u"sysusers u"_s + u" where t.xtype = 'V'"_s + u" and u.uid = t.uid"_s +
                           u" order by t.name"_s))
        return false;
    for (; !vistas.Eof(); vistas.MoveNext())
        if (!CargaEstados(permisos, fila, id))
            return false;
    return true;
}

} // namespace

bool CargaPermisos(DatosBD& datos)
try {
    Ejecuta_SQL(u"USE "_s + datos.NombreBD);
    ado::Recordset usuarios;
    if (!CreaRecordset(ConexionSQL, usuarios,
                       u" SELECT usu.Name as nombre,usu.uid as id"_s + u" From "_s + datos.NombreBD +
                           u"..sysusers usu ,master.dbo.syslogins lo"_s + u" Where usu.sid = lo.sid and "_s +
                           u" (usu.islogin = 1 and usu.isaliased = 0 and usu.hasdbaccess = 1) "_s))
        return false;
    datos.PermisosBD.Redim(static_cast<int>(usuarios.RecordCount()), ColPermiso::Ultima);
    for (int fila = 0; !usuarios.Eof(); ++fila, usuarios.MoveNext()) {
        datos.PermisosBD(fila, ColPermiso::Usuario) = TextoCampo(usuarios, u"Nombre"_s);
        const QString id = TextoCampo(usuarios, u"id"_s);
        if (!id.isEmpty() && !CargaUsuario(datos.PermisosBD, fila, id))
            return false; // a lost connection would fail for every user anew
    }
    return true;
} catch (...) {
    InformaError(u"CargaObjetos"_s);
    return false;
}

void CambiaPermiso_SQL(const QString& nombreBD, int columna, const QString& usuario, const QString& estado)
{
    Ejecuta_SQL(u"USE "_s + nombreBD);
    const Derecho& derecho = DameDerecho(columna);
    QString verbo;
    if (estado.contains(u"NA"_s))
        verbo = u"REVOKE "_s;
    else if (estado.contains(u"PE"_s))
        verbo = u"GRANT "_s;
    else if (estado.contains(u"NP"_s))
        verbo = derecho.niega;
    else
        return;
    Ejecuta_SQL(verbo + derecho.nombre + u" TO "_s + usuario);
}

QString TituloPermiso(int columna)
{
    return DameDerecho(columna).titulo;
}
