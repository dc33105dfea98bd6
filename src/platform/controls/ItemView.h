// What trees and lists of keyed items have in common: one item at most is selected, and once selected only
// another takes its place. The item under the pointer when a button goes down is the one that counts,
// wherever the view scrolls or is filled anew while that press is handled.
#pragma once

#include "platform/controls/ItemModel.h"

#include <QTreeView>

namespace controls {

class ItemView : public QTreeView
{
    Q_OBJECT

public:
    explicit ItemView(QWidget* parent = nullptr);

    /// Takes all items away. Filled again with the same items, the view shows those that it showed.
    void Clear();
    /// The focus alone makes an item current; only a click, a key or code selects it. Null when nothing
    /// is selected.
    [[nodiscard]] Item* SelectedItem() const;
    /// Null selects nothing.
    void Select(const Item* item);
    /// The item under a point of the viewport, those just added included; null when there is none.
    [[nodiscard]] Item* HitTest(const QPoint& point);
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
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                                       const QEvent* event) const override;

private:
    /// The item at the upper edge, to be found again after the view was filled anew.
    struct Place
    {
        QString key;
        QString text;
        int offset = 0; ///< of its upper edge from the viewport's, in pixels
    };

    void restorePlace();
    [[nodiscard]] bool selectByKey(const QKeyEvent& event);

    ItemModel m_items;
    Place m_place;
};

} // namespace controls
