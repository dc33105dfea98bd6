// Data access against a server that runs Transact-SQL: the practice server, or the one that the
// environment's QUERMO_TEST_SERVER names.
#include "platform/ado/Command.h"
#include "platform/ado/Connection.h"
#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/Recordset.h"
#include "platform/basic/RuntimeError.h"
#include "platform/basic/VariantText.h"
#include "support/PracticeServer.h"

#include <chrono>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

using namespace Qt::StringLiterals;
using ado::Recordset;

namespace {

class AdoServer : public testing::Test
{
protected:
    void SetUp() override
    {
        connection.setCommandTimeout(60);
        connection.Open(support::testConnectionString());
    }

    Recordset open(const QString& text)
    {
        Recordset recordset;
        recordset.Open(text, connection, -1, -1, 1);
        return recordset;
    }

    /// The error of a text run by Execute; 0 and no text without one.
    std::pair<int, QString> refusal(const QString& text)
    {
        try {
            connection.Execute(text);
        } catch (const basic::RuntimeError& error) {
            return {error.number(), error.description()};
        }
        return {0, {}};
    }

    /// Runs what the server refuses while it has not yet seen that a connection closed.
    void executeWhenLeft(const QString& text)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (refusal(text).first != 0 && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_NE(refusal(text).first, 0) << "still there: " << text.toStdString();
    }

