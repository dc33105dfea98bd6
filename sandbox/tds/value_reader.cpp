#include "tds/value_reader.h"

#include "types/date_time.h"
#include "types/decimal.h"
#include "types/number_text.h"

#include <algorithm>
#include <bit>

namespace practice::tds {

namespace {

using ByteSpan = std::span<const std::uint8_t>;

/// What a TYPE_INFO says, with the width of the length that precedes each value.
struct ParameterType
{
    enum class Length : std::uint8_t
    {
        Fixed,
        Byte,
        Short,
        Long,
        Chunks
    };
    SqlType type;
    Length length = Length::Fixed;
    int size = 0; ///< of fixed values
};

using Length = ParameterType::Length;

template <class T>
T little(ByteSpan bytes)
{
    T value{};
    std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof(T)));
    return value;
}

[[noreturn]] void failLength()
{
    throw ProtocolError("length of a value that its type can't have");
}

SqlType integerType(int size)
{
    switch (size) {
    case 1:
        return {TypeId::TinyInt, 1, 0, 0};
    case 2:
        return {TypeId::SmallInt, 2, 0, 0};
    case 4:
        return {TypeId::Int, 4, 0, 0};
    case 8:
        return {TypeId::BigInt, 8, 0, 0};
    default:
        failLength();
    }
}

SqlType either(int size, TypeId four, TypeId eight)
{
    if (size != 4 && size != 8)
        failLength();
    return {size == 4 ? four : eight, size, 0, 0};
}

SqlType scaledType(ByteReader& reader, TypeId id)
{
    const auto scale = reader.number<std::uint8_t>();
    if (scale > 7)
        failLength();
    return {id, timeStorage(id, scale), 0, scale};
}

SqlType decimalType(ByteReader& reader, TypeId id)
{
    const auto precision = reader.number<std::uint8_t>();
    const auto scale = reader.number<std::uint8_t>();
    if (precision < 1 || precision > maxPrecision || scale > precision)
        failLength();
    return {id, decimalStorage(precision), precision, scale};
}

/// Types with a two-byte length: 0xFFFF announces chunks.
ParameterType sizedType(ByteReader& reader, TypeId id)
{
    const auto bytes = reader.number<std::uint16_t>();
    if (isCharacter(id))
        reader.skip(defaultCollation.size());
    const int length = isUnicode(id) ? bytes / 2 : bytes;
    if (bytes != 0xFFFF)
        return {{id, std::max(1, length), 0, 0}, Length::Short, 0};
    return {{id, maxLength, 0, 0}, Length::Chunks, 0};
}

ParameterType shortSizedType(ByteReader& reader, TypeId id)
{
    return {{id, std::max<int>(1, reader.number<std::uint8_t>()), 0, 0}, Length::Byte, 0};
}

ParameterType lobType(ByteReader& reader, TypeId id)
{
    reader.skip(4);
    if (isCharacter(id))
        reader.skip(defaultCollation.size());
    return {{id, 16, 0, 0}, Length::Long, 0};
}

ParameterType xmlType(ByteReader& reader)
{
    if (reader.number<std::uint8_t>() != 0) {
        reader.skip(std::size_t{2} * reader.number<std::uint8_t>());
        reader.skip(std::size_t{2} * reader.number<std::uint8_t>());
        reader.skip(std::size_t{2} * reader.number<std::uint16_t>());
    }
    return {{TypeId::Xml, maxLength, 0, 0}, Length::Chunks, 0};
}

/// Fixed types: those of parameters that can't be NULL, and those inside a sql_variant.
std::optional<SqlType> fixedType(std::uint8_t token)
{
    switch (token) {
    case type::bit:
        return SqlType{TypeId::Bit, 1, 0, 0};
    case type::int1:
        return integerType(1);
    case type::int2:
        return integerType(2);
    case type::int4:
        return integerType(4);
    case type::int8:
        return integerType(8);
    case type::real:
        return SqlType{TypeId::Real, 4, 0, 0};
    case type::float8:
        return SqlType{TypeId::Float, 8, 0, 0};
    case type::money:
        return SqlType{TypeId::Money, 8, 0, 0};
    case type::smallMoney:
        return SqlType{TypeId::SmallMoney, 4, 0, 0};
    case type::dateTime:
        return SqlType{TypeId::DateTime, 8, 0, 0};
    case type::smallDateTime:
        return SqlType{TypeId::SmallDateTime, 4, 0, 0};
    default:
        return std::nullopt;
    }
}

