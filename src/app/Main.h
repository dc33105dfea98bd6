// The program's entry: language first, then the main window. Nothing connects by itself.
#pragma once

/// Reads the language and shows the main window; the event loop is the caller's.
void Main();
