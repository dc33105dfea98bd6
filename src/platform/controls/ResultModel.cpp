#include "platform/controls/ResultModel.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <limits>

namespace controls {

namespace {

// A view adds its rows' heights up in an int.
constexpr qint64 mostRows = std::numeric_limits<int>::max() / 32;

} // namespace

ResultModel::ResultModel(ado::Recordset records, QObject* parent)
    : QAbstractTableModel(parent), m_records(std::move(records)),
      m_rows(static_cast<int>(std::min(m_records.State() != 0 ? m_records.RecordCount() : 0, mostRows))),
      m_columns(m_records.State() != 0 ? m_records.FieldCount() : 0)
{
    m_nullFont.setItalic(true);
}

int ResultModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int ResultModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QVariant ResultModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return shownText(index);
    case Qt::FontRole:
        return isNull(index) ? QVariant(m_nullFont) : QVariant();
    case Qt::ForegroundRole:
        return isNull(index) ? QVariant(QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text))
                             : QVariant();
    case Qt::TextAlignmentRole: {
        const auto kind = m_records.FieldType(index.column());
        const bool number = kind == ado::FieldKind::Integer || kind == ado::FieldKind::Float ||
                            kind == ado::FieldKind::Decimal;
        return QVariant((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    default:
        return {};
    }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || section < 0 ||
        section >= (orientation == Qt::Horizontal ? m_columns : m_rows))
        return {};
    return orientation == Qt::Horizontal ? QVariant(m_records.FieldName(section)) : QVariant(section + 1);
}

QString ResultModel::wholeText(const QModelIndex& index) const
{
    return m_records.cellText(index.row(), index.column());
}

bool ResultModel::isNull(const QModelIndex& index) const
{
    return m_records.isNull(index.row(), index.column());
}

QString ResultModel::shownText(const QModelIndex& index) const
{
    if (isNull(index))
        return nullText();
    QString text = m_records.cellText(index.row(), index.column(), shownCharacters + 1);
    if (text.size() > shownCharacters)
        text = text.left(shownCharacters) + QChar(0x2026);
    for (const char16_t lineEnd : {u'\r', u'\n'})
        text.replace(QChar(lineEnd), QLatin1Char(' '));
    return text;
}

} // namespace controls
