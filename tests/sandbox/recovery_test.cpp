// The server dies without warning, again and again over one store: what a client was told is done is
// there afterwards, nothing half done is, and the catalog, the data and the files agree.
#include "engine/store/store.h"
#include "platform/ado/Connection.h"
#include "platform/ado/Recordset.h"
#include "platform/basic/RuntimeError.h"
#include "support/PracticeServer.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <random>
#include <set>
#include <thread>

using namespace Qt::StringLiterals;
using ado::Connection;
using ado::Recordset;

namespace {

constexpr int rounds = 20;
constexpr int rowsOfGroup = 7;

/// Names that exist, as far as the client was told.
struct Names
{
    std::set<QString> there;
    QString doubtful; ///< the one whose fate was being decided

    [[nodiscard]] bool agreeWith(std::set<QString> listed) const
    {
        if (listed == there)
            return true;
        return listed.erase(doubtful) == 1 && listed == there;
    }
};

/// What the client knows of its own work.
struct Ledger
{
    std::set<int> groups; ///< of rows, each of one committed transaction
    int doubtfulGroup = 0;
    int counter = 0;
    bool counting = false; ///< an increment was under way
    Names tables;
    Names databases;
    int last = 0; ///< number given to a group or name
};

class Client
{
public:
    Client(const support::PracticeServer& server, Ledger& ledger) : ledger_(ledger)
    {
        connection_.Open(server.connectionString());
    }

    Connection& connection() { return connection_; }
    void run(const QString& text) { connection_.Execute(text); }

    [[nodiscard]] int number(const QString& query) { return texts(query).front().toInt(); }
    /// The first column.
    [[nodiscard]] QStringList texts(const QString& query)
    {
        Recordset rows;
        rows.Open(query, connection_);
        QStringList found;
        for (qint64 row = 0; row < rows.RecordCount(); ++row)
            found += rows.cellText(row, 0);
        return found;
    }
    [[nodiscard]] std::set<QString> set(const QString& query)
    {
        const QStringList list = texts(query);
        return {list.begin(), list.end()};
    }

    /// Transactions of many rows, of which every third is taken back and every other is left open
    /// for a while.
    void workInTransactions()
    {
        const int group = ++ledger_.last;
        run(u"BEGIN TRANSACTION"_s);
        for (int row = 0; row < rowsOfGroup; ++row)
            run(u"INSERT INTO pedidos VALUES (%1, %2, REPLICATE('x', 500))"_s.arg(group).arg(row));
        if (group % 3 == 0)
            return run(u"ROLLBACK TRANSACTION"_s);
        ledger_.doubtfulGroup = group;
        run(u"COMMIT TRANSACTION"_s);
        ledger_.groups.insert(group);
        ledger_.doubtfulGroup = 0;
    }

    /// Statements that stand alone, each of many rows.
    void workInStatements()
    {
        const int group = ++ledger_.last;
        ledger_.doubtfulGroup = group;
        run(u"INSERT INTO pedidos SELECT TOP %1 %2, id % 1000, name FROM master..sysobjects"_s
                .arg(rowsOfGroup)
                .arg(group));
        ledger_.groups.insert(group);
        ledger_.doubtfulGroup = 0;
        ledger_.counting = true;
        run(u"UPDATE contadores SET n = n + 1"_s);
        ++ledger_.counter;
        ledger_.counting = false;
    }

    void workOnTables()
    {
        const QString name = u"t%1"_s.arg(++ledger_.last);
        // In a transaction that may be taken back, and then alone.
        run(u"BEGIN TRANSACTION"_s);
        run(u"CREATE TABLE %1 (a int NOT NULL CONSTRAINT pk_%1 PRIMARY KEY, b varchar(20) NULL)"_s.arg(name));
        run(u"INSERT INTO %1 SELECT 1, 'x' UNION ALL SELECT 2, 'y'"_s.arg(name));
        if (ledger_.last % 3 == 0)
            return run(u"ROLLBACK TRANSACTION"_s);
        ledger_.tables.doubtful = name;
        run(u"COMMIT TRANSACTION"_s);
        ledger_.tables.there.insert(name);
        run(u"ALTER TABLE %1 ADD c int NOT NULL DEFAULT 5"_s.arg(name));
        run(u"CREATE INDEX ix_%1 ON %1 (b)"_s.arg(name));
        run(u"DROP INDEX %1.ix_%1"_s.arg(name));
        run(u"ALTER TABLE %1 DROP COLUMN b"_s.arg(name));
    }

