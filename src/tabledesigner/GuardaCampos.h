// The part of a save that deals with the columns.
#pragma once

#include "tabledesigner/DatosTabla.h"

/// Begins SentenciaCampos for a table that is new or exists.
void EmpiezaCampos(const DatosTabla& datos);
/// Takes the rows from top to bottom: renames and changes the columns that the server has, and puts the
/// others into SentenciaCampos. `idTabla` is the table's id, "" for a new one. False when a definition
/// could not be made. Raises what the server refuses.
bool GuardaCampos(DatosTabla& datos, const QString& idTabla);
/// Sends SentenciaCampos when there are new columns.
void TerminaCampos(const DatosTabla& datos);
