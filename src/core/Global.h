// The state that every form shares, for the whole life of the process. A form learns what to work on
// from here: its opener sets the names and flags, then shows it.
#pragma once

#include "platform/ado/Connection.h"
#include "platform/basic/BoundedArray.h"

#include <QString>

/// Last row and last column of GruposFicheros.
inline constexpr int UltimaFilaGrupos = 200;
inline constexpr int UltimaColumnaGrupos = 4;

extern ado::Connection ConexionSQL; ///< the session; replaced on each connect
extern QString ProveedorSQL;        ///< OLE DB provider
extern QString ServidorSQL;         ///< server as typed
extern QString UsuarioSQL;          ///< login as typed
extern QString ClaveSQL;            ///< password as typed; in memory only
extern QString BaseDatosActual;     ///< database that the next form works on
extern QString PrefijoBD;           ///< database name and ".."; stands before catalog tables
extern qint16 Idioma;               ///< 0 Spanish, 1 English
extern QString Mensaje;             ///< the buffer of all validation messages
extern QString UsuarioActual;       ///< user or login to open; "" for a new one
extern QString LoginActual;         ///< login of that database user
extern bool NuevaBD;                ///< the database form creates
extern bool NuevaTabla;             ///< the table designer opens on a new table
extern QString RutaUbicacion;       ///< folder picked; "" when cancelled

/// Filegroups of BaseDatosActual, rows to 200: name, number of files, "-1" for a status of 10 or
/// below, "-1" for a status above, unused. Readers stop at an empty name.
extern basic::BoundedArray2<QString> GruposFicheros;
