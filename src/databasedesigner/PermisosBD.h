// The rights of a database's users to create and to back up.
#pragma once

#include "databasedesigner/DatosBD.h"

/// Columns of PermisosBD besides the user's name and the rights.
namespace ColPermiso {
inline constexpr int Usuario = 0;
inline constexpr int CrearBD = 1; ///< shown for master alone
inline constexpr int UltimaVisible = 8;
inline constexpr int Ultima = 9;
} // namespace ColPermiso

/// Reads PermisosBD; the session stands in the database afterwards. The states are read once for each view of
/// the database, so that without a view they stay empty. False after the error was shown.
bool CargaPermisos(DatosBD& datos);

/// Sends the right of a column as its cell has it: "NA" revokes, "PE" grants, "NP" denies.
/// @throws basic::RuntimeError what the server refused
void CambiaPermiso_SQL(const QString& nombreBD, int columna, const QString& usuario, const QString& estado);

/// What a right is called, for columns 1 to 8; the same in both languages.
[[nodiscard]] QString TituloPermiso(int columna);
