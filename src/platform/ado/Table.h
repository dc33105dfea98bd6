// The rows of one result.
#pragma once

#include "platform/ado/Column.h"
#include <vector>

namespace ado {

/// The rows of a result, kept small: columns of their own width, in blocks of a few thousand rows.
/// Rows and columns count from 0 and are not checked.
class Table
{
public:
    Table() = default;
    explicit Table(std::vector<Column> columns);

    [[nodiscard]] const std::vector<Column>& columns() const { return m_columns; }
    [[nodiscard]] qint64 rowCount() const { return m_rowCount; }

    [[nodiscard]] bool isNull(qint64 row, int column) const;
    [[nodiscard]] basic::Variant value(qint64 row, int column) const;
    /// "" for a null; text and binary cut behind `limit` characters unless 0.
    [[nodiscard]] QString text(qint64 row, int column, qsizetype limit) const;
    [[nodiscard]] std::size_t memoryUsed() const;
    /// Bytes of the rows added so far, at little cost; what they occupy in the end may be less.
    [[nodiscard]] std::size_t bytesAdded() const { return m_sealedBytes + m_openBytes; }

    /// Where the values of new rows go: every column must get the same number, then rowsAdded() is told.
    [[nodiscard]] ColumnBuilder& builder(int column) { return m_builders[static_cast<std::size_t>(column)]; }
    void rowsAdded(qint64 count);
    /// Ends the adding of rows; only then can all rows be read.
    void seal();

private:
    struct Block
    {
        qint64 firstRow;
        std::vector<ColumnBlock> columns;
    };
    struct Place
    {
        const ColumnBlock& block;
        std::size_t row;
    };
    [[nodiscard]] Place find(qint64 row, int column) const;
    void closeBlock();

    std::vector<Column> m_columns;
    std::vector<ColumnBuilder> m_builders;
    std::vector<Block> m_blocks;
    qint64 m_rowCount = 0;
    qint64 m_sealedRows = 0;
    std::size_t m_sealedBytes = 0;
    std::size_t m_openBytes = 0; ///< of the rows that no block holds yet
};

} // namespace ado
