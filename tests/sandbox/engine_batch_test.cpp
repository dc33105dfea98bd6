// Batches: variables, control of flow, errors, procedures, transactions, sessions.
#include "engine_cases.h"

#include <chrono>
#include <thread>

namespace practice::test {

TEST(Batches, RunTheirStatements)
{
    expectAnswers(
        freshDatabase(),
        {
            {"DECLARE @a int, @b varchar(3) = 'abcdef' SELECT @a, @b SET @a = 2 SET @a += 3 SELECT @a",
             "NULL | abc\n5"},
            {"DECLARE @i int SET @i = 0 WHILE 1 = 1 BEGIN SET @i = @i + 1 IF @i = 2 CONTINUE IF @i > 3 BREAK "
             "PRINT @i END",
             "-- 1\n-- 3"},
            {"IF EXISTS (SELECT * FROM sysobjects WHERE name = 'nada') PRINT 'si' ELSE PRINT 'no'", "-- no"},
            {"GOTO fin PRINT 'nunca' fin: PRINT 'fin'", "-- fin"},
            {"PRINT 'uno' RETURN PRINT 'dos'", "-- uno"},
            {"DECLARE @s varchar(50) SET @s = '' SELECT @s = @s + v + ',' FROM (VALUES ('a'), ('b')) t (v) "
             "SELECT @s",
             "a,b,"},
            {"DECLARE @t TABLE (a int PRIMARY KEY, b char(2)) INSERT @t VALUES (1, 'x') UPDATE @t SET b = "
             "'y' SELECT * FROM @t",
             "a | b\n1 | y "},
            {"DECLARE c CURSOR FOR SELECT v FROM (VALUES (1), (2)) t (v) DECLARE @v int OPEN c FETCH NEXT "
             "FROM c INTO @v WHILE @@FETCH_STATUS = 0 "
             "BEGIN PRINT @v FETCH NEXT FROM c INTO @v END CLOSE c DEALLOCATE c",
             "-- 1\n-- 2"},
            {"RAISERROR('%s de %5d [%-4s] 100%%', 10, 1, 'uno', 42, 'ab')", "-- uno de    42 [ab  ] 100%"},
            {"SET ROWCOUNT 1 SELECT name FROM master..sysdatabases ORDER BY name SET ROWCOUNT 0",
             "name\nmaster"},
            {"PRINT '' PRINT NULL", "--  \n--  "},
            {"EXEC('SELECT 1 AS uno; PRINT ''dentro''')", "uno\n1\n-- dentro"},
            {"EXEC sp_executesql N'SELECT @x * 2 AS d, @y AS y', N'@x int, @y varchar(5) = NULL', @x = 4, @y "
             "= 'q'",
             "d | y\n8 | q"},
            {"DECLARE @r int EXEC sp_executesql N'SET @o = 9', N'@o int OUTPUT', @o = @r OUTPUT SELECT @r",
             "9"},
        });
}

TEST(Batches, EndWhereTheServerEndsThem)
{
    expectAnswers(
        freshDatabase(),
        {
            {"SELECT 1/0 SELECT 'goes on'",
             "Msg 8134, Level 16, State 1: Divide by zero error encountered.\ngoes on"},
            {"SELECT CAST('x' AS int) SELECT 'never'", "Msg 245, Level 16, State 1: Conversion failed when "
                                                       "converting the varchar value 'x' to data type int."},
            {"PRINT 'first' SELECT * FROM nada SELECT 'never'",
             "-- first\nMsg 208, Level 16, State 1: Invalid object name 'nada'."},
            {"PRINT 'not even this' SELECT nada FROM sysobjects",
             "Msg 207, Level 16, State 1: Invalid column name 'nada'."},
            {"PRINT 'not even this' SET @x = 1",
             "Msg 137, Level 15, State 2: Must declare the scalar variable \"@x\"."},
            {"DECLARE @x int DECLARE @x int",
             "Msg 134, Level 15, State 2: The variable name '@x' has already been declared. Variable names "
             "must be unique within a query batch or "
             "stored procedure."},
            {"EXEC nada PRINT 'goes on'",
             "Msg 2812, Level 16, State 62: Could not find stored procedure 'nada'.\n-- goes on"},
            {"GO", "Msg 2812, Level 16, State 62: Could not find stored procedure 'GO'."},
            {"USE nada PRINT 'goes on'", "Msg 911, Level 16, State 1: Database 'nada' does not exist. Make "
                                         "sure that the name is entered correctly.\n-- goes on"},
            {"SELECT 1 +", "Msg 102, Level 15, State 1: Incorrect syntax near '+'."},
            {"RAISERROR('mal', 16, 3) SELECT @@ERROR", "Msg 50000, Level 16, State 3: mal\n50000"},
            // -1 stands for what the message has of itself.
            {"RAISERROR(15600, -1, -1, 'sp_mia')",
             "Msg 15600, Level 15, State 1: An invalid parameter or option was specified for procedure "
             "'sp_mia'."},
            {"RAISERROR(15600, 16, 7, 1) PRINT @@ERROR",
             "Msg 15600, Level 16, State 7: An invalid parameter or option was specified for procedure "
             "'1'.\n-- 15600"},
            {"RAISERROR('mal', -1, -1)", "Msg 50000, Level 16, State 1: mal"},
            {"RAISERROR('nota', -5, 1)", "-- nota"},
            {"RAISERROR(515, 16, 1)",
             "Msg 2732, Level 16, State 1: Error number 515 is invalid. The number must "
             "be from 13000 through 2147483647 and it cannot be 50000."},
            {"RAISERROR(60000, 16, 1)",
             "Msg 18054, Level 16, State 1: Error 60000, severity 16, state 1 was raised, but no message "
             "with "
             "that error number was found in sys.messages. If error is larger than 50000, make sure the "
             "user-defined message is added using sp_addmessage."},
            {"RAISERROR('%d %s %#x', 10, 1, NULL, 'a', 255) RAISERROR('%s|%d', 10, 1)",
             "-- (null) a 0xff\n-- (null)|(null)"},
            {"RAISERROR('%s', 16, 1, 5)",
             "Msg 2786, Level 16, State 1: The data type of substitution parameter "
             "1 does not match the expected type of the format specification."},
            {"THROW 50005, 'fuera', 2 PRINT 'never'", "Msg 50005, Level 16, State 2: fuera"},
            {"CREATE TABLE nueva (a int) INSERT nueva VALUES (1) SELECT a FROM nueva", "a\n1"},
        });
}

TEST(Batches, CatchErrors)
{
    expectAnswers(freshDatabase(),
                  {
                      {"BEGIN TRY SELECT 1/0 PRINT 'never' END TRY BEGIN CATCH SELECT ERROR_NUMBER(), "
                       "ERROR_SEVERITY(), ERROR_STATE(), ERROR_MESSAGE() END CATCH "
                       "PRINT 'after'",
                       "8134 | 16 | 1 | Divide by zero error encountered.\n-- after"},
                      {"BEGIN TRY RAISERROR('propio', 12, 7) END TRY BEGIN CATCH PRINT ERROR_MESSAGE() END "
                       "CATCH SELECT ERROR_NUMBER()",
                       "-- propio\nNULL"},
                      {"BEGIN TRY BEGIN TRY SELECT CAST('x' AS int) END TRY BEGIN CATCH THROW END CATCH END "
                       "TRY BEGIN CATCH PRINT ERROR_NUMBER() END CATCH",
                       "-- 245"},
                  });
}

TEST(Procedures, TakeAndReturnValues)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE PROCEDURE Suma @a int, @b int = 10, @s varchar(10) = 'x' OUTPUT AS\nSET @s = "
               "'suma'\nSELECT @a + @b AS total\nRETURN @a");
    engine.run("CREATE PROCEDURE Falla AS SELECT 1/0\nPRINT 'sigue'\nEXEC nada");
    engine.run("CREATE PROCEDURE Hondo @n int AS SET @n = @n + 1 EXEC Hondo @n");
    expectAnswers(
        engine,
        {
            {"DECLARE @r int, @o varchar(10) EXEC @r = Suma 5, @s = @o OUTPUT SELECT @r, @o",
             "total\n15\n5 | suma"},
            {"EXEC Suma @b = 1, @a = 2", "total\n3"},
            {"dbo.Suma 1, DEFAULT", "total\n11"},
            {"EXEC Suma", "Msg 201, Level 16, State 4, Procedure Suma: Procedure or function 'Suma' expects "
                          "parameter '@a', which was not supplied."},
            {"EXEC Suma 1, 2, 'a', 4", "Msg 8144, Level 16, State 2, Procedure Suma: Procedure or function "
                                       "Suma has too many arguments specified."},
            {"EXEC Suma @z = 1",
             "Msg 8145, Level 16, State 2, Procedure Suma: @z is not a parameter for procedure Suma."},
            {"EXEC Suma 'abc'",
             "Msg 8114, Level 16, State 5, Procedure Suma: Error converting data type varchar to int."},
            {"EXEC Falla PRINT 'fuera'",
             "Msg 8134, Level 16, State 1, Procedure Falla: Divide by zero error encountered.\n-- sigue\n"
             "Msg 2812, Level 16, State 62, Procedure Falla: Could not find stored procedure 'nada'.\n-- "
             "fuera"},
            {"EXEC Hondo 1", "Msg 217, Level 16, State 1, Procedure Hondo: Maximum stored procedure, "
                             "function, trigger, or view nesting level exceeded (limit 32)."},
            {"CREATE TABLE Salida (t int) INSERT Salida EXEC Suma 1, 2 SELECT t FROM Salida", "t\n3"},
        });
}

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

