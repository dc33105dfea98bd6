// How types are described on the wire.
#include "tds/value_writer.h"

#include <algorithm>

namespace practice::tds {

namespace {

constexpr int widestField = 8000;

std::uint8_t tokenOf(TypeId id)
{
    switch (id) {
    case TypeId::Bit:
        return type::bitN;
    case TypeId::Real:
    case TypeId::Float:
        return type::floatN;
    case TypeId::SmallMoney:
    case TypeId::Money:
        return type::moneyN;
    case TypeId::Decimal:
        return type::decimalN;
    case TypeId::Numeric:
        return type::numericN;
    case TypeId::SmallDateTime:
    case TypeId::DateTime:
        return type::dateTimeN;
    case TypeId::Date:
        return type::date;
    case TypeId::Time:
        return type::time;
    case TypeId::DateTime2:
        return type::dateTime2;
    case TypeId::DateTimeOffset:
        return type::dateTimeOffset;
    case TypeId::Char:
        return type::fixedChar;
    case TypeId::VarChar:
        return type::varChar;
    case TypeId::Text:
        return type::text;
    case TypeId::NChar:
        return type::nChar;
    case TypeId::NVarChar:
        return type::nVarChar;
    case TypeId::NText:
        return type::nText;
    case TypeId::Binary:
    case TypeId::Timestamp:
        return type::binary;
    case TypeId::VarBinary:
        return type::varBinary;
    case TypeId::Image:
        return type::image;
    case TypeId::UniqueIdentifier:
        return type::guid;
    case TypeId::SqlVariant:
        return type::variant;
    case TypeId::Xml:
        return type::xml;
    default:
        return type::intN;
    }
}

/// The type that stands for one which a client of that version does not know yet.
SqlType downgraded(const SqlType& type, Version version)
{
    const auto text = [](int length) { return SqlType{TypeId::NVarChar, length, 0, 0}; };
    if (version < Version::V73) {
        const int fraction = type.scale == 0 ? 0 : type.scale + 1;
        switch (type.id) {
        case TypeId::Date:
            return text(10);
        case TypeId::Time:
            return text(8 + fraction);
        case TypeId::DateTime2:
            return text(19 + fraction);
        case TypeId::DateTimeOffset:
            return text(26 + fraction);
        default:
            break;
        }
    }
    if (version > Version::V71)
        return type;
    if (type.id == TypeId::Xml)
        return {TypeId::NText, 16, 0, 0};
    if (type.length != maxLength)
        return type;
    if (type.id == TypeId::VarBinary)
        return {TypeId::Image, 16, 0, 0};
    return {type.id == TypeId::NVarChar ? TypeId::NText : TypeId::Text, 16, 0, 0};
}

Layout layoutOf(const SqlType& type)
{
    if (isLegacyLob(type.id))
        return Layout::LongText;
    if (type.id == TypeId::SqlVariant)
        return Layout::Variant;
    if (type.id == TypeId::Xml)
        return Layout::Chunks;
    if (!isCharacter(type.id) && !isBinary(type.id))
        return Layout::ByteLength;
    return type.length == maxLength ? Layout::Chunks : Layout::ShortLength;
}

int storageOf(const SqlType& type)
{
    switch (type.id) {
    case TypeId::Null:
        return 4;
    case TypeId::Decimal:
    case TypeId::Numeric:
        return decimalStorage(type.precision);
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset:
        return timeStorage(type.id, type.scale);
    case TypeId::Char:
    case TypeId::VarChar:
    case TypeId::Binary:
    case TypeId::VarBinary:
        return std::clamp(type.length, 1, widestField);
    case TypeId::NChar:
    case TypeId::NVarChar:
        return 2 * std::clamp(type.length, 1, widestField / 2);
    default:
        return defaultType(type.id, true).length;
    }
}

} // namespace

WireType wireTypeOf(const SqlType& type, Version version)
{
    WireType wire;
    wire.source = type;
    wire.type = downgraded(type, version);
    wire.token = tokenOf(wire.type.id);
    wire.layout = layoutOf(wire.type);
    wire.storage = storageOf(wire.type);
    return wire;
}

void writeTypeInfo(PacketWriter& writer, const WireType& wire)
{
    writer.put(wire.token);
    switch (wire.layout) {
    case Layout::ShortLength:
        writer.put(static_cast<std::uint16_t>(wire.storage));
        break;
    case Layout::Chunks:
        if (wire.type.id == TypeId::Xml)
            writer.put(std::uint8_t{0}); // no schema
        else
            writer.put(std::uint16_t{0xFFFF});
        break;
    case Layout::LongText:
        writer.put(wire.type.id == TypeId::NText ? wire.longest & ~1U : wire.longest);
        break;
    case Layout::Variant:
        writer.put(std::uint32_t{8009});
        break;
    default:
        if (wire.type.id == TypeId::Time || wire.type.id == TypeId::DateTime2 ||
            wire.type.id == TypeId::DateTimeOffset)
            writer.put(wire.type.scale);
        else if (wire.type.id != TypeId::Date)
            writer.put(static_cast<std::uint8_t>(wire.storage));
        break;
    }
    if (isDecimal(wire.type.id)) {
        writer.put(wire.type.precision);
        writer.put(wire.type.scale);
    }
    if (isCharacter(wire.type.id))
        writer.putBytes(defaultCollation.data(), defaultCollation.size());
}

} // namespace practice::tds
