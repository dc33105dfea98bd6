// What nobody should send: the engine behind its wire refuses it by number, stays within memory, and
// answers the next one.
#include "engine/api/session.h"
#include "engine_harness.h"
#include "raw_client.h"
#include "raw_server.h"
#include "tds/server.h"
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <atomic>
#include <thread>

using namespace practice;
using namespace practice::test;

namespace {

constexpr int many = 10'000;

std::string times(int count, std::string_view text)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

/// first0, first1 ... with something between.
std::string counted(int count, std::string_view before, std::string_view after,
                    std::string_view between = ",")
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all.append(i == 0 ? "" : between).append(before).append(std::to_string(i)).append(after);
    return all;
}

std::string nested(std::string_view open, std::string_view inner, std::string_view close)
{
    return times(many, open) + std::string(inner) + times(many, close);
}

long peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

using Hostile = RawServer;

} // namespace

TEST_F(Hostile, RefusesWhatIsTooDeepTooLongOrUnfinished)
{
    constexpr int tooDeep = 191;
    constexpr int tooComplex = 8623;
    const std::string longName(200, 'x');
    const struct
    {
        const char* what;
        std::string text;
        int number; ///< 0: it runs
    } cases[] = {
        {"parentheses", "SELECT " + nested("(", "1", ")"), tooDeep},
        {"left parentheses", "SELECT " + times(2'000'000, "(("), tooDeep},
        {"CASE", "SELECT " + nested("CASE WHEN 1=1 THEN ", "1", " END"), tooDeep},
        {"subqueries", "SELECT " + nested("(SELECT ", "1", ")"), tooDeep},
        {"EXISTS", "SELECT 1 WHERE " + nested("EXISTS (SELECT 1 WHERE ", "1=1", ")"), tooDeep},
        {"derived tables", "SELECT * FROM " + nested("(SELECT * FROM ", "sysobjects", " a) a"), tooDeep},
        {"joins in parentheses", "SELECT 1 FROM " + times(many, "(") + "sysobjects", tooDeep},
        {"blocks", nested("BEGIN ", "SELECT 1", " END"), tooDeep},
        {"TRY", nested("BEGIN TRY ", "SELECT 1", " END TRY BEGIN CATCH SELECT 2 END CATCH"), tooDeep},
        {"IF", times(many, "IF 1=1 ") + "SELECT 1", tooDeep},
        {"ELSE", times(many, "IF 1=0 SELECT 0 ELSE ") + "SELECT 1", tooDeep},
        {"WHILE", times(many, "WHILE 1=1 ") + "BREAK", tooDeep},
        {"NOT", "SELECT 1 WHERE " + times(many, "NOT ") + "1=1", tooDeep},
        {"signs", "SELECT " + times(many, "- ") + "1", tooDeep},
        {"calls", "SELECT " + nested("ISNULL(NULL, ", "1", ")"), tooDeep},
        {"sums", "SELECT 1" + times(many, "+1"), tooDeep},
        {"a view's", "CREATE VIEW v AS SELECT " + nested("(", "1", ")") + " AS a", tooDeep},
        {"a CHECK's", "CREATE TABLE k (a int CHECK (" + nested("(", "a>0", ")") + "))", tooDeep},
        {"AND", "SELECT 1 WHERE 1=1" + times(many, " AND 1=1"), 0},
        {"OR", "SELECT 1 WHERE 1=0" + times(many, " OR 1=0"), 0},
        {"IN", "SELECT 1 WHERE 1 IN (" + counted(many, "", "") + ")", 0},
        {"WHEN", "SELECT CASE " + times(many, "WHEN 1=0 THEN 1 ") + "END", 0},
        {"UNION ALL", "SELECT 1" + times(many, " UNION ALL SELECT 1"), tooComplex},
        {"tables", "SELECT 1 FROM " + counted(many, "sysobjects a", ""), 106},
        {"WITH, a chain",
         "WITH c AS (SELECT 1 a), c0 AS (SELECT a FROM c)," +
             [] {
                 std::string chain;
                 for (int i = 1; i < many; ++i)
                     chain += (i == 1 ? "c" : ",c") + std::to_string(i) + " AS (SELECT a FROM c" +
                              std::to_string(i - 1) + ")";
                 return chain;
             }() +
             " SELECT * FROM c9999",
         tooComplex},
        {"WITH, doubling",
         "WITH c0 AS (SELECT 1 a)," +
             [] {
                 std::string chain;
                 for (int i = 1; i < 40; ++i) {
                     const std::string before = "c" + std::to_string(i - 1);
                     chain += (i == 1 ? "c" : ",c") + std::to_string(i) + " AS (SELECT x.a FROM " + before +
                              " x, " + before + " y)";
                 }
                 return chain;
             }() +
             " SELECT * FROM c39",
         tooComplex},
        {"columns asked for", "SELECT " + counted(many, "1 AS c", ""), 1056},
        {"columns of a table", "CREATE TABLE w (" + counted(many, "c", " int") + ")", 1702},
        {"rows of values", "CREATE TABLE r (a int) INSERT r VALUES " + counted(many, "(", ")"), 10738},
        {"variables", "DECLARE " + counted(many, "@v", " int"), 0},
        {"a name", "CREATE TABLE " + longName + " (a int)", 103},
        {"a name in brackets", "SELECT * FROM [" + longName + "]", 103},
        {"a variable's name", "DECLARE @" + longName + " int", 103},
        {"an open string", "SELECT 'abc", 105},
        {"an open name", "SELECT [abc", 105},
        {"an open quoted name", "SELECT \"abc", 105},
        {"an open comment", times(many, "/*"), 113},
        {"a value", "DECLARE @s varchar(max) SET @s = REPLICATE(CAST('a' AS varchar(max)), 2000000000)", 701},
        {"ten megabytes of junk", times(1'000'000, "]['\"ñ"), 102},
        {"ten megabytes in a string",
         "DECLARE @s varchar(max) SET @s = '" + std::string(5'000'000, 'a') + "'", 0},
        {"a comment of ten megabytes", "SELECT 1 /*" + std::string(5'000'000, 'a') + "*/", 0},
    };
    const long before = peakMegabytes();
    RawClient one = client();
    for (const auto& item : cases) {
        EXPECT_EQ(ask(one, item.text), item.number) << item.what;
        ASSERT_EQ(ask(one, "SELECT 1"), 0) << item.what;
    }
    EXPECT_LT(peakMegabytes() - before, 1200);
}

