// Reads a table's design from the server into the stores.
#pragma once

#include "tabledesigner/DatosTabla.h"

/// Columns into CamposTabla, and IdTabla. More columns than rows end in error 9, with what fitted in.
void CapturaCampos_SQL(DatosTabla& datos, const QString& tabla);
/// Keys and indexes into Indices and CamposIndice; counts ContadorIndices.
void CapturaIndices_SQL(DatosTabla& datos, const QString& tabla);
/// Foreign keys into Relaciones and CamposRelacion; counts ContadorRelaciones.
void CapturaRelaciones_SQL(DatosTabla& datos, const QString& tabla);

/// All of the above for `NombreTablaInicial`, as when a designer opens.
void CargaTabla_SQL(DatosTabla& datos);

/// Filegroup of the loaded table; "" when it has none.
QString DimeGrupoFicheros(const DatosTabla& datos);
/// Looks the filegroup up. A table that exists never moves: nothing is changed.
void CambiaGrupoFicheros(const DatosTabla& datos, const QString& grupo);

/// Columns of a table of the database in their order, for the list of a relation's grid.
QStringList DameCamposTabla_SQL(const DatosTabla& datos, const QString& tabla);
