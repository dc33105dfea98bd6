// The program's looks.
#pragma once

namespace controls {

/// Style, colours and icon of the application. QUERMO_THEME in the environment chooses "light" or "dark";
/// anything else follows the desktop.
void applyTheme();

} // namespace controls
