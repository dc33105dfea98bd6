// What a session leaves behind: temporary objects when it ends, and the state of one whose request was cut
// short.
#include "engine_cases.h"
#include "raw_server.h"

#include <chrono>
#include <random>
#include <thread>

namespace practice::test {

namespace {

/// Raises 50000 unless tempdb holds this many temporary objects.
std::string holds(int count)
{
    return "IF (SELECT COUNT(*) FROM tempdb..sysobjects WHERE name LIKE '#%' AND parent_obj = 0) <> " +
           std::to_string(count) + " RAISERROR('left', 16, 1)";
}

void attend(RawClient& one, std::string_view text, std::chrono::microseconds moment)
{
    one.send(batchMessage(text));
    std::this_thread::sleep_for(moment);
    one.send(packet(PacketType::Attention, {}));
    Bytes reply = one.reply();
    if (!reply.empty() && (lastStatus(reply) & DoneAttention) == 0)
        reply = one.reply();
    ASSERT_FALSE(reply.empty()) << text;
    ASSERT_NE(lastStatus(reply) & DoneAttention, 0) << text;
}

constexpr const char* makesTemporaries =
    "CREATE TABLE #t (a int PRIMARY KEY CHECK (a > 0), b text) INSERT #t (a) VALUES (1) "
    "SELECT 1 AS x INTO #u SELECT 1 AS x INTO ##g "
    "EXEC('CREATE PROCEDURE #p AS SELECT 1') EXEC('CREATE PROCEDURE ##q AS SELECT 1')";

using Leaving = RawServer;

} // namespace

TEST_F(Leaving, TakesTheTemporaryObjectsAlong)
{
    RawClient watch = client();
    const auto gone = [&watch] {
        for (int i = 0; i < 200; ++i) {
            if (ask(watch, holds(0)) == 0)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    };
    for (const char* rest : {"", "BEGIN TRANSACTION INSERT #t (a) VALUES (2)",
                             "BEGIN TRANSACTION CREATE TABLE #v (a int) DROP TABLE #u"}) {
        RawClient one = client();
        ASSERT_EQ(ask(one, makesTemporaries), 0);
        ASSERT_EQ(ask(watch, holds(5)), 0);
        ASSERT_EQ(ask(one, rest), 0);
        one = RawClient(tds_.port()); // the first connection is cut
        EXPECT_TRUE(gone()) << rest;
    }
    {
        RawClient one = client();
        one.send(batchMessage(std::string(makesTemporaries) + " WAITFOR DELAY '01:00:00'"));
        while (ask(watch, holds(5)) != 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_TRUE(gone()) << "in the middle of a batch";
    {
        RawClient one = client();
        ASSERT_EQ(ask(one, makesTemporaries), 0);
        ASSERT_EQ(ask(watch, "USE master CREATE TABLE w (a int) BEGIN TRANSACTION INSERT w VALUES (1)"), 0);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    ASSERT_EQ(ask(watch, "COMMIT"), 0);
    EXPECT_TRUE(gone()) << "while another session writes";
}

TEST_F(Leaving, ACancelledBatchLeavesTheSessionAsItWas)
{
    RawClient one = client();
    for (const char* text :
         {"CREATE TABLE fijo (a int) INSERT fijo VALUES (1) INSERT fijo VALUES (2)",
          "CREATE PROCEDURE lenta AS SET ROWCOUNT 1 SET NOCOUNT ON SET DATEFIRST 3 CREATE TABLE #t (a int) "
          "DECLARE @v TABLE (a int) INSERT #t SELECT a FROM fijo SELECT a FROM #t WAITFOR DELAY '00:00:01'",
          "CREATE PROCEDURE honda AS SET XACT_ABORT ON EXEC('SET ANSI_NULLS OFF EXEC lenta')",
          "CREATE TABLE #t (z int) INSERT #t VALUES (7)"})
        ASSERT_EQ(ask(one, text), 0) << text;
    constexpr const char* sound =
        "DECLARE @t TABLE (a int) INSERT @t SELECT a FROM fijo "
        "IF (SELECT COUNT(*) FROM @t) <> 2 RAISERROR('row count', 16, 1) "
        "IF @@OPTIONS <> 5432 RAISERROR('options', 16, 1) IF @@NESTLEVEL <> 0 RAISERROR('level', 16, 1) "
        "IF @@DATEFIRST <> 7 OR @@LOCK_TIMEOUT <> -1 OR @@TEXTSIZE <> -1 RAISERROR('values', 16, 1) "
        "IF DB_NAME() <> 'tempdb' OR @@TRANCOUNT <> 0 RAISERROR('place', 16, 1) "
        "IF ERROR_NUMBER() IS NOT NULL RAISERROR('caught', 16, 1) "
        "IF (SELECT SUM(z) FROM #t) <> 7 RAISERROR('table', 16, 1)";
    ASSERT_EQ(ask(one, sound), 0);
    constexpr const char* catching =
        "WHILE 1 = 1 BEGIN TRY EXEC('SET LOCK_TIMEOUT 5 SELECT CAST(''x'' AS int)') END TRY "
        "BEGIN CATCH EXEC('SET DATEFIRST 2 USE master SELECT 1') END CATCH";
    constexpr const char* fetching =
        "DECLARE @i int SET @i = 0 WHILE 1 = 1 BEGIN SET @i = @i + 1 EXEC('DECLARE c CURSOR LOCAL "
        "FOR "
        "SELECT a FROM fijo OPEN c FETCH NEXT FROM c CLOSE c DEALLOCATE c') END";
    constexpr unsigned seed = 20;
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> moment(0, 6000);
    for (int round = 0; round < 12; ++round) {
        for (const char* text : {
                 "EXEC('SET ROWCOUNT 1 CREATE TABLE #t (a int) SELECT 1 WAITFOR DELAY ''00:00:01''')",
                 "EXEC lenta",
                 "EXEC honda",
                 "WHILE 1 = 1 EXEC('SET NOCOUNT ON SET TEXTSIZE 10 CREATE TABLE #t (a int) DROP TABLE #t')",
                 "WHILE 1 = 1 INSERT fijo EXEC('SET ROWCOUNT 1 SELECT 1 WHERE 1 = 0 USE master')",
                 "INSERT fijo EXEC lenta",
                 catching,
                 "EXEC sp_executesql N'SET ANSI_NULLS OFF EXEC honda'",
                 fetching,
                 "EXEC('SET XACT_ABORT ON BEGIN TRANSACTION DELETE fijo WAITFOR DELAY ''00:00:01''')",
             }) {
            attend(one, text, std::chrono::microseconds(moment(random)));
            ASSERT_EQ(ask(one, sound), 0) << text << " in round " << round << " of seed " << seed;
            const Bytes rows = one.ask(batchMessage("SELECT a FROM fijo"));
            ASSERT_EQ(rows.at(0), static_cast<std::uint8_t>(Token::ColumnMetadata)) << text;
        }
    }
    EXPECT_EQ(ask(one, holds(1)), 0);
}

TEST_F(Leaving, ACancelKeepsWhatTheBatchItselfHasDone)
{
    RawClient one = client();
    attend(
        one,
        "SET ROWCOUNT 1 CREATE TABLE #t (a int) BEGIN TRANSACTION INSERT #t VALUES (1) WAITFOR DELAY '00:10'",
        std::chrono::milliseconds(100));
    EXPECT_EQ(ask(one, "IF @@TRANCOUNT <> 1 RAISERROR('transaction', 16, 1) SET ROWCOUNT 0 COMMIT "
                       "IF (SELECT COUNT(*) FROM #t) <> 1 RAISERROR('row', 16, 1)"),
              0);
    attend(one, "SET XACT_ABORT ON BEGIN TRANSACTION DELETE #t WAITFOR DELAY '00:10'",
           std::chrono::milliseconds(100));
    EXPECT_EQ(ask(one, "IF @@TRANCOUNT <> 0 OR (SELECT COUNT(*) FROM #t) <> 1 RAISERROR('kept', 16, 1)"), 0);
}

TEST(Restart, FindsTempdbEmpty)
{
    Engine engine;
    engine.run(makesTemporaries);
    engine.restart();
    EXPECT_EQ(engine.run(holds(0)), "");
}

TEST(TemporaryProcedures, BelongToTheirSession)
{
    Engine& engine = freshDatabase();
    const auto other = engine.login("sa", "Secret1", "Ventas");
    engine.run("CREATE TABLE t (a int) INSERT t VALUES (5)");
    expectAnswers(engine,
                  {
                      {"CREATE PROCEDURE #p @x int, @y int = 1 OUTPUT AS SET @y = @x * 2 SELECT a FROM t "
                       "RETURN 3",
                       ""},
                      {"DECLARE @y int, @r int EXEC @r = #p 4, @y OUTPUT SELECT @y, @r", "a\n5\n8 | 3"},
                      {"CREATE PROCEDURE #p AS SELECT 1",
                       "Msg 2714, Level 16, State 3: There is already an object named '#p' in "
                       "the database."},
                      {"ALTER PROCEDURE #p AS RAISERROR('changed', 16, 1)", ""},
                      {"EXEC tempdb..#p", "Msg 50000, Level 16, State 1, Procedure #p: changed"},
                      {"EXEC('CREATE PROC #q AS SELECT 2 AS dos')", ""},
                      {"EXEC #q", "dos\n2"},
                      {"CREATE PROCEDURE ##g AS SELECT 3 AS tres", ""},
                  });
    EXPECT_EQ(Engine::run(*other, "EXEC #p"),
              "Msg 2812, Level 16, State 62: Could not find stored procedure '#p'.\n");
    EXPECT_EQ(Engine::run(*other, "EXEC ##g"), "tres\n3\n");
    EXPECT_EQ(Engine::run(*other, "CREATE PROCEDURE #p AS SELECT 9 AS nueve"), "");
    EXPECT_EQ(Engine::run(*other, "EXEC #p"), "nueve\n9\n");
    engine.run("ALTER PROCEDURE #p @x int, @y int OUTPUT AS SET @y = @x + 1");
    Answer answer;
    engine.session().executeProcedure("#p",
                                      {{"@x", {TypeId::Int, 4}, {std::int64_t{6}, {}}, false, false},
                                       {"@y", {TypeId::Int, 4}, {}, true, false}},
                                      answer);
    EXPECT_EQ(answer.text, "@y = 7\n");
    expectAnswers(engine,
                  {{"DROP PROCEDURE #p DROP PROC ##g, #q", ""},
                   {"EXEC #p", "Msg 2812, Level 16, State 62: Could not find stored procedure '#p'."}});
}

TEST(TemporaryTables, EndWithTheScopeThatMadeThem)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE PROCEDURE lee AS SELECT a FROM #t");
    engine.run("CREATE PROCEDURE hace AS CREATE TABLE #t (a int) INSERT #t VALUES (2) EXEC lee");
    engine.run("CREATE PROCEDURE falla AS CREATE TABLE #t (a int) SELECT CAST('x' AS int)");
    const char* const none = "Msg 208, Level 16, State 1, Procedure lee: Invalid object name '#t'.";
    expectAnswers(
        engine,
        {
            {"EXEC lee", none},
            {"EXEC hace", "a\n2"},
            {"EXEC lee", none},
            {"CREATE TABLE #t (a int) INSERT #t VALUES (1) EXEC lee EXEC hace EXEC lee", "a\n1\na\n2\na\n1"},
            {"BEGIN TRY EXEC falla END TRY BEGIN CATCH PRINT ERROR_NUMBER() END CATCH EXEC lee",
             "-- 245\na\n1"},
            {"BEGIN TRANSACTION EXEC hace ROLLBACK EXEC lee", "a\n2\na\n1"},
            {"EXEC('CREATE TABLE #t (a int) SELECT a FROM #t') SELECT a FROM #t", "a\na\n1"},
            {"CREATE TABLE #t (b int)",
             "Msg 2714, Level 16, State 6: There is already an object named '#t' in the "
             "database."},
            {"DROP TABLE #t EXEC lee", none},
        });
    Answer ignored;
    engine.session().reset(ignored);
    engine.run("USE Ventas");
}

TEST(Scopes, GiveBackWhatTheySet)
{
    expectAnswers(
        freshDatabase(),
        {
            {"EXEC('SET ROWCOUNT 1 SET DATEFIRST 3 SET LOCK_TIMEOUT 9 SET TEXTSIZE 5 USE master SELECT 1/0') "
             "SELECT @@DATEFIRST, @@LOCK_TIMEOUT, @@TEXTSIZE, DB_NAME() SELECT v FROM (VALUES (1), (2)) t "
             "(v)",
             "-- Changed database context to 'master'.\nMsg 8134, Level 16, State 1: Divide by zero error "
             "encountered.\n7 | -1 | 2147483647 | Ventas\nv\n1\n2"},
            {"EXEC('SET DATEFIRST 3 USE master SELECT CAST(''x'' AS int)')",
             "-- Changed database context to 'master'.\nMsg 245, Level 16, State 1: Conversion failed when "
             "converting the varchar value 'x' to data type int."},
            {"SELECT @@DATEFIRST, DB_NAME(), @@NESTLEVEL", "7 | Ventas | 0"},
            {"BEGIN TRY EXEC('SET DATEFIRST 3 EXEC(''USE master SELECT CAST(''''x'''' AS int)'')') END TRY "
             "BEGIN CATCH SELECT @@DATEFIRST, DB_NAME(), ERROR_NUMBER() END CATCH",
             "-- Changed database context to 'master'.\n7 | Ventas | 245"},
            {"DECLARE @t TABLE (a int) BEGIN TRY INSERT @t EXEC('SELECT 1 RAISERROR(''mal'', 16, 1)') END "
             "TRY BEGIN "
             "CATCH PRINT ERROR_MESSAGE() END CATCH SELECT COUNT(*) FROM @t",
             "-- mal\n0"},
        });
}

} // namespace practice::test
