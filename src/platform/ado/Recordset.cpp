#include "platform/ado/Recordset.h"

#include "platform/ado/Batch.h"
#include "platform/ado/Connection.h"
#include "platform/basic/RuntimeError.h"
#include <algorithm>

namespace ado {

Recordset::Recordset() = default;
Recordset::~Recordset() = default;
Recordset::Recordset(const Recordset&) = default;
Recordset& Recordset::operator=(const Recordset&) = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

void Recordset::Open(const QString& text, Connection& connection, int, int, int)
{
    if (State() != 0)
        basic::raise(basic::error::ObjectOpen);
    const auto batch = connection.newBatch();
    try {
        auto result = batch->open(text);
        m_result = result ? std::move(result) : std::make_shared<const Result>();
    } catch (const basic::RuntimeError&) {
        connection.keepMessages(*batch);
        throw;
    }
    m_batch = batch;
    m_row = 0;
}

int Recordset::State() const
{
    return m_result ? 1 : 0;
}

void Recordset::Close()
{
    if (State() == 0)
        basic::raise(basic::error::ObjectClosed);
    m_result.reset();
    m_batch.reset();
    m_row = 0;
}

const Result& Recordset::result() const
{
    if (!m_result)
        basic::raise(basic::error::ObjectClosed);
    return *m_result;
}

void Recordset::checkColumn(int column) const
{
    if (column < 0 || column >= FieldCount())
        basic::raise(basic::error::ItemNotFound);
}

void Recordset::checkRow(qint64 row) const
{
    if (row < 0 || row >= RecordCount())
        basic::raise(basic::error::Subscript);
}

bool Recordset::Eof() const
{
    return m_row >= result().table.rowCount();
}

void Recordset::MoveNext()
{
    if (Eof())
        basic::raise(basic::error::NoCurrentRecord);
    ++m_row;
}

void Recordset::MoveFirst()
{
    if (RecordCount() == 0)
        basic::raise(basic::error::NoCurrentRecord);
    m_row = 0;
}

qint64 Recordset::RecordCount() const
{
    return result().table.rowCount();
}

basic::Variant Recordset::Value(int column) const
{
    checkColumn(column);
    if (Eof())
        basic::raise(basic::error::NoCurrentRecord);
    return m_result->table.value(m_row, column);
}

basic::Variant Recordset::Value(const QString& name) const
{
    const auto& columns = result().table.columns();
    const auto found = std::ranges::find_if(
        columns, [&](const Column& column) { return column.name.compare(name, Qt::CaseInsensitive) == 0; });
    if (found == columns.end())
        basic::raise(basic::error::ItemNotFound);
    return Value(static_cast<int>(found - columns.begin()));
}

int Recordset::FieldCount() const
{
    return static_cast<int>(result().table.columns().size());
}

QString Recordset::FieldName(int column) const
{
    checkColumn(column);
    return m_result->table.columns()[static_cast<std::size_t>(column)].name;
}

FieldKind Recordset::FieldType(int column) const
{
    checkColumn(column);
    return m_result->table.columns()[static_cast<std::size_t>(column)].kind;
}

basic::Variant Recordset::Value(qint64 row, int column) const
{
    checkColumn(column);
    checkRow(row);
    return m_result->table.value(row, column);
}

bool Recordset::isNull(qint64 row, int column) const
{
    checkColumn(column);
    checkRow(row);
    return m_result->table.isNull(row, column);
}

QString Recordset::cellText(qint64 row, int column, qsizetype limit) const
{
    checkColumn(column);
    checkRow(row);
    return m_result->table.text(row, column, limit);
}

qint64 Recordset::RecordsAffected() const
{
    return result().affected;
}

QStringList Recordset::Messages() const
{
    return result().messages;
}

std::optional<Recordset> Recordset::NextRecordset()
{
    if (!m_batch)
        basic::raise(basic::error::ObjectClosed);
    auto next = m_batch->next();
    if (!next)
        return std::nullopt;
    Recordset following(*this);
    following.m_result = std::move(next);
    following.m_row = 0;
    return following;
}

std::size_t Recordset::memoryUsed() const
{
    return result().table.memoryUsed();
}

} // namespace ado
