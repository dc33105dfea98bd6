// The two messages that open a connection.
#pragma once

#include "engine/api/session.h"
#include "tds/packet_writer.h"
#include "tds/protocol.h"

#include <span>

namespace practice::tds {

struct LoginMessage
{
    LoginRequest request;
    Version version = Version::V74;
    std::uint32_t wireVersion = 0; ///< as the acknowledgement repeats it
    std::size_t packetSize = defaultPacketSize;
    bool integratedSecurity = false;
};

/// Answers PRELOGIN: no encryption, no MARS.
/// @throws ProtocolError when the option table points outside the message
void answerPreLogin(std::span<const std::uint8_t> payload, PacketWriter& writer);

/// @throws ProtocolError for a structure that can't be, or a version before 7.1
[[nodiscard]] LoginMessage parseLogin(std::span<const std::uint8_t> payload);

} // namespace practice::tds
