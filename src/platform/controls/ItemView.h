// What trees and lists of keyed items have in common.
#pragma once

#include <QTreeWidget>

namespace controls {

class ItemView : public QTreeWidget
{
    Q_OBJECT

public:
    explicit ItemView(QWidget* parent = nullptr);

signals:
    /// A button (1 left, 2 right) went down at a point of the viewport, before anything is selected; the
    /// right button selects nothing by itself. The menu key and Shift+F10 count as the right button on the
    /// selected item.
    void MouseDown(int button, int shift, int x, int y);

protected:
    /// Null when nothing is selected. The focus alone makes an item current; only a click, a key or code
    /// selects it.
    [[nodiscard]] QTreeWidgetItem* selected() const { return selectedItems().value(0); }

    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace controls
