// Batches: variables, control of flow, errors, procedures, transactions, sessions.
#include "engine_cases.h"

#include <chrono>
#include <thread>

namespace practice::test {

TEST(Procedures, AreCalledWithoutABatch)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE PROCEDURE Doble @a int, @b int OUTPUT AS SET @b = @a * 2 RETURN 3");
    const auto call = [&engine](const char* name, std::vector<Parameter> parameters) {
        Answer answer;
        answer.showCounts = true;
        engine.session().executeProcedure(name, std::move(parameters), answer);
        return answer.text;
    };
    const SqlType integer{TypeId::Int, 4};
    const SqlType text{TypeId::NVarChar, 4000};
    const Value four{std::int64_t{4}, {}};
    EXPECT_EQ(call("Doble", {{"@a", integer, four}, {"@b", integer, {}, true}}),
              "(1 rows)\nstatus 3\n@b = 8\n");
    EXPECT_EQ(call("sp_executesql", {{"", text, Value{std::string("SELECT @p AS p"), {}}},
                                     {"", text, Value{std::string("@p int"), {}}},
                                     {"@p", integer, four}}),
              "p\n4\n(1 rows)\nstatus 0\n");
    EXPECT_EQ(call("sp_prepexec", {{"", integer, {}, true},
                                   {"", text, Value{std::string("@p int"), {}}},
                                   {"", text, Value{std::string("SELECT @p + 1 AS q"), {}}},
                                   {"", integer, four}}),
              "q\n5\n(1 rows)\nstatus 0\n = 1\n");
    EXPECT_EQ(call("sp_execute", {{"", integer, Value{std::int64_t{1}, {}}}, {"", integer, four}}),
              "q\n5\n(1 rows)\nstatus 0\n");
    EXPECT_EQ(call("sp_unprepare", {{"", integer, Value{std::int64_t{1}, {}}}}), "status 0\n");
    EXPECT_EQ(call("sp_execute", {{"", integer, Value{std::int64_t{1}, {}}}}),
              "Msg 8179, Level 16, State 2: Could not find prepared statement with handle 1.\n");
    EXPECT_EQ(call("nada", {}), "Msg 2812, Level 16, State 62: Could not find stored procedure 'nada'.\n");
}

TEST(Sessions, WaitForEachOthersWritesAndReadWhatIsCommitted)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (a int)");
    const auto other = engine.login("sa", "Secret1", "Ventas");
    engine.run("BEGIN TRAN INSERT t VALUES (1)");
    EXPECT_EQ(Engine::run(*other, "SELECT COUNT(*) AS n FROM t"), "n\n0\n");
    EXPECT_EQ(Engine::run(*other, "SET LOCK_TIMEOUT 20 INSERT t VALUES (2)"),
              "Msg 1222, Level 16, State 51: Lock request time out period exceeded.\n");
    std::thread writer([&other] { Engine::run(*other, "SET LOCK_TIMEOUT -1 INSERT t VALUES (3)"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    engine.run("COMMIT");
    writer.join();
    EXPECT_EQ(engine.run("SELECT a FROM t ORDER BY a"), "a\n1\n3\n");
    // A transaction that has only read may write after others have.
    Engine::run(*other, "BEGIN TRAN SELECT * FROM t");
    engine.run("INSERT t VALUES (4)");
    EXPECT_EQ(Engine::run(*other, "INSERT t VALUES (5) COMMIT SELECT COUNT(*) AS n FROM t"), "n\n4\n");
}

TEST(Sessions, StopWhenTheyAreCancelled)
{
    Engine& engine = freshDatabase();
    std::thread canceller([&engine] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        engine.session().cancel();
    });
    EXPECT_EQ(engine.run("WAITFOR DELAY '00:01:00' PRINT 'never'"), "");
    canceller.join();
    EXPECT_EQ(engine.run("PRINT 'alive'"), "-- alive\n");
}

TEST(Sessions, KeepTheirTemporaryTablesApart)
{
    Engine& engine = freshDatabase();
    const auto other = engine.login();
    engine.run("CREATE TABLE #t (a int) INSERT #t VALUES (1)");
    EXPECT_EQ(Engine::run(*other, "SELECT * FROM #t"),
              "Msg 208, Level 16, State 1: Invalid object name '#t'.\n");
    EXPECT_EQ(Engine::run(*other, "CREATE TABLE #t (b int) SELECT * FROM #t"), "b\n");
    EXPECT_EQ(engine.run("SELECT * FROM #t SELECT OBJECT_ID('tempdb..#t') - OBJECT_ID('tempdb..#t') AS x"),
              "a\n1\nx\n0\n");
    Answer ignored;
    engine.session().reset(ignored);
    EXPECT_EQ(engine.run("SELECT * FROM #t"), "Msg 208, Level 16, State 1: Invalid object name '#t'.\n");
}

TEST(Sessions, AreLetInByTheirPasswordOnly)
{
    Engine& engine = freshDatabase();
    EXPECT_THROW((void)engine.login("sa", "wrong"), LoginRefused);
    EXPECT_THROW((void)engine.login("nadie", ""), LoginRefused);
    EXPECT_THROW((void)engine.login("sa", "Secret1", "nada"), LoginRefused);
}

TEST(Sessions, MayDoWhatTheyWereGranted)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (a int) INSERT t VALUES (1)");
    engine.run("CREATE PROCEDURE lee AS SELECT a FROM t");
    engine.run("EXEC sp_addlogin 'pepe', 'Clave1' EXEC sp_grantdbaccess 'pepe'");
    const auto user = engine.login("pepe", "Clave1", "Ventas");
    const std::string denied = "Msg 229, Level 14, State 5: The SELECT permission was denied on the object "
                               "'t', database 'Ventas', schema 'dbo'.\n";
    EXPECT_EQ(Engine::run(*user, "SELECT * FROM t"), denied);
    engine.run("GRANT SELECT ON t TO pepe GRANT EXECUTE ON lee TO pepe");
    EXPECT_EQ(Engine::run(*user, "SELECT * FROM t"), "a\n1\n");
    engine.run("DENY SELECT ON t TO pepe");
    EXPECT_EQ(Engine::run(*user, "SELECT * FROM t"), denied);
    EXPECT_EQ(Engine::run(*user, "EXEC lee"), "a\n1\n");
    EXPECT_EQ(Engine::run(*user, "DELETE t"), "Msg 229, Level 14, State 5: The DELETE permission was denied "
                                              "on the object 't', database 'Ventas', schema 'dbo'.\n");
    engine.run("EXEC sp_revokedbaccess 'pepe' EXEC sp_droplogin 'pepe'");
}

TEST(Server, KeepsItsDataOverARestart)
{
    Engine engine;
    engine.run("CREATE DATABASE Ventas");
    engine.run("USE Ventas CREATE TABLE t (a int) INSERT t VALUES (1) BEGIN TRAN INSERT t VALUES (2)");
    engine.restart();
    EXPECT_EQ(engine.run("SELECT a FROM Ventas..t"), "a\n1\n");
}

} // namespace practice::test