    void dropTables()
    {
        while (ledger_.tables.there.size() > 3) {
            ledger_.tables.doubtful = *ledger_.tables.there.begin();
            ledger_.tables.there.erase(ledger_.tables.there.begin());
            run(u"DROP TABLE "_s + ledger_.tables.doubtful);
        }
    }

    void workOnDatabases()
    {
        const QString name = u"b%1"_s.arg(++ledger_.last);
        ledger_.databases.doubtful = name;
        run(u"CREATE DATABASE "_s + name);
        ledger_.databases.there.insert(name);
        run(u"CREATE TABLE %1..t (n int)"_s.arg(name));
        const QString folder =
            texts(u"SELECT filename FROM master..sysfiles WHERE fileid = 1"_s).front().section(u'\\', 0, -2);
        run(u"ALTER DATABASE %1 ADD FILE (NAME = extra, FILENAME = '%2\\%1_extra.ndf', SIZE = 1MB)"_s.arg(
            name, folder));
        run(u"ALTER DATABASE %1 MODIFY FILE (NAME = extra, SIZE = 3MB)"_s.arg(name));
        run(u"ALTER DATABASE %1 REMOVE FILE extra"_s.arg(name));
        if (ledger_.databases.there.size() < 3)
            return;
        ledger_.databases.doubtful = *ledger_.databases.there.begin();
        ledger_.databases.there.erase(ledger_.databases.there.begin());
        run(u"DROP DATABASE "_s + ledger_.databases.doubtful);
    }

private:
    Ledger& ledger_;
    Connection connection_;
};

void expectWork(Client& client, Ledger& ledger)
{
    const auto listed = client.set(u"SELECT DISTINCT grupo FROM obra..pedidos"_s);
    std::set<int> groups;
    for (const QString& group : listed)
        groups.insert(group.toInt());
    if (groups != ledger.groups) {
        EXPECT_EQ(groups.erase(ledger.doubtfulGroup), 1U);
        EXPECT_EQ(groups, ledger.groups);
        ledger.groups.insert(ledger.doubtfulGroup);
    }
    EXPECT_EQ(client.number(u"SELECT COUNT(*) FROM obra..pedidos"_s),
              int(ledger.groups.size()) * rowsOfGroup);
    const auto counters = client.set(u"SELECT DISTINCT n FROM obra..contadores"_s);
    ASSERT_EQ(counters.size(), 1U);
    const int counter = counters.begin()->toInt();
    EXPECT_TRUE(counter == ledger.counter || (ledger.counting && counter == ledger.counter + 1)) << counter;
    ledger.counter = counter;
    ledger.counting = false;
    ledger.doubtfulGroup = 0;
}

/// Each listed table answers, with all its columns and rows; one that is not listed does not exist.
void expectTables(Client& client, Ledger& ledger)
{
    const auto listed =
        client.set(u"SELECT name FROM obra..sysobjects WHERE xtype = 'U' AND name LIKE 't%'"_s);
    EXPECT_TRUE(ledger.tables.agreeWith(listed)) << ledger.tables.doubtful.toStdString();
    for (const QString& table : listed) {
        Recordset rows;
        rows.Open(u"SELECT * FROM obra..%1 WHERE a > 0"_s.arg(table), client.connection());
        EXPECT_EQ(rows.RecordCount(), 2) << table.toStdString();
        const QString columns = u"SELECT COUNT(*) FROM obra..syscolumns WHERE id = OBJECT_ID('obra..%1')"_s;
        EXPECT_EQ(rows.FieldCount(), client.number(columns.arg(table)));
    }
    if (!ledger.tables.doubtful.isEmpty() && !listed.contains(ledger.tables.doubtful)) {
        EXPECT_THROW(client.run(u"SELECT * FROM obra.."_s + ledger.tables.doubtful), basic::RuntimeError);
    }
    ledger.tables = {listed, {}};
}

void expectDatabases(Client& client, Ledger& ledger, const QString& folder)
{
    const auto listed = client.set(u"SELECT name FROM master..sysdatabases WHERE name LIKE 'b%'"_s);
    EXPECT_TRUE(ledger.databases.agreeWith(listed)) << ledger.databases.doubtful.toStdString();
    ledger.databases = {listed, {}};
    std::map<std::string, qint64> files;
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files))
        files[file.fileName().toStdString()] = file.size();
    std::map<std::string, qint64> known;
    Recordset rows;
    rows.Open(u"SELECT filename, size FROM master..sysaltfiles"_s, client.connection());
    for (qint64 row = 0; row < rows.RecordCount(); ++row)
        known[rows.cellText(row, 0).trimmed().section(u'\\', -1).toStdString()] =
            rows.cellText(row, 1).toLongLong() * 8192;
    EXPECT_EQ(files, known);
}

