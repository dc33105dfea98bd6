// A database under design, without its window. The form owns one DatosBD; loading and all statements are
// procedures over it, so that they run and are tested without widgets.
//
// Cells hold texts as the grids show them: flags "-1" and "0", numbers as the machine's locale writes them.
#pragma once

#include "platform/basic/BoundedArray.h"

#include <QString>

inline constexpr int UltimaFilaArchivos = 200; ///< of the arrays of files
inline constexpr int FilasConSentencia = 200;  ///< rows 0 to 199 enter statements, the last one never

/// Columns of ArchivosBD and TransaccionesBD.
namespace ColArchivo {
inline constexpr int Nombre = 0;
inline constexpr int Ubicacion = 1;  ///< folder with its last backslash
inline constexpr int Tamaño = 2;     ///< in MB
inline constexpr int Grupo = 3;      ///< filegroup; "LOG" for a log file
inline constexpr int Automatico = 4; ///< "-1" grows by itself
inline constexpr int Unidad = 5;     ///< "M" or "P": what the growth counts in
inline constexpr int Cantidad = 6;   ///< of growth, in MB or percent
inline constexpr int Limitado = 7;   ///< "-1" has a limit
inline constexpr int Maximo = 8;     ///< the limit in MB
inline constexpr int UltimaVisible = 8;
inline constexpr int Ultima = 9;
} // namespace ColArchivo

/// Columns of the filegroups.
namespace ColGrupo {
inline constexpr int Nombre = 0;
inline constexpr int Archivos = 1; ///< number of data files
inline constexpr int SoloLectura = 2;
inline constexpr int Predeterminado = 3;
inline constexpr int UltimaVisible = 3;
} // namespace ColGrupo

using Matriz = basic::BoundedArray2<QString>;

struct DatosBD
{
    QString NombreBD;      ///< text of txtNombreBD; the form keeps it up to date
    QString NombreInicial; ///< that text right after load
    bool EsNueva = false;
    int FilaArchivos = -1; ///< current row of TDBGridArchivos, counted from the first visible one

    Matriz ArchivosBD;      ///< data files; a row without a name is free
    Matriz TransaccionesBD; ///< log files
    Matriz PermisosBD;      ///< one row a user: the name, then a state for each right
    Matriz GruposBD;        ///< what GruposFicheros holds of this database; other forms fill that one too
};

/// Whether a flag is "-1".
[[nodiscard]] bool EstaMarcado(const QString& celda);
/// A cell's number as statements take it: each comma is a point.
[[nodiscard]] QString NumeroSQL(const QString& celda);
/// The number at the start of a cell, 0 when there is none.
[[nodiscard]] double ValorCelda(const QString& celda);
