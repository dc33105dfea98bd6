// Data access at the ends of what a user may ask of it: very many, very long, very wide, nothing at all,
// and several connections at once.
#include "ado_scripted.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/Recordset.h"
#include "support/Loopback.h"

#include <gtest/gtest.h>

#include <array>
#include <dlfcn.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

using namespace Qt::StringLiterals;
using namespace scripted;
using ado::Recordset;

namespace {

constexpr auto slowHost = "slow-name.invalid";
constexpr std::chrono::seconds slowness{4};

} // namespace

/// Stands before the system's resolver, for the driver as well: one name takes long.
extern "C" int getaddrinfo(const char* host, const char* service, const addrinfo* hints, addrinfo** found)
{
    static const auto resolver = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    const bool isNumericOnly = hints != nullptr && (hints->ai_flags & AI_NUMERICHOST) != 0;
    if (!isNumericOnly && host != nullptr && std::string_view(host) == slowHost) {
        std::this_thread::sleep_for(slowness);
        return EAI_NONAME;
    }
    return resolver(host, service, hints, found);
}

namespace {

class AdoLimits : public testing::Test
{
protected:
    void SetUp() override
    {
        connection.setCommandTimeout(120);
        connection.Open(server.connectionString());
    }

    Recordset open(const QString& text = u"select"_s)
    {
        Recordset recordset;
        recordset.Open(text, connection, -1, -1, 1);
        return recordset;
    }

