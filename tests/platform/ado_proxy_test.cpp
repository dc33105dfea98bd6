// A console's work over a network that fails at every place and in every way: whatever happens, it ends
// soon, in the right answer or in an error with a number and a sentence, and connecting again works.
#include "platform/ado/Connection.h"
#include "platform/ado/Recordset.h"
#include "platform/basic/RuntimeError.h"
#include "platform/basic/VariantText.h"
#include "support/FaultProxy.h"
#include "support/PracticeServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <optional>
#include <random>
#include <vector>

using namespace Qt::StringLiterals;
using support::Fault;

namespace {

constexpr int rows = 10'000;
constexpr int rowsPerInsert = 500;
constexpr std::size_t answerBytes =
    430'000;                              ///< somewhat less than what the server sends for one session's work
constexpr std::size_t requestBytes = 600; ///< and the client
constexpr std::size_t loginBytes = 700;   ///< what the server sends until somebody is logged in
constexpr int workers = 6;
constexpr std::chrono::seconds longestRun{20};

QString word(int n)
{
    return u"palabra €%1"_s.arg(n * 7919 % 100'003);
}

/// What went wrong within a session that reported no error; empty when nothing did.
struct Outcome
{
    QString wrong;
    std::optional<basic::RuntimeError> error;
    std::chrono::steady_clock::duration time{};
};

class AdoProxy : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        server = support::PracticeServer::start();
        ado::Connection connection;
        connection.Open(server->connectionString());
        connection.Execute(
            u"create table filas (n int not null, palabra nvarchar(40), mitad decimal(9,1))"_s);
        for (int first = 0; first < rows; first += rowsPerInsert) {
            QStringList values;
            for (int n = first; n < first + rowsPerInsert; ++n)
                values += u"(%1, N'%2', %3.5)"_s.arg(n).arg(word(n)).arg(n);
            connection.Execute(u"insert into filas values "_s + values.join(u','));
        }
    }
    static void TearDownTestSuite() { server.reset(); }

    static std::unique_ptr<support::PracticeServer> server;
};

std::unique_ptr<support::PracticeServer> AdoProxy::server;

QString checkedRows(const ado::Recordset& recordset, bool valuesToo)
{
    if (recordset.RecordCount() != rows)
        return u"%1 rows"_s.arg(recordset.RecordCount());
    for (int n = 0; valuesToo && n < rows; ++n)
        if (recordset.cellText(n, 0) != QString::number(n) || recordset.cellText(n, 1) != word(n) ||
            basic::text(recordset.Value(n, 2), QLocale::c()) != u"%1.5"_s.arg(n))
            return u"row %1"_s.arg(n);
    return {};
}

/// Connects, reads a list, changes something, and reads a long result.
QString work(ado::Connection& connection, const QString& connectionString, const Fault& fault)
{
    connection.Open(connectionString);
    ado::Recordset bases;
    bases.Open(u"Select name from master.dbo.sysdatabases order by name"_s, connection);
    connection.Execute(u"Use tempdb"_s);
    connection.Execute(u"Use master"_s);
    ado::Recordset all;
    all.Open(u"select n, palabra, mitad from filas order by n"_s, connection);
    QString wrong = checkedRows(all, fault.kind != Fault::Kind::Flip);
    // Damage can look like the beginning of a further result.
    for (std::optional<ado::Recordset> next = all; next;)
        next = next->NextRecordset();
    // What a flipped bit makes of a request is a request as well, and a value with another bit is a value.
    if (fault.kind == Fault::Kind::Flip && fault.direction == Fault::Direction::ToServer)
        return {};
    if (bases.RecordCount() < 4)
        return u"%1 databases"_s.arg(bases.RecordCount());
    return wrong;
}

QString addressOf(const support::PracticeServer& server, int port)
{
    return server.connectionString().replace(QString::number(server.port()), QString::number(port));
}

Outcome run(const QString& connectionString, const Fault& fault)
{
    const bool hasToEndWell = fault.kind == Fault::Kind::None || fault.kind == Fault::Kind::Delay ||
                              fault.kind == Fault::Kind::Trickle;
    Outcome outcome;
    const auto begin = std::chrono::steady_clock::now();
    try {
        ado::Connection connection;
        connection.setConnectionTimeout(hasToEndWell ? 15 : 1);
        connection.setCommandTimeout(hasToEndWell ? 60 : 1);
        outcome.wrong = work(connection, connectionString, fault);
    } catch (const basic::RuntimeError& error) {
        outcome.error = error;
        if (hasToEndWell)
            outcome.wrong = error.description();
        if (error.number() == 0 || error.description().size() < 15)
            outcome.wrong = u"error %1: %2"_s.arg(error.number()).arg(error.description());
    }
    outcome.time = std::chrono::steady_clock::now() - begin;
    return outcome;
}

std::vector<Fault> faults()
{
    const std::pair<Fault::Kind, int> kinds[] = {
        {Fault::Kind::Close, 16}, {Fault::Kind::Reset, 16},  {Fault::Kind::Stall, 8},
        {Fault::Kind::Delay, 6},  {Fault::Kind::Flip, 90},   {Fault::Kind::Garbage, 24},
        {Fault::Kind::Drop, 24},  {Fault::Kind::Trickle, 8},
    };
    std::vector<Fault> result;
    std::uint32_t seed = 1;
    for (const auto& [kind, count] : kinds) {
        for (int index = 0; index < count; ++index, ++seed) {
            std::mt19937 random(seed);
            Fault fault{.kind = kind, .seed = seed};
            if (kind == Fault::Kind::Delay)
                fault.pace = std::chrono::milliseconds(300);
            const std::size_t ends[] = {loginBytes, loginBytes + 3000, answerBytes};
            fault.offset = random() % ends[index % 3];
            if (index % 4 == 3) {
                fault.direction = Fault::Direction::ToServer;
                fault.offset = random() % requestBytes;
            }
            result.push_back(fault);
        }
    }
    return result;
}

TEST_F(AdoProxy, EveryFaultEndsInTheAnswerOrAnError)
{
    const std::vector<Fault> all = faults();
    std::atomic<std::size_t> next = 0;
    std::vector<Outcome> outcomes(all.size());
    std::vector<QString> after(all.size());
    const auto serve = [&] {
        support::FaultProxy proxy(server->port());
        const QString address = addressOf(*server, proxy.port());
        for (std::size_t index = next++; index < all.size(); index = next++) {
            proxy.setFault(all[index]);
            outcomes[index] = run(address, all[index]);
            proxy.setFault({});
            after[index] = run(address, {}).wrong;
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(workers);
    for (int index = 0; index < workers; ++index)
        threads.emplace_back(serve);
    for (std::thread& thread : threads)
        thread.join();
    std::map<Fault::Kind, int> failed;
    for (std::size_t index = 0; index < all.size(); ++index) {
        EXPECT_EQ(outcomes[index].wrong.toStdString(), "") << all[index].text();
        EXPECT_LT(outcomes[index].time, longestRun) << all[index].text();
        EXPECT_EQ(after[index].toStdString(), "") << "connected again after: " << all[index].text();
        failed[all[index].kind] += outcomes[index].error ? 1 : 0;
    }
    // The faults took place: an end or a silence is always an error.
    for (const auto kind : {Fault::Kind::Close, Fault::Kind::Reset, Fault::Kind::Stall})
        EXPECT_EQ(failed[kind], std::ranges::count(all, kind, &Fault::kind)) << static_cast<int>(kind);
}

} // namespace
