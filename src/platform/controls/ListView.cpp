#include "platform/controls/ListView.h"

#include "platform/basic/RuntimeError.h"

#include <QHeaderView>

namespace controls {

namespace {

constexpr int columns = 4;
constexpr int startWidths[] = {210, 110, 90}; // pixels at 96 dpi; the last column takes what is left

} // namespace

ListView::ListView(QWidget* parent) : ItemView(parent)
{
    for (int position = 1; position <= columns; ++position)
        setColumnHeader(position, QString());
    for (int column = 0; column < static_cast<int>(std::size(startWidths)); ++column)
        setColumnWidth(column, startWidths[column]);
    items().setRowHeight(fontMetrics().height() + 4);
    setRootIsDecorated(false);
    setAlternatingRowColors(true);
    setAllColumnsShowFocus(true);
    header()->setStretchLastSection(true);
}

void ListView::setColumnHeader(int position, const QString& text)
{
    if (position < 1)
        basic::raise(basic::error::Subscript);
    items().setHeader(position - 1, text);
}

QString ListView::columnHeader(int position) const
{
    return items().headers().value(position - 1);
}

ListItem* ListView::Item(int index) const
{
    if (index < 0 || index >= ListCount())
        basic::raise(basic::error::Subscript);
    return items().topItem(index);
}

} // namespace controls
