#include "engine/backup/snapshot.h"

#include "engine/catalog/catalog_load.h"
#include "engine/catalog/row_tables.h"

#include <algorithm>
#include <array>

namespace practice {
namespace {

constexpr std::array ofDatabase = {"cat_database",
                                   "cat_object",
                                   "cat_column",
                                   "cat_identity",
                                   "cat_comment",
                                   "cat_index",
                                   "cat_check",
                                   "cat_reference",
                                   "cat_reference_column",
                                   "cat_index_key",
                                   "cat_filegroup",
                                   "cat_file",
                                   "cat_user",
                                   "cat_member",
                                   "cat_permission",
                                   "cat_column_permission"};

/// Digests a chunk in large pieces.
class ChunkDigest
{
public:
    explicit ChunkDigest(std::string_view shape) : shape_(shape) {}

    void add(std::string_view row)
    {
        constexpr std::size_t piece = 64U << 10U;
        held_ += row;
        if (held_.size() >= piece)
            pass();
    }
    [[nodiscard]] Digest finish()
    {
        held_ += shape_;
        pass();
        return hasher_.finish();
    }

private:
    void pass()
    {
        hasher_.add(held_);
        held_.clear();
    }

    std::string shape_;
    std::string held_;
    Hasher hasher_;
};

void encodeRow(ByteText& text, sqlite3_stmt* row, int columns)
{
    text.bytes.clear();
    text.bytes.push_back(static_cast<char>(RecordKind::Row));
    text.integer(sqlite3_column_int64(row, 0));
    encodeValues(text, row, 1, columns);
}

ByteText beginRecord(RecordKind kind)
{
    ByteText record;
    record.bytes.push_back(static_cast<char>(kind));
    return record;
}

} // namespace

struct Snapshot::Table
{
    int id = 0;
    std::string shape;
    std::vector<int> columns;
    std::string select; ///< without WHERE and ORDER BY
    std::uint64_t weight = 0;
};

std::span<const char* const> databaseCatalogTables()
{
    return ofDatabase;
}

std::string shapeOf(const Object& table)
{
    std::string shape;
    for (const Column& column : table.columns) {
        if (!column.computed)
            shape += (shape.empty() ? "" : ", ") + columnDeclaration(column);
    }
    return shape;
}

std::vector<int> storedColumns(const Object& table)
{
    std::vector<int> ids;
    for (const Column& column : table.columns) {
        if (!column.computed)
            ids.push_back(column.id);
    }
    return ids;
}

std::uint64_t Snapshot::write(std::optional<ChangeBase> changedSince, const Progress& progress)
{
    progress_ = &progress;
    writeCatalog();
    const std::vector<Table> all = tables();
    for (const Table& table : all)
        total_ += table.weight;
    for (const Table& table : all) {
        writeTable(table, changedSince);
        before_ += table.weight;
    }
    out_.add(beginRecord(RecordKind::End).bytes);
    out_.finish();
    return rows_;
}

void Snapshot::writeCatalog()
{
    for (const char* name : ofDatabase) {
        Statement rows(store_.connection(), "SELECT * FROM " + std::string(name) + " WHERE dbid = ?");
        rows.bind(1, databaseId_);
        const int columns = sqlite3_column_count(rows.handle());
        ByteText table = beginRecord(RecordKind::Catalog);
        table.text(name);
        table.number(static_cast<std::uint64_t>(columns));
        for (int column = 0; column < columns; ++column)
            table.text(sqlite3_column_name(rows.handle(), column));
        out_.add(table.bytes);
        while (rows.step()) {
            ByteText row = beginRecord(RecordKind::Entry);
            encodeValues(row, rows.handle(), 0, columns);
            out_.add(row.bytes);
        }
    }
}

std::vector<Snapshot::Table> Snapshot::tables() const
{
    std::vector<Table> all;
    Statement ids(store_.connection(),
                  "SELECT id FROM cat_object WHERE dbid = ? AND xtype = 'U' AND NOT shipped ORDER BY id");
    ids.bind(1, databaseId_);
    while (ids.step()) {
        const ObjectPtr object = loadObject(store_.connection(), databaseId_, ids.number(0));
        Table table;
        table.id = object->id;
        table.shape = shapeOf(*object);
        table.columns = storedColumns(*object);
        table.select = "SELECT rowid";
        for (const int column : table.columns)
            table.select += ", " + storageColumn(column);
        const std::string name = storageTable(databaseId_, object->id);
        table.select += " FROM " + name;
        Statement last(store_.connection(), "SELECT coalesce(max(rowid), 0) FROM " + name);
        last.step();
        table.weight = static_cast<std::uint64_t>(std::max<std::int64_t>(last.integer(0), 0));
        all.push_back(std::move(table));
    }
    return all;
}

void Snapshot::writeTable(const Table& table, std::optional<ChangeBase> since)
{
    ByteText head = beginRecord(RecordKind::Table);
    head.integer(table.id);
    head.text(table.shape);
    head.number(table.columns.size());
    for (const int column : table.columns)
        head.integer(column);
    out_.add(head.bytes);
    std::vector<std::int64_t> changed;
    scan(table, since, changed);
    for (const std::int64_t chunk : changed)
        writeChunk(table, chunk);
}

void Snapshot::scan(const Table& table, std::optional<ChangeBase> since, std::vector<std::int64_t>& changed)
{
    const int columns = static_cast<int>(table.columns.size());
    const auto isGone = [&changed](std::int64_t chunk) { changed.push_back(chunk); };
    std::optional<BaseChunks> base;
    if (since)
        base.emplace(store_.connection(), databaseId_, *since, table.id);
    ChunkDigest digest(table.shape);
    std::optional<std::int64_t> chunk;
    const auto close = [&] {
        if (!chunk)
            return;
        const Digest found = digest.finish();
        present_.add(table.id, *chunk, found);
        if (base && !base->matches(*chunk, found, isGone))
            changed.push_back(*chunk);
    };
    Statement rows(store_.connection(), table.select + " ORDER BY rowid");
    ByteText row;
    while (rows.step()) {
        const std::int64_t id = rows.integer(0);
        if (chunk != chunkOf(id)) {
            close();
            chunk = chunkOf(id);
            (*progress_)(
                before_ + std::min(static_cast<std::uint64_t>(std::max<std::int64_t>(id, 0)), table.weight),
                total_);
        }
        encodeRow(row, rows.handle(), columns);
        digest.add(row.bytes);
        if (!since) {
            out_.add(row.bytes);
            ++rows_;
        }
    }
    close();
    if (base)
        base->finish(isGone);
}

void Snapshot::writeChunk(const Table& table, std::int64_t chunk)
{
    ByteText head = beginRecord(RecordKind::Chunk);
    head.integer(chunk);
    out_.add(head.bytes);
    Statement rows(store_.connection(), table.select + " WHERE rowid BETWEEN ? AND ? ORDER BY rowid");
    rows.bind(1, chunk << chunkBits).bind(2, (chunk << chunkBits) | ((1 << chunkBits) - 1));
    ByteText row;
    while (rows.step()) {
        encodeRow(row, rows.handle(), static_cast<int>(table.columns.size()));
        out_.add(row.bytes);
        ++rows_;
    }
}

} // namespace practice