ParameterType readType(ByteReader& reader)
{
    const auto token = reader.number<std::uint8_t>();
    if (const auto fixed = fixedType(token))
        return {*fixed, Length::Fixed, fixed->length};
    const auto size = [&reader] { return static_cast<int>(reader.number<std::uint8_t>()); };
    switch (token) {
    case type::null:
        return {};
    case type::intN:
        return {integerType(size()), Length::Byte, 0};
    case type::bitN:
        reader.skip(1);
        return {{TypeId::Bit, 1, 0, 0}, Length::Byte, 0};
    case type::floatN:
        return {either(size(), TypeId::Real, TypeId::Float), Length::Byte, 0};
    case type::moneyN:
        return {either(size(), TypeId::SmallMoney, TypeId::Money), Length::Byte, 0};
    case type::dateTimeN:
        return {either(size(), TypeId::SmallDateTime, TypeId::DateTime), Length::Byte, 0};
    case type::decimalN:
        reader.skip(1);
        return {decimalType(reader, TypeId::Decimal), Length::Byte, 0};
    case type::numericN:
        reader.skip(1);
        return {decimalType(reader, TypeId::Numeric), Length::Byte, 0};
    case type::date:
        return {{TypeId::Date, 3, 0, 0}, Length::Byte, 0};
    case type::time:
        return {scaledType(reader, TypeId::Time), Length::Byte, 0};
    case type::dateTime2:
        return {scaledType(reader, TypeId::DateTime2), Length::Byte, 0};
    case type::dateTimeOffset:
        return {scaledType(reader, TypeId::DateTimeOffset), Length::Byte, 0};
    case type::guid:
        reader.skip(1);
        return {{TypeId::UniqueIdentifier, 16, 0, 0}, Length::Byte, 0};
    case type::oldChar:
        return shortSizedType(reader, TypeId::Char);
    case type::oldVarChar:
        return shortSizedType(reader, TypeId::VarChar);
    case type::oldBinary:
        return shortSizedType(reader, TypeId::Binary);
    case type::oldVarBinary:
        return shortSizedType(reader, TypeId::VarBinary);
    case type::fixedChar:
        return sizedType(reader, TypeId::Char);
    case type::varChar:
        return sizedType(reader, TypeId::VarChar);
    case type::nChar:
        return sizedType(reader, TypeId::NChar);
    case type::nVarChar:
        return sizedType(reader, TypeId::NVarChar);
    case type::binary:
        return sizedType(reader, TypeId::Binary);
    case type::varBinary:
        return sizedType(reader, TypeId::VarBinary);
    case type::text:
        return lobType(reader, TypeId::Text);
    case type::nText:
        return lobType(reader, TypeId::NText);
    case type::image:
        return lobType(reader, TypeId::Image);
    case type::variant:
        reader.skip(4);
        return {{TypeId::SqlVariant, 8016, 0, 0}, Length::Long, 0};
    case type::xml:
        return xmlType(reader);
    default:
        throw UnknownType{token};
    }
}

