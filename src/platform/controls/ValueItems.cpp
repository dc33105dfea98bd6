#include "platform/controls/ValueItems.h"

#include "platform/basic/RuntimeError.h"

#include <algorithm>

namespace controls {

namespace {

template <class Fits>
int firstWhere(const QList<ValueItem>& items, Fits fits)
{
    const auto found = std::find_if(items.begin(), items.end(), fits);
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

} // namespace

const ValueItem& ValueItems::Item(int index) const
{
    if (index < 0 || index >= Count())
        basic::raise(basic::error::Subscript);
    return m_items.at(index);
}

int ValueItems::indexOfValue(const QString& value) const
{
    return firstWhere(m_items, [&](const ValueItem& item) { return item.value == value; });
}

int ValueItems::indexOfText(const QString& text) const
{
    const QString wanted = text.trimmed();
    return firstWhere(m_items, [&](const ValueItem& item) {
        return item.text.trimmed().compare(wanted, Qt::CaseInsensitive) == 0;
    });
}

int ValueItems::indexOfStart(const QString& start) const
{
    return firstWhere(
        m_items, [&](const ValueItem& item) { return item.text.startsWith(start, Qt::CaseInsensitive); });
}

QString ValueItems::textOf(const QString& value) const
{
    const int index = isToggled() ? -1 : indexOfValue(value);
    return index < 0 ? value : m_items.at(index).text;
}

QString ValueItems::valueOf(const QString& text) const
{
    const int index = isToggled() ? -1 : indexOfText(text);
    if (index >= 0)
        return m_items.at(index).value;
    return m_presentation == Presentation::DropDown && text.trimmed().isEmpty() ? QString() : text;
}

QString ValueItems::next(const QString& value) const
{
    if (m_presentation == Presentation::CheckBox)
        return isTicked(value) ? QStringLiteral("0") : QStringLiteral("-1");
    return m_items.isEmpty() ? value : m_items.at((indexOfValue(value) + 1) % Count()).value;
}

bool isTicked(const QString& value)
{
    bool number = false;
    return value.trimmed().toDouble(&number) != 0.0 && number;
}

} // namespace controls
