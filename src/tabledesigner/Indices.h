// The indexes and keys in memory. A position is an index's place in Indices and CamposIndice, and in the
// form's list of them. Each procedure counts ContadorIndices anew.
#pragma once

#include "tabledesigner/DatosTabla.h"

/// Positions whose index has a name, of the first 100; ContadorIndices becomes their number.
QList<int> CargaIndices(const DatosTabla& datos);

/// Whether the table under design has an index of exactly this name; its position, else -1.
bool ExisteIndice(const DatosTabla& datos, const QString& nombre, int& posicion);
/// Whether an open design of another slot has it. Only the slot of the table itself is ever filled.
bool ExisteTodosIndice(const DatosTabla& datos, const QString& nombre, int& ranura);

/// Makes an index behind the others and returns its position. Filegroup and fill factor are those that
/// last stood there. Error 9 when there is no place left.
int AñadeIndice(DatosTabla& datos, const QString& nombre);
/// Takes position IndiceBorrado out. Only names and columns move up: the attributes stay with their
/// positions.
void RecalculaGridIndices(DatosTabla& datos);
/// Takes an index out and counts what remains.
void EliminaIndice(DatosTabla& datos, int posicion);

/// Makes an index the primary key, which is unique, or a plain one, which stays unique if it was.
void PonClavePrimaria(DatosTabla& datos, int posicion, bool esClave);
/// Stores a fill factor; "0" for an empty text. False, with nothing stored, for what is no number.
bool PonFactorRelleno(DatosTabla& datos, int posicion, const QString& texto);

/// Whether the index has the column; false for position -1.
bool EstaCampoEnIndices(const DatosTabla& datos, int posicion, const QString& nombre);
/// Columns of the table that the index has not yet.
QStringList DameCamposParaIndice(const DatosTabla& datos, int posicion);
/// Whether no line of the index has a column.
bool IndiceSinCampos(const DatosTabla& datos, int posicion);
