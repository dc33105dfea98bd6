// The statement of a new database, and the clauses of a file that it shares with the changes of one.
#pragma once

#include "databasedesigner/DatosBD.h"

/// Creates the database. True when the statement ran; else the error was shown.
/// Empty groups, sizes and growths are filled in in the stores.
bool Crea_BD(DatosBD& datos);

/// The text of CREATE DATABASE.
[[nodiscard]] QString SentenciaCreacion(DatosBD& datos);

/// " (NAME = …, FILENAME = '…'," of a file that is to be made.
[[nodiscard]] QString ClausulaNombre(const Matriz& archivos, int fila, const QString& extension);
/// Whether the size of a file is to be its growth's amount: its own, in whole MB, is above that.
[[nodiscard]] bool TomaCantidad(const Matriz& archivos, int fila);
/// Puts "0" for a blank size and a blank growth.
void CompletaMedidas(Matriz& archivos, int fila);
[[nodiscard]] QString ClausulaLimite(const Matriz& archivos, int fila);
/// "FILEGROWTH=…" with the amount as it is to be written; nothing when the file doesn't grow.
[[nodiscard]] QString ClausulaCrecimiento(const Matriz& archivos, int fila, const QString& cantidad);
/// Trimmed name of a file, empty for a free row.
[[nodiscard]] QString NombreArchivo(const Matriz& archivos, int fila);
/// Of a data file by its row: the first one is the primary one.
[[nodiscard]] QString ExtensionDatos(int fila);
inline const QString ExtensionLog = QStringLiteral(".ldf");