/// The bytes of one value; none for NULL. Chunks are put together in `storage`.
std::optional<ByteSpan> readBytes(ByteReader& reader, const ParameterType& type, Bytes& storage)
{
    switch (type.length) {
    case Length::Fixed:
        if (type.type.id == TypeId::Null)
            return std::nullopt;
        return reader.take(static_cast<std::size_t>(type.size));
    case Length::Byte: {
        const auto count = reader.number<std::uint8_t>();
        // Text and bytes of the old, short types may be empty as NULL only.
        return count == 0 ? std::nullopt : std::optional(reader.take(count));
    }
    case Length::Short: {
        const auto count = reader.number<std::uint16_t>();
        return count == 0xFFFF ? std::nullopt : std::optional(reader.take(count));
    }
    case Length::Long: {
        const auto count = reader.number<std::uint32_t>();
        const bool null = count == 0xFFFF'FFFF || (type.type.id == TypeId::SqlVariant && count == 0);
        return null ? std::nullopt : std::optional(reader.take(count));
    }
    default:
        break;
    }
    if (reader.number<std::uint64_t>() == plpNull)
        return std::nullopt;
    while (const auto count = reader.number<std::uint32_t>()) {
        const auto part = reader.take(count);
        storage.insert(storage.end(), part.begin(), part.end());
    }
    return ByteSpan(storage);
}

Decimal readDecimal(ByteSpan bytes, const SqlType& type)
{
    if (bytes.size() < 2 || bytes.size() > 17)
        failLength();
    Decimal value;
    value.magnitude = little<unsigned __int128>(bytes.subspan(1));
    value.scale = type.scale;
    value.negative = bytes[0] == 0 && value.magnitude != 0;
    if (value.magnitude >= powerOfTen(maxPrecision))
        failLength();
    return value;
}

std::int64_t readClock(ByteSpan bytes, int scale)
{
    auto ticks = static_cast<std::int64_t>(little<std::uint64_t>(bytes));
    if (ticks > ticksPerDay)
        failLength();
    for (int i = scale; i < 7; ++i)
        ticks *= 10;
    if (ticks >= ticksPerDay)
        failLength();
    return ticks;
}

