// A list of texts with a tick box each.
#pragma once

#include <QListWidget>

namespace controls {

/// A click on a box, or Space, moves the tick of an item and makes it the current one; a click on its text
/// only makes it the current one. Items count from 0.
class CheckList : public QListWidget
{
    Q_OBJECT

public:
    explicit CheckList(QWidget* parent = nullptr);

    void Clear() { clear(); }
    /// At the end, without a tick.
    void AddItem(const QString& text);
    [[nodiscard]] int ListCount() const { return count(); }
    /// Raises 9 for no item.
    [[nodiscard]] QString List(int index) const;
    /// The current item; -1 for none.
    [[nodiscard]] int ListIndex() const { return currentRow(); }
    /// Whether an item is ticked. Raises 9 for no item.
    [[nodiscard]] bool Selected(int index) const;
    void setSelected(int index, bool ticked);

signals:
    /// The tick of an item has moved, by hand or by code.
    void ItemCheck(int index);

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    [[nodiscard]] QListWidgetItem* at(int index) const;
};

} // namespace controls
