// Keys made by code, and the classic numbers of keys and mouse buttons.
#pragma once

#include <QInputEvent>

class QKeyEvent;

namespace controls {

inline constexpr int keyEnter = 13;
inline constexpr int leftButton = 1;
inline constexpr int rightButton = 2;

/// Queues a press and a release of Tab for the control that has the focus; it is handled as the user's.
void synthesizeTab();

/// Shift is 1, Ctrl 2, Alt 4, added up.
[[nodiscard]] int shiftState(Qt::KeyboardModifiers modifiers);

/// The classic code of a function key, letter, digit, or key that moves or deletes (F1 is 112, Delete 46);
/// 0 for any other.
[[nodiscard]] int keyCode(const QKeyEvent& event);

/// The menu key and Shift+F10 ask for what the right button gives.
[[nodiscard]] bool asksForMenu(const QKeyEvent& event);

} // namespace controls
