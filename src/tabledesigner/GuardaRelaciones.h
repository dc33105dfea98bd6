// The part of a save that deals with foreign keys.
#pragma once

#include "tabledesigner/DatosTabla.h"

/// Drops the table's foreign keys, gives other tables back those that were queued in SentenciaRelacion,
/// and makes the relations of the design. Raises what the server refuses.
void GuardaRelaciones(const DatosTabla& datos);
