// What data access makes of servers and networks that misbehave: always an error with a number and a
// sentence, in bounded time, and an honest state afterwards.
#include "ado_scripted.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/Recordset.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace scripted;
using ado::Recordset;

namespace {

class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    [[nodiscard]] int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

sockaddr_in loopback(int port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Listens on a free port and gives each client to a function, one after the other.
class Listener
{
public:
    using Serve = std::function<void(int client, const std::atomic<bool>& stopping)>;

    explicit Listener(Serve serve)
        : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), m_serve(std::move(serve))
    {
        sockaddr_in address = loopback(0);
        socklen_t size = sizeof address;
        if (::bind(m_socket.get(), reinterpret_cast<sockaddr*>(&address), size) != 0 ||
            ::listen(m_socket.get(), 8) != 0)
            throw std::runtime_error("no port to listen on");
        ::getsockname(m_socket.get(), reinterpret_cast<sockaddr*>(&address), &size);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { run(); });
    }
    ~Listener()
    {
        m_stopping = true;
        m_thread.join();
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    [[nodiscard]] int port() const { return m_port; }

private:
    void run()
    {
        while (!m_stopping) {
            pollfd ready{m_socket.get(), POLLIN, 0};
            if (::poll(&ready, 1, 20) != 1)
                continue;
            const Descriptor client(::accept4(m_socket.get(), nullptr, nullptr, SOCK_CLOEXEC));
            m_serve(client.get(), m_stopping);
        }
    }

    Descriptor m_socket;
    Serve m_serve;
    int m_port = 0;
    std::atomic<bool> m_stopping = false;
    std::thread m_thread;
};

bool sendAll(int socket, const char* data, std::size_t size)
{
    return ::send(socket, data, size, MSG_NOSIGNAL) == static_cast<ssize_t>(size);
}

void pause()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

/// What a relay does with the server's bytes.
enum class Fault
{
    None,
    Close,
    Stall,
    Garbage,
    Trickle
};

/// Stands between client and server, and passes everything on until a fault is set.
class Relay
{
public:
    explicit Relay(int serverPort)
        : m_serverPort(serverPort),
          m_listener([this](int client, const auto& stopping) { serve(client, stopping); })
    {}

    std::atomic<Fault> fault = Fault::None;
    [[nodiscard]] int port() const { return m_listener.port(); }

private:
    void serve(int client, const std::atomic<bool>& stopping)
    {
        const Descriptor server(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const sockaddr_in address = loopback(m_serverPort);
        if (::connect(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            return;
        while (!stopping) {
            if (fault == Fault::Close)
                return;
            std::array<pollfd, 2> ready{{{client, POLLIN, 0}, {server.get(), POLLIN, 0}}};
            ::poll(ready.data(), ready.size(), 20);
            if ((ready[0].revents != 0 && !pass(client, server.get())) ||
                (ready[1].revents != 0 && !passBack(server.get(), client)))
                return;
        }
    }

    static bool pass(int from, int to)
    {
        std::array<char, 4096> buffer{};
        const ssize_t size = ::recv(from, buffer.data(), buffer.size(), 0);
        return size > 0 && sendAll(to, buffer.data(), static_cast<std::size_t>(size));
    }

    bool passBack(int server, int client)
    {
        switch (fault) {
        case Fault::Garbage: {
            std::array<char, 512> noise{};
            noise.fill('\x99');
            return sendAll(client, noise.data(), noise.size()) && pass(server, client);
        }
        case Fault::Stall:
            pause();
            return true;
        case Fault::Trickle: {
            char one = 0;
            pause();
            return ::recv(server, &one, 1, 0) == 1 && sendAll(client, &one, 1);
        }
        default:
            return pass(server, client);
        }
    }

    int m_serverPort;
    Listener m_listener;
};

class AdoFaults : public testing::Test
{
protected:
    void connect()
    {
        connection = ado::Connection();
        connection.setCommandTimeout(1);
        connection.Open(Server::connectionString(relay.port()));
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
    Relay relay{server.listener.port()};
    ado::Connection connection;
};

TEST_F(AdoFaults, EndTheConnectionInTheMiddleOfRows)
{
    const std::pair<Fault, const char*> faults[] = {
        {Fault::Close, "closed"},
        {Fault::Garbage, "garbage"},
        {Fault::Stall, "stalled"},
        {Fault::Trickle, "trickling"},
    };
    for (const auto& [fault, what] : faults) {
        server.engine.dialogue.setScript(
            [&, fault = fault](std::string_view, ResultSink& sink, const std::atomic<bool>&) {
                const std::vector<ColumnInfo> columns{{"t", {TypeId::NVarChar, 4000, 0, 0}}};
                sink.columns(columns);
                for (int row = 0; row < 2000; ++row) {
                    if (row == 1000)
                        relay.fault = fault;
                    sink.row(std::vector<Value>{text(std::string(200, 'x'))});
                }
                counted(sink, 2000);
            });
        connect();
        Recordset recordset;
        expectLost(errorOf([&] { recordset.Open(u"select"_s, connection); }), what);
        EXPECT_EQ(recordset.State(), 0);
        relay.fault = Fault::None;
    }
}

TEST_F(AdoFaults, EndTheConnectionBeforeAnAnswer)
{
    server.engine.dialogue.setScript([&](std::string_view, ResultSink& sink, const std::atomic<bool>&) {
        relay.fault = Fault::Close;
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
    relay.fault = Fault::Close;
    while (connection.State() == 1 && numberOf([&] { connection.Execute(u"x"_s); }) == 0)
        pause();
    EXPECT_EQ(connection.State(), 0);
    relay.fault = Fault::None;
    connection.Open(Server::connectionString(relay.port()));
    Recordset recordset;
    recordset.Open(u"x"_s, connection);
    EXPECT_EQ(recordset.RecordCount(), 3);
}

TEST(AdoConnect, FailsInTimeWithASentenceThatNamesTheServer)
{
    const auto silent = [](int, const std::atomic<bool>& stopping) {
        while (!stopping)
            pause();
    };
    const auto trickling = [](int client, const std::atomic<bool>& stopping) {
        while (!stopping && sendAll(client, "\x04", 1))
            pause();
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