    ado::Connection connection;
};

TEST_F(AdoServer, ReadsTheCatalogAsTheFormsDo)
{
    Recordset bases = open(u"Select name from master.dbo.sysdatabases order by name"_s);
    QStringList names;
    for (; !bases.Eof(); bases.MoveNext())
        names += basic::text(bases.Value(u"Name"_s)).trimmed();
    EXPECT_EQ(names.size(), bases.RecordCount());
    for (const QString& system : {u"master"_s, u"model"_s, u"msdb"_s, u"tempdb"_s})
        EXPECT_TRUE(names.contains(system)) << system.toStdString();

    const Recordset collation = open(u" select convert(sysname,DatabasePropertyEx('master','Collation'))"_s);
    ASSERT_EQ(collation.RecordCount(), 1);
    EXPECT_FALSE(collation.cellText(0, 0).isEmpty());
    EXPECT_EQ(collation.FieldName(0), u"");

    ado::Command command;
    command.setActiveConnection(connection);
    command.setCommandText(u"sp_helplogins"_s);
    Recordset logins = command.Execute();
    QStringList people;
    for (; !logins.Eof(); logins.MoveNext())
        people += basic::text(logins.Value(0)).trimmed();
    EXPECT_TRUE(people.contains(u"sa"_s));
    EXPECT_TRUE(logins.NextRecordset()); // the users of the logins
}

TEST_F(AdoServer, KeepsTextAndNumbersExact)
{
    connection.Execute(
        u"create table #t (n int null, d decimal(38,10) null, m money null, t nvarchar(100) null, "
        "l nvarchar(max) null, b varbinary(max) null)"_s);
    const QString sample = u"ñandú €uro 日本 😀 'comilla' [x] {llave} ?"_s;
    const QString quoted = QString(sample).replace(u"'"_s, u"''"_s);
    qint64 affected = 0;
    connection.Execute(u"insert into #t values (-2147483648, 1234567890123456789012345678.0123456789, "
                       "-922337203685477.5808, N'"_s +
                           quoted + u"', replicate(convert(nvarchar(max), N'"_s + quoted +
                           u"'), 2000), 0x00FF)"_s,
                       &affected, -1);
    EXPECT_EQ(affected, 1);
    connection.Execute(u"insert into #t values (null, null, null, null, null, null)"_s);
    const Recordset rows = open(u"select * from #t"_s);
    ASSERT_EQ(rows.RecordCount(), 2);
    EXPECT_EQ(rows.Value(u"D"_s),
              basic::Variant(basic::Decimal{u"1234567890123456789012345678.0123456789"_s}));
    EXPECT_EQ(rows.Value(u"m"_s), basic::Variant(basic::Decimal{u"-922337203685477.5808"_s}));
    EXPECT_EQ(rows.cellText(0, 3), sample);
    EXPECT_EQ(rows.cellText(0, 4), sample.repeated(2000));
    EXPECT_EQ(rows.cellText(0, 4, 5).left(5), sample.left(5));
    EXPECT_EQ(rows.cellText(0, 5), u"0x00FF");
    for (int column = 0; column < rows.FieldCount(); ++column) {
        EXPECT_TRUE(rows.isNull(1, column));
        EXPECT_EQ(rows.cellText(1, column), u"");
    }
}

TEST_F(AdoServer, ReportsTheServersRefusals)
{
    EXPECT_EQ(refusal(u"selec 1"_s).first, 2812); // one word and a value read as a procedure's call
    EXPECT_EQ(refusal(u"select * from no_such_table"_s),
              std::make_pair(208, u"Invalid object name 'no_such_table'."_s));
    EXPECT_EQ(refusal(u"Use [año nuevo]"_s).first, 911);
    EXPECT_EQ(refusal(u"select 1 where ? = 1"_s).first, 102);
    EXPECT_EQ(refusal(u"raiserror('[x] first', 16, 1) raiserror('second', 16, 1)"_s),
              std::make_pair(50000, u"[x] first"_s));
    connection.Execute(u"create table #k (k int primary key)"_s);
    EXPECT_EQ(refusal(u"insert into #k values (1) insert into #k values (1)"_s).first, 2627);
    EXPECT_EQ(open(u"select k from #k"_s).RecordCount(), 1); // what stood before the error has run
    connection.Execute(u"print 'hola' select 1 print 'adiós'"_s);
    EXPECT_EQ(connection.Messages(), QStringList({u"hola"_s, u"adiós"_s}));
    EXPECT_EQ(connection.State(), 1);
}

TEST_F(AdoServer, RollsBackWhatATransactionDid)
{
    connection.Execute(u"create table #x (n int)"_s);
    connection.BeginTrans();
    connection.Execute(u"insert into #x values (1)"_s);
    connection.RollbackTrans();
    EXPECT_EQ(open(u"select n from #x"_s).RecordCount(), 0);
    connection.BeginTrans();
    connection.Execute(u"insert into #x values (2)"_s);
    connection.CommitTrans();
    EXPECT_EQ(open(u"select n from #x"_s).RecordCount(), 1);
    EXPECT_THROW(connection.RollbackTrans(), basic::RuntimeError);
}

TEST_F(AdoServer, SharesTheCurrentDatabaseAmongItsStatements)
{
    connection.Execute(u"use tempdb"_s);
    EXPECT_EQ(open(u"select db_name()"_s).cellText(0, 0), u"tempdb");
    connection.Execute(u"Use master"_s);
    EXPECT_EQ(open(u"select db_name() as base"_s).Value(u"BASE"_s), basic::Variant(u"master"_s));
}

TEST_F(AdoServer, LogsInWithAnyPasswordAndIntoAnyDatabase)
{
    const QString passwords[] = {u"a;b=c"_s,   u"it's \"so\""_s, u"{a}b}"_s,
                                 u"漢字ЖЯ€"_s, u"😀 ñ 😀"_s,       u"?%_[x]"_s};
    const auto quoted = [](QString text, QChar mark) {
        return mark + text.replace(mark, QString(2, mark)) + mark;
    };
    const QString name = u"raro€"_s;
    connection.Execute(u"exec sp_addlogin N'%1', N'first'"_s.arg(name));
    for (const QString& password : passwords) {
        connection.Execute(u"exec sp_password null, N%1, N'%2'"_s.arg(quoted(password, u'\''), name));
        ado::Connection other;
        const QString text = support::testConnectionString() + u";User Id="_s + name + u";Password="_s;
        EXPECT_NO_THROW(other.Open(text + quoted(password, u'"'))) << password.toStdString();
        EXPECT_EQ(other.State(), 1);
        ado::Connection refused;
        EXPECT_THROW(refused.Open(text + quoted(password + u"x"_s, u'"')), basic::RuntimeError);
    }
    executeWhenLeft(u"exec sp_droplogin N'%1'"_s.arg(name));
    for (const QString& base : {u"con blanco"_s, u"a]b[c"_s, u"ñ€'x"_s}) {
        connection.Execute(u"create database "_s + u'[' + QString(base).replace(u']', u"]]"_s) + u']');
        ado::Connection other;
        other.Open(support::testConnectionString(base));
        Recordset current;
        current.Open(u"select db_name()"_s, other);
        EXPECT_EQ(current.cellText(0, 0), base);
        other.Close();
        executeWhenLeft(u"drop database "_s + u'[' + QString(base).replace(u']', u"]]"_s) + u']');
    }
}

TEST(AdoServerLife, AKilledServerIsReportedAndLeft)
{
    auto server = support::PracticeServer::start();
    ado::Connection connection;
    connection.Open(server->connectionString());
    connection.Execute(u"select 1"_s);
    EXPECT_TRUE(server->statementLog().contains(u"select 1"_s));
    server->kill();
    try {
        connection.Execute(u"select 2"_s);
        FAIL() << "no error from a dead server";
    } catch (const basic::RuntimeError& error) {
        EXPECT_EQ(error.number(), ado::number::DriverFailure);
    }
    EXPECT_EQ(connection.State(), 0);
    try {
        connection.Open(server->connectionString());
        FAIL() << "a connection to a dead server";
    } catch (const basic::RuntimeError& error) {
        EXPECT_EQ(error.number(), ado::number::NoServer);
    }
}

} // namespace