    Server server;
    ado::Connection connection;
};

TEST_F(AdoLimits, TenThousandResultsOfOneBatch)
{
    constexpr int results = 10'000;
    server.answer([](ResultSink& sink) {
        for (int index = 0; index < results; ++index)
            integers(sink, index % 3);
    });
    std::optional<Recordset> recordset = open();
    int count = 0;
    for (; recordset; recordset = recordset->NextRecordset(), ++count)
        ASSERT_EQ(recordset->RecordCount(), count % 3);
    EXPECT_EQ(count, results);
    // Not asked for, they are still there when another statement needs the connection.
    Recordset first = open();
    connection.Execute(u"x"_s);
    count = 1;
    for (recordset = first.NextRecordset(); recordset; recordset = recordset->NextRecordset())
        ++count;
    EXPECT_EQ(count, results);
}

TEST_F(AdoLimits, AThousandColumns)
{
    constexpr int columns = 1000;
    constexpr int rows = 30;
    server.answer([](ResultSink& sink) {
        std::vector<ColumnInfo> infos;
        infos.reserve(columns);
        for (int column = 0; column < columns; ++column)
            infos.push_back({"c" + std::to_string(column), {TypeId::NVarChar, 4000, 0, 0}});
        sink.columns(infos);
        for (int row = 0; row < rows; ++row) {
            std::vector<Value> values;
            values.reserve(columns);
            for (int column = 0; column < columns; ++column)
                values.push_back(text(std::to_string(row * column)));
            sink.row(values);
        }
        counted(sink, rows);
    });
    const Recordset recordset = open();
    ASSERT_EQ(recordset.FieldCount(), columns);
    ASSERT_EQ(recordset.RecordCount(), rows);
    EXPECT_EQ(recordset.FieldName(columns - 1), u"c999");
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            ASSERT_EQ(recordset.cellText(row, column), QString::number(row * column));
}

TEST_F(AdoLimits, FiftyMegabytesInOneCell)
{
    constexpr std::size_t size = 50'000'000;
    std::string content(size, 'a');
    for (std::size_t at = 0; at < size; at += 997)
        content[at] = static_cast<char>('b' + at % 20);
    server.answer([&](ResultSink& sink) {
        const std::vector<ColumnInfo> infos{{"t", {TypeId::Text, 16, 0, 0}}, {"n", integer()}};
        sink.columns(infos);
        sink.row(std::vector<Value>{text(content), number(7)});
        counted(sink, 1);
    });
    const Recordset recordset = open();
    EXPECT_TRUE(recordset.cellText(0, 0) == QString::fromStdString(content));
    EXPECT_EQ(recordset.cellText(0, 0, 10), QString::fromStdString(content.substr(0, 10)));
    EXPECT_EQ(recordset.cellText(0, 1), u"7");
}

TEST_F(AdoLimits, AMillionRows)
{
    constexpr std::int64_t rows = 1'000'000;
    server.answer([](ResultSink& sink) { integers(sink, rows); });
    Recordset recordset = open();
    ASSERT_EQ(recordset.RecordCount(), rows);
    qint64 sum = 0;
    for (; !recordset.Eof(); recordset.MoveNext())
        sum += *recordset.Value(0).as<qint64>();
    EXPECT_EQ(sum, rows * (rows - 1) / 2);
}

TEST_F(AdoLimits, TenMegabytesOfStatementAndNone)
{
    const QString longText = u"select '"_s + QString(10'000'000, u'ñ') + u"' {?"_s;
    connection.Execute(longText);
    const std::string heard = server.engine.dialogue.heard().back();
    EXPECT_TRUE(QString::fromStdString(heard).contains(longText.mid(8, 10'000'000)));
    for (const QString& nothing : {u""_s, u" \r\n"_s}) {
        const auto error = errorOf([&] { open(nothing); });
        EXPECT_TRUE(!error || error->description().size() > 15) << error->what();
        EXPECT_EQ(connection.State(), 1);
    }
    server.answer([](ResultSink& sink) { integers(sink, 2); });
    EXPECT_EQ(open().RecordCount(), 2);
}

TEST_F(AdoLimits, HalfACharacterDoesNotCostTheRows)
{
    // SQL Server keeps any 16-bit units in nvarchar, this server's writer whole characters only: one is
    // made half a pair on its way.
    const support::Listener breaking([&](int client, const std::atomic<bool>& stopping) {
        const support::Descriptor behind(support::connectToLoopback(server.listener.port()));
        while (!stopping) {
            std::array<pollfd, 2> ready{{{client, POLLIN, 0}, {behind.get(), POLLIN, 0}}};
            ::poll(ready.data(), ready.size(), 20);
            for (const auto& [from, to] :
                 {std::pair(client, behind.get()), std::pair(behind.get(), client)}) {
                std::array<char, 4096> bytes{};
                const auto size = ::recv(from, bytes.data(), bytes.size(), MSG_DONTWAIT);
                if (size == 0)
                    return;
                if (size < 0)
                    continue;
                std::string passed(bytes.data(), static_cast<std::size_t>(size));
                if (const auto at = passed.find("\x3D\xC8"); at != std::string::npos)
                    passed[at + 1] = '\xD8';
                support::sendAll(to, passed.data(), passed.size());
            }
        }
    });
    server.answer([](ResultSink& sink) {
        const std::vector<ColumnInfo> infos{{"t", {TypeId::NVarChar, 40, 0, 0}}};
        sink.columns(infos);
        sink.row(std::vector<Value>{text("a\uC83Db")});
        sink.row(std::vector<Value>{text("whole")});
        counted(sink, 2);
    });
    connection = ado::Connection();
    connection.Open(Server::connectionString(breaking.port()));
    const Recordset recordset = open();
    ASSERT_EQ(recordset.RecordCount(), 2);
    EXPECT_EQ(recordset.cellText(0, 0), u"a"_s + QChar(0xD83D) + u'b');
    EXPECT_EQ(recordset.cellText(1, 0), u"whole");
}

TEST_F(AdoLimits, AnotherConnectionInTheMiddleOfABatch)
{
    server.answer([](ResultSink& sink) {
        integers(sink, 1);
        integers(sink, 2);
        integers(sink, 3);
    });
    Recordset first = open();
    ado::Connection other;
    other.Open(server.connectionString());
    Recordset second;
    second.Open(u"select"_s, other);
    auto next = first.NextRecordset();
    ASSERT_TRUE(next);
    EXPECT_EQ(next->RecordCount(), 2);
    // As a second connect of the user does it: the old connection goes, what was read stays.
    connection = std::move(other);
    EXPECT_EQ(next->RecordCount(), 2);
    EXPECT_FALSE(next->NextRecordset());
    EXPECT_EQ(second.NextRecordset()->RecordCount(), 2);
    EXPECT_EQ(open().RecordCount(), 1);
}

TEST(AdoLookup, ASlowNameServerIsNotWaitedFor)
{
    ado::Connection connection;
    connection.setConnectionTimeout(1);
    const auto begin = std::chrono::steady_clock::now();
    const auto error = errorOf([&] { connection.Open(u"Data Source=%1;User Id=sa;"_s.arg(slowHost)); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number(), ado::number::TimeOut);
    EXPECT_TRUE(error->description().contains(QString::fromLatin1(slowHost))) << error->what();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, slowness);
    std::this_thread::sleep_for(slowness); // the lookup ends by itself, and nothing comes of it
}

} // namespace
