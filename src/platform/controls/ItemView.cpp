#include "platform/controls/ItemView.h"

#include "platform/controls/Keys.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopeGuard>
#include <QScrollBar>

#include <utility>

namespace controls {

ItemView::ItemView(QWidget* parent) : QTreeView(parent)
{
    setModel(&m_items);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    connect(&m_items, &ItemModel::announced, this, &ItemView::restorePlace);
}

void ItemView::Clear()
{
    m_place = {};
    if (verticalScrollBar()->value() > 0)
        if (const Item* top = HitTest({0, 0}))
            m_place = {top->Key(), top->Text(), itemRect(top).top()};
    m_items.clear();
}

void ItemView::restorePlace()
{
    const Place place = std::exchange(m_place, {});
    const Item* const top = place.key.isEmpty() ? nullptr : m_items.known(place.key);
    if (!top || top->Text() != place.text)
        return;
    scrollTo(m_items.indexOf(top), PositionAtTop);
    verticalScrollBar()->setValue(verticalScrollBar()->value() - place.offset);
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

Item* ItemView::HitTest(const QPoint& point)
{
    m_items.announce();
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
    // A selected row that is half hidden would scroll into sight, and another come below the pointer.
    const bool scrolls = hasAutoScroll();
    setAutoScroll(false);
    const auto again = qScopeGuard([this, scrolls] { setAutoScroll(scrolls); });
    if (event->button() == Qt::RightButton) {
        emit MouseDown(rightButton, shiftState(event->modifiers()), at.x(), at.y());
        event->accept();
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    emit MouseDown(leftButton, shiftState(event->modifiers()), at.x(), at.y());
    if (HitTest(at))
        QTreeView::mousePressEvent(event);
}

void ItemView::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() == Qt::NoButton) // a drag selects nothing
        QTreeView::mouseMoveEvent(event);
}

QItemSelectionModel::SelectionFlags ItemView::selectionCommand(const QModelIndex& index,
                                                               const QEvent* /*event*/) const
{
    return index.isValid() ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                           : QItemSelectionModel::NoUpdate;
}

void ItemView::keyPressEvent(QKeyEvent* event)
{
    const Item* const item = SelectedItem();
    if (!item && selectByKey(*event))
        return;
    if (!item || !asksForMenu(*event)) {
        QTreeView::keyPressEvent(event);
        return;
    }
    EnsureVisible(item);
    const QPoint at = (itemRect(item) & viewport()->rect()).center();
    emit MouseDown(rightButton, 0, at.x(), at.y());
}

// The focus makes the first item current, so that a key that leads there would change nothing.
bool ItemView::selectByKey(const QKeyEvent& event)
{
    m_items.announce();
    const bool toEnd = event.key() == Qt::Key_End;
    if (toEnd || event.key() == Qt::Key_PageDown) {
        selectionModel()->setCurrentIndex(m_items.index(0, 0), QItemSelectionModel::NoUpdate);
        setCurrentIndex(moveCursor(toEnd ? MoveEnd : MovePageDown, event.modifiers()));
        return true;
    }
    selectionModel()->clearCurrentIndex();
    if (event.key() != Qt::Key_Up && event.key() != Qt::Key_Down && event.key() != Qt::Key_Home &&
        event.key() != Qt::Key_PageUp)
        return false;
    setCurrentIndex(m_items.index(0, 0));
    return true;
}

} // namespace controls
