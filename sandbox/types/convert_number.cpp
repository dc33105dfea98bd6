// Conversions to numbers.
#include "types/conversion.h"
#include "types/date_time.h"
#include "types/decimal.h"
#include "types/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

namespace practice {

namespace {

constexpr std::int64_t moneyUnit = 10'000;

struct Range
{
    std::int64_t low;
    std::int64_t high;
};

Range rangeOf(TypeId id)
{
    switch (id) {
    case TypeId::TinyInt:
        return {0, 255};
    case TypeId::SmallInt:
        return {-32'768, 32'767};
    case TypeId::Int:
    case TypeId::SmallMoney:
        return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    default:
        return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
    }
}

bool inRange(std::int64_t value, TypeId id)
{
    const Range range = rangeOf(id);
    return value >= range.low && value <= range.high;
}

const std::string& textOf(const Value& value)
{
    return std::get<std::string>(value.data);
}

std::int64_t wholeOf(const Value& value)
{
    return std::get<std::int64_t>(value.data);
}

[[noreturn]] void failFloatOverflow(double value, TypeId to)
{
    std::array<char, 400> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.6f", value);
    failConversion(232,
                   {"Arithmetic overflow error for type ", typeName(to), ", value = ", buffer.data(), "."});
}

[[noreturn]] void failTextOverflow(const std::string& text, TypeId from, TypeId to)
{
    if (to == TypeId::Int)
        failConversion(
            248, {"The conversion of the ", typeName(from), " value '", text, "' overflowed an int column."});
    if (to == TypeId::BigInt)
        failOverflow("expression", to);
    failConversion(244, {"The conversion of the ", typeName(from), " value '", text, "' overflowed an ",
                         to == TypeId::TinyInt ? "INT1" : "INT2", " column. Use a larger integer column."});
}

[[noreturn]] void failTextSyntax(const std::string& text, TypeId from, TypeId to)
{
    if (to == TypeId::BigInt)
        failConversion(8114, {"Error converting data type ", typeName(from), " to bigint."});
    failConversion(245, {"Conversion failed when converting the ", typeName(from), " value '", text,
                         "' to data type ", typeName(to), "."});
}

Value bitFromText(const std::string& text, TypeId from)
{
    std::string lower;
    for (const char c : trimBlanks(text))
        lower.push_back(static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c));
    if (lower == "true" || lower == "false")
        return {std::int64_t{lower == "true"}, {}};
    const auto parsed = parseInteger(text);
    if (parsed.fault == NumberFault::Malformed)
        failTextSyntax(text, from, TypeId::Bit);
    return {std::int64_t{parsed.fault == NumberFault::Overflow || parsed.value != 0}, {}};
}

Value integerFromText(const std::string& text, TypeId from, TypeId to)
{
    if (to == TypeId::Bit)
        return bitFromText(text, from);
    const auto parsed = parseInteger(text);
    if (parsed.fault == NumberFault::Malformed)
        failTextSyntax(text, from, to);
    if (parsed.fault == NumberFault::Overflow || !inRange(parsed.value, to))
        failTextOverflow(text, from, to);
    return {parsed.value, {}};
}

Value checkedInteger(std::int64_t value, TypeId to)
{
    if (to == TypeId::Bit)
        return {std::int64_t{value != 0}, {}};
    if (inRange(value, to))
        return {value, {}};
    if (to == TypeId::Int)
        failOverflow("expression", to);
    failConversion(220, {"Arithmetic overflow error for data type ", typeName(to),
                         ", value = ", std::to_string(value), "."});
}

Value integerFromFloat(double value, TypeId to)
{
    if (to == TypeId::Bit)
        return {std::int64_t{value != 0}, {}};
    const double whole = std::trunc(value);
    const bool fits = whole >= -9223372036854775808.0 && whole < 9223372036854775808.0;
    if (!fits && to == TypeId::BigInt)
        failOverflow("expression", to);
    const auto number = fits ? static_cast<std::int64_t>(whole) : 0;
    if (!fits || !inRange(number, to))
        failFloatOverflow(value, to);
    return {number, {}};
}

Value integerFromDecimal(const Decimal& value, TypeId to)
{
    if (to == TypeId::Bit)
        return {std::int64_t{value.magnitude != 0}, {}};
    const auto number = truncated(value);
    if (!number || !inRange(*number, to))
        failOverflow(to == TypeId::TinyInt || to == TypeId::SmallInt ? "numeric" : "expression", to);
    return {*number, {}};
}

/// Any exact number but money as a decimal; none of the other kinds arrive here.
Decimal exactOf(const Value& value, const SqlType& from)
{
    if (isDecimal(from.id))
        return std::get<Decimal>(value.data);
    return isMoney(from.id) ? decimalFromMoney(wholeOf(value)) : decimalFromInteger(wholeOf(value));
}

/// What a decimal's bytes look like in a binary: precision, scale, sign, then the magnitude.
std::optional<Decimal> decimalFromBytes(const Bytes& bytes)
{
    if (bytes.size() < 5)
        return std::nullopt;
    Decimal value;
    value.scale = bytes[1];
    value.negative = bytes[3] == 0;
    for (std::size_t i = std::min<std::size_t>(bytes.size(), 20); i-- > 4;)
        value.magnitude = value.magnitude << 8U | bytes[i];
    const bool valid = value.scale <= maxPrecision && value.magnitude < powerOfTen(maxPrecision);
    return valid ? std::optional(value) : std::nullopt;
}

} // namespace

