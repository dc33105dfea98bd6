#include "platform/controls/ValueListPopup.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollBar>

#include <algorithm>

namespace controls {

namespace {

constexpr int rowsShown = 12;
constexpr int sideMargin = 12;

} // namespace

ValueListPopup::ValueListPopup(QWidget* parent) : QListWidget(parent)
{
    setWindowFlags(Qt::Popup);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
}

void ValueListPopup::open(const QStringList& texts, int current, const QRect& cell)
{
    clear();
    addItems(texts);
    setCurrentRow(current);
    const int frame = 2 * frameWidth();
    const int rows = std::clamp(count(), 1, rowsShown);
    const int height = rows * std::max(sizeHintForRow(0), fontMetrics().height()) + frame;
    const int bar = count() > rowsShown ? verticalScrollBar()->sizeHint().width() : 0;
    const int width = std::max(cell.width(), sizeHintForColumn(0) + frame + bar + sideMargin);
    const QRect area = screen()->availableGeometry();
    QRect place(cell.left(), cell.bottom() + 1, width, height);
    if (place.bottom() > area.bottom() && cell.top() - height >= area.top())
        place.moveBottom(cell.top() - 1);
    place.moveLeft(std::max(area.left(), std::min(place.left(), area.right() - width + 1)));
    setGeometry(place);
    show();
    setFocus(Qt::PopupFocusReason);
    scrollToItem(currentItem());
}

void ValueListPopup::choose(const QListWidgetItem* item)
{
    const QString text = item ? item->text() : QString();
    hide();
    if (item)
        emit chosen(text);
}

/// A click beside the list closes it.
bool ValueListPopup::event(QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress &&
        !rect().contains(static_cast<QMouseEvent*>(event)->position().toPoint()))
        hide();
    return QListWidget::event(event);
}

void ValueListPopup::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
        choose(currentItem());
        return;
    case Qt::Key_Escape:
    case Qt::Key_F4:
        hide();
        return;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (event->modifiers().testFlag(Qt::AltModifier)) {
            hide();
            return;
        }
        [[fallthrough]];
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        QListWidget::keyPressEvent(event);
        return;
    default:
        emit keyTyped(event);
    }
}

void ValueListPopup::mouseMoveEvent(QMouseEvent* event)
{
    if (QListWidgetItem* below = itemAt(event->position().toPoint()))
        setCurrentItem(below);
}

void ValueListPopup::mouseReleaseEvent(QMouseEvent* event)
{
    if (QListWidgetItem* below = itemAt(event->position().toPoint()))
        choose(below);
}

} // namespace controls
