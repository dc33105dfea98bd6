#include "engine/store/storage.h"

#include "engine/store/store.h"
#include "types/date_time.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>

namespace practice {

namespace {

constexpr std::int64_t minutesPerDay = 1440;
constexpr std::int64_t datetimeUnitsPerDay = 300LL * 86'400;
constexpr std::size_t wideDecimalSize = 17;
constexpr int narrowPrecision = 18;

/// Places of the text form's bytes in the order in which the server compares them.
constexpr std::array<std::size_t, 16> guidOrder = {10, 11, 12, 13, 14, 15, 8, 9, 7, 6, 5, 4, 3, 2, 1, 0};

std::int64_t scaledInteger(const Decimal& value, int scale)
{
    unsigned __int128 magnitude = value.magnitude;
    for (int s = value.scale; s < scale; ++s)
        magnitude *= 10;
    for (int s = value.scale; s > scale; --s)
        magnitude = (magnitude + (s == scale + 1 ? 5 : 0)) / 10;
    const auto integer = static_cast<std::int64_t>(magnitude);
    return value.negative ? -integer : integer;
}

Decimal fromScaledInteger(std::int64_t stored, std::uint8_t scale)
{
    const bool negative = stored < 0;
    const auto magnitude =
        negative ? 0 - static_cast<std::uint64_t>(stored) : static_cast<std::uint64_t>(stored);
    return {magnitude, scale, negative};
}

std::array<std::uint8_t, wideDecimalSize> wideDecimal(const Decimal& value, int scale)
{
    unsigned __int128 magnitude = value.magnitude;
    for (int s = value.scale; s < scale; ++s)
        magnitude *= 10;
    for (int s = value.scale; s > scale; --s)
        magnitude = (magnitude + (s == scale + 1 ? 5 : 0)) / 10;
    const bool negative = value.negative && magnitude != 0;
    if (negative)
        magnitude = ~magnitude;
    std::array<std::uint8_t, wideDecimalSize> bytes{};
    bytes[0] = negative ? 0 : 1;
    for (std::size_t i = wideDecimalSize - 1; i > 0; --i, magnitude >>= 8)
        bytes[i] = static_cast<std::uint8_t>(magnitude);
    return bytes;
}

Decimal fromWideDecimal(const std::uint8_t* bytes, std::size_t size, std::uint8_t scale)
{
    if (size != wideDecimalSize)
        return {0, scale, false};
    unsigned __int128 magnitude = 0;
    for (std::size_t i = 1; i < wideDecimalSize; ++i)
        magnitude = (magnitude << 8) | bytes[i];
    const bool negative = bytes[0] == 0;
    return {negative ? ~magnitude : magnitude, scale, negative};
}

std::array<std::uint8_t, 10> offsetBytes(const DateTimeValue& value)
{
    std::array<std::uint8_t, 10> bytes{};
    auto ticks = static_cast<std::uint64_t>(value.days * ticksPerDay + value.ticks);
    for (std::size_t i = 8; i > 0; --i, ticks >>= 8)
        bytes[i - 1] = static_cast<std::uint8_t>(ticks);
    const auto offset = static_cast<std::uint16_t>(value.offsetMinutes);
    bytes[8] = static_cast<std::uint8_t>(offset >> 8);
    bytes[9] = static_cast<std::uint8_t>(offset);
    return bytes;
}

DateTimeValue fromOffsetBytes(const std::uint8_t* bytes, std::size_t size)
{
    if (size != 10)
        return {};
    std::int64_t ticks = 0;
    for (std::size_t i = 0; i < 8; ++i)
        ticks = (ticks << 8) | bytes[i];
    const auto offset = static_cast<std::int16_t>((bytes[8] << 8) | bytes[9]);
    return {static_cast<std::int32_t>(ticks / ticksPerDay), ticks % ticksPerDay, offset};
}

std::int64_t dateTimeInteger(const DateTimeValue& value, TypeId id)
{
    switch (id) {
    case TypeId::SmallDateTime:
        return (value.days - day1900) * minutesPerDay + value.ticks / ticksPerMinute;
    case TypeId::DateTime:
        return datetimeStorage(value);
    case TypeId::Date:
        return value.days;
    case TypeId::Time:
        return value.ticks;
    default:
        return value.days * ticksPerDay + value.ticks;
    }
}

DateTimeValue fromDateTimeInteger(std::int64_t stored, TypeId id)
{
    switch (id) {
    case TypeId::SmallDateTime: {
        const std::int64_t day =
            stored >= 0 ? stored / minutesPerDay : -((minutesPerDay - 1 - stored) / minutesPerDay);
        return {static_cast<std::int32_t>(day + day1900), (stored - day * minutesPerDay) * ticksPerMinute, 0};
    }
    case TypeId::DateTime:
        return fromDatetimeStorage(stored);
    case TypeId::Date:
        return {static_cast<std::int32_t>(stored), 0, 0};
    case TypeId::Time:
        return {0, stored, 0};
    default:
        return {static_cast<std::int32_t>(stored / ticksPerDay), stored % ticksPerDay, 0};
    }
}

bool isNarrowDecimal(const SqlType& type)
{
    return isDecimal(type.id) && type.precision <= narrowPrecision;
}

std::string variantBytes(const Value& value);

/// The storage form as the bytes of a TEXT or BLOB; for types of those two classes only.
std::string storageBytes(const Value& value, const SqlType& type)
{
    const auto asString = [](const auto& bytes) { return std::string(bytes.begin(), bytes.end()); };
    if (type.id == TypeId::SqlVariant)
        return variantBytes(value);
    if (isDecimal(type.id))
        return asString(wideDecimal(std::get<Decimal>(value.data), type.scale));
    if (type.id == TypeId::DateTimeOffset)
        return asString(offsetBytes(std::get<DateTimeValue>(value.data)));
    if (type.id == TypeId::UniqueIdentifier) {
        const auto& guid = std::get<Guid>(value.data);
        std::string bytes;
        for (const std::size_t place : guidOrder)
            bytes.push_back(static_cast<char>(guid[place]));
        return bytes;
    }
    if (const auto* bytes = std::get_if<Bytes>(&value.data)) {
        std::string stored = asString(*bytes);
        if (type.id == TypeId::Binary && type.length > 0)
            stored.resize(static_cast<std::size_t>(type.length), '\0');
        return stored;
    }
    return std::get<std::string>(value.data);
}

std::int64_t storageInteger(const Value& value, const SqlType& type)
{
    if (isDecimal(type.id))
        return scaledInteger(std::get<Decimal>(value.data), type.scale);
    if (isDateTime(type.id))
        return dateTimeInteger(std::get<DateTimeValue>(value.data), type.id);
    return std::get<std::int64_t>(value.data);
}

std::string variantBytes(const Value& value)
{
    const SqlType& inner = value.variantType;
    std::string bytes;
    const auto append = [&bytes](std::uint64_t integer) {
        for (int shift = 56; shift >= 0; shift -= 8)
            bytes.push_back(static_cast<char>(integer >> shift));
    };
    append(static_cast<std::uint64_t>(packType(inner)));
    switch (storageClass(inner)) {
    case StorageClass::Integer:
        append(static_cast<std::uint64_t>(storageInteger(value, inner)));
        break;
    case StorageClass::Real:
        append(std::bit_cast<std::uint64_t>(std::get<double>(value.data)));
        break;
    default:
        bytes += storageBytes(value, inner);
    }
    return bytes;
}

/// A stored value as SQLite hands it over: a column of a row or an argument of a function.
struct ArgumentSource
{
    sqlite3_value* value;
    [[nodiscard]] int type() const { return sqlite3_value_type(value); }
    [[nodiscard]] std::int64_t integer() const { return sqlite3_value_int64(value); }
    [[nodiscard]] double real() const { return sqlite3_value_double(value); }
    [[nodiscard]] std::string_view text() const
    {
        const auto* data = reinterpret_cast<const char*>(sqlite3_value_text(value));
        return {data == nullptr ? "" : data, static_cast<std::size_t>(sqlite3_value_bytes(value))};
    }
    [[nodiscard]] std::string_view blob() const
    {
        const auto* data = static_cast<const char*>(sqlite3_value_blob(value));
        return {data == nullptr ? "" : data, static_cast<std::size_t>(sqlite3_value_bytes(value))};
    }
};

/// A piece of a sql_variant, read the same way.
struct VariantSource
{
    std::string_view bytes;
    [[nodiscard]] int type() const { return SQLITE_BLOB; }
    [[nodiscard]] std::int64_t integer() const
    {
        std::uint64_t integer = 0;
        for (const char byte : bytes.substr(0, 8))
            integer = (integer << 8) | static_cast<std::uint8_t>(byte);
        return static_cast<std::int64_t>(integer);
    }
    [[nodiscard]] double real() const { return std::bit_cast<double>(integer()); }
    [[nodiscard]] std::string_view text() const { return bytes; }
    [[nodiscard]] std::string_view blob() const { return bytes; }
};

template <typename Source>
void decode(const Source& source, const SqlType& type, Value& value);

void decodeVariant(std::string_view bytes, Value& value)
{
    if (bytes.size() < 8) {
        value.data = std::monostate{};
        return;
    }
    const SqlType inner = unpackType(VariantSource{bytes}.integer());
    decode(VariantSource{bytes.substr(8)}, inner, value);
    value.variantType = inner;
}

template <typename Source>
void decodeBlob(const Source& source, const SqlType& type, Value& value)
{
    const std::string_view stored = source.blob();
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(stored.data());
    if (isDecimal(type.id)) {
        value.data = fromWideDecimal(bytes, stored.size(), type.scale);
    } else if (type.id == TypeId::DateTimeOffset) {
        value.data = fromOffsetBytes(bytes, stored.size());
    } else if (type.id == TypeId::UniqueIdentifier) {
        Guid guid{};
        for (std::size_t i = 0; i < std::min(guid.size(), stored.size()); ++i)
            guid[guidOrder[i]] = bytes[i];
        value.data = guid;
    } else if (type.id == TypeId::SqlVariant) {
        decodeVariant(stored, value);
    } else if (auto* held = std::get_if<Bytes>(&value.data)) {
        held->assign(bytes, bytes + stored.size());
    } else {
        value.data = Bytes(bytes, bytes + stored.size());
    }
}

template <typename Source>
void decode(const Source& source, const SqlType& type, Value& value)
{
    if (source.type() == SQLITE_NULL) {
        value.data = std::monostate{};
        return;
    }
    switch (storageClass(type)) {
    case StorageClass::Integer:
        if (isDecimal(type.id))
            value.data = fromScaledInteger(source.integer(), type.scale);
        else if (isDateTime(type.id))
            value.data = fromDateTimeInteger(source.integer(), type.id);
        else
            value.data = source.integer();
        return;
    case StorageClass::Real:
        value.data = source.real();
        return;
    case StorageClass::Text:
        if (auto* held = std::get_if<std::string>(&value.data))
            held->assign(source.text());
        else
            value.data = std::string(source.text());
        return;
    case StorageClass::Blob:
        decodeBlob(source, type, value);
    }
}

std::string hexLiteral(std::string_view bytes)
{
    constexpr const char* digits = "0123456789ABCDEF";
    std::string literal = "x'";
    for (const char byte : bytes) {
        const auto b = static_cast<std::uint8_t>(byte);
        literal.push_back(digits[b >> 4]);
        literal.push_back(digits[b & 15]);
    }
    return literal + "'";
}

std::string quoted(std::string_view text, char quote)
{
    std::string result(1, quote);
    for (const char c : text) {
        if (c == quote)
            result.push_back(quote);
        result.push_back(c);
    }
    return result + quote;
}

} // namespace

StorageClass storageClass(const SqlType& type)
{
    switch (type.id) {
    case TypeId::Real:
    case TypeId::Float:
        return StorageClass::Real;
    case TypeId::Char:
    case TypeId::VarChar:
    case TypeId::Text:
    case TypeId::NChar:
    case TypeId::NVarChar:
    case TypeId::NText:
    case TypeId::Xml:
        return StorageClass::Text;
    case TypeId::Decimal:
    case TypeId::Numeric:
        return isNarrowDecimal(type) ? StorageClass::Integer : StorageClass::Blob;
    case TypeId::Binary:
    case TypeId::VarBinary:
    case TypeId::Image:
    case TypeId::Timestamp:
    case TypeId::UniqueIdentifier:
    case TypeId::SqlVariant:
    case TypeId::DateTimeOffset:
        return StorageClass::Blob;
    default:
        return StorageClass::Integer;
    }
}

void bindStorage(sqlite3_stmt* statement, int parameter, const Value& value, const SqlType& type)
{
    int code = SQLITE_OK;
    if (value.isNull()) {
        code = sqlite3_bind_null(statement, parameter);
    } else {
        switch (storageClass(type)) {
        case StorageClass::Integer:
            code = sqlite3_bind_int64(statement, parameter, storageInteger(value, type));
            break;
        case StorageClass::Real:
            code = sqlite3_bind_double(statement, parameter, std::get<double>(value.data));
            break;
        case StorageClass::Text: {
            const auto& text = std::get<std::string>(value.data);
            code = sqlite3_bind_text64(statement, parameter, text.data(), text.size(), SQLITE_TRANSIENT,
                                       SQLITE_UTF8);
            break;
        }
        case StorageClass::Blob: {
            const std::string bytes = storageBytes(value, type);
            code = sqlite3_bind_blob64(statement, parameter, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
        }
        }
    }
    if (code != SQLITE_OK)
        throwStoreFailure(sqlite3_db_handle(statement), code);
}

void resultStorage(sqlite3_context* context, const Value& value, const SqlType& type)
{
    if (value.isNull())
        return sqlite3_result_null(context);
    switch (storageClass(type)) {
    case StorageClass::Integer:
        return sqlite3_result_int64(context, storageInteger(value, type));
    case StorageClass::Real:
        return sqlite3_result_double(context, std::get<double>(value.data));
    case StorageClass::Text: {
        const auto& text = std::get<std::string>(value.data);
        return sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    case StorageClass::Blob: {
        const std::string bytes = storageBytes(value, type);
        return sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
    }
    }
}

std::string storageLiteral(const Value& value, const SqlType& type)
{
    if (value.isNull())
        return "NULL";
    switch (storageClass(type)) {
    case StorageClass::Integer: {
        const std::int64_t integer = storageInteger(value, type);
        // The least integer can't be written as a negated literal.
        return integer == INT64_MIN ? "(-9223372036854775807-1)" : std::to_string(integer);
    }
    case StorageClass::Real: {
        char buffer[40];
        const int size = std::snprintf(buffer, sizeof buffer, "%.17e", std::get<double>(value.data));
        return {buffer, static_cast<std::size_t>(size)};
    }
    case StorageClass::Text: {
        const auto& text = std::get<std::string>(value.data);
        // SQL text ends at a NUL, so such a string travels as its bytes.
        return text.find('\0') == std::string::npos ? quotedText(text)
                                                    : "CAST(" + hexLiteral(text) + " AS TEXT)";
    }
    case StorageClass::Blob:
        return hexLiteral(storageBytes(value, type));
    }
    return "NULL";
}

Value decodeValue(sqlite3_value* value, const SqlType& type)
{
    Value result;
    decode(ArgumentSource{value}, type, result);
    return result;
}

void decodeColumn(sqlite3_stmt* statement, int column, const SqlType& type, Value& value)
{
    // Connections are opened without a mutex of their own, so the value may be read where it lies; each
    // sqlite3_column_... would look for it anew.
    decode(ArgumentSource{sqlite3_column_value(statement, column)}, type, value);
}

std::int64_t datetimeStorage(const DateTimeValue& value)
{
    return (value.days - day1900) * datetimeUnitsPerDay + threeHundredths(value.ticks);
}

DateTimeValue fromDatetimeStorage(std::int64_t stored)
{
    std::int64_t day = stored / datetimeUnitsPerDay;
    if (stored % datetimeUnitsPerDay < 0)
        --day;
    const auto count = static_cast<std::int32_t>(stored - day * datetimeUnitsPerDay);
    return {static_cast<std::int32_t>(day + day1900), ticksFromThreeHundredths(count), 0};
}

std::int64_t packType(const SqlType& type)
{
    const auto length = static_cast<std::uint32_t>(type.length);
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(type.id) << 48 |
                                     static_cast<std::uint64_t>(type.precision) << 40 |
                                     static_cast<std::uint64_t>(type.scale) << 32 | length);
}

SqlType unpackType(std::int64_t packed)
{
    const auto bits = static_cast<std::uint64_t>(packed);
    return {static_cast<TypeId>(bits >> 48 & 0xff), static_cast<int>(static_cast<std::uint32_t>(bits)),
            static_cast<std::uint8_t>(bits >> 40), static_cast<std::uint8_t>(bits >> 32)};
}

std::string quotedName(std::string_view name)
{
    return quoted(name, '"');
}
std::string quotedText(std::string_view text)
{
    return quoted(text, '\'');
}

} // namespace practice
