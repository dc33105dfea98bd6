// The save: the design becomes a series of statements, each sent by itself, in one transaction.
#pragma once

#include "tabledesigner/DatosTabla.h"

/// Makes the table, or brings it to the design. True when all ran and was committed. A statement of the
/// save's own that fails is shown, everything is rolled back, and the design stays as it is. Failures of
/// a column's change, of its links, and of a column's drop are shown and do not stop the save.
bool ActualizaLaTabla(DatosTabla& datos);
