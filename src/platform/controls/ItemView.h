// What trees and lists of keyed items have in common.
#pragma once

#include "platform/controls/ItemModel.h"

#include <QTreeView>

namespace controls {

class ItemView : public QTreeView
{
    Q_OBJECT

public:
    explicit ItemView(QWidget* parent = nullptr);

    void Clear() { m_items.clear(); }
    /// The focus alone makes an item current; only a click, a key or code selects it. Null when nothing
    /// is selected.
    [[nodiscard]] Item* SelectedItem() const;
    /// Null selects nothing.
    void Select(const Item* item);
    /// The item under a point of the viewport; null when there is none.
    [[nodiscard]] Item* HitTest(const QPoint& point) const;
    /// Scrolls to an item.
    void EnsureVisible(const Item* item);
    /// Where an item stands in the viewport; empty for one below a closed node.
    [[nodiscard]] QRect itemRect(const Item* item);

signals:
    /// A button (1 left, 2 right) went down at a point of the viewport, before anything is selected; the
    /// right button selects nothing by itself. The menu key and Shift+F10 count as the right button on the
    /// selected item.
    void MouseDown(int button, int shift, int x, int y);

protected:
    [[nodiscard]] ItemModel& items() { return m_items; }
    [[nodiscard]] const ItemModel& items() const { return m_items; }

    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    ItemModel m_items;
};

} // namespace controls
