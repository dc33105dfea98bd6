// A changed column and the columns that foreign keys link to it: finding them, asking, and changing them
// with the keys and indexes in the way dropped, queued and rebuilt. Each procedure shows its own errors;
// what ran by then stays.
//
// New type and length come from the grid's current row (`datos.FilaActual`), also when a save works on
// another row.
#pragma once

#include "platform/ado/Connection.h"
#include "tabledesigner/DatosTabla.h"

/// Lists the linked columns, one a line. Below the table a referencing column of the same name as
/// `campoOrigen` is passed over; it is the link by which the walk came up.
void BuscaDetectaVinculos(ado::Connection& conexion, const QString& tabla, const QString& campo,
                          const QString& campoOrigen, QString& texto);

/// Changes the linked columns and the column itself, after a question when `preguntar`. `resultado` is
/// true when there are no links, at No, and when all was changed; its default goes and stays away.
void BuscaCambiaVinculos(DatosTabla& datos, ado::Connection& conexion, const QString& tabla,
                         const QString& campo, const QString& campoOrigen, bool preguntar, bool& resultado);

/// Changes the columns linked to `campo`, below and above. Queues what was dropped and must come back.
void CambiaVinculos(DatosTabla& datos, ado::Connection& conexion, const QString& tabla, const QString& campo,
                    const QString& campoOrigen, QString& salidaIndices, QString& salidaRelaciones,
                    bool& resultado);

/// Drops every index and key whose list of columns contains the text of `campo`, and queues its rebuild.
void BuscaCargaIndices(DatosTabla& datos, const QString& tabla, const QString& campo, QString& salidaIndices,
                       const QString& idTabla, QString& salidaRelaciones);

/// Sends an edit of columns 2 to 7 of a loaded row to the server: the rename that is due, then the change
/// with all that hangs on it. False when the change failed; errors of the rename are raised.
bool CambiaCelda_SQL(DatosTabla& datos);
