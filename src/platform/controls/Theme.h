// The program's looks.
#pragma once

#include <QString>

namespace controls {

/// Style, colours and icon of the application: "light" or "dark", anything else follows the desktop.
void applyTheme(const QString& wanted = qEnvironmentVariable("QUERMO_THEME"));

} // namespace controls
