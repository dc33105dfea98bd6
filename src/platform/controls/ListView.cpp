#include "platform/controls/ListView.h"

#include "platform/basic/RuntimeError.h"
#include "platform/controls/Keys.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

namespace controls {

namespace {

constexpr int startWidths[] = {210, 110, 80, 120}; // pixels at 96 dpi

} // namespace

ListItem::ListItem(QString key, const QString& text) : m_key(std::move(key))
{
    setText(0, text);
}

ListView::ListView(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(static_cast<int>(std::size(startWidths)));
    for (int column = 0; column < columnCount(); ++column) {
        setColumnHeader(column + 1, QString());
        setColumnWidth(column, startWidths[column]);
    }
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    header()->setStretchLastSection(true);
}

void ListView::setColumnHeader(int position, const QString& text)
{
    if (position < 1)
        basic::raise(basic::error::Subscript);
    if (position > columnCount())
        setColumnCount(position);
    headerItem()->setText(position - 1, text);
}

QString ListView::columnHeader(int position) const
{
    return headerItem()->text(position - 1);
}

void ListView::Clear()
{
    m_items.clear();
    clear();
}

ListItem* ListView::Add(const QString& key, const QString& text)
{
    if (m_items.contains(key))
        basic::raise(basic::error::KeyNotUnique);
    auto* item = new ListItem(key, text);
    item->setSizeHint(0, QSize(0, fontMetrics().height() + 4));
    addTopLevelItem(item);
    m_items.insert(key, item);
    return item;
}

ListItem* ListView::Item(int index) const
{
    if (index < 0 || index >= ListCount())
        basic::raise(basic::error::Subscript);
    return static_cast<ListItem*>(topLevelItem(index));
}

ListItem* ListView::SelectedItem() const
{
    return static_cast<ListItem*>(selectedItems().value(0));
}

void ListView::Select(ListItem* item)
{
    setCurrentItem(item);
}

ListItem* ListView::HitTest(const QPoint& point) const
{
    return static_cast<ListItem*>(itemAt(point));
}

void ListView::mousePressEvent(QMouseEvent* event)
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

void ListView::keyPressEvent(QKeyEvent* event)
{
    if (asksForMenu(*event) && SelectedItem()) {
        const QPoint at = visualItemRect(SelectedItem()).center();
        emit MouseDown(rightButton, 0, at.x(), at.y());
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

} // namespace controls
