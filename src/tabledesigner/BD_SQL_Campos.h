// Columns as statements: the definition of a new one, the comparison with the server, the change in place.
// Values come trimmed; `tipo` is the catalogue's number, `nulo` "-1" for NULL.
#pragma once

#include "platform/ado/Connection.h"

#include <QString>

/// Appends a column's definition to SentenciaCampos, with ADD and comma as they are due. False when an
/// error ended it.
bool Crea_Campo(const QString& tabla, const QString& campo, const QString& longitud, const QString& precision,
                const QString& escala, const QString& nulo, const QString& tipo,
                const QString& predeterminado);

/// Whether the column on the server differs. Precision and scale are not compared; a length that equals
/// the server's precision or its length is the same.
bool CampoModificado(const QString& tabla, const QString& campo, const QString& longitud, const QString& nulo,
                     const QString& tipo, const QString& predeterminado, const QString& nombreDF);

/// Changes a column on the server: drops its default, alters it, adds the default again. Nothing for a
/// column that the server has not, and for a type that is never altered or not known. False when an
/// error ended it; it has been shown then.
bool Modifica_Campo_SQL(const QString& tabla, const QString& campo, const QString& longitud,
                        const QString& nulo, const QString& tipo, const QString& predeterminado,
                        const QString& nombreDF);

/// Renames a column on the server. A column without a name there cannot be renamed: the server refuses
/// that, and the refusal passes unseen. False then; all other errors are raised.
bool RenombraCampo_SQL(ado::Connection& conexion, const QString& tabla, const QString& nombreServidor,
                       const QString& nombre);
