#include "tds/value_writer.h"

#include "types/conversion.h"
#include "types/date_time.h"
#include "types/number_text.h"
#include "types/text_encoding.h"

#include <algorithm>

namespace practice::tds {

namespace {

void writeMagnitude(PacketWriter& writer, const Decimal& value, int storage)
{
    writer.put(static_cast<std::uint8_t>(value.negative ? 0 : 1));
    writer.putBytes(&value.magnitude, static_cast<std::size_t>(storage - 1));
}

void writeClock(PacketWriter& writer, std::int64_t ticks, int scale)
{
    for (int i = scale; i < 7; ++i)
        ticks /= 10;
    writer.putBytes(&ticks, static_cast<std::size_t>(timeStorage(TypeId::Time, scale)));
}

void writeDay(PacketWriter& writer, std::int32_t days)
{
    writer.putBytes(&days, 3);
}

void writeDate(PacketWriter& writer, const DateTimeValue& value, const SqlType& type)
{
    switch (type.id) {
    case TypeId::SmallDateTime:
        writer.put(static_cast<std::uint16_t>(value.days - day1900));
        writer.put(static_cast<std::uint16_t>(value.ticks / ticksPerMinute));
        return;
    case TypeId::DateTime:
        writer.put(std::int32_t{value.days - day1900});
        writer.put(threeHundredths(value.ticks));
        return;
    case TypeId::Date:
        writeDay(writer, value.days);
        return;
    case TypeId::Time:
        writeClock(writer, value.ticks, type.scale);
        return;
    default:
        writeClock(writer, value.ticks, type.scale);
        writeDay(writer, value.days);
        if (type.id == TypeId::DateTimeOffset)
            writer.put(value.offsetMinutes);
    }
}

void writeMoney(PacketWriter& writer, std::int64_t value, int storage)
{
    // A money's upper half comes first.
    if (storage == 8)
        writer.put(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value) >> 32U));
    writer.put(static_cast<std::uint32_t>(value));
}

void writeCodePage1252(PacketWriter& writer, std::string_view utf8, std::size_t count)
{
    for (std::size_t i = 0; i < utf8.size() && count > 0;) {
        const char32_t code = nextCodePoint(utf8, i);
        const std::size_t units = std::min<std::size_t>(code >= 0x10000 ? 2 : 1, count);
        for (std::size_t unit = 0; unit < units; ++unit)
            writer.put(codePage1252(code));
        count -= units;
    }
}

/// Bytes of a value whose length depends on it.
std::size_t byteCount(const Value& value, const SqlType& type)
{
    if (isBinary(type.id))
        return std::get<Bytes>(value.data).size();
    const std::size_t units = utf16Length(std::get<std::string>(value.data));
    return isUnicode(type.id) || type.id == TypeId::Xml ? 2 * units : units;
}

void writeVariable(PacketWriter& writer, const Value& value, const SqlType& type, std::size_t bytes)
{
    if (isBinary(type.id)) {
        writer.putBytes(std::get<Bytes>(value.data).data(), bytes);
        return;
    }
    const std::string& text = std::get<std::string>(value.data);
    if (isUnicode(type.id) || type.id == TypeId::Xml)
        writeUtf16(writer, text, bytes / 2);
    else if (isAscii(text))
        writer.putBytes(text.data(), bytes);
    else
        writeCodePage1252(writer, text, bytes);
}

/// Values of a fixed size, without their length.
void writeFixed(PacketWriter& writer, const Value& value, const SqlType& type, int storage)
{
    switch (type.id) {
    case TypeId::Int:
        return writer.put(static_cast<std::int32_t>(std::get<std::int64_t>(value.data)));
    case TypeId::Decimal:
    case TypeId::Numeric:
        return writeMagnitude(writer, std::get<Decimal>(value.data), storage);
    case TypeId::SmallDateTime:
    case TypeId::DateTime:
    case TypeId::Date:
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset:
        return writeDate(writer, std::get<DateTimeValue>(value.data), type);
    case TypeId::SmallMoney:
    case TypeId::Money:
        return writeMoney(writer, std::get<std::int64_t>(value.data), storage);
    case TypeId::UniqueIdentifier: {
        const Guid wire = swapGuid(std::get<Guid>(value.data));
        return writer.putBytes(wire.data(), wire.size());
    }
    case TypeId::Real:
        return writer.put(static_cast<float>(std::get<double>(value.data)));
    case TypeId::Float:
        return writer.put(std::get<double>(value.data));
    default: {
        const auto number = std::get<std::int64_t>(value.data);
        writer.putBytes(&number, static_cast<std::size_t>(storage));
    }
    }
}

void writeNull(PacketWriter& writer, Layout layout)
{
    switch (layout) {
    case Layout::ShortLength:
        writer.put(std::uint16_t{0xFFFF});
        break;
    case Layout::Chunks:
        writer.put(plpNull);
        break;
    case Layout::Variant:
        writer.put(std::uint32_t{0});
        break;
    default:
        writer.put(std::uint8_t{0});
        break;
    }
}

/// The bytes of a large value that go out.
std::size_t sentBytes(const Value& value, const WireType& wire)
{
    const std::size_t bytes = byteCount(value, wire.type);
    if (wire.type.id == TypeId::Xml || bytes <= wire.longest)
        return bytes;
    return isUnicode(wire.type.id) ? wire.longest & ~1U : wire.longest;
}

void writeLob(PacketWriter& writer, const Value& value, const WireType& wire)
{
    // Nothing can be reached by the pointer; clients only look whether there is one.
    constexpr std::string_view pointer = "practice pointer";
    constexpr std::string_view stamp = "practice";
    const std::size_t bytes = sentBytes(value, wire);
    writer.put(static_cast<std::uint8_t>(pointer.size()));
    writer.putBytes(pointer.data(), pointer.size());
    writer.putBytes(stamp.data(), stamp.size());
    writer.put(static_cast<std::uint32_t>(bytes));
    writeVariable(writer, value, wire.type, bytes);
}

