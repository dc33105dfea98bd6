// The columns in memory: the rules of the cells, and the moves of rows in CamposTabla.
#pragma once

#include "tabledesigner/DatosTabla.h"

#include <optional>

/// Tests a cell of columns 1 to 7 and corrects the row where the test fails or fills in what follows from
/// the cell; its message has been shown then. Nothing when the cell passes, else the column to go to.
/// Raises 6 for a number beyond 32 bits.
std::optional<int> CompruebaCelda(FilaRejilla& fila, int columna);

/// Gives a row with a name and no type the type char. False when the row was left as it is.
bool PonTipoPorDefecto(FilaRejilla& fila);
/// Puts the measures of its type into a row that the server has not.
void PonMedidasDeTipo(FilaRejilla& fila);

/// Which of the measures a row of this type keeps locked.
struct Bloqueo
{
    bool longitud = false;
    bool precision = false;
    bool escala = false;

    bool operator==(const Bloqueo&) const = default;
};
Bloqueo BloqueoDeTipo(const QString& tipo);

/// Moves the rows from `fila` on one place down and empties `fila`; what stood in the last but one goes.
/// Raises error 9 for row 0, with the rows moved and row 0 not emptied.
void InsertarFila(DatosTabla& datos, int fila);
/// Takes a row out, and the relations of the table with itself that reference its column.
void EliminaCampo(DatosTabla& datos, int fila);

bool ExisteCampo_EnIndice(const DatosTabla& datos, const QString& nombre);
bool ExisteCampo_EnRelacion(const DatosTabla& datos, const QString& nombre);
/// Whether a row has this name.
bool ExisteElCampo(const DatosTabla& datos, const QString& nombre);
/// The names of all rows that have one, in their order.
QStringList DameNombresCampos(const DatosTabla& datos);

/// Puts a name typed for a column of the server into its row and into the lines of the indexes and
/// relations that hold the name on the server. True when the name is another than on the server.
bool RenombraEnMemoria(DatosTabla& datos);

/// Turns the state of named rows as a save begins: "I" into "M", "" into "I"; and notes the table's name.
void PreparaGuardado(DatosTabla& datos);
