// How each type and value looks on the wire.
#pragma once

#include "engine/api/result_sink.h"
#include "tds/packet_writer.h"
#include "tds/protocol.h"

namespace practice::tds {

/// What precedes a value's bytes.
enum class Layout : std::uint8_t
{
    ByteLength,  ///< one byte, 0 for NULL
    ShortLength, ///< two bytes, 0xFFFF for NULL
    LongText,    ///< text pointer and time stamp, then four bytes
    Chunks,      ///< PLP
    Variant,     ///< four bytes, then the inner type
};

/// A column's or parameter's type as one client gets it.
struct WireType
{
    std::uint8_t token = 0;
    Layout layout = Layout::ByteLength;
    SqlType type;    ///< what goes out
    SqlType source;  ///< what the engine hands over; differs for types newer than the client
    int storage = 0; ///< bytes of a value, or at most as many
    /// Where a text, image or (max) value is cut.
    std::uint32_t longest = 0x7FFF'FFFF;
};

[[nodiscard]] WireType wireTypeOf(const SqlType& type, Version version);

/// TYPE_INFO: token, length, precision, scale, collation, as far as the type has them.
void writeTypeInfo(PacketWriter& writer, const WireType& type);

/// @throws std::bad_variant_access when the value is none of the type
void writeValue(PacketWriter& writer, const WireType& type, const Value& value, Version version);

/// B_VARCHAR and US_VARCHAR: UTF-16 after its length in units, cut where the length ends.
void writeShortText(PacketWriter& writer, std::string_view utf8);
void writeLongText(PacketWriter& writer, std::string_view utf8);
void writeUtf16(PacketWriter& writer, std::string_view utf8, std::size_t units);

} // namespace practice::tds
