// Conversions to text, to bytes and to identifiers.
#include "types/conversion.h"
#include "types/date_time.h"
#include "types/decimal.h"
#include "types/number_text.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <bit>

namespace practice {

namespace {

template <class T>
void appendBigEndian(Bytes& out, T value)
{
    for (std::size_t i = sizeof(T); i-- > 0;)
        out.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i)));
}

bool isFixed(TypeId id)
{
    return id == TypeId::Char || id == TypeId::NChar || id == TypeId::Binary || id == TypeId::Timestamp;
}

/// Brings text to what a column of that type keeps: code page, length, padding.
Value fittedText(std::string text, const SqlType& to)
{
    if (!isUnicode(to.id) && to.id != TypeId::Xml)
        text = restrictToCodePage1252(std::move(text));
    if (to.length <= 0 || isLegacyLob(to.id) || to.id == TypeId::Xml)
        return {std::move(text), {}};
    const auto room = static_cast<std::size_t>(to.length);
    const std::size_t length = utf16Length(text);
    if (length > room) {
        if (isAscii(text))
            text.resize(room);
        else
            text = toUtf8(std::u16string_view(toUtf16(text)).substr(0, room));
    } else if (isFixed(to.id)) {
        text.append(room - length, ' ');
    }
    return {std::move(text), {}};
}

Value fittedBytes(Bytes bytes, const SqlType& to)
{
    if (to.length <= 0 || to.id == TypeId::Image)
        return {std::move(bytes), {}};
    const auto room = static_cast<std::size_t>(to.length);
    if (bytes.size() > room || isFixed(to.id))
        bytes.resize(room);
    return {std::move(bytes), {}};
}

/// Numbers sit at the right end: cut and filled up with zeros on the left.
Bytes rightAligned(Bytes bytes, const SqlType& to)
{
    const auto room = static_cast<std::size_t>(to.length);
    if (to.length <= 0)
        return bytes;
    if (bytes.size() > room)
        bytes.erase(bytes.begin(), bytes.end() - static_cast<std::ptrdiff_t>(room));
    else if (isFixed(to.id))
        bytes.insert(bytes.begin(), room - bytes.size(), 0);
    return bytes;
}

std::string textOfBytes(const Bytes& bytes, const SqlType& to, int style)
{
    if (style == 1 || style == 2)
        return (style == 1 ? "0x" : "") + formatHex(bytes);
    return isUnicode(to.id) ? utf8FromUtf16Bytes(bytes.data(), bytes.size())
                            : utf8FromCodePage1252(bytes.data(), bytes.size());
}

std::string textOfDate(const DateTimeValue& value, const SqlType& from, int style, const Language& language)
{
    const bool newer = from.id != TypeId::DateTime && from.id != TypeId::SmallDateTime;
    auto text = formatDate(value, from, style == 0 && newer ? 121 : style, language);
    if (!text)
        failConversion(281, {std::to_string(style), " is not a valid style number when converting from ",
                             typeName(from.id), " to a character string."});
    return *std::move(text);
}

std::string textOfNumber(const Value& value, const SqlType& from, int style)
{
    if (isDecimal(from.id))
        return toString(std::get<Decimal>(value.data));
    if (isMoney(from.id))
        return formatMoney(std::get<std::int64_t>(value.data), style);
    if (isInteger(from.id))
        return std::to_string(std::get<std::int64_t>(value.data));
    return formatFloat(std::get<double>(value.data), style);
}

/// A number is never cut: it does not fit, or small integers show a star.
Value fittedNumber(std::string text, const SqlType& from, const SqlType& to)
{
    const bool tooLong = to.length > 0 && text.size() > static_cast<std::size_t>(to.length);
    if (!tooLong)
        return fittedText(std::move(text), to);
    if (isInteger(from.id) && from.id != TypeId::BigInt && !isUnicode(to.id))
        return fittedText("*", to);
    if (isMoney(from.id))
        failConversion(
            234, {"There is insufficient result space to convert a money value to ", typeName(to.id), "."});
    failOverflow(isInteger(from.id) ? "expression" : numericName(from.id), to.id);
}

/// Text in the hexadecimal form of styles 1 (with 0x) and 2 (without).
Bytes bytesOfHexText(std::string_view text, const SqlType& from, const SqlType& to, int style)
{
    const bool prefixed = text.starts_with("0x") || text.starts_with("0X");
    if (prefixed && style == 1)
        text.remove_prefix(2);
    auto bytes = text.size() % 2 == 0 && prefixed == (style == 1) ? parseHex(text) : std::nullopt;
    if (!bytes)
        failConversion(8114,
                       {"Error converting data type ", typeName(from.id), " to ", typeName(to.id), "."});
    return *std::move(bytes);
}

Bytes bytesOfText(const std::string& text, bool unicode)
{
    Bytes bytes;
    if (unicode) {
        for (const char16_t unit : toUtf16(text)) {
            bytes.push_back(static_cast<std::uint8_t>(unit));
            bytes.push_back(static_cast<std::uint8_t>(unit >> 8U));
        }
        return bytes;
    }
    const std::string narrow = toCodePage1252(text);
    return {narrow.begin(), narrow.end()};
}

