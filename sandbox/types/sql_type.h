// The Transact-SQL types: what a column, a variable or an expression is declared as.
#pragma once

#include <cstdint>
#include <string>

namespace practice {

enum class TypeId : std::uint8_t
{
    Null, ///< the type of a bare NULL; reaches the wire as int
    Bit,
    TinyInt,
    SmallInt,
    Int,
    BigInt,
    Real,
    Float,
    SmallMoney,
    Money,
    Decimal,
    Numeric,
    SmallDateTime,
    DateTime,
    Date,
    Time,
    DateTime2,
    DateTimeOffset,
    Char,
    VarChar,
    Text,
    NChar,
    NVarChar,
    NText,
    Binary,
    VarBinary,
    Image,
    UniqueIdentifier,
    Timestamp,
    SqlVariant,
    Xml,
};

/// Length of a (max) type in SqlType::length.
inline constexpr int maxLength = -1;

/// A type with its facets.
/// - `length`: characters for char types (nchar and nvarchar count UTF-16 units), bytes for binary
///   ones; `maxLength` for varchar(max) and its kin; otherwise the storage size in bytes.
/// - `precision`, `scale`: decimal and numeric; `scale` alone also for time, datetime2 and
///   datetimeoffset (fractional digits 0 to 7).
struct SqlType
{
    TypeId id = TypeId::Null;
    int length = 0;
    std::uint8_t precision = 0;
    std::uint8_t scale = 0;

    bool operator==(const SqlType&) const = default;
};

/// Decimal or numeric with as many digits as there can be, in the bytes that these take.
[[nodiscard]] constexpr SqlType widestDecimal(TypeId id = TypeId::Decimal, int scale = 0)
{
    return {id, 17, 38, static_cast<std::uint8_t>(scale)};
}

[[nodiscard]] bool isInteger(TypeId id);      ///< bit to bigint
[[nodiscard]] bool isExactNumeric(TypeId id); ///< integers, money, decimal
[[nodiscard]] bool isNumeric(TypeId id);      ///< exact numerics, real and float
[[nodiscard]] bool isMoney(TypeId id);
[[nodiscard]] bool isDecimal(TypeId id);   ///< decimal or numeric
[[nodiscard]] bool isDateTime(TypeId id);  ///< any type of date or time
[[nodiscard]] bool isOldDate(TypeId id);   ///< datetime, smalldatetime
[[nodiscard]] bool isCharacter(TypeId id); ///< char, varchar, text and their n forms
[[nodiscard]] bool isUnicode(TypeId id);   ///< nchar, nvarchar, ntext
[[nodiscard]] bool isBinary(TypeId id);    ///< binary, varbinary, image, timestamp
[[nodiscard]] bool isLegacyLob(TypeId id); ///< text, ntext, image

/// The type's own name, lower case, without facets: "nvarchar".
[[nodiscard]] const char* typeName(TypeId id);

/// As error messages and declarations write it: "varchar(20)", "decimal(10,2)", "nvarchar(max)".
[[nodiscard]] std::string describe(const SqlType& type);

/// Bytes that a decimal of that precision takes: 5, 9, 13 or 17.
[[nodiscard]] int decimalStorage(int precision);
/// Bytes that a time, datetime2 or datetimeoffset takes.
[[nodiscard]] int timeStorage(TypeId id, int scale);

/// The type with the facets it has when none are written: `declaration` true for a column or a
/// variable (char is 1 long), false for CAST and CONVERT (char is 30 long).
[[nodiscard]] SqlType defaultType(TypeId id, bool declaration);

/// Looks a type up by any of its names, synonyms included ("integer", "dec", "character varying"
/// comes as two words already joined by one blank); Null when there is none.
[[nodiscard]] TypeId typeByName(const std::string& lowerCaseName);

} // namespace practice
