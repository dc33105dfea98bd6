// What a client may send to the practice server: packets, and the messages that they make up. Nothing
// but ProtocolError and UnknownType may come of it.
#include "fuzz_check.h"

#include "tds/call_request.h"
#include "tds/login_message.h"
#include "tds/packet_reader.h"
#include "tds/value_reader.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <sys/socket.h>
#include <system_error>

namespace {

using namespace practice::tds;

constexpr int mostMessages = 64;
constexpr std::size_t mostBytes = 64'000; ///< what a socket takes in without a reader

void readCalls(const RequestMessage& message, Version version)
{
    ByteReader reader(message.payload);
    skipAllHeaders(reader, version);
    do {
        const Call call = readCall(reader, version);
        fuzz::check(call.parameters.size() <= message.payload.size());
    } while (!reader.atEnd());
}

void readMessage(const RequestMessage& message, PacketWriter& writer, Version& version)
{
    switch (message.type) {
    case PacketType::PreLogin:
        answerPreLogin(message.payload, writer);
        break;
    case PacketType::Login:
        version = parseLogin(message.payload).version;
        break;
    case PacketType::Rpc:
        readCalls(message, version);
        break;
    case PacketType::TransactionManager:
    case PacketType::Batch: {
        ByteReader reader(message.payload);
        skipAllHeaders(reader, version);
        if (message.type == PacketType::Batch)
            fuzz::check(reader.utf16(reader.left() / 2).size() <= message.payload.size() * 2);
        else
            static_cast<void>(readTransactionRequest(reader));
        break;
    }
    default:
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0)
        throw std::system_error(errno, std::generic_category());
    const Descriptor client(ends[0]);
    Socket server{Descriptor(ends[1])};
    fuzz::check(send(client.get(), data, std::min(size, mostBytes), 0) >= 0);
    shutdown(client.get(), SHUT_WR);

    PacketReader packets(server);
    PacketWriter writer(server);
    Version version = Version::V74;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    try {
        for (int count = 0; count < mostMessages; ++count) {
            const auto message = packets.read(deadline);
            if (!message)
                break;
            try {
                readMessage(*message, writer, version);
            } catch (const ProtocolError&) {
                continue; // the server would hang up; what follows is as good as on a new connection
            } catch (const UnknownType&) {
                continue;
            }
        }
    } catch (const ProtocolError&) {
        return 0;
    }
    return 0;
}
