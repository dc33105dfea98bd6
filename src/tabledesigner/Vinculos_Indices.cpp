// The indexes and keys that hold a column, on its way through linked tables.
#include "tabledesigner/Vinculos.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/Nombres.h"

using namespace Qt::Literals::StringLiterals;

namespace {

QString DameDatoIndice(const QString& indice, const QString& dato)
{
    Condicion nombre{u"name"_s, indice, TipoCondicion::Texto};
    return BuscaRegistro(ConexionSQL, u"sysindexes"_s, dato, nombre);
}

/// An index as its rebuild needs it.
struct IndiceServidor
{
    QString nombre;
    QString claves;
    QString descripcion; ///< in upper case
    QString grupo;
    QString relleno;
    bool esClave = false;

    [[nodiscard]] bool esAgrupado() const { return !descripcion.contains(u"NONCLUSTERED"_s); }
    [[nodiscard]] QString clausulaRelleno() const
    {
        return relleno == u"0"_s ? QString() : u" WITH FILLFACTOR = "_s + relleno;
    }
};

IndiceServidor LeeIndice(const ado::Recordset& indices, const QString& idTabla)
{
    IndiceServidor indice;
    indice.nombre = TextoCampo(indices, u"index_name"_s);
    indice.claves = TextoCampo(indices, u"index_keys"_s);
    indice.descripcion = TextoCampo(indices, u"index_description"_s).toUpper();
    Condicion grupo{u"groupid"_s, DameDatoIndice(indice.nombre, u"groupid"_s), TipoCondicion::Numerico};
    indice.grupo = BuscaRegistro(ConexionSQL, u"sysfilegroups"_s, u"groupname"_s, grupo);
    indice.relleno = DameDatoIndice(indice.nombre, u"origfillfactor"_s).trimmed();
    if (indice.relleno.isEmpty())
        indice.relleno = u"0"_s;
    Condicion padre{u"parent_obj"_s, idTabla, TipoCondicion::Numerico};
    const QString xtype = BuscaRegistro(ConexionSQL, u"sysobjects"_s, u"xtype"_s, padre,
                                        {{u"name"_s, indice.nombre, TipoCondicion::Texto}});
    indice.esClave = xtype.trimmed() == u"PK"_s;
    return indice;
}

QString SentenciaRehaceIndice(const IndiceServidor& indice, const QString& tabla)
{
    return u" CREATE  "_s + (indice.descripcion.contains(u"UNIQUE"_s) ? u" UNIQUE "_s : QString()) +
           (indice.esAgrupado() ? u" CLUSTERED"_s : u" NONCLUSTERED"_s) + u" INDEX "_s + indice.nombre +
           u" ON "_s + NombreSQL(tabla) + indice.clausulaRelleno() + u" ("_s + indice.claves + u")  ON ["_s +
           indice.grupo + u"]"_s;
}

QString SentenciaRehaceClave(const IndiceServidor& clave, const QString& tabla)
{
    return u" ALTER TABLE "_s + NombreSQL(tabla) + u" ADD"_s + u" CONSTRAINT ["_s + clave.nombre +
           u"] PRIMARY KEY  "_s + (clave.esAgrupado() ? u" CLUSTERED "_s : u" NONCLUSTERED "_s) + u" ("_s +
           clave.claves + u")  "_s + clave.clausulaRelleno() +
           (clave.grupo.isEmpty() ? QString() : u" ON ["_s + clave.grupo + u"]"_s);
}

void QuitaClave(DatosTabla& datos, const IndiceServidor& clave, const QString& tabla, const QString& campo,
                QString& salidaIndices, QString& salidaRelaciones)
{
    PonEnCola(salidaIndices, SentenciaRehaceClave(clave, tabla));
    bool resultado = false;
    CambiaVinculos(datos, ConexionSQL, tabla, campo, campo, salidaIndices, salidaRelaciones, resultado);
    if (ExisteElIndice(ConexionSQL, tabla, clave.nombre))
        EjecutaSQL(ConexionSQL,
                   u"ALTER TABLE "_s + PrefijoBD + NombreSQL(tabla) + u" DROP CONSTRAINT "_s + clave.nombre);
}

void QuitaIndice(const IndiceServidor& indice, const QString& tabla, QString& salidaIndices)
{
    PonEnCola(salidaIndices, SentenciaRehaceIndice(indice, tabla));
    if (ExisteElIndice(ConexionSQL, tabla, indice.nombre))
        EjecutaSQL(ConexionSQL, u"DROP INDEX "_s + NombreSQL(tabla) + u"."_s + indice.nombre);
}

} // namespace

void BuscaCargaIndices(DatosTabla& datos, const QString& tabla, const QString& campo, QString& salidaIndices,
                       const QString& idTabla, QString& salidaRelaciones)
try {
    ado::Recordset indices;
    if (!CreaRecordset(ConexionSQL, indices, u"exec sp_helpindex '"_s + tabla + u"'"_s))
        return;
    if (indices.RecordCount() < 1)
        return;
    for (; !indices.Eof(); indices.MoveNext()) {
        if (!TextoCampo(indices, u"index_keys"_s).contains(campo))
            continue;
        const IndiceServidor indice = LeeIndice(indices, idTabla);
        if (indice.esClave)
            QuitaClave(datos, indice, tabla, campo, salidaIndices, salidaRelaciones);
        else
            QuitaIndice(indice, tabla, salidaIndices);
    }
} catch (...) {
    InformaError(u"BuscaCargaIndices"_s);
}
