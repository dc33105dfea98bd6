// Writes a database as of one moment, or what of it has changed, as the records of a set.
#pragma once

#include "engine/backup/change_base.h"
#include "engine/backup/record_stream.h"

#include "engine/catalog/catalog_types.h"

#include <functional>
#include <span>

namespace practice {

/// Told after each chunk; stops the work by throwing.
using Progress = std::function<void(std::uint64_t done, std::uint64_t total)>;

/// The tables of the catalog whose rows belong to one database each.
[[nodiscard]] std::span<const char* const> databaseCatalogTables();

/// What the rows of a table are stored as: equal for tables whose rows may lie side by side.
[[nodiscard]] std::string shapeOf(const Object& table);
/// The columns that are stored.
[[nodiscard]] std::vector<int> storedColumns(const Object& table);

/// Reads through a connection of its own within one transaction, so that others go on meanwhile.
class Snapshot
{
public:
    Snapshot(Store& store, int databaseId, RecordWriter& out, PresentChunks& present)
        : store_(store), databaseId_(databaseId), out_(out), present_(present)
    {}

    /// @param changedSince none writes all rows
    /// @return how many rows were written
    std::uint64_t write(std::optional<ChangeBase> changedSince, const Progress& progress);

private:
    struct Table;
    void writeCatalog();
    [[nodiscard]] std::vector<Table> tables() const;
    void writeTable(const Table& table, std::optional<ChangeBase> since);
    void scan(const Table& table, std::optional<ChangeBase> since, std::vector<std::int64_t>& changed);
    void writeChunk(const Table& table, std::int64_t chunk);

    Store& store_;
    int databaseId_;
    RecordWriter& out_;
    PresentChunks& present_;
    const Progress* progress_ = nullptr;
    std::uint64_t total_ = 0;
    std::uint64_t before_ = 0; ///< rows of the tables that are done
    std::uint64_t rows_ = 0;
};

} // namespace practice
