#include "platform/controls/Menus.h"

#include <QAction>
#include <QMenu>

namespace controls {

void setVisible(QMenu* menu, bool visible)
{
    menu->menuAction()->setVisible(visible);
}

void setVisible(QAction* entry, bool visible)
{
    entry->setVisible(visible);
}

void popup(QMenu* menu, const QPoint& where)
{
    for (const QAction* entry : menu->actions()) {
        if (!entry->isVisible() || entry->isSeparator())
            continue;
        menu->popup(where);
        return;
    }
}

} // namespace controls
