// The foreign keys in memory. A position is a relation's place in Relaciones and CamposRelacion, and in
// the form's list of them. Each procedure counts ContadorRelaciones anew.
#pragma once

#include "tabledesigner/DatosTabla.h"

/// Positions whose relation has a name, of the first 100; ContadorRelaciones becomes their number.
QList<int> CargaRelaciones(const DatosTabla& datos);

/// Whether the table under design has a relation of exactly this name; its position, else -1.
bool ExisteRelacion(const DatosTabla& datos, const QString& nombre, int& posicion);

/// Makes a relation behind the others and returns its position. Error 9 when there is no place left.
int AñadeRelacion(DatosTabla& datos, const QString& nombre);
/// Takes position IndiceBorrado out; the others move up.
void RecalculaGridRelaciones(DatosTabla& datos);
/// Takes a relation out and counts what remains.
void EliminaRelacion(DatosTabla& datos, int posicion);

/// The first line that has one of its two columns and lacks the other; -1 when there is none.
int DameLineaIncompleta(const DatosTabla& datos, int posicion);
