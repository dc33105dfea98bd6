// The statements that bring a database to what the grids hold.
#pragma once

#include "databasedesigner/DatosBD.h"

/// Renames the database when the name differs from the initial one in more than its case. True when it did.
/// @throws basic::RuntimeError what the server refused
bool Renombra_BD(DatosBD& datos);

/// Adds the groups and files that the catalog behind PrefijoBD has not, then changes those that it has. True
/// when all statements ran; the first that fails is shown and ends it, and what ran stays.
bool Modifica_BD(DatosBD& datos);

/// Removes a file or a group at once.
/// @throws basic::RuntimeError what the server refused
void EliminaArchivo_SQL(const DatosBD& datos, const QString& archivo);
void EliminaGrupo_SQL(const DatosBD& datos, const QString& grupo);
