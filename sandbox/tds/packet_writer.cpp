#include "tds/packet_writer.h"

#include <algorithm>

namespace practice::tds {

namespace {

/// Enough packets to make a system call worth its while.
constexpr std::size_t bufferedBytes = std::size_t{64} * 1024;

/// Four letters at a time, moved apart first in pairs and then singly.
void widen(const char* from, std::size_t count, std::uint8_t* to)
{
    const auto spread = [](std::uint32_t letters) {
        std::uint64_t units = letters;
        units = (units | units << 16U) & 0x0000'FFFF'0000'FFFFU;
        return (units | units << 8U) & 0x00FF'00FF'00FF'00FFU;
    };
    for (; count >= 4; count -= 4, from += 4, to += 8) {
        std::uint32_t letters = 0;
        std::memcpy(&letters, from, sizeof letters);
        const std::uint64_t units = spread(letters);
        std::memcpy(to, &units, sizeof units);
    }
    for (; count > 0; --count, ++from, to += 2) {
        to[0] = static_cast<std::uint8_t>(*from);
        to[1] = 0;
    }
}

} // namespace

PacketWriter::PacketWriter(Socket& socket) : socket_(socket)
{
    setPacketSize(defaultPacketSize);
}

void PacketWriter::setPacketSize(std::size_t bytes)
{
    packetSize_ = bytes;
    buffer_.resize(std::max<std::size_t>(1, bufferedBytes / bytes) * bytes);
    startPacket(buffer_.data());
}

void PacketWriter::startPacket(std::uint8_t* at)
{
    packet_ = at;
    cursor_ = at + headerSize;
    packetEnd_ = at + packetSize_;
}

void PacketWriter::closePacket(std::uint8_t status)
{
    const auto length = static_cast<std::size_t>(cursor_ - packet_);
    packet_[0] = static_cast<std::uint8_t>(PacketType::Reply);
    packet_[1] = status;
    packet_[2] = static_cast<std::uint8_t>(length >> 8U);
    packet_[3] = static_cast<std::uint8_t>(length);
    packet_[4] = static_cast<std::uint8_t>(spid_ >> 8U);
    packet_[5] = static_cast<std::uint8_t>(spid_);
    packet_[6] = number_++;
    packet_[7] = 0;
}

void PacketWriter::nextPacket()
{
    closePacket(0);
    if (cursor_ == buffer_.data() + buffer_.size())
        send();
    else
        startPacket(cursor_);
}

void PacketWriter::send()
{
    const auto count = static_cast<std::size_t>(cursor_ - buffer_.data());
    if (!lost_ && !socket_.sendAll(buffer_.data(), count)) {
        lost_ = true;
        if (lostAction_)
            lostAction_();
    }
    startPacket(buffer_.data());
}

void PacketWriter::putBytes(const void* bytes, std::size_t count)
{
    const auto* from = static_cast<const std::uint8_t*>(bytes);
    while (count > 0) {
        if (room() == 0)
            nextPacket();
        const std::size_t part = std::min(count, room());
        std::memcpy(cursor_, from, part);
        cursor_ += part;
        from += part;
        count -= part;
    }
}

void PacketWriter::putAsciiAsUtf16(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t part = std::min(text.size(), room() / 2);
        if (part == 0) {
            put(static_cast<std::uint16_t>(text.front()));
            text.remove_prefix(1);
            continue;
        }
        widen(text.data(), part, cursor_);
        cursor_ += 2 * part;
        text.remove_prefix(part);
    }
}

void PacketWriter::endMessage()
{
    closePacket(EndOfMessage);
    number_ = 1;
    send();
}

} // namespace practice::tds
