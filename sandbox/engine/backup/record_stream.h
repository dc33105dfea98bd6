// The contents of a set: records over the payloads of its data blocks, without regard to where a block ends.
#pragma once

#include "engine/backup/block_file.h"
#include "engine/backup/set_header.h"
#include "engine/store/store.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

enum class RecordKind : char
{
    Catalog = 'c', ///< a table of the catalog: its name and the names of its columns
    Entry = 'v',   ///< one of its rows
    Table = 't',   ///< a table of rows: its id, its shape and its columns' ids
    Chunk = 'k',   ///< what follows stands for all rows of that chunk
    Row = 'r',     ///< its rowid and values
    End = 'e',
};

/// Rows whose ids differ in the last bits alone make a chunk: the unit in which changes are found.
inline constexpr int chunkBits = 8;
[[nodiscard]] constexpr std::int64_t chunkOf(std::int64_t rowId)
{
    return rowId >> chunkBits;
}

/// Appends the values of a row in SQLite's own types.
void encodeValues(ByteText& text, sqlite3_stmt* row, int firstColumn, int count);

class RecordWriter
{
public:
    explicit RecordWriter(BackupAppender& file) : file_(file) {}

    /// One whole record.
    void add(std::string_view record);
    /// Writes what is still held.
    void finish();

private:
    void writeOut();

    BackupAppender& file_;
    std::string held_;
};

/// A value as it was stored; `bytes` is valid until the next reading.
struct StoredValue
{
    int type = SQLITE_NULL;
    std::int64_t integer = 0;
    double real = 0;
    std::string bytes;
};

class RecordReader
{
public:
    /// Begins behind the header of a set.
    explicit RecordReader(BackupReader& file) : file_(file) {}

    [[nodiscard]] RecordKind kind();
    [[nodiscard]] std::uint64_t number();
    [[nodiscard]] std::int64_t integer();
    /// Texts that are no values: names and shapes.
    [[nodiscard]] std::string text();
    /// @param values as many as there are; their memory is used again
    void values(std::vector<StoredValue>& values);
    /// What stands behind the records.
    [[nodiscard]] SetTrailer trailer();
    [[nodiscard]] std::uint64_t position() const { return block_.offset; }

private:
    std::uint8_t byte();
    void bytes(std::string& into, std::uint64_t size);
    void nextBlock();

    BackupReader& file_;
    Block block_;
    std::size_t at_ = 0;
};

void bindStored(sqlite3_stmt* statement, int parameter, const StoredValue& value);

} // namespace practice
