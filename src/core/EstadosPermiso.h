// The three states of a right, as every grid of rights shows and changes them.
#pragma once

namespace controls {
class GridColumn;
} // namespace controls

/// Shows "NA" nothing recorded, "PE" granted and "NP" denied as pictures. A click or Space goes from nothing
/// to granted, then to denied, and round; an empty cell goes to granted like one with nothing recorded.
void PonEstadosPermiso(const controls::GridColumn& columna);
