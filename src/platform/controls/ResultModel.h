// The rows of a recordset as the toolkit's views ask for them.
#pragma once

#include "platform/ado/Recordset.h"

#include <QAbstractTableModel>
#include <QFont>

namespace controls {

class ResultModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// Characters of a cell that are shown in the grid.
    static constexpr qsizetype shownCharacters = 256;

    /// What stands for a null on the screen and in copies.
    [[nodiscard]] static QString nullText() { return QStringLiteral("NULL"); }

    explicit ResultModel(ado::Recordset records, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// The cell in full; "" for a null.
    [[nodiscard]] QString wholeText(const QModelIndex& index) const;
    [[nodiscard]] bool isNull(const QModelIndex& index) const;

private:
    [[nodiscard]] QString shownText(const QModelIndex& index) const;

    ado::Recordset m_records;
    int m_rows;
    int m_columns;
    QFont m_nullFont;
};

} // namespace controls