void writeChunks(PacketWriter& writer, const Value& value, const WireType& wire)
{
    const std::size_t bytes = sentBytes(value, wire);
    writer.put(static_cast<std::uint64_t>(bytes));
    if (bytes > 0) {
        writer.put(static_cast<std::uint32_t>(bytes));
        writeVariable(writer, value, wire.type, bytes);
    }
    writer.put(std::uint32_t{0});
}

/// The token of a type inside a sql_variant: fixed types without their nullable forms.
std::uint8_t variantToken(const WireType& inner)
{
    switch (inner.type.id) {
    case TypeId::Bit:
        return type::bit;
    case TypeId::TinyInt:
        return type::int1;
    case TypeId::SmallInt:
        return type::int2;
    case TypeId::BigInt:
        return type::int8;
    case TypeId::Int:
    case TypeId::Null:
        return type::int4;
    case TypeId::Real:
        return type::real;
    case TypeId::Float:
        return type::float8;
    case TypeId::Money:
        return type::money;
    case TypeId::SmallMoney:
        return type::smallMoney;
    case TypeId::DateTime:
        return type::dateTime;
    case TypeId::SmallDateTime:
        return type::smallDateTime;
    default:
        return inner.token;
    }
}

void writeVariantOf(PacketWriter& writer, const Value& value, const WireType& inner)
{
    const SqlType& type = inner.type;
    const bool variable = inner.layout == Layout::ShortLength;
    const bool clock =
        type.id == TypeId::Time || type.id == TypeId::DateTime2 || type.id == TypeId::DateTimeOffset;
    const auto bytes = variable ? std::min(byteCount(value, type), static_cast<std::size_t>(inner.storage))
                                : static_cast<std::size_t>(inner.storage);
    std::uint8_t properties = 0;
    if (isCharacter(type.id))
        properties = 7;
    else if (isBinary(type.id) || isDecimal(type.id))
        properties = 2;
    else if (clock)
        properties = 1;
    writer.put(static_cast<std::uint32_t>(2U + properties + bytes));
    writer.put(variantToken(inner));
    writer.put(properties);
    if (isCharacter(type.id))
        writer.putBytes(defaultCollation.data(), defaultCollation.size());
    if (variable)
        writer.put(static_cast<std::uint16_t>(inner.storage));
    if (isDecimal(type.id)) {
        writer.put(type.precision);
        writer.put(type.scale);
    } else if (clock) {
        writer.put(type.scale);
    }
    if (variable)
        writeVariable(writer, value, type, bytes);
    else
        writeFixed(writer, value, type, inner.storage);
}

void writeVariant(PacketWriter& writer, const Value& value, Version version)
{
    SqlType held = value.variantType;
    if (held.length == maxLength)
        held.length = isUnicode(held.id) ? 4000 : 8000;
    const WireType inner = wireTypeOf(held, version);
    if (inner.type == inner.source)
        writeVariantOf(writer, value, inner);
    else
        writeVariantOf(writer, convert({value.data, {}}, inner.source, inner.type), inner);
}

} // namespace

void writeUtf16(PacketWriter& writer, std::string_view utf8, std::size_t units)
{
    if (isAscii(utf8)) {
        writer.putAsciiAsUtf16(utf8.substr(0, units));
        return;
    }
    for (std::size_t i = 0; i < utf8.size() && units > 0; --units) {
        const char32_t code = nextCodePoint(utf8, i);
        if (code < 0x10000) {
            writer.put(static_cast<std::uint16_t>(code));
            continue;
        }
        writer.put(static_cast<std::uint16_t>(0xD7C0 + (code >> 10U)));
        if (--units == 0)
            return;
        writer.put(static_cast<std::uint16_t>(0xDC00 + (code & 0x3FFU)));
    }
}

void writeShortText(PacketWriter& writer, std::string_view utf8)
{
    const std::size_t units = std::min<std::size_t>(utf16Length(utf8), 255);
    writer.put(static_cast<std::uint8_t>(units));
    writeUtf16(writer, utf8, units);
}

void writeLongText(PacketWriter& writer, std::string_view utf8)
{
    const std::size_t units = std::min<std::size_t>(utf16Length(utf8), 0xFFFF);
    writer.put(static_cast<std::uint16_t>(units));
    writeUtf16(writer, utf8, units);
}

void writeValue(PacketWriter& writer, const WireType& wire, const Value& value, Version version)
{
    if (value.isNull()) {
        writeNull(writer, wire.layout);
        return;
    }
    if (wire.type.id != wire.source.id && isDateTime(wire.source.id)) {
        WireType text = wire;
        text.source = wire.type;
        writeValue(writer, text, convert(value, wire.source, wire.type), version);
        return;
    }
    switch (wire.layout) {
    case Layout::ByteLength:
        writer.put(static_cast<std::uint8_t>(wire.storage));
        writeFixed(writer, value, wire.type, wire.storage);
        break;
    case Layout::ShortLength: {
        const std::size_t bytes =
            std::min(byteCount(value, wire.type), static_cast<std::size_t>(wire.storage));
        writer.put(static_cast<std::uint16_t>(bytes));
        writeVariable(writer, value, wire.type, bytes);
        break;
    }
    case Layout::LongText:
        writeLob(writer, value, wire);
        break;
    case Layout::Chunks:
        writeChunks(writer, value, wire);
        break;
    case Layout::Variant:
        writeVariant(writer, value, version);
        break;
    }
}

} // namespace practice::tds
