// Menu entries: showing, hiding, and a menu as a pop-up.
#pragma once

#include <QPoint>

class QAction;
class QMenu;

namespace controls {

/// A hidden menu of a menu bar leaves it, since its Alt letter would still answer there.
void setVisible(QMenu* menu, bool visible);
/// A menu whose entries are all hidden can't be opened.
void setVisible(QAction* entry, bool visible);

/// Opens the menu at a point of the screen and returns at once; also while its entry in the menu bar is
/// hidden. An empty menu opens nothing.
void popup(QMenu* menu, const QPoint& where);

} // namespace controls
