#include "platform/controls/ItemView.h"

#include "platform/controls/Keys.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace controls {

ItemView::ItemView(QWidget* parent) : QTreeView(parent)
{
    setModel(&m_items);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
}

Item* ItemView::SelectedItem() const
{
    return ItemModel::itemOf(selectionModel()->selectedRows().value(0));
}

void ItemView::Select(const Item* item)
{
    m_items.announce();
    if (item)
        setCurrentIndex(m_items.indexOf(item));
    else
        selectionModel()->clear();
}

Item* ItemView::HitTest(const QPoint& point) const
{
    return ItemModel::itemOf(indexAt(point));
}

void ItemView::EnsureVisible(const Item* item)
{
    m_items.announce();
    scrollTo(m_items.indexOf(item));
}

QRect ItemView::itemRect(const Item* item)
{
    m_items.announce();
    return visualRect(m_items.indexOf(item));
}

void ItemView::mousePressEvent(QMouseEvent* event)
{
    const QPoint at = event->position().toPoint();
    if (event->button() == Qt::RightButton) {
        emit MouseDown(rightButton, shiftState(event->modifiers()), at.x(), at.y());
        event->accept();
        return;
    }
    if (event->button() == Qt::LeftButton)
        emit MouseDown(leftButton, shiftState(event->modifiers()), at.x(), at.y());
    QTreeView::mousePressEvent(event);
}

void ItemView::keyPressEvent(QKeyEvent* event)
{
    const Item* const item = SelectedItem();
    if (!item || !asksForMenu(*event)) {
        QTreeView::keyPressEvent(event);
        return;
    }
    EnsureVisible(item);
    const QPoint at = (itemRect(item) & viewport()->rect()).center();
    emit MouseDown(rightButton, 0, at.x(), at.y());
}

} // namespace controls
