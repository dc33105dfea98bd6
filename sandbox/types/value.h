// One Transact-SQL value, as it passes between engine, wire and functions.
#pragma once

#include "types/language.h"
#include "types/sql_type.h"

#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace practice {

/// Exact decimal: value = (negative ? -1 : 1) * magnitude / 10^scale, magnitude below 10^38.
struct Decimal
{
    unsigned __int128 magnitude = 0;
    std::uint8_t scale = 0;
    bool negative = false;

    bool operator==(const Decimal&) const = default;
};

/// A point on the proleptic Gregorian calendar. Which parts count follows from the type.
/// - `days`: days since 0001-01-01 (day 0);
/// - `ticks`: 100-nanosecond units since midnight, 0 to 863'999'999'999;
/// - `offsetMinutes`: of datetimeoffset only; days and ticks are then UTC.
struct DateTimeValue
{
    std::int32_t days = 0;
    std::int64_t ticks = 0;
    std::int16_t offsetMinutes = 0;

    bool operator==(const DateTimeValue&) const = default;
};

using Bytes = std::vector<std::uint8_t>;
/// In the order of the text form "00112233-4455-6677-8899-AABBCCDDEEFF", i.e. not the wire's order.
using Guid = std::array<std::uint8_t, 16>;

/// Holds one value; the type that it is a value of travels beside it (ColumnInfo, a variable's
/// declaration, a bound expression).
/// - integers and bit: int64; money and smallmoney: int64 in ten-thousandths;
/// - real and float: double; decimal and numeric: Decimal;
/// - char types: UTF-8 text; binary types and timestamp: Bytes;
/// - sql_variant: any of them with `variantType` telling the inner type.
struct Value
{
    std::variant<std::monostate, std::int64_t, double, Decimal, DateTimeValue, std::string, Bytes, Guid> data;
    SqlType variantType{}; ///< only for values of type sql_variant

    [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(data); }
    bool operator==(const Value&) const = default;
};

} // namespace practice
