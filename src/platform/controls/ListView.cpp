#include "platform/controls/ListView.h"

#include "platform/basic/RuntimeError.h"

#include <QHeaderView>

namespace controls {

namespace {

constexpr int startWidths[] = {210, 110, 90, 165}; // pixels at 96 dpi

} // namespace

ListItem::ListItem(QString key, const QString& text) : m_key(std::move(key))
{
    setText(0, text);
}

ListView::ListView(QWidget* parent) : ItemView(parent)
{
    setColumnCount(static_cast<int>(std::size(startWidths)));
    for (int column = 0; column < columnCount(); ++column) {
        setColumnHeader(column + 1, QString());
        setColumnWidth(column, startWidths[column]);
    }
    setRootIsDecorated(false);
    setAlternatingRowColors(true);
    setAllColumnsShowFocus(true);
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

void ListView::Select(ListItem* item)
{
    setCurrentItem(item);
}

ListItem* ListView::HitTest(const QPoint& point) const
{
    return static_cast<ListItem*>(itemAt(point));
}

} // namespace controls
