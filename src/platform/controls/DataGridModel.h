// The cells of the data grid's array as Qt's views and screen readers ask for them.
#pragma once

#include "platform/basic/BoundedArray.h"
#include "platform/controls/ValueItems.h"

#include <QAbstractTableModel>
#include <QString>

#include <deque>

namespace controls {

struct GridColumnData
{
    QString caption;
    Qt::Alignment alignment = Qt::AlignLeft;
    bool locked = false;
    bool button = false;
    ValueItems items;
};

/// Resets itself when the array changes its shape or is destroyed.
class DataGridModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using Array = basic::BoundedArray2<QString>;

    using QAbstractTableModel::QAbstractTableModel;

    void bind(Array* array);
    [[nodiscard]] Array* array() const { return m_array; }
    /// Says that everything may have changed.
    void announceReset();

    void setColumnCount(int count);
    /// Error 9 outside the columns. A reference stays valid while the column exists.
    [[nodiscard]] GridColumnData& column(int column);
    [[nodiscard]] const GridColumnData& column(int column) const;
    void announceCaption(int column) { emit headerDataChanged(Qt::Horizontal, column, column); }

    /// The array has this cell.
    [[nodiscard]] bool holds(int row, int column) const;
    /// What the array holds; empty outside it.
    [[nodiscard]] QString value(int row, int column) const;
    [[nodiscard]] QString text(int row, int column) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void arrayChanged(const basic::ArrayChange& change);
    [[nodiscard]] QString spokenText(int row, int column) const;

    Array* m_array = nullptr;
    basic::ArraySubscription m_subscription;
    std::deque<GridColumnData> m_columns;
};

} // namespace controls
