// The pointer of the whole program.
#pragma once

namespace controls {

enum class Pointer
{
    Default = 0,
    Hourglass = 11
};

/// Not counted: one Default undoes any number of Hourglass.
void setMousePointer(Pointer pointer);
[[nodiscard]] Pointer mousePointer();

} // namespace controls
