#include "platform/controls/CheckList.h"

#include "platform/basic/RuntimeError.h"

#include <QMouseEvent>

namespace controls {

CheckList::CheckList(QWidget* parent) : QListWidget(parent)
{
    // Of an item only its tick changes once it is in the list.
    connect(this, &QListWidget::itemChanged, this,
            [this](const QListWidgetItem* item) { emit ItemCheck(row(item)); });
}

void CheckList::AddItem(const QString& text)
{
    auto* item = new QListWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Unchecked);
    addItem(item);
}

QListWidgetItem* CheckList::at(int index) const
{
    QListWidgetItem* found = item(index);
    if (!found)
        basic::raise(basic::error::Subscript);
    return found;
}

QString CheckList::List(int index) const
{
    return at(index)->text();
}

bool CheckList::Selected(int index) const
{
    return at(index)->checkState() == Qt::Checked;
}

void CheckList::setSelected(int index, bool ticked)
{
    at(index)->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
}

/// By itself a press on a box leaves the current item where it is.
void CheckList::mousePressEvent(QMouseEvent* event)
{
    if (auto* pressed = itemAt(event->pos()))
        setCurrentItem(pressed);
    QListWidget::mousePressEvent(event);
}

} // namespace controls