TEST_F(Hostile, EndsRecursionAtItsLimits)
{
    RawClient one = client();
    for (const char* text : {"CREATE PROCEDURE p AS EXEC p", "CREATE PROCEDURE q AS EXEC('EXEC q')",
                             "CREATE VIEW v AS SELECT 1 AS a", "ALTER VIEW v AS SELECT a FROM v"})
        ASSERT_EQ(ask(one, text), 0) << text;
    for (const char* text : {"EXEC p", "EXEC q", "SELECT * FROM v"}) {
        EXPECT_EQ(ask(one, text), 217) << text;
        EXPECT_EQ(ask(one, "SELECT 1"), 0) << text;
    }
    const std::string endless =
        "WITH c AS (SELECT 1 AS a UNION ALL SELECT a + 1 FROM c) SELECT COUNT(*) FROM c";
    const Bytes reply = one.ask(batchMessage(endless));
    EXPECT_NE(lastStatus(reply) & DoneError, 0);
}

TEST_F(Hostile, AnswersTenThousandResultsAndStaysSmall)
{
    RawClient one = client();
    const long before = peakMegabytes();
    const Bytes sets = one.ask(batchMessage(times(many, "SELECT 1 ")));
    std::size_t found = 0;
    for (std::size_t at = 0; at + 31 <= sets.size(); at += 31)
        found += sets[at] == static_cast<std::uint8_t>(Token::ColumnMetadata) ? 1U : 0U;
    EXPECT_EQ(found, std::size_t{many});
    // Long batches leave nothing behind, however many come.
    for (int i = 0; i < 20; ++i)
        ask(one, "DECLARE @a int " + times(many, "SET @a = " + std::to_string(i) + " ") + "SELECT @a");
    EXPECT_LT(peakMegabytes() - before, 150);
}

