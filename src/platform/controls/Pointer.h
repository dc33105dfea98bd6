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

/// While it lives an hourglass looks like an arrow, for the user is the one to act.
class ArrowWhileAsking
{
public:
    ArrowWhileAsking();
    ~ArrowWhileAsking();
    ArrowWhileAsking(const ArrowWhileAsking&) = delete;
    ArrowWhileAsking& operator=(const ArrowWhileAsking&) = delete;
};

} // namespace controls
