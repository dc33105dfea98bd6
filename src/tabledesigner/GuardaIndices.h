// The part of a save that deals with keys and indexes.
#pragma once

#include "tabledesigner/DatosTabla.h"

/// Makes the new indexes and rebuilds those that exist; a primary key is dropped and added again, and the
/// foreign keys that reference it wait in SentenciaRelacion. Raises what the server refuses.
void GuardaIndices(const DatosTabla& datos);
