// Types and values as clients send them with a call.
#pragma once

#include "engine/api/session.h"
#include "tds/byte_reader.h"

#include <optional>

namespace practice::tds {

/// A data type that can't be a parameter here (error 8009).
struct UnknownType
{
    std::uint8_t token;
};

/// One TYPE_INFO with its value, into `parameter.type` and `parameter.value`.
/// @throws ProtocolError, UnknownType
void readTypedValue(ByteReader& reader, Parameter& parameter);

} // namespace practice::tds