/// Every stored table belongs to an entry of the catalog and the other way round, and the store is sound.
void expectSoundStore(const QString& path)
{
    practice::Store store(QDir(path).filePath(u"store.db"_s).toStdString());
    practice::Statement orphans(
        store.connection(),
        "WITH stored(name) AS (SELECT name FROM sqlite_master WHERE type = 'table' AND name GLOB "
        "'u[0-9]*_*'),"
        "     listed(name) AS (SELECT 'u' || dbid || '_' || id FROM cat_object WHERE xtype = 'U')"
        "SELECT group_concat(name) FROM (SELECT name FROM (SELECT * FROM stored EXCEPT SELECT * FROM listed) "
        "UNION ALL "
        "SELECT name FROM (SELECT * FROM listed EXCEPT SELECT * FROM stored))");
    orphans.step();
    EXPECT_EQ(orphans.string(0), "");
    practice::Statement check(store.connection(), "PRAGMA integrity_check");
    check.step();
    EXPECT_EQ(check.string(0), "ok");
}

} // namespace

TEST(Recovery, KeepsItsWordThroughTwentySuddenDeaths)
{
    const auto server = support::PracticeServer::start();
    Ledger ledger;
    {
        Client client(*server, ledger);
        client.run(u"CREATE DATABASE obra"_s);
        client.run(
            u"CREATE TABLE obra..pedidos (grupo int NOT NULL, fila int NOT NULL, texto varchar(500))"_s);
        client.run(u"CREATE TABLE obra..contadores (id int IDENTITY PRIMARY KEY, n int NOT NULL)"_s);
        client.run(u"INSERT INTO obra..contadores SELECT TOP 200 0 FROM master..syscolumns"_s);
    }
    std::mt19937 random(1906); // NOLINT(bugprone-random-generator-seed): the same points each time
    int doubts = 0;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        std::atomic<bool> working = false;
        std::thread worker([&] {
            try {
                Client client(*server, ledger);
                client.run(u"USE obra"_s);
                for (working = true;;) {
                    switch (round % 4) {
                    case 0:
                        client.workInTransactions();
                        break;
                    case 1:
                        client.workInStatements();
                        break;
                    case 2:
                        client.workOnTables();
                        client.dropTables();
                        break;
                    default:
                        client.workOnDatabases();
                    }
                }
            } catch (const basic::RuntimeError& error) {
                // The end of the server, and not an answer of it.
                if (error.number() > 0 && error.number() != 17)
                    ADD_FAILURE() << error.number() << ' ' << error.what();
                working = true;
            }
        });
        while (!working)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 250'000));
        server->kill();
        worker.join();
        doubts += ledger.doubtfulGroup != 0 || !ledger.tables.doubtful.isEmpty() ||
                  !ledger.databases.doubtful.isEmpty();
        server->startAgain();
        Client client(*server, ledger);
        expectWork(client, ledger);
        expectTables(client, ledger);
        expectDatabases(client, ledger, server->storePath() + u"/data"_s);
        expectSoundStore(server->storePath());
    }
    // Deaths that all came between two statements would prove little.
    EXPECT_GT(doubts, 0);
    EXPECT_GT(ledger.groups.size(), 20U);
}
