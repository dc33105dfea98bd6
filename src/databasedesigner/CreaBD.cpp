#include "databasedesigner/CreaBD.h"

#include "core/Funciones.h"
#include "platform/basic/Numbers.h"

using namespace Qt::Literals::StringLiterals;

namespace {

QString ClausulaTamañoInicial(const Matriz& archivos, int fila)
{
    const QString& tamaño = archivos.at(fila, ColArchivo::Tamaño);
    if (TomaCantidad(archivos, fila))
        return u" SIZE = "_s + NumeroSQL(archivos.at(fila, ColArchivo::Cantidad)) + u"MB,"_s;
    if (basic::toDouble(tamaño) < 1)
        return u" SIZE = 512KB"_s;
    return u" SIZE = "_s + NumeroSQL(tamaño) + u"MB,"_s;
}

QString ClausulaArchivo(Matriz& archivos, int fila, const QString& extension)
{
    QString sql = ClausulaNombre(archivos, fila, extension);
    CompletaMedidas(archivos, fila);
    sql += ClausulaTamañoInicial(archivos, fila) + ClausulaLimite(archivos, fila);
    const QString crecimiento =
        ClausulaCrecimiento(archivos, fila, NumeroSQL(archivos.at(fila, ColArchivo::Cantidad)));
    if (!crecimiento.isEmpty())
        sql += u","_s + crecimiento;
    return sql + u")"_s;
}

QString ClausulaGrupo(Matriz& archivos, int fila, QString& grupoAnterior)
{
    if (archivos.at(fila, ColArchivo::Grupo).isEmpty())
        archivos(fila, ColArchivo::Grupo) = u"PRIMARY"_s;
    QString grupo = archivos.at(fila, ColArchivo::Grupo);
    if (grupo.toUpper() != u"PRIMARY"_s)
        return u" FILEGROUP "_s + grupo;
    if (grupoAnterior == grupo)
        return grupo;
    grupoAnterior = grupo;
    return u" ON "_s + grupo;
}

} // namespace

QString NombreArchivo(const Matriz& archivos, int fila)
{
    return archivos.at(fila, ColArchivo::Nombre).trimmed();
}

QString ExtensionDatos(int fila)
{
    return fila == 0 ? u".mdf"_s : u".ndf"_s;
}

QString ClausulaNombre(const Matriz& archivos, int fila, const QString& extension)
{
    const QString nombre = NombreArchivo(archivos, fila);
    return u" (NAME = "_s + nombre + u","_s + u" FILENAME = '"_s + archivos.at(fila, ColArchivo::Ubicacion) +
           nombre + extension + u"',"_s;
}

bool TomaCantidad(const Matriz& archivos, int fila)
{
    return basic::toInt32(archivos.at(fila, ColArchivo::Tamaño)) >
           ValorCelda(archivos.at(fila, ColArchivo::Cantidad));
}

void CompletaMedidas(Matriz& archivos, int fila)
{
    for (const int columna : {ColArchivo::Tamaño, ColArchivo::Cantidad})
        if (archivos.at(fila, columna).isEmpty())
            archivos(fila, columna) = u"0"_s;
}

QString ClausulaLimite(const Matriz& archivos, int fila)
{
    if (!EstaMarcado(archivos.at(fila, ColArchivo::Limitado)) ||
        ValorCelda(archivos.at(fila, ColArchivo::Cantidad)) == 0)
        return u" MAXSIZE =UNLIMITED"_s;
    return u" MAXSIZE ="_s + NumeroSQL(archivos.at(fila, ColArchivo::Maximo)) + u"MB"_s;
}

QString ClausulaCrecimiento(const Matriz& archivos, int fila, const QString& cantidad)
{
    if (!EstaMarcado(archivos.at(fila, ColArchivo::Automatico)))
        return {};
    const bool porcentaje = archivos.at(fila, ColArchivo::Unidad) == u"P"_s;
    return u"FILEGROWTH="_s + cantidad + (porcentaje ? u"%"_s : u"MB"_s);
}

QString SentenciaCreacion(DatosBD& datos)
{
    QString sql = u"CREATE DATABASE "_s + datos.NombreBD + u"\r"_s;
    QString grupoAnterior;
    for (int fila = 0; fila < FilasConSentencia; ++fila) {
        if (NombreArchivo(datos.ArchivosBD, fila).isEmpty())
            continue;
        sql += ClausulaGrupo(datos.ArchivosBD, fila, grupoAnterior);
        sql += ClausulaArchivo(datos.ArchivosBD, fila, ExtensionDatos(fila));
        // The grid's cursor stands behind the last file that was typed.
        sql += fila < datos.FilaArchivos - 1 ? u",\r"_s : u"\r"_s;
    }
    for (int fila = 0; fila < FilasConSentencia; ++fila)
        if (!NombreArchivo(datos.TransaccionesBD, fila).isEmpty())
            sql += u" LOG ON "_s + ClausulaArchivo(datos.TransaccionesBD, fila, ExtensionLog) + u"\r"_s;
    return sql;
}

bool Crea_BD(DatosBD& datos)
try {
    Ejecuta_SQL(SentenciaCreacion(datos));
    return true;
} catch (...) {
    InformaError(u"Crea_BD"_s);
    return false;
}
