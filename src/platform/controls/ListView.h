// A report list: rows with a key, a text and sub-items, below column headers that code renames.
#pragma once

#include "platform/controls/ItemView.h"

namespace controls {

using ListItem = Item;

/// Nothing is selected after a fill, until the user or code selects.
class ListView : public ItemView
{
    Q_OBJECT

public:
    explicit ListView(QWidget* parent = nullptr);

    /// Column headers, counted from 1; a new position adds columns.
    void setColumnHeader(int position, const QString& text);
    [[nodiscard]] QString columnHeader(int position) const;

    /// Adds an item at the end. Error 35602 when the key stands in the list.
    ListItem* Add(const QString& key, const QString& text) { return items().add(nullptr, key, text); }
    /// Null when no item has the key.
    [[nodiscard]] ListItem* Find(const QString& key) { return items().find(key); }
    [[nodiscard]] int ListCount() const { return items().topCount(); }
    /// From 0. Error 9 outside the list.
    [[nodiscard]] ListItem* Item(int index) const;
};

} // namespace controls
