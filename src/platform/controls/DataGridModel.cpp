#include "platform/controls/DataGridModel.h"

#include "platform/controls/Language.h"

namespace controls {

void DataGridModel::bind(Array* array)
{
    beginResetModel();
    m_array = array;
    m_subscription.reset();
    if (array)
        m_subscription = array->subscribe([this](const basic::ArrayChange& change) { arrayChanged(change); });
    endResetModel();
}

void DataGridModel::announceReset()
{
    beginResetModel();
    endResetModel();
}

void DataGridModel::arrayChanged(const basic::ArrayChange& change)
{
    if (change.kind == basic::ArrayChange::Kind::Cell) {
        if (change.column < columnCount()) {
            const QModelIndex cell = index(change.row, change.column);
            emit dataChanged(cell, cell);
        }
        return;
    }
    beginResetModel();
    if (change.kind == basic::ArrayChange::Kind::Destroyed)
        m_array = nullptr;
    endResetModel();
}

void DataGridModel::setColumnCount(int count)
{
    beginResetModel();
    m_columns.resize(static_cast<std::size_t>(count));
    endResetModel();
}

GridColumnData& DataGridModel::column(int column)
{
    if (column < 0 || column >= columnCount())
        basic::raise(basic::error::Subscript);
    return m_columns[static_cast<std::size_t>(column)];
}

const GridColumnData& DataGridModel::column(int column) const
{
    return const_cast<DataGridModel*>(this)->column(column);
}

bool DataGridModel::holds(int row, int column) const
{
    return m_array && row >= 0 && row <= m_array->lastRow() && column >= 0 && column <= m_array->lastColumn();
}

QString DataGridModel::value(int row, int column) const
{
    return holds(row, column) ? m_array->at(row, column) : QString();
}

QString DataGridModel::text(int row, int column) const
{
    return this->column(column).items.textOf(value(row, column));
}

int DataGridModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() || !m_array ? 0 : m_array->lastRow() + 1;
}

int DataGridModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QString DataGridModel::spokenText(int row, int column) const
{
    const GridColumnData& shape = this->column(column);
    const QString held = value(row, column);
    const int item = shape.items.indexOfValue(held);
    QString content = text(row, column);
    if (shape.items.presentation() == ValueItems::Presentation::CheckBox)
        content = isTicked(held) ? uiText("marcado", "ticked") : uiText("sin marcar", "not ticked");
    else if (item >= 0)
        content = shape.items.Item(item).text;
    return QStringLiteral("%1, %2 %3: %4")
        .arg(shape.caption.trimmed(), uiText("fila", "row"), QString::number(row + 1), content);
}

QVariant DataGridModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const GridColumnData& shape = column(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return shape.items.isToggled() ? QVariant() : QVariant(text(index.row(), index.column()));
    case Qt::AccessibleTextRole:
        return spokenText(index.row(), index.column());
    case Qt::ToolTipRole: {
        const int item = shape.items.indexOfValue(value(index.row(), index.column()));
        return item < 0 ? QVariant() : QVariant(shape.items.Item(item).text);
    }
    case Qt::TextAlignmentRole:
        return QVariant(shape.alignment | Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant DataGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::AccessibleTextRole ? QVariant(QString::number(section + 1)) : QVariant();
    if (section < 0 || section >= columnCount())
        return {};
    if (role == Qt::DisplayRole)
        return column(section).caption;
    return role == Qt::TextAlignmentRole ? QVariant(column(section).alignment | Qt::AlignVCenter)
                                         : QVariant();
}

Qt::ItemFlags DataGridModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.isValid() && !column(index.column()).locked ? flags | Qt::ItemIsEditable : flags;
}

} // namespace controls
