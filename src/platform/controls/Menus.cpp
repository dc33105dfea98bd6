#include "platform/controls/Menus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>

namespace controls {

namespace {

bool hasEntries(const QMenu* menu)
{
    const auto entries = menu->actions();
    return std::any_of(entries.begin(), entries.end(),
                       [](const QAction* entry) { return entry->isVisible() && !entry->isSeparator(); });
}

/// The menu of the bar before which another stands, in the order in which they were made; null for the end.
QAction* followerOf(const QMenuBar* bar, QMenu* menu)
{
    const auto menus = bar->findChildren<QMenu*>(Qt::FindDirectChildrenOnly);
    for (auto i = menus.indexOf(menu) + 1; i < menus.size(); ++i)
        if (bar->actions().contains(menus[i]->menuAction()))
            return menus[i]->menuAction();
    return nullptr;
}

} // namespace

void setVisible(QMenu* menu, bool visible)
{
    QAction* const title = menu->menuAction();
    title->setVisible(visible);
    auto* bar = qobject_cast<QMenuBar*>(menu->parentWidget());
    if (!bar || bar->actions().contains(title) == visible)
        return;
    if (visible)
        bar->insertAction(followerOf(bar, menu), title);
    else
        bar->removeAction(title);
}

void setVisible(QAction* entry, bool visible)
{
    entry->setVisible(visible);
    for (QObject* place : entry->associatedObjects())
        if (const auto* menu = qobject_cast<QMenu*>(place))
            menu->menuAction()->setEnabled(hasEntries(menu));
}

void popup(QMenu* menu, const QPoint& where)
{
    if (hasEntries(menu))
        menu->popup(where);
}

} // namespace controls