DateTimeValue readOldDate(ByteSpan bytes, const SqlType& type)
{
    DateTimeValue value;
    if (type.id == TypeId::SmallDateTime) {
        value.days = day1900 + little<std::uint16_t>(bytes.first(2));
        value.ticks = little<std::uint16_t>(bytes.subspan(2)) * ticksPerMinute;
    } else {
        const auto days = little<std::int32_t>(bytes.first(4));
        const auto count = little<std::uint32_t>(bytes.subspan(4));
        if (days < day1753 - day1900 || days > lastDay - day1900 || count >= 300U * 86'400U)
            failLength();
        value.days = day1900 + days;
        value.ticks = ticksFromThreeHundredths(static_cast<std::int32_t>(count));
    }
    if (value.ticks >= ticksPerDay)
        failLength();
    return value;
}

DateTimeValue readDate(ByteSpan bytes, const SqlType& type)
{
    if (bytes.size() != static_cast<std::size_t>(type.length))
        failLength();
    if (type.id == TypeId::SmallDateTime || type.id == TypeId::DateTime)
        return readOldDate(bytes, type);
    DateTimeValue value{day1900, 0, 0};
    if (type.id != TypeId::Date) {
        const auto clock = static_cast<std::size_t>(timeStorage(TypeId::Time, type.scale));
        value.ticks = readClock(bytes.first(clock), type.scale);
        bytes = bytes.subspan(clock);
    }
    if (type.id != TypeId::Time) {
        value.days = little<std::int32_t>(bytes.first(3));
        if (value.days > lastDay)
            failLength();
    }
    if (type.id == TypeId::DateTimeOffset)
        value.offsetMinutes = little<std::int16_t>(bytes.subspan(3));
    if (value.offsetMinutes < -840 || value.offsetMinutes > 840)
        failLength();
    return value;
}

Guid readGuid(ByteSpan bytes)
{
    Guid wire{};
    if (bytes.size() != wire.size())
        failLength();
    std::copy(bytes.begin(), bytes.end(), wire.begin());
    return swapGuid(wire);
}

std::int64_t readInteger(ByteSpan bytes, const SqlType& type)
{
    switch (bytes.size()) {
    case 1:
        return type.id == TypeId::Bit ? std::int64_t{bytes[0] != 0} : std::int64_t{bytes[0]};
    case 2:
        return little<std::int16_t>(bytes);
    case 4:
        return little<std::int32_t>(bytes);
    case 8:
        return little<std::int64_t>(bytes);
    default:
        failLength();
    }
}

std::int64_t readMoney(ByteSpan bytes)
{
    if (bytes.size() == 4)
        return little<std::int32_t>(bytes);
    if (bytes.size() != 8)
        failLength();
    // The upper half comes first.
    return static_cast<std::int64_t>(std::rotl(little<std::uint64_t>(bytes), 32));
}

double readFloat(ByteSpan bytes)
{
    if (bytes.size() == 4)
        return std::bit_cast<float>(little<std::uint32_t>(bytes));
    if (bytes.size() != 8)
        failLength();
    return std::bit_cast<double>(little<std::uint64_t>(bytes));
}

Value decode(ByteSpan bytes, const SqlType& type);

std::optional<TypeId> lengthyType(std::uint8_t token)
{
    switch (token) {
    case type::varChar:
        return TypeId::VarChar;
    case type::fixedChar:
        return TypeId::Char;
    case type::nVarChar:
        return TypeId::NVarChar;
    case type::nChar:
        return TypeId::NChar;
    case type::varBinary:
        return TypeId::VarBinary;
    case type::binary:
        return TypeId::Binary;
    default:
        return std::nullopt;
    }
}

SqlType variantType(std::uint8_t token, ByteReader& properties)
{
    if (const auto fixed = fixedType(token))
        return *fixed;
    if (const auto id = lengthyType(token)) {
        if (isCharacter(*id))
            properties.skip(defaultCollation.size());
        const int bytes = properties.number<std::uint16_t>();
        return {*id, isUnicode(*id) ? bytes / 2 : bytes, 0, 0};
    }
    switch (token) {
    case type::decimalN:
        return decimalType(properties, TypeId::Decimal);
    case type::numericN:
        return decimalType(properties, TypeId::Numeric);
    case type::guid:
        return {TypeId::UniqueIdentifier, 16, 0, 0};
    case type::date:
        return {TypeId::Date, 3, 0, 0};
    case type::time:
        return scaledType(properties, TypeId::Time);
    case type::dateTime2:
        return scaledType(properties, TypeId::DateTime2);
    case type::dateTimeOffset:
        return scaledType(properties, TypeId::DateTimeOffset);
    default:
        throw UnknownType{token};
    }
}

/// Inner type and properties, then the value.
Value decodeVariant(ByteSpan bytes)
{
    ByteReader reader(bytes);
    const auto token = reader.number<std::uint8_t>();
    const auto count = reader.number<std::uint8_t>();
    ByteReader properties(reader.take(count));
    const SqlType inner = variantType(token, properties);
    Value value = decode(reader.take(reader.left()), inner);
    value.variantType = inner;
    return value;
}

Value decode(ByteSpan bytes, const SqlType& type)
{
    if (type.id == TypeId::SqlVariant)
        return decodeVariant(bytes);
    if (isDecimal(type.id))
        return {readDecimal(bytes, type), {}};
    if (isDateTime(type.id))
        return {readDate(bytes, type), {}};
    if (isMoney(type.id))
        return {readMoney(bytes), {}};
    if (isInteger(type.id))
        return {readInteger(bytes, type), {}};
    if (type.id == TypeId::Real || type.id == TypeId::Float)
        return {readFloat(bytes), {}};
    if (type.id == TypeId::UniqueIdentifier)
        return {readGuid(bytes), {}};
    if (isBinary(type.id))
        return {Bytes(bytes.begin(), bytes.end()), {}};
    if (isUnicode(type.id) || type.id == TypeId::Xml)
        return {utf8FromUtf16Bytes(bytes.data(), bytes.size()), {}};
    return {utf8FromCodePage1252(bytes.data(), bytes.size()), {}};
}

} // namespace

void readTypedValue(ByteReader& reader, Parameter& parameter)
{
    const ParameterType type = readType(reader);
    Bytes storage;
    parameter.type = type.type;
    if (const auto bytes = readBytes(reader, type, storage))
        parameter.value = decode(*bytes, type.type);
}

} // namespace practice::tds
