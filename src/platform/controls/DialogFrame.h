// The frame of windows that ask: a title and a button that closes, none that minimises or maximises.
#pragma once

#include <Qt>

namespace controls {

inline constexpr Qt::WindowFlags dialogFrame =
    Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;

} // namespace controls
