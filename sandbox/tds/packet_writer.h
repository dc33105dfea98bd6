// Writes a reply straight into packets. Memory stays at a few packets, however long the reply.
#pragma once

#include "tds/protocol.h"
#include "tds/socket.h"

#include <bit>
#include <cstring>
#include <functional>
#include <string_view>
#include <vector>

namespace practice::tds {

static_assert(std::endian::native == std::endian::little, "numbers are copied as they lie in memory");

class PacketWriter
{
public:
    explicit PacketWriter(Socket& socket);

    /// Between two messages only.
    void setPacketSize(std::size_t bytes);
    void setSpid(int spid) { spid_ = static_cast<std::uint16_t>(spid); }
    /// Called once, when the client turns out to be gone. What is written afterwards is dropped.
    void onLost(std::function<void()> action) { lostAction_ = std::move(action); }
    [[nodiscard]] bool lost() const { return lost_; }

    template <class T>
    void put(T value)
    {
        static_assert(std::is_integral_v<T> || std::is_enum_v<T> || std::is_floating_point_v<T>);
        if (room() >= sizeof(T)) {
            std::memcpy(cursor_, &value, sizeof(T));
            cursor_ += sizeof(T);
        } else {
            putBytes(&value, sizeof(T));
        }
    }
    void putBytes(const void* bytes, std::size_t count);
    /// UTF-8 that is plain ASCII, each byte widened to sixteen bits.
    void putAsciiAsUtf16(std::string_view text);

    /// Sends what is left as the last packet of a message.
    void endMessage();

private:
    [[nodiscard]] std::size_t room() const { return static_cast<std::size_t>(packetEnd_ - cursor_); }
    void nextPacket();
    void closePacket(std::uint8_t status);
    void send();
    void startPacket(std::uint8_t* at);

    Socket& socket_;
    std::vector<std::uint8_t> buffer_;
    std::size_t packetSize_ = defaultPacketSize;
    std::uint8_t* packet_ = nullptr;
    std::uint8_t* cursor_ = nullptr;
    std::uint8_t* packetEnd_ = nullptr;
    std::uint16_t spid_ = 0;
    std::uint8_t number_ = 1;
    bool lost_ = false;
    std::function<void()> lostAction_;
};

} // namespace practice::tds
