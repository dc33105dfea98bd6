// A client made of bytes: packets are put together and taken apart by hand, so that they can be wrong.
#pragma once

#include "tds/byte_reader.h"
#include "tds/protocol.h"
#include "tds/socket.h"
#include "types/text_encoding.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

namespace practice::test {

using namespace practice::tds;

using Bytes = std::vector<std::uint8_t>;

template <class T>
void append(Bytes& out, T value)
{
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&value);
    out.insert(out.end(), bytes, bytes + sizeof(T));
}

inline void appendText(Bytes& out, std::string_view utf8)
{
    for (const char16_t unit : toUtf16(utf8))
        append(out, static_cast<std::uint16_t>(unit));
}

inline Bytes packet(PacketType type, const Bytes& payload, std::uint8_t status = EndOfMessage)
{
    const std::size_t length = payload.size() + headerSize;
    Bytes out(length);
    out[0] = static_cast<std::uint8_t>(type);
    out[1] = status;
    out[2] = static_cast<std::uint8_t>(length >> 8U);
    out[3] = static_cast<std::uint8_t>(length);
    out[6] = 1; // the packet's number
    std::copy(payload.begin(), payload.end(), out.begin() + headerSize);
    return out;
}

struct LoginFields
{
    std::string_view password = "contraseña";
    std::uint32_t packetSize = 4096;
    std::string_view database = "Ventas";
    std::string_view language = "";
    std::uint8_t optionFlags2 = 0x02; ///< of an ODBC driver
    std::uint32_t version = 0x74000004;
};

inline Bytes loginPacket(const LoginFields& login = {})
{
    Bytes fixed;
    Bytes texts;
    fixed.reserve(94);
    append(fixed, std::uint32_t{0}); // the length, filled in below
    append(fixed, login.version);
    append(fixed, login.packetSize);
    fixed.resize(36);
    fixed[25] = login.optionFlags2;
    const auto field = [&](std::string_view utf8, bool secret = false) {
        Bytes text;
        appendText(text, utf8);
        append(fixed, static_cast<std::uint16_t>(94 + texts.size()));
        append(fixed, static_cast<std::uint16_t>(text.size() / 2));
        for (auto& byte : text)
            byte = secret ? static_cast<std::uint8_t>((byte << 4U | byte >> 4U) ^ 0xA5U) : byte;
        texts.insert(texts.end(), text.begin(), text.end());
    };
    field("host");
    field("sa");
    field(login.password, true);
    for (const std::string_view text : {"tests", "server", "", "client"})
        field(text);
    field(login.language);
    field(login.database);
    fixed.resize(94);
    fixed.insert(fixed.end(), texts.begin(), texts.end());
    const auto length = static_cast<std::uint32_t>(fixed.size());
    std::memcpy(fixed.data(), &length, sizeof length);
    return packet(PacketType::Login, fixed);
}

inline Bytes withHeaders()
{
    Bytes payload;
    append(payload, std::uint32_t{22});
    append(payload, std::uint32_t{18});
    append(payload, std::uint16_t{2});
    payload.resize(22);
    return payload;
}

inline Bytes batchPacket(std::string_view text, std::uint8_t status = EndOfMessage)
{
    Bytes payload = withHeaders();
    appendText(payload, text);
    return packet(PacketType::Batch, payload, status);
}

/// A batch of any length, in as many packets as it takes.
inline Bytes batchMessage(std::string_view text)
{
    constexpr std::size_t most = 32'000;
    Bytes payload = withHeaders();
    appendText(payload, text);
    Bytes message;
    for (std::size_t at = 0; at < payload.size(); at += most) {
        const std::size_t end = std::min(at + most, payload.size());
        const auto from = payload.begin() + static_cast<std::ptrdiff_t>(at);
        const Bytes part =
            packet(PacketType::Batch, Bytes(from, payload.begin() + static_cast<std::ptrdiff_t>(end)),
                   end == payload.size() ? EndOfMessage : 0);
        message.insert(message.end(), part.begin(), part.end());
    }
    return message;
}

/// A call of sp_executesql with one int parameter.
inline Bytes callPacket()
{
    Bytes payload = withHeaders();
    append(payload, std::uint16_t{0xFFFF});
    append(payload, std::uint16_t{10});
    append(payload, std::uint16_t{0});
    append(payload, std::uint8_t{2});
    appendText(payload, "@a");
    for (const int byte : {1, 0x26, 4, 4, 42, 0, 0, 0})
        append(payload, static_cast<std::uint8_t>(byte));
    return packet(PacketType::Rpc, payload);
}

class RawClient
{
public:
    explicit RawClient(std::uint16_t port) : descriptor_(::socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval patience{60, 0};
        setsockopt(descriptor_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        if (connect(descriptor_.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("cannot connect");
    }

    void send(const Bytes& bytes)
    {
        static_cast<void>(::send(descriptor_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL));
    }
    void finishSending() { ::shutdown(descriptor_.get(), SHUT_WR); }

    /// The payload of the next reply; empty when the connection has ended.
    Bytes reply()
    {
        Bytes payload;
        packets = 0;
        for (;;) {
            Bytes header = receive(headerSize);
            if (header.empty())
                return {};
            const auto length = static_cast<std::size_t>(header[2] << 8U | header[3]) - headerSize;
            const Bytes part = receive(length);
            payload.insert(payload.end(), part.begin(), part.end());
            ++packets;
            if ((header[1] & EndOfMessage) != 0)
                return payload;
        }
    }

    /// Reads a reply as fast as it comes and drops it; its bytes.
    std::size_t drain()
    {
        Bytes buffer(std::size_t{256} * 1024);
        std::array<std::uint8_t, headerSize> header{};
        std::size_t total = 0;
        std::size_t have = 0; // of the header
        std::size_t left = 0; // of the packet
        for (;;) {
            const ssize_t got = recv(descriptor_.get(), buffer.data(), buffer.size(), 0);
            if (got <= 0)
                return total;
            const auto part = static_cast<std::size_t>(got);
            total += part;
            for (std::size_t at = 0; at < part;) {
                if (left == 0) {
                    header.at(have++) = buffer[at++];
                    have %= headerSize;
                    left = have == 0 ? static_cast<std::size_t>(header[2] << 8U | header[3]) - headerSize : 0;
                    continue;
                }
                const std::size_t step = std::min(left, part - at);
                at += step;
                left -= step;
                if (left == 0 && (header[1] & EndOfMessage) != 0)
                    return total;
            }
        }
    }

    Bytes ask(const Bytes& request)
    {
        send(request);
        return reply();
    }

    int packets = 0;

private:
    Bytes receive(std::size_t count)
    {
        Bytes bytes(count);
        const Deadline patience = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        std::size_t got = 0;
        while (got < count) {
            if (std::chrono::steady_clock::now() > *patience)
                throw std::runtime_error("no answer");
            const ssize_t part = recv(descriptor_.get(), bytes.data() + got, count - got, 0);
            if (part <= 0)
                return {};
            got += static_cast<std::size_t>(part);
        }
        return bytes;
    }

    Descriptor descriptor_;
};

} // namespace practice::test
