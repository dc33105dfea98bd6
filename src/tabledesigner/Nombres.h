// How names and texts of the catalog are written and compared.
#pragma once

#include <QString>

/// A name as it goes into a statement: in brackets when it holds a blank. Look-ups take it as it is.
QString NombreSQL(const QString& nombre);

/// Whether two names are the same but for case and surrounding blanks.
bool MismoNombre(const QString& uno, const QString& otro);

/// The text without any parenthesis, as defaults are shown and compared.
QString SinParentesis(QString texto);
