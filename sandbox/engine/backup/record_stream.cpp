#include "engine/backup/record_stream.h"

#include <algorithm>
#include <bit>

namespace practice {
namespace {

enum class ValueTag : std::uint8_t
{
    Null,
    Integer,
    Real,
    Text,
    Blob
};

constexpr std::size_t usualBlock = 256U << 10U;

void encodeValue(ByteText& text, sqlite3_value* value)
{
    const auto tag = [&text](ValueTag kind) { text.bytes.push_back(static_cast<char>(kind)); };
    const auto bytes = [&text, value](const void* data) {
        text.text({static_cast<const char*>(data), static_cast<std::size_t>(sqlite3_value_bytes(value))});
    };
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
        tag(ValueTag::Integer);
        return text.integer(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
        tag(ValueTag::Real);
        return text.fixed(std::bit_cast<std::uint64_t>(sqlite3_value_double(value)), 8);
    case SQLITE_TEXT:
        tag(ValueTag::Text);
        return bytes(sqlite3_value_text(value));
    case SQLITE_BLOB:
        tag(ValueTag::Blob);
        return bytes(sqlite3_value_blob(value));
    default:
        tag(ValueTag::Null);
    }
}

} // namespace

void encodeValues(ByteText& text, sqlite3_stmt* row, int firstColumn, int count)
{
    for (int column = firstColumn; column < firstColumn + count; ++column)
        encodeValue(text, sqlite3_column_value(row, column));
}

void RecordWriter::add(std::string_view record)
{
    held_ += record;
    if (held_.size() >= usualBlock)
        writeOut();
}

void RecordWriter::finish()
{
    if (!held_.empty())
        writeOut();
}

void RecordWriter::writeOut()
{
    const std::string_view all = held_;
    for (std::size_t at = 0; at < all.size(); at += largestBlock)
        file_.add(BlockKind::Data, all.substr(at, largestBlock));
    held_.clear();
}

void RecordReader::nextBlock()
{
    if (!file_.next(block_) || block_.kind != BlockKind::Data)
        throw DamagedBackup{block_.offset};
    at_ = 0;
}

std::uint8_t RecordReader::byte()
{
    while (at_ == block_.payload.size())
        nextBlock();
    return static_cast<std::uint8_t>(block_.payload[at_++]);
}

void RecordReader::bytes(std::string& into, std::uint64_t size)
{
    if (size > std::uint64_t{longestValue})
        throw DamagedBackup{block_.offset};
    into.clear();
    while (into.size() < size) {
        if (at_ == block_.payload.size())
            nextBlock();
        const std::size_t part =
            std::min(static_cast<std::size_t>(size) - into.size(), block_.payload.size() - at_);
        into.append(block_.payload, at_, part);
        at_ += part;
    }
}

RecordKind RecordReader::kind()
{
    return static_cast<RecordKind>(byte());
}

std::uint64_t RecordReader::number()
{
    std::uint64_t value = 0;
    for (int shift = 0; shift < 64; shift += 7) {
        const std::uint8_t part = byte();
        value |= std::uint64_t{part & 0x7FU} << shift;
        if (part < 0x80)
            return value;
    }
    throw DamagedBackup{block_.offset};
}

std::int64_t RecordReader::integer()
{
    const std::uint64_t folded = number();
    return static_cast<std::int64_t>((folded >> 1) ^ (~(folded & 1) + 1));
}

std::string RecordReader::text()
{
    std::string value;
    bytes(value, number());
    return value;
}

void RecordReader::values(std::vector<StoredValue>& values)
{
    for (StoredValue& value : values) {
        switch (static_cast<ValueTag>(byte())) {
        case ValueTag::Null:
            value.type = SQLITE_NULL;
            break;
        case ValueTag::Integer:
            value.type = SQLITE_INTEGER;
            value.integer = integer();
            break;
        case ValueTag::Real:
            value.type = SQLITE_FLOAT;
            bytes(value.bytes, 8);
            value.real = std::bit_cast<double>(ByteTextReader(value.bytes).fixed(8));
            break;
        case ValueTag::Text:
            value.type = SQLITE_TEXT;
            bytes(value.bytes, number());
            break;
        case ValueTag::Blob:
            value.type = SQLITE_BLOB;
            bytes(value.bytes, number());
            break;
        default:
            throw DamagedBackup{block_.offset};
        }
    }
}

SetTrailer RecordReader::trailer()
{
    if (at_ != block_.payload.size() || !file_.next(block_) || block_.kind != BlockKind::Trailer)
        throw DamagedBackup{block_.offset};
    return decodeTrailer(block_.payload);
}

void bindStored(sqlite3_stmt* statement, int parameter, const StoredValue& value)
{
    switch (value.type) {
    case SQLITE_INTEGER:
        sqlite3_bind_int64(statement, parameter, value.integer);
        break;
    case SQLITE_FLOAT:
        sqlite3_bind_double(statement, parameter, value.real);
        break;
    case SQLITE_TEXT:
        sqlite3_bind_text64(statement, parameter, value.bytes.data(), value.bytes.size(), SQLITE_STATIC,
                            SQLITE_UTF8);
        break;
    case SQLITE_BLOB:
        sqlite3_bind_blob64(statement, parameter, value.bytes.data(), value.bytes.size(), SQLITE_STATIC);
        break;
    default:
        sqlite3_bind_null(statement, parameter);
    }
}

} // namespace practice
