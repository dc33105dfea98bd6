// The statement of an index or key, column by column.
#pragma once

#include <QString>

/// Takes the next key column of an index into ClavesIndice. With the first one the text of its kind
/// (`tipo` "P", "I" or "", and "F") goes behind what stands in SentenciaIndice. `unico` and `agrupado` are
/// "1" or anything else.
void Crea_Indice(const QString& indice, const QString& campo, const QString& tipo, const QString& unico,
                 const QString& agrupado);
