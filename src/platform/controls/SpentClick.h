// A click that a message box came between.
//
// Pressing the mouse on a control first takes the focus from another, whose handler may put a message box
// before the user. By the time it is answered the mouse was let go over the box, and the press reaches its
// control without a release: a page switches that the answer kept, a button stays sunken.
#pragma once

#include <Qt>

namespace controls {

/// Stands around what a control tells of losing the focus. When the mouse took the focus, the press goes no
/// further if a question was asked meanwhile or the focus is held. Behind a mere message it goes on, and has
/// its release even where the box had it; but a button waits for the next click, now that something was told.
class SpentClick
{
public:
    explicit SpentClick(Qt::FocusReason reason);
    ~SpentClick();
    SpentClick(const SpentClick&) = delete;
    SpentClick& operator=(const SpentClick&) = delete;

    void hold() { m_held = true; }
    /// A press goes on that has told of the loss already: what it does may take the focus once more.
    static bool goesOn();

private:
    Qt::FocusReason m_reason;
    unsigned m_shown;
    unsigned m_asked;
    bool m_held = false;
};

} // namespace controls
