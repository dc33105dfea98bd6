// Drops of foreign keys, defaults and columns around a change, and the queueing of what comes back.
// Each shows its own errors and leaves what it did by then.
#pragma once

#include "platform/ado/Connection.h"
#include "tabledesigner/DatosTabla.h"

/// Drops the foreign keys that reference the table, and queues their rebuild. False when an error ended it.
bool EliminaVinculos(ado::Connection& conexion, const QString& tabla, QString& salida);

/// Drops the table's own foreign keys: all of them, or with `campo` those that hold the column.
void EliminaLosVinculos(ado::Connection& conexion, const QString& tabla, const QString& campo);

/// Drops the columns of the server that the grid has lost. Each takes its default along, under the name
/// that the designer gives to defaults; a column without one ends the procedure with the server's error.
void Elimina_Sino_Esta_SQL(const DatosTabla& datos);

/// Drops the foreign keys that reference the table.
void RelacionConOtrasTablas(ado::Connection& conexion, const QString& tabla);

/// Drops the table's default constraints.
void EliminaConstraint(ado::Connection& conexion, const QString& tabla);

/// The statement that gives a table its foreign key back. Lists of columns are joined by commas.
QString SentenciaClaveExterna(const QString& tabla, const QString& restriccion, const QString& propias,
                              const QString& referida, const QString& referidas);
