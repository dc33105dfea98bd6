#include "databasedesigner/ModificaBD.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "databasedesigner/CargaBD.h"
#include "databasedesigner/CreaBD.h"
#include "platform/basic/Numbers.h"

using namespace Qt::Literals::StringLiterals;

namespace {

QString AlteraBD(const DatosBD& datos)
{
    return u"ALTER DATABASE "_s + datos.NombreBD + u"\r"_s;
}

bool EstaEnCatalogo(const QString& tabla, const QString& campo, const QString& nombre)
{
    return ExisteRegistro(ConexionSQL, false, tabla, {campo, nombre, TipoCondicion::Texto});
}

void ModificaGrupos(const DatosBD& datos)
{
    for (int fila = 0; fila < FilasConSentencia; ++fila) {
        const QString grupo = datos.GruposBD.at(fila, ColGrupo::Nombre).trimmed();
        if (!grupo.isEmpty() && !EstaEnCatalogo(u"sysfilegroups"_s, u"groupname"_s, grupo))
            Ejecuta_SQL(AlteraBD(datos) + u" ADD FILEGROUP "_s + grupo);
    }
}

/// What tells data files and log files apart.
struct ClaseArchivo
{
    bool esLog;
    QString añade;
};

// Of a log's growth the amount is written as the locale has it.
QString CantidadSQL(const ClaseArchivo& clase, const Matriz& archivos, int fila)
{
    const QString& cantidad = archivos.at(fila, ColArchivo::Cantidad);
    return clase.esLog ? cantidad : NumeroSQL(cantidad);
}

QString TamañoSQL(const Matriz& archivos, int fila)
{
    const int columna = TomaCantidad(archivos, fila) ? ColArchivo::Cantidad : ColArchivo::Tamaño;
    return u" SIZE = "_s + NumeroSQL(archivos.at(fila, columna)) + u"MB"_s;
}

void AñadeArchivo(const DatosBD& datos, Matriz& archivos, int fila, const ClaseArchivo& clase)
{
    QString sql = AlteraBD(datos) + clase.añade +
                  ClausulaNombre(archivos, fila, clase.esLog ? ExtensionLog : ExtensionDatos(fila));
    CompletaMedidas(archivos, fila);
    sql += TamañoSQL(archivos, fila) + u","_s + ClausulaLimite(archivos, fila);
    const QString crecimiento = ClausulaCrecimiento(archivos, fila, CantidadSQL(clase, archivos, fila));
    if (!crecimiento.isEmpty())
        sql += u","_s + crecimiento;
    sql += u")"_s;
    if (!clase.esLog) {
        if (archivos.at(fila, ColArchivo::Grupo).isEmpty())
            archivos(fila, ColArchivo::Grupo) = u"PRIMARY"_s;
        const QString grupo = archivos.at(fila, ColArchivo::Grupo);
        if (grupo != u"PRIMARY"_s)
            sql += u" TO FILEGROUP "_s + grupo;
    }
    Ejecuta_SQL(sql);
}

void CambiaArchivo(const DatosBD& datos, const Matriz& archivos, int fila, const ClaseArchivo& clase)
{
    const QString nombre = NombreArchivo(archivos, fila);
    const QString cabecera = AlteraBD(datos) + u" MODIFY FILE "_s + u" (NAME = "_s + nombre + u","_s;
    const double tamaño = basic::toDouble(archivos.at(fila, ColArchivo::Tamaño));
    if (tamaño > TamañoExistente(nombre)) {
        const bool minimo = !TomaCantidad(archivos, fila) && tamaño < 1;
        Ejecuta_SQL(cabecera + (minimo ? u" SIZE = 512KB"_s : TamañoSQL(archivos, fila)) + u")"_s);
    }
    Ejecuta_SQL(cabecera + ClausulaCrecimiento(archivos, fila, CantidadSQL(clase, archivos, fila)) + u")"_s);
    Ejecuta_SQL(cabecera + ClausulaLimite(archivos, fila) + u")"_s);
}

void ModificaArchivos(const DatosBD& datos, Matriz& archivos, const ClaseArchivo& clase)
{
    for (int fila = 0; fila < FilasConSentencia; ++fila) {
        const QString nombre = NombreArchivo(archivos, fila);
        if (nombre.isEmpty())
            continue;
        if (EstaEnCatalogo(u"sysfiles"_s, u"name"_s, nombre))
            CambiaArchivo(datos, archivos, fila, clase);
        else
            AñadeArchivo(datos, archivos, fila, clase);
    }
}

} // namespace

bool Renombra_BD(DatosBD& datos)
{
    const QString inicial = datos.NombreInicial.trimmed();
    if (inicial.isEmpty() || inicial.toUpper() == datos.NombreBD.trimmed().toUpper())
        return false;
    Ejecuta_SQL(u" EXEC sp_renamedb '"_s + datos.NombreInicial + u"','"_s + datos.NombreBD + u"'"_s);
    // When a later step fails, the next try is one on the database under its new name. A new database goes on
    // from the name that it was offered, so that one try renames no more than one database.
    if (!datos.EsNueva)
        datos.NombreInicial = datos.NombreBD;
    return true;
}

bool Modifica_BD(DatosBD& datos)
try {
    ModificaGrupos(datos);
    ModificaArchivos(datos, datos.ArchivosBD, {false, u" ADD FILE "_s});
    ModificaArchivos(datos, datos.TransaccionesBD, {true, u" ADD LOG FILE "_s});
    return true;
} catch (...) {
    InformaError(u"Modifica_BD"_s);
    return false;
}

void EliminaArchivo_SQL(const DatosBD& datos, const QString& archivo)
{
    Ejecuta_SQL(AlteraBD(datos) + u" REMOVE FILE "_s + archivo.trimmed());
}

void EliminaGrupo_SQL(const DatosBD& datos, const QString& grupo)
{
    Ejecuta_SQL(AlteraBD(datos) + u" REMOVE FILEGROUP "_s + grupo.trimmed());
}