TEST(Transactions, KeepOrUndoAllTheirWork)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (a int CONSTRAINT PK_t PRIMARY KEY)");
    expectAnswers(
        engine, {
                    {"BEGIN TRAN INSERT t VALUES (1) BEGIN TRAN INSERT t VALUES (2) COMMIT SELECT "
                     "@@TRANCOUNT ROLLBACK SELECT COUNT(*), @@TRANCOUNT FROM t",
                     "1\n0 | 0"},
                    {"BEGIN TRAN uno SAVE TRAN s INSERT t VALUES (1) ROLLBACK TRAN s INSERT t VALUES (2) "
                     "SAVE TRAN s INSERT t VALUES (3) ROLLBACK TRAN s COMMIT SELECT a FROM t",
                     "a\n2"},
                    {"BEGIN TRAN CREATE TABLE efimera (a int) ROLLBACK SELECT OBJECT_ID('efimera')", "NULL"},
                    {"COMMIT", "Msg 3902, Level 16, State 1: The COMMIT TRANSACTION request has no "
                               "corresponding BEGIN TRANSACTION."},
                    {"ROLLBACK", "Msg 3903, Level 16, State 1: The ROLLBACK TRANSACTION request has no "
                                 "corresponding BEGIN TRANSACTION."},
                    {"BEGIN TRAN INSERT t VALUES (9) INSERT t VALUES (9) COMMIT SELECT a FROM t WHERE a = 9",
                     "Msg 2627, Level 14, State 1: Violation of PRIMARY KEY constraint 'PK_t'. Cannot insert "
                     "duplicate key in object 'dbo.t'. The duplicate key "
                     "value is (9).\n-- The statement has been terminated.\na\n9"},
                    {"SET XACT_ABORT ON BEGIN TRAN INSERT t VALUES (20) INSERT t VALUES (2) PRINT 'never'",
                     "Msg 2627, Level 14, State 1: Violation of PRIMARY KEY constraint 'PK_t'. Cannot insert "
                     "duplicate key in object 'dbo.t'. The duplicate key "
                     "value is (2).\n-- The statement has been terminated."},
                    {"SET XACT_ABORT OFF SELECT @@TRANCOUNT, COUNT(*) FROM t WHERE a = 20", "0 | 0"},
                    {"BEGIN TRAN INSERT t VALUES (30) SELECT CAST('x' AS int)",
                     "Msg 245, Level 16, State 1: Conversion failed when converting the varchar value 'x' to "
                     "data type int."},
                    {"SELECT @@TRANCOUNT", "0"},
                    {"SET IMPLICIT_TRANSACTIONS ON INSERT t VALUES (40) SELECT @@TRANCOUNT ROLLBACK SET "
                     "IMPLICIT_TRANSACTIONS OFF SELECT COUNT(*) FROM t WHERE a = 40",
                     "1\n0"},
                });
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

