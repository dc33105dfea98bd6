#include "platform/controls/ComboBox.h"

#include "platform/basic/RuntimeError.h"

#include <QWheelEvent>

namespace controls {

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus); // not by the wheel
    connect(this, &QComboBox::activated, this, &ComboBox::Click);
}

void ComboBox::Clear()
{
    clear();
}

void ComboBox::AddItem(const QString& text, int itemData)
{
    // A filled combo of the toolkit selects its first entry by itself; this one never does.
    const bool none = currentIndex() == -1;
    addItem(text, itemData);
    if (none)
        setCurrentIndex(-1);
}

QString ComboBox::List(int index) const
{
    checkIndex(index);
    return itemText(index);
}

void ComboBox::setList(int index, const QString& text)
{
    checkIndex(index);
    setItemText(index, text);
}

int ComboBox::ItemData(int index) const
{
    checkIndex(index);
    return itemData(index).toInt();
}

void ComboBox::setListIndex(int index)
{
    if (index != -1)
        checkIndex(index);
    setCurrentIndex(index);
    emit Click();
}

void ComboBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

void ComboBox::checkIndex(int index) const
{
    if (index < 0 || index >= count())
        basic::raise(basic::error::Subscript);
}

} // namespace controls
