#include "platform/ado/Table.h"

#include <algorithm>

namespace ado {

namespace {

constexpr qint64 rowsPerBlock = 4096;
constexpr std::size_t bytesPerBlock = std::size_t{8} << 20U;

} // namespace

Table::Table(std::vector<Column> columns) : m_columns(std::move(columns))
{
    m_builders.reserve(m_columns.size());
    for (const Column& column : m_columns)
        m_builders.emplace_back(column.storage);
}

Table::Place Table::find(qint64 row, int column) const
{
    const auto after = std::ranges::upper_bound(m_blocks, row, {}, &Block::firstRow);
    const Block& block = *std::prev(after);
    return {block.columns[static_cast<std::size_t>(column)], static_cast<std::size_t>(row - block.firstRow)};
}

bool Table::isNull(qint64 row, int column) const
{
    const Place place = find(row, column);
    return place.block.isNull(m_columns[static_cast<std::size_t>(column)], place.row);
}

basic::Variant Table::value(qint64 row, int column) const
{
    const Place place = find(row, column);
    return place.block.value(m_columns[static_cast<std::size_t>(column)], place.row);
}

QString Table::text(qint64 row, int column, qsizetype limit) const
{
    const Place place = find(row, column);
    return place.block.text(m_columns[static_cast<std::size_t>(column)], place.row, limit);
}

std::size_t Table::memoryUsed() const
{
    std::size_t bytes = sizeof *this + m_blocks.capacity() * sizeof(Block);
    for (const Block& block : m_blocks)
        for (const ColumnBlock& column : block.columns)
            bytes += column.memoryUsed();
    return bytes;
}

void Table::rowsAdded(qint64 count)
{
    m_rowCount += count;
    m_openBytes = 0;
    for (const ColumnBuilder& builder : m_builders)
        m_openBytes += builder.bytes();
    if (m_rowCount - m_sealedRows >= rowsPerBlock || m_openBytes >= bytesPerBlock)
        closeBlock();
}

void Table::closeBlock()
{
    Block block{m_sealedRows, {}};
    block.columns.reserve(m_builders.size());
    for (ColumnBuilder& builder : m_builders)
        m_sealedBytes += block.columns.emplace_back(builder.seal()).memoryUsed();
    m_openBytes = 0;
    m_blocks.push_back(std::move(block));
    m_sealedRows = m_rowCount;
}

void Table::seal()
{
    if (m_sealedRows != m_rowCount)
        closeBlock();
    m_builders = {};
    m_blocks.shrink_to_fit();
}

} // namespace ado