Bytes bytesOfDecimal(const Decimal& value, int precision)
{
    Bytes bytes{static_cast<std::uint8_t>(precision), value.scale, 0,
                static_cast<std::uint8_t>(value.negative ? 0 : 1)};
    unsigned __int128 rest = value.magnitude;
    do {
        for (int i = 0; i < 4; ++i, rest >>= 8U)
            bytes.push_back(static_cast<std::uint8_t>(rest));
    } while (rest != 0);
    return bytes;
}

Bytes bytesOfDate(const DateTimeValue& value, TypeId from)
{
    Bytes bytes;
    if (from == TypeId::SmallDateTime) {
        appendBigEndian(bytes, static_cast<std::uint16_t>(value.days - day1900));
        appendBigEndian(bytes, static_cast<std::uint16_t>(value.ticks / ticksPerMinute));
    } else {
        appendBigEndian(bytes, static_cast<std::uint32_t>(value.days - day1900));
        appendBigEndian(bytes, static_cast<std::uint32_t>(threeHundredths(value.ticks)));
    }
    return bytes;
}

Bytes bytesOfInteger(std::int64_t value, TypeId from)
{
    Bytes bytes;
    switch (from) {
    case TypeId::Bit:
    case TypeId::TinyInt:
        appendBigEndian(bytes, static_cast<std::uint8_t>(value));
        break;
    case TypeId::SmallInt:
        appendBigEndian(bytes, static_cast<std::uint16_t>(value));
        break;
    case TypeId::Int:
    case TypeId::SmallMoney:
        appendBigEndian(bytes, static_cast<std::uint32_t>(value));
        break;
    default:
        appendBigEndian(bytes, static_cast<std::uint64_t>(value));
        break;
    }
    return bytes;
}

} // namespace

Bytes bytesOf(const Value& value, const SqlType& from)
{
    if (isBinary(from.id))
        return std::get<Bytes>(value.data);
    if (isCharacter(from.id) || from.id == TypeId::Xml)
        return bytesOfText(std::get<std::string>(value.data), isUnicode(from.id) || from.id == TypeId::Xml);
    if (isDecimal(from.id))
        return bytesOfDecimal(std::get<Decimal>(value.data), from.precision);
    if (isDateTime(from.id))
        return bytesOfDate(std::get<DateTimeValue>(value.data), from.id);
    if (from.id == TypeId::UniqueIdentifier) {
        const Guid wire = swapGuid(std::get<Guid>(value.data));
        return {wire.begin(), wire.end()};
    }
    Bytes bytes;
    if (from.id == TypeId::Real)
        appendBigEndian(bytes,
                        std::bit_cast<std::uint32_t>(static_cast<float>(std::get<double>(value.data))));
    else if (from.id == TypeId::Float)
        appendBigEndian(bytes, std::bit_cast<std::uint64_t>(std::get<double>(value.data)));
    else
        bytes = bytesOfInteger(std::get<std::int64_t>(value.data), from.id);
    return bytes;
}

std::int64_t integerFromBytes(const Bytes& bytes)
{
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size() > 8 ? bytes.size() - 8 : 0; i < bytes.size(); ++i)
        number = number << 8U | bytes[i];
    return static_cast<std::int64_t>(number);
}

Value convertToText(const Value& value, const SqlType& from, const SqlType& to, int style,
                    const Language& language)
{
    if (isCharacter(from.id) || from.id == TypeId::Xml)
        return fittedText(std::get<std::string>(value.data), to);
    if (isBinary(from.id))
        return fittedText(textOfBytes(std::get<Bytes>(value.data), to, style), to);
    if (isDateTime(from.id))
        return fittedText(textOfDate(std::get<DateTimeValue>(value.data), from, style, language), to);
    if (from.id == TypeId::UniqueIdentifier) {
        if (to.length > 0 && to.length < 36)
            failConversion(8170, {"Insufficient result space to convert uniqueidentifier value to char."});
        return fittedText(formatGuid(std::get<Guid>(value.data)), to);
    }
    return fittedNumber(textOfNumber(value, from, style), from, to);
}

Value convertToBinary(const Value& value, const SqlType& from, const SqlType& to, int style)
{
    if (isCharacter(from.id) && (style == 1 || style == 2))
        return fittedBytes(bytesOfHexText(std::get<std::string>(value.data), from, to, style), to);
    Bytes bytes = bytesOf(value, from);
    const bool number = (isNumeric(from.id) && !isDecimal(from.id)) || isDateTime(from.id);
    return fittedBytes(number ? rightAligned(std::move(bytes), to) : std::move(bytes), to);
}

Value convertToGuid(const Value& value, const SqlType& from)
{
    if (isCharacter(from.id)) {
        const auto guid = parseGuid(std::get<std::string>(value.data));
        if (!guid)
            failConversion(
                8169, {"Conversion failed when converting from a character string to uniqueidentifier."});
        return {*guid, {}};
    }
    if (from.id == TypeId::UniqueIdentifier)
        return value;
    Guid wire{};
    const Bytes& bytes = std::get<Bytes>(value.data);
    std::copy_n(bytes.begin(), std::min(bytes.size(), wire.size()), wire.begin());
    return {swapGuid(wire), {}};
}

} // namespace practice
