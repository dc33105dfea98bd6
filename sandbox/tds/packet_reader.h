// Puts a client's packets together into messages.
#pragma once

#include "tds/protocol.h"
#include "tds/socket.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace practice::tds {

struct RequestMessage
{
    PacketType type = PacketType::Batch;
    std::uint8_t status = 0; ///< of the first packet
    bool ignored = false;    ///< the client changed its mind while sending
    std::vector<std::uint8_t> payload;
};

class PacketReader
{
public:
    explicit PacketReader(Socket& socket) : socket_(socket) {}

    /// The longest payload that is accepted; small until somebody has logged in.
    void setLimit(std::size_t bytes) { limit_ = bytes; }

    /// Waits for the next message; none when the client is gone. `deadline` holds for the whole
    /// message; without one the first byte may take for ever, the rest may not.
    /// @throws ProtocolError for packets that can't be
    [[nodiscard]] std::optional<RequestMessage> read(Deadline deadline);

private:
    struct Header
    {
        PacketType type;
        std::uint8_t status;
        std::size_t length; ///< without the header itself
    };
    [[nodiscard]] std::optional<Header> readHeader(Deadline deadline);

    Socket& socket_;
    std::size_t limit_ = std::size_t{64} * 1024;
};

} // namespace practice::tds
