// How values lie in the store. Each Transact-SQL type has one storage form, so that SQLite's own
// comparison, ordering and indexes serve wherever they agree with SQL Server's.
//
//   bit to bigint                    INTEGER
//   smallmoney, money                INTEGER, in ten-thousandths
//   real, float                      REAL
//   decimal(p<=18), numeric          INTEGER, scaled by the type's scale
//   decimal(p>18), numeric           BLOB of 17 bytes that sorts as the number
//   smalldatetime                    INTEGER, minutes since 1900-01-01
//   datetime                         INTEGER, 1/300 seconds since 1900-01-01
//   date                             INTEGER, days since 0001-01-01
//   time                             INTEGER, 100 ns since midnight
//   datetime2                        INTEGER, 100 ns since 0001-01-01
//   datetimeoffset                   BLOB: 8 bytes of UTC 100 ns, 2 bytes of offset in minutes
//   character types, xml             TEXT in UTF-8, under a registered collation
//   binary types, timestamp          BLOB
//   uniqueidentifier                 BLOB of 16 bytes in the server's comparison order
//   sql_variant                      BLOB: 8 bytes of packed type, then the storage form
//
// char(n), nchar(n) and binary(n) are stored padded.
#pragma once

#include "types/value.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_context;
struct sqlite3_stmt;
struct sqlite3_value;

namespace practice {

inline constexpr const char* defaultCollation = "SQL_Latin1_General_CP1_CI_AS";

/// Kinds of SQLite value that a type is stored as.
enum class StorageClass : std::uint8_t
{
    Integer,
    Real,
    Text,
    Blob
};
[[nodiscard]] StorageClass storageClass(const SqlType& type);

/// @throws StoreError when SQLite refuses the value
void bindStorage(sqlite3_stmt* statement, int parameter, const Value& value, const SqlType& type);
void resultStorage(sqlite3_context* context, const Value& value, const SqlType& type);
/// The value as a literal of SQLite's dialect: 12, 1.5e0, 'O''Brien', x'00FF', NULL.
[[nodiscard]] std::string storageLiteral(const Value& value, const SqlType& type);

[[nodiscard]] Value decodeValue(sqlite3_value* value, const SqlType& type);
/// Decodes into `value`, reusing what memory it holds.
void decodeColumn(sqlite3_stmt* statement, int column, const SqlType& type, Value& value);

/// Storage form of datetime for a point in time, rounded as the server rounds (.000, .003, .007).
[[nodiscard]] std::int64_t datetimeStorage(const DateTimeValue& value);
[[nodiscard]] DateTimeValue fromDatetimeStorage(std::int64_t stored);

/// A type with its facets in one integer, as it is handed to functions inside SQLite.
[[nodiscard]] std::int64_t packType(const SqlType& type);
[[nodiscard]] SqlType unpackType(std::int64_t packed);

/// In double quotes, as an identifier of SQLite's dialect.
[[nodiscard]] std::string quotedName(std::string_view name);
/// In single quotes, as a string of SQLite's dialect.
[[nodiscard]] std::string quotedText(std::string_view text);

} // namespace practice
