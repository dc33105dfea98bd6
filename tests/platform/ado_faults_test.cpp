// What data access makes of servers and networks that misbehave: always an error with a number and a
// sentence, in bounded time, and an honest state afterwards.
#include "ado_scripted.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/Recordset.h"
#include "support/FaultProxy.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

using namespace Qt::StringLiterals;
using namespace scripted;
using ado::Recordset;
using support::Fault;
using support::Listener;
using support::sendAll;
using support::shortPause;

namespace {

class AdoFaults : public testing::Test
{
protected:
    void connect()
    {
        connection = ado::Connection();
        connection.setCommandTimeout(1);
        connection.Open(Server::connectionString(proxy.port()));
    }

    /// A connection error: its number, its sentence, and the state behind it.
    void expectLost(const std::optional<basic::RuntimeError>& error, const char* what)
    {
        ASSERT_TRUE(error) << what;
        EXPECT_TRUE(error->number() == ado::number::DriverFailure || error->number() == ado::number::TimeOut)
            << what << ": " << error->number();
        EXPECT_GT(error->description().size(), 20) << what;
        EXPECT_EQ(connection.State(), 0) << what;
        EXPECT_EQ(numberOf([&] { connection.Execute(u"x"_s); }), ado::number::DriverFailure) << what;
    }

    Server server;
    support::FaultProxy proxy{server.listener.port()};
    ado::Connection connection;
};

TEST_F(AdoFaults, EndTheConnectionInTheMiddleOfRows)
{
    const std::pair<Fault, const char*> faults[] = {
        {{.kind = Fault::Kind::Close}, "closed"},
        {{Fault::Kind::Garbage}, "garbage"},
        {{Fault::Kind::Stall}, "stalled"},
        {{.kind = Fault::Kind::Trickle, .pace = std::chrono::milliseconds(20)}, "trickling"},
    };
    for (const auto& [fault, what] : faults) {
        server.engine.dialogue.setScript(
            [&, fault = fault](std::string_view, ResultSink& sink, const std::atomic<bool>&) {
                const std::vector<ColumnInfo> columns{{"t", {TypeId::NVarChar, 4000, 0, 0}}};
                sink.columns(columns);
                for (int row = 0; row < 2000; ++row) {
                    if (row == 1000)
                        proxy.setFault(fault);
                    sink.row(std::vector<Value>{text(std::string(200, 'x'))});
                }
                counted(sink, 2000);
            });
        connect();
        Recordset recordset;
        expectLost(errorOf([&] { recordset.Open(u"select"_s, connection); }), what);
        EXPECT_EQ(recordset.State(), 0);
        proxy.setFault({});
    }
}

TEST_F(AdoFaults, EndTheConnectionBeforeAnAnswer)
{
    server.engine.dialogue.setScript([&](std::string_view, ResultSink& sink, const std::atomic<bool>&) {
        proxy.setFault({Fault::Kind::Close});
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        sink.done({});
    });
    connect();
    expectLost(errorOf([&] { connection.Execute(u"x"_s); }), "closed");
}

TEST_F(AdoFaults, LeaveTheNextConnectionAlone)
{
    server.engine.dialogue.setScript(
        [](std::string_view, ResultSink& sink, const std::atomic<bool>&) { integers(sink, 3); });
    connect();
    proxy.setFault({Fault::Kind::Close});
    while (connection.State() == 1 && numberOf([&] { connection.Execute(u"x"_s); }) == 0)
        shortPause();
    EXPECT_EQ(connection.State(), 0);
    proxy.setFault({});
    connection.Open(Server::connectionString(proxy.port()));
    Recordset recordset;
    recordset.Open(u"x"_s, connection);
    EXPECT_EQ(recordset.RecordCount(), 3);
}

TEST(AdoConnect, FailsInTimeWithASentenceThatNamesTheServer)
{
    const auto silent = [](int, const std::atomic<bool>& stopping) {
        while (!stopping)
            shortPause();
    };
    const auto trickling = [](int client, const std::atomic<bool>& stopping) {
        while (!stopping && sendAll(client, "\x04", 1))
            shortPause();
    };
    const auto closing = [](int, const std::atomic<bool>&) {};
    const auto otherProtocol = [](int client, const std::atomic<bool>&) {
        std::array<char, 256> request{};
        static_cast<void>(::recv(client, request.data(), request.size(), 0));
        const std::string answer = "HTTP/1.1 400 Bad Request\r\nConnection: close\r\n\r\n";
        sendAll(client, answer.data(), answer.size());
    };
    const std::tuple<const char*, Listener::Serve, int> cases[] = {
        {"silent", silent, ado::number::TimeOut},
        {"trickling", trickling, ado::number::TimeOut},
        {"closing", closing, ado::number::NoServer},
        {"another protocol", otherProtocol, ado::number::NoServer},
    };
    for (const auto& [what, serve, number] : cases) {
        const Listener listener(serve);
        ado::Connection connection;
        connection.setConnectionTimeout(1);
        const auto error = errorOf([&] { connection.Open(Server::connectionString(listener.port())); });
        ASSERT_TRUE(error) << what;
        EXPECT_EQ(error->number(), number) << what << ": " << error->what();
        EXPECT_TRUE(error->description().contains(u"127.0.0.1, port "_s + QString::number(listener.port())))
            << what;
        EXPECT_EQ(connection.State(), 0) << what;
    }
    const int port = Listener(closing).port(); // free again
    const std::pair<QString, QString> unreachable[] = {
        {u"127.0.0.1,%1"_s.arg(port), u"127.0.0.1, port %1"_s.arg(port)},
        {u"no-such-host.invalid"_s, u"no-such-host.invalid, port 1433"_s},
    };
    for (const auto& [source, named] : unreachable) {
        ado::Connection connection;
        const auto error = errorOf(
            [&, source = source] { connection.Open(u"Data Source="_s + source + u";User Id=sa;"_s); });
        ASSERT_TRUE(error);
        EXPECT_EQ(error->number(), ado::number::NoServer);
        EXPECT_TRUE(error->description().contains(named)) << error->what();
    }
}

} // namespace
