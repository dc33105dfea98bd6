// A server behind its wire, over a store of its own, for tests that send bytes.
#pragma once

#include "engine/api/session.h"
#include "engine_harness.h"
#include "raw_client.h"
#include "tds/server.h"

#include <gtest/gtest.h>

#include <memory>

namespace practice::test {

/// The number of the first error of a reply, looked for up to its first columns; 0 for none, -1 for no
/// reply.
inline int firstError(const Bytes& reply)
{
    ByteReader reader(reply);
    while (!reader.atEnd()) {
        switch (static_cast<Token>(reader.number<std::uint8_t>())) {
        case Token::Error:
            reader.skip(2);
            return reader.number<std::int32_t>();
        case Token::Done:
        case Token::DoneProcedure:
        case Token::DoneInProcedure:
            reader.skip(12);
            break;
        case Token::ReturnStatus:
            reader.skip(4);
            break;
        case Token::Info:
        case Token::EnvironmentChange:
            reader.skip(reader.number<std::uint16_t>());
            break;
        default:
            return 0;
        }
    }
    return reply.empty() ? -1 : 0;
}

/// The status of the completion that a reply ends with.
inline int lastStatus(const Bytes& reply)
{
    ByteReader reader(reply);
    reader.skip(reply.size() - 12);
    return reader.number<std::uint16_t>();
}

class RawServer : public testing::Test
{
protected:
    [[nodiscard]] RawClient client(LoginFields login = {}) const
    {
        login.password = "Secret1";
        login.packetSize = 32'767;
        login.database = "tempdb";
        RawClient one(tds_.port());
        if (firstError(one.ask(loginPacket(login))) != 0)
            throw std::runtime_error("not logged in");
        return one;
    }
    static int ask(RawClient& one, std::string_view text) { return firstError(one.ask(batchMessage(text))); }

    TemporaryDirectory directory_;
    std::unique_ptr<Server> server_ =
        openServer({.dataDirectory = directory_.path(), .serverName = "HOST", .saPassword = "Secret1"});
    TdsServer tds_{*server_, [] {
                       ListenOptions options;
                       options.port = 0;
                       return options;
                   }()};
};

} // namespace practice::test