Value convertToInteger(const Value& value, const SqlType& from, const SqlType& to)
{
    if (isInteger(from.id))
        return from.id <= to.id ? value : checkedInteger(wholeOf(value), to.id);
    if (isCharacter(from.id))
        return integerFromText(textOf(value), from.id, to.id);
    if (isDecimal(from.id))
        return integerFromDecimal(std::get<Decimal>(value.data), to.id);
    if (isMoney(from.id)) {
        if (to.id == TypeId::Bit)
            return {std::int64_t{wholeOf(value) != 0}, {}};
        const auto rounded = truncated(*rescale(decimalFromMoney(wholeOf(value)), 0));
        if (!inRange(*rounded, to.id))
            failOverflow(typeName(from.id), to.id);
        return {*rounded, {}};
    }
    if (isBinary(from.id)) {
        const std::int64_t number = integerFromBytes(std::get<Bytes>(value.data));
        switch (to.id) {
        case TypeId::Bit:
            return {std::int64_t{(number & 0xFF) != 0}, {}};
        case TypeId::TinyInt:
            return {std::int64_t{static_cast<std::uint8_t>(number)}, {}};
        case TypeId::SmallInt:
            return {std::int64_t{static_cast<std::int16_t>(number)}, {}};
        case TypeId::Int:
            return {std::int64_t{static_cast<std::int32_t>(number)}, {}};
        default:
            return {number, {}};
        }
    }
    if (isDateTime(from.id))
        return checkedInteger(std::llround(daysSince1900(std::get<DateTimeValue>(value.data))), to.id);
    return integerFromFloat(std::get<double>(value.data), to.id);
}

Value convertToMoney(const Value& value, const SqlType& from, const SqlType& to)
{
    if (isCharacter(from.id)) {
        const auto parsed = parseMoney(textOf(value));
        if (parsed.fault == NumberFault::Malformed && to.id == TypeId::SmallMoney)
            failConversion(293,
                           {"Cannot convert char value to smallmoney. The char value has incorrect syntax."});
        if (parsed.fault == NumberFault::Malformed)
            failConversion(235,
                           {"Cannot convert a char value to money. The char value has incorrect syntax."});
        if (parsed.fault == NumberFault::Overflow || !inRange(parsed.value, to.id))
            failOverflow("expression", to.id);
        return {parsed.value, {}};
    }
    if (isBinary(from.id)) {
        const std::int64_t number = integerFromBytes(std::get<Bytes>(value.data));
        return {to.id == TypeId::SmallMoney ? std::int64_t{static_cast<std::int32_t>(number)} : number, {}};
    }
    std::optional<Decimal> exact;
    if (from.id == TypeId::Real || from.id == TypeId::Float)
        exact = decimalFromDouble(std::get<double>(value.data), 4);
    else if (isDateTime(from.id))
        exact = decimalFromDouble(daysSince1900(std::get<DateTimeValue>(value.data)), 4);
    else
        exact = rescale(exactOf(value, from), 4);
    const auto units = exact ? truncated({exact->magnitude, 0, exact->negative}) : std::nullopt;
    if (!units || !inRange(*units, to.id))
        failOverflow("expression", to.id);
    return {*units, {}};
}

Value convertToDecimal(const Value& value, const SqlType& from, const SqlType& to)
{
    std::optional<Decimal> exact;
    if (isCharacter(from.id)) {
        bool malformed = false;
        exact = parseDecimal(trimBlanks(textOf(value)), malformed, to.scale);
        if (malformed)
            failConversion(8114, {"Error converting data type ", typeName(from.id), " to numeric."});
    } else if (isBinary(from.id)) {
        exact = decimalFromBytes(std::get<Bytes>(value.data));
        if (!exact)
            failConversion(8114, {"Error converting data type ", typeName(from.id), " to numeric."});
    } else if (isDateTime(from.id)) {
        exact = decimalFromDouble(daysSince1900(std::get<DateTimeValue>(value.data)), to.scale);
    } else if (from.id == TypeId::Real || from.id == TypeId::Float) {
        exact = decimalFromDouble(std::get<double>(value.data), to.scale);
    } else {
        exact = exactOf(value, from);
    }
    const auto result = exact ? rescale(*exact, to.scale) : std::nullopt;
    if (!result || !fits(*result, to.precision))
        failOverflow(isDateTime(from.id) ? "expression" : numericName(from.id), to.id);
    return {*result, {}};
}

Value convertToFloat(const Value& value, const SqlType& from, const SqlType& to)
{
    double number = 0;
    if (isCharacter(from.id)) {
        const auto parsed = parseFloat(textOf(value));
        if (parsed.fault == NumberFault::Malformed)
            failConversion(8114,
                           {"Error converting data type ", typeName(from.id), " to ", typeName(to.id), "."});
        if (parsed.fault == NumberFault::Overflow)
            failOverflow("expression", to.id);
        number = parsed.value;
    } else if (isDecimal(from.id)) {
        number = toDouble(std::get<Decimal>(value.data));
    } else if (isMoney(from.id)) {
        number = static_cast<double>(wholeOf(value)) / static_cast<double>(moneyUnit);
    } else if (isInteger(from.id)) {
        number = static_cast<double>(wholeOf(value));
    } else if (isDateTime(from.id)) {
        number = daysSince1900(std::get<DateTimeValue>(value.data));
    } else {
        number = std::get<double>(value.data);
    }
    if (to.id == TypeId::Float)
        return {number, {}};
    if (std::fabs(number) > std::numeric_limits<float>::max())
        failOverflow("expression", to.id);
    return {static_cast<double>(static_cast<float>(number)), {}};
}

} // namespace practice
