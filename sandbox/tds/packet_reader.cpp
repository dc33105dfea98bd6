#include "tds/packet_reader.h"

namespace practice::tds {

namespace {

/// How long a client may take to finish a message that it has begun.
constexpr std::chrono::seconds stallLimit{120};

bool isKnown(PacketType type)
{
    switch (type) {
    case PacketType::Batch:
    case PacketType::Rpc:
    case PacketType::Attention:
    case PacketType::BulkLoad:
    case PacketType::TransactionManager:
    case PacketType::Login:
    case PacketType::PreLogin:
        return true;
    default:
        return false;
    }
}

} // namespace

std::optional<PacketReader::Header> PacketReader::readHeader(Deadline deadline)
{
    std::array<std::uint8_t, headerSize> bytes{};
    if (!socket_.receiveAll(bytes.data(), 1, deadline))
        return std::nullopt;
    const Header header{static_cast<PacketType>(bytes[0]), 0, 0};
    if (!isKnown(header.type))
        throw ProtocolError("unknown packet type");
    const auto rest = deadline ? deadline : std::chrono::steady_clock::now() + stallLimit;
    if (!socket_.receiveAll(bytes.data() + 1, bytes.size() - 1, rest))
        return std::nullopt;
    const auto length = static_cast<std::size_t>(bytes[2] << 8U | bytes[3]);
    if (length < headerSize)
        throw ProtocolError("packet shorter than its header");
    return Header{header.type, bytes[1], length - headerSize};
}

std::optional<RequestMessage> PacketReader::read(Deadline deadline)
{
    RequestMessage message;
    for (bool first = true;; first = false) {
        const auto header = readHeader(deadline);
        if (!header)
            return std::nullopt;
        if (first) {
            message.type = header->type;
            message.status = header->status;
        } else if (header->type == PacketType::Attention) {
            // Overtakes the rest of a message that the client will not finish.
            message = {PacketType::Attention, header->status, false, {}};
        } else if (header->type != message.type) {
            throw ProtocolError("packets of two messages mixed");
        }
        const std::size_t before = message.payload.size();
        if (before + header->length > limit_)
            throw ProtocolError("message too long");
        message.payload.resize(before + header->length);
        const auto rest = deadline ? deadline : std::chrono::steady_clock::now() + stallLimit;
        if (!socket_.receiveAll(message.payload.data() + before, header->length, rest))
            return std::nullopt;
        if ((header->status & EndOfMessage) != 0) {
            message.ignored = (header->status & IgnoreMessage) != 0;
            return message;
        }
        if (!deadline)
            deadline = rest;
    }
}

} // namespace practice::tds
