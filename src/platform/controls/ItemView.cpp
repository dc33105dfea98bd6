#include "platform/controls/ItemView.h"

#include "platform/controls/Keys.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace controls {

ItemView::ItemView(QWidget* parent) : QTreeWidget(parent)
{
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
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
    QTreeWidget::mousePressEvent(event);
}

void ItemView::keyPressEvent(QKeyEvent* event)
{
    if (!asksForMenu(*event) || !selected()) {
        QTreeWidget::keyPressEvent(event);
        return;
    }
    scrollToItem(selected());
    const QPoint at = (visualItemRect(selected()) & viewport()->rect()).center();
    emit MouseDown(rightButton, 0, at.x(), at.y());
}

} // namespace controls
