// Batches of many results and messages: what comes where, and what ends those that never end.
#include "platform/ado/Connection.h"
#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/Recordset.h"
#include "platform/ado/ResultMemory.h"
#include "platform/basic/RuntimeError.h"
#include "support/PracticeServer.h"

#include <gtest/gtest.h>
#include <vector>

using namespace Qt::StringLiterals;
using ado::Recordset;

namespace {

class AdoBatches : public testing::Test
{
protected:
    void SetUp() override
    {
        connection.setCommandTimeout(60);
        connection.Open(support::testConnectionString());
        connection.Execute(u"use tempdb"_s);
    }
    void TearDown() override { ado::setResultLimit(0); }

    /// What a batch brings, one line a result ("rows: messages") or error ("number").
    QStringList dialogue(const QString& text)
    {
        QStringList lines;
        std::vector<Recordset> kept;
        const auto tell = [&](const Recordset& result) {
            kept.push_back(result);
            const QString head = result.FieldCount() > 0 ? QString::number(result.RecordCount())
                                 : result.RecordsAffected() < 0
                                     ? u"-"_s
                                     : u"("_s + QString::number(result.RecordsAffected()) + u")"_s;
            lines += head + u": "_s + result.Messages().join(u", "_s);
        };
        Recordset first;
        try {
            first.Open(text, connection);
        } catch (const basic::RuntimeError& error) {
            return {QString::number(error.number()) + u" with "_s + connection.Messages().join(u", "_s)};
        }
        tell(first);
        for (;;) {
            try {
                const auto next = first.NextRecordset();
                if (!next)
                    return lines;
                tell(*next);
            } catch (const basic::RuntimeError& error) {
                lines += QString::number(error.number());
            }
        }
    }

    /// The error that ends a batch, read as the query window reads it.
    int ending(const QString& text)
    {
        std::vector<Recordset> kept;
        try {
            Recordset first;
            first.Open(text, connection);
            kept.push_back(first);
            while (auto next = first.NextRecordset())
                kept.push_back(*next);
        } catch (const basic::RuntimeError& error) {
            return error.number();
        }
        return 0;
    }

    int refusal(const QString& text)
    {
        try {
            connection.Execute(text);
        } catch (const basic::RuntimeError& error) {
            return error.number();
        }
        return 0;
    }

    ado::Connection connection;
};

TEST_F(AdoBatches, MessagesStandBetweenTheResultsWhereTheyWereSaid)
{
    connection.Execute(u"create table #t (a int)"_s);
    EXPECT_EQ(
        dialogue(
            u"print 'a' select 1 print 'b' print 'c' insert #t values (1) print 'd' select 2 print 'e'"_s),
        (QStringList{u"1: a"_s, u"(1): b, c"_s, u"1: d"_s, u"-: e"_s}));
    EXPECT_EQ(dialogue(u"print 'x'"_s), QStringList{u"-: x"_s});
    EXPECT_EQ(dialogue(u"declare @a int"_s), QStringList{u"-: "_s});
    EXPECT_EQ(
        dialogue(u"select 1 print 'before' raiserror('e', 16, 1) print 'behind' select 2 print 'last'"_s),
        (QStringList{u"1: "_s, u"-: before"_s, u"50000"_s, u"1: behind"_s, u"-: last"_s}));
    EXPECT_EQ(dialogue(u"print 'a' raiserror('e', 16, 1) print 'b' select 1 print 'c'"_s),
              QStringList{u"50000 with a, b, c"_s});
    EXPECT_EQ(dialogue(u"begin try select 1/0 end try begin catch print error_message() end catch"_s),
              (QStringList{u"0: "_s, u"-: Divide by zero error encountered."_s}));
    connection.Execute(u"print 'x' select 1 print 'y'"_s);
    EXPECT_EQ(connection.Messages(), (QStringList{u"x"_s, u"y"_s}));
    EXPECT_EQ(refusal(u"print 'p' raiserror('e', 16, 1) print 'q'"_s), 50000);
    EXPECT_EQ(connection.Messages(), (QStringList{u"p"_s, u"q"_s}));
}

TEST_F(AdoBatches, AllOfManyMessagesArriveInTheirOrder)
{
    connection.Execute(u"create procedure #many as set nocount on declare @i int set @i = 0 "
                       "while @i < 20000 begin print @i set @i = @i + 1 end"_s);
    for (const QString& text :
         {u"exec #many"_s, u"declare @i int set @i = 0 while @i < 20000 begin print @i set @i = "
                           "@i + 1 end"_s}) {
        connection.Execute(text);
        const QStringList messages = connection.Messages();
        ASSERT_EQ(messages.size(), 20'000);
        for (int i = 0; i < 20'000; ++i)
            ASSERT_EQ(messages[i], QString::number(i));
    }
}

TEST_F(AdoBatches, TheTimeLimitHoldsForAllResultsTogether)
{
    connection.Execute(u"create table #t (a int)"_s);
    connection.Execute(u"insert #t values (1)"_s);
    connection.setCommandTimeout(1);
    for (const QString& endless : {u"while 1=1 select 1"_s, u"while 1=1 update #t set a = a + 1"_s,
                                   u"while 1=1 begin print 'x' waitfor delay '00:00:00.001' end"_s}) {
        SCOPED_TRACE(endless.toStdString());
        EXPECT_EQ(ending(endless), ado::number::TimeOut);
        EXPECT_EQ(ending(u"select count(*) from #t"_s), 0) << "the session works on";
    }
    EXPECT_EQ(refusal(u"select 1 while 1=1 update #t set a = 2"_s), ado::number::TimeOut);
    EXPECT_EQ(refusal(u"update #t set a = 1"_s), 0);
}

TEST_F(AdoBatches, WhatIsKeptOfResultsIsBounded)
{
    const std::size_t before = ado::resultBytes();
    ado::setResultLimit(before + (std::size_t{8} << 20U));
    const QString endless[] = {
        u"while 1=1 select replicate('x', 1000)"_s, u"while 1=1 select 1"_s,
        u"while 1=1 print replicate('x', 4000)"_s,
        u"select replicate('x', 1000) from master..syscolumns a, master..syscolumns b"_s};
    for (const QString& text : endless) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(ending(text), ado::number::ResultsTooLarge);
        EXPECT_EQ(ado::resultBytes(), before) << "what was read is let go";
        EXPECT_EQ(ending(u"select 1"_s), 0);
    }
    EXPECT_EQ(refusal(u"while 1=1 begin select 1 print replicate('x', 4000) end"_s),
              ado::number::ResultsTooLarge);
    EXPECT_EQ(refusal(u"select 1"_s), 0);
}

} // namespace
