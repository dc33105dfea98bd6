// A report list: rows with a key, a text and sub-items, below column headers that code renames.
#pragma once

#include "platform/controls/ItemView.h"

#include <QHash>

namespace controls {

class ListItem : public QTreeWidgetItem
{
public:
    ListItem(QString key, const QString& text);
    [[nodiscard]] const QString& Key() const { return m_key; }
    [[nodiscard]] QString Text() const { return text(0); }
    /// Columns behind the first, counted from 1.
    [[nodiscard]] QString SubItems(int index) const { return text(index); }
    void setSubItems(int index, const QString& text) { setText(index, text); }

private:
    QString m_key;
};

/// Nothing is selected after a fill, until the user or code selects.
class ListView : public ItemView
{
    Q_OBJECT

public:
    explicit ListView(QWidget* parent = nullptr);

    /// Column headers, counted from 1; a new position adds columns.
    void setColumnHeader(int position, const QString& text);
    [[nodiscard]] QString columnHeader(int position) const;

    void Clear();
    /// Adds an item at the end. Error 35602 when the key stands in the list.
    ListItem* Add(const QString& key, const QString& text);
    [[nodiscard]] int ListCount() const { return topLevelItemCount(); }
    /// From 0. Error 9 outside the list.
    [[nodiscard]] ListItem* Item(int index) const;
    /// Null when nothing is selected.
    [[nodiscard]] ListItem* SelectedItem() const { return static_cast<ListItem*>(selected()); }
    void Select(ListItem* item);
    /// The item under a point of the viewport; null when there is none.
    [[nodiscard]] ListItem* HitTest(const QPoint& point) const;

private:
    QHash<QString, ListItem*> m_items;
};

} // namespace controls