TEST_F(Hostile, CancelsWhateverRunsForEver)
{
    ASSERT_EQ(
        [this] {
            RawClient one = client();
            return ask(one, "CREATE TABLE n (a int) INSERT n SELECT TOP 1000 id FROM master..syscolumns");
        }(),
        0);
    for (const char* text :
         {"WHILE 1=1 SELECT 1 WHERE 1=0", "DECLARE @i int WHILE 1=1 SET @i = 1", "l: GOTO l",
          "SELECT COUNT(*) FROM n a, n b, n c, n d", "SELECT a.a FROM n a, n b, n c",
          "WAITFOR DELAY '01:00:00'", "WHILE 1=1 PRINT REPLICATE('x', 4000)",
          "UPDATE a SET a = 1 FROM n a, n b, n c, n d",
          "WHILE 1=1 BEGIN TRY RAISERROR('x', 16, 1) END TRY BEGIN CATCH DECLARE @x int END CATCH"}) {
        RawClient one = client();
        one.send(batchMessage(text));
        std::thread canceller([&one] {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            one.send(packet(PacketType::Attention, {}));
        });
        Bytes reply = one.reply();
        if (!reply.empty() && (lastStatus(reply) & DoneAttention) == 0)
            reply = one.reply();
        canceller.join();
        ASSERT_FALSE(reply.empty()) << text;
        EXPECT_NE(lastStatus(reply) & DoneAttention, 0) << text;
        EXPECT_EQ(ask(one, "SELECT 1"), 0) << text;
    }
}

TEST_F(Hostile, ServesFiftySessionsThatWriteAtOnce)
{
    constexpr int sessions = 50;
    constexpr int rounds = 10;
    RawClient first = client();
    ASSERT_EQ(
        ask(first,
            "CREATE TABLE cuentas (id int PRIMARY KEY, saldo int) INSERT cuentas VALUES (1, 0), (2, 0)"),
        0);
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    threads.reserve(sessions);
    for (int s = 0; s < sessions; ++s)
        threads.emplace_back([this, s, &failures] {
            RawClient one = client();
            // In both orders, which is what deadlocks are made of.
            const std::string up =
                "UPDATE cuentas SET saldo = saldo + 1 WHERE id = " + std::to_string(1 + s % 2);
            const std::string down =
                "UPDATE cuentas SET saldo = saldo - 1 WHERE id = " + std::to_string(2 - s % 2);
            for (int i = 0; i < rounds; ++i)
                failures += ask(one, "DECLARE @a int BEGIN TRANSACTION SELECT @a = MAX(saldo) FROM cuentas " +
                                         up + " " + down + " COMMIT") > 0;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(ask(first, "IF (SELECT SUM(saldo) FROM cuentas) <> 0 OR (SELECT MAX(saldo) FROM cuentas) <> 0 "
                         "RAISERROR('lost', 16, 1)"),
              0);
    // One that waits for another's transaction ends when told to, by its own limit or its client.
    ask(first, "BEGIN TRANSACTION DELETE FROM cuentas");
    RawClient waiting = client();
    EXPECT_EQ(ask(waiting, "SET LOCK_TIMEOUT 50 UPDATE cuentas SET saldo = 1"), 1222);
    waiting.send(batchMessage("SET LOCK_TIMEOUT -1 UPDATE cuentas SET saldo = 1"));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    waiting.send(packet(PacketType::Attention, {}));
    Bytes reply = waiting.reply();
    if ((lastStatus(reply) & DoneAttention) == 0)
        reply = waiting.reply();
    EXPECT_NE(lastStatus(reply) & DoneAttention, 0);
    EXPECT_EQ(ask(first, "ROLLBACK"), 0);
    EXPECT_EQ(ask(waiting, "UPDATE cuentas SET saldo = 1"), 0);
}
