// What a column of the data grid may hold, and how that shows.
#pragma once

#include <QIcon>
#include <QList>
#include <QString>

namespace controls {

struct ValueItem
{
    QString value; ///< as the array holds it
    QString text;  ///< as the user reads, types or hears it
    QIcon picture; ///< instead of the text, for Presentation::Picture
};

/// The values of one column. Without items and with Presentation::Text a cell shows and takes any text.
class ValueItems
{
public:
    enum class Presentation
    {
        Text,     ///< shows the item's text, or what the array holds when no item has that value
        DropDown, ///< the same with a list to pick from; a typed text must be one of the list's
        CheckBox, ///< a tick: "-1" and any other number but 0 is ticked; toggling writes "-1" or "0"
        Picture   ///< the item's picture; each click goes on to the next item, from the last to the first
    };

    void setPresentation(Presentation presentation) { m_presentation = presentation; }
    [[nodiscard]] Presentation presentation() const { return m_presentation; }

    void Clear() { m_items.clear(); }
    /// A value that shows as itself.
    void Add(const QString& value) { m_items.append({value, value, {}}); }
    void Add(const QString& value, const QString& text) { m_items.append({value, text, {}}); }
    /// `text` is the picture's accessible name and its tool tip.
    void Add(const QString& value, const QIcon& picture, const QString& text)
    {
        m_items.append({value, text, picture});
    }
    [[nodiscard]] int Count() const { return static_cast<int>(m_items.size()); }
    /// From 0. Error 9 outside the list.
    [[nodiscard]] const ValueItem& Item(int index) const;

    /// Position of a value, or of a text as a user types it (case and outer blanks don't count); -1 for none.
    [[nodiscard]] int indexOfValue(const QString& value) const;
    [[nodiscard]] int indexOfText(const QString& text) const;
    /// The first item whose text begins with `start`, without regard to case; -1 for none.
    [[nodiscard]] int indexOfStart(const QString& start) const;

    /// The text that stands for a value in `Text`; ticks and pictures stand for themselves.
    [[nodiscard]] QString textOf(const QString& value) const;
    /// The value that a text stands for; a text that no item has stands for itself.
    [[nodiscard]] QString valueOf(const QString& text) const;
    /// The value that a click or Space puts in the place of `value`.
    [[nodiscard]] QString next(const QString& value) const;

    [[nodiscard]] bool isToggled() const
    {
        return m_presentation == Presentation::CheckBox || m_presentation == Presentation::Picture;
    }

private:
    QList<ValueItem> m_items;
    Presentation m_presentation = Presentation::Text;
};

/// Whether a cell with this text shows ticked.
[[nodiscard]] bool isTicked(const QString& value);

} // namespace controls