TEST(Batches, TellBothFaultsOfAStrayQuote)
{
    expectAnswers(
        freshDatabase(),
        {
            {"INSERT t VALUES ('O'Neil')",
             "Msg 102, Level 15, State 1: Incorrect syntax near 'Neil'.\nMsg 105, Level 15, "
             "State 1: Unclosed quotation mark after the character string ')'."},
            {"SELECT 'abc", "Msg 105, Level 15, State 1: Unclosed quotation mark after the character string "
                            "'abc'.\nMsg 102, Level 15, State 1: Incorrect syntax near 'abc'."},
            {"EXEC ('SELECT ''abc') PRINT 'after'",
             "Msg 105, Level 15, State 1: Unclosed quotation mark after the character string 'abc'.\nMsg "
             "102, "
             "Level 15, State 1: Incorrect syntax near 'abc'.\n-- after"},
            {"SELECT FROM", "Msg 156, Level 15, State 1: Incorrect syntax near the keyword 'FROM'."},
        });
}

TEST(Batches, ShowTheirTransactionsToOthersAtOnce)
{
    expectAnswers(
        freshDatabase(),
        {{"BEGIN TRAN BEGIN TRAN SELECT open_tran FROM master..sysprocesses WHERE spid = @@SPID COMMIT "
          "SELECT open_tran FROM master..sysprocesses WHERE spid = @@SPID ROLLBACK SELECT open_tran "
          "FROM master..sysprocesses WHERE spid = @@SPID",
          "open_tran\n2\nopen_tran\n1\nopen_tran\n0"}});
}

TEST(Batches, TakeValuesOfAnyTypeForNames)
{
    expectAnswers(freshDatabase(),
                  {
                      {"SELECT @@REMSERVER, @@CONNECTIONS", "NULL | 0"},
                      {"DECLARE @i int SET @i = 7 BEGIN TRAN @i ROLLBACK TRAN @i PRINT @@TRANCOUNT", "-- 0"},
                      {"DECLARE @i int SET @i = 7 EXEC @i",
                       "Msg 2812, Level 16, State 62: Could not find stored procedure '7'."},
                      {"DECLARE @i int THROW @i, 'x', 1", "Msg 0, Level 16, State 1: x"},
                  });
}

TEST(Batches, LeaveUndoneWhatTheSessionDoesNotWantDone)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (a int)");
    expectAnswers(engine,
                  {
                      {"SET NOEXEC ON INSERT t VALUES (1) PRINT 'x' SELECT 1 SET NOEXEC OFF SELECT COUNT(*) "
                       "FROM t",
                       "0"},
                      {"SET FMTONLY ON INSERT t VALUES (1) DROP TABLE t SELECT a FROM t SET FMTONLY OFF "
                       "SELECT COUNT(*) FROM t",
                       "a\n0"},
                  });
}

} // namespace practice::test
