// A click that a message box came between.
//
// Pressing the mouse on a control first takes the focus from another, whose handler may put a message box
// before the user. By the time it is answered the mouse was let go over the box: the press would reach its
// control without a release, switch a page that the answer kept, or leave a button sunken.
#pragma once

#include <Qt>

namespace controls {

/// Stands around what a control tells of losing the focus. When a message box was shown by its end and the
/// mouse took the focus, the press that did so goes no further.
class SpentClick
{
public:
    explicit SpentClick(Qt::FocusReason reason);
    ~SpentClick();
    SpentClick(const SpentClick&) = delete;
    SpentClick& operator=(const SpentClick&) = delete;

private:
    Qt::FocusReason m_reason;
    unsigned m_shown;
};

} // namespace controls
