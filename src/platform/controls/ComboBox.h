// A drop-down list that tells its form of every selection, the program's own ones too.
#pragma once

#include <QComboBox>

namespace controls {

class ComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget* parent = nullptr);

    /// Empties the list; this is no selection.
    void Clear();
    void AddItem(const QString& text, int itemData = 0);
    [[nodiscard]] int ListCount() const { return count(); }
    /// Text of an entry, from 0. Error 9 outside the list.
    [[nodiscard]] QString List(int index) const;
    void setList(int index, const QString& text);
    [[nodiscard]] int ItemData(int index) const;
    /// -1 when nothing is selected.
    [[nodiscard]] int ListIndex() const { return currentIndex(); }
    /// Selects an entry, or none with -1, and fires Click. Error 9 outside the list.
    void setListIndex(int index);
    [[nodiscard]] QString Text() const { return currentText(); }

signals:
    void Click();

protected:
    /// The wheel turns a combo that has the focus, and no other: it would select in passing.
    void wheelEvent(QWheelEvent* event) override;

private:
    void checkIndex(int index) const;
};

} // namespace controls
