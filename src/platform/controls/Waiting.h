// What the window does while a server works.
#pragma once

#include <functional>

namespace controls {

/// Until the condition holds the window goes on painting and answers the window manager, under the hourglass;
/// keys and clicks wait, and come after. For the program's own thread.
void waitPainting(const std::function<bool()>& isDone);

/// Ends a wait that is due; from any thread.
void wakeWaiting();

/// Whether the program's thread waits. What is not asked for by the user and could call a server looks here
/// first.
[[nodiscard]] bool isWaiting();

} // namespace controls
