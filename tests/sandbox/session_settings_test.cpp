// What steers a session: its language and the order of its dates, how much text it gets, and what it has from
// its login.
#include "engine_cases.h"
#include "raw_server.h"

#include <algorithm>
#include <chrono>

namespace practice::test {

namespace {

using Settings = RawServer;

bool holdsBytes(const Bytes& reply, std::initializer_list<int> wanted)
{
    return std::search(reply.begin(), reply.end(), wanted.begin(), wanted.end(),
                       [](std::uint8_t left, int right) { return left == right; }) != reply.end();
}

bool holdsText(const Bytes& reply, std::string_view text)
{
    Bytes wanted;
    appendText(wanted, text);
    return std::search(reply.begin(), reply.end(), wanted.begin(), wanted.end()) != reply.end();
}

/// Milliseconds that a batch takes; it has to run without error.
long timeOf(Engine& engine, const char* batch)
{
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(engine.run(batch), "") << batch;
    const auto took = std::chrono::steady_clock::now() - begin;
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(took).count());
}

constexpr const char* outOfRange =
    "Msg 242, Level 16, State 3: The conversion of a varchar data type to a datetime "
    "data type resulted in an out-of-range value.";
constexpr const char* noDate =
    "Msg 241, Level 16, State 1: Conversion failed when converting date and/or time from character string.";

} // namespace

TEST(Dates, AreReadInTheSessionsOrder)
{
    Engine& engine = freshDatabase();
    engine.run(
        "CREATE TABLE t (d datetime, e date) CREATE TABLE c (s varchar(20)) INSERT c VALUES ('01/02/03')");
    const char* const literal =
        "SELECT CONVERT(char(8), CAST('01/02/03' AS datetime), 112), YEAR('03/04/05')";
    const char* const column = "SELECT CONVERT(char(8), CAST(s AS datetime), 112) FROM c";
    expectAnswers(
        engine,
        {
            {literal, "20030102 | 2005"},
            {"SET DATEFORMAT dmy", ""},
            {literal, "20030201 | 2005"},
            {column, "20030201"},
            {"SET DATEFORMAT 'YMD'", ""},
            {literal, "20010203 | 2003"},
            {column, "20010203"},
            {"SET DATEFORMAT ydm", ""},
            {literal, "20010302 | 2003"},
            {"SELECT CAST('01/02/03' AS date)", noDate},
            {"SET DATEFORMAT myd", ""},
            {literal, "20020103 | 2004"},
            {"DECLARE @f varchar(3) SET @f = 'dym' SET DATEFORMAT @f", ""},
            {literal, "20020301 | 2004"},
            {"SET DATEFORMAT xyz",
             "Msg 2741, Level 16, State 1: SET DATEFORMAT date order 'xyz' is invalid."},
            {"SET DATEFORMAT dmy DECLARE @d datetime SET @d = '13/02/2000' INSERT t VALUES ('14/02/2000', "
             "'2000-02-03') SELECT CONVERT(char(8), @d, 112), CONVERT(char(8), d, 112), CONVERT(char(10), e) "
             "FROM t",
             "20000213 | 20000214 | 2000-02-03"},
            {"SELECT COUNT(*) FROM t WHERE d = '14/02/2000'", "1"},
            {"SELECT ISDATE('13/02/2000'), ISDATE('02/13/2000'), DATEDIFF(day, '01/02/2000', '02/02/2000')",
             "1 | 0 | 1"},
            {"EXEC sp_executesql N'SELECT CONVERT(char(8), @d, 112)', N'@d datetime', '13/02/2000'",
             "20000213"},
            // A year in front leaves the order to the session, unless the type or the form is newer.
            {"SELECT CONVERT(char(8), CAST('2000-02-03' AS datetime), 112), CAST('2000-02-03' AS date), "
             "CONVERT(char(8), CAST('2000-02-03T00:00:00' AS datetime), 112), CONVERT(char(8), "
             "CAST('20000203' AS datetime), 112)",
             "20000302 | 2000-02-03 | 20000203 | 20000203"},
            {"SELECT CONVERT(char(8), CONVERT(datetime, '01/02/2000', 101), 112), CONVERT(char(8), "
             "CONVERT(datetime, '2000-02-03', 120), 112)",
             "20000102 | 20000203"},
            {"SELECT CAST('02/13/2000' AS datetime)", outOfRange},
            {"EXEC('SET DATEFORMAT mdy SELECT CONVERT(char(8), CAST(''01/02/03'' AS datetime), 112)')",
             "20030102"},
            {column, "20030201"},
            {"SET DATEFORMAT mdy", ""},
            {literal, "20030102 | 2005"},
        });
}

TEST(Languages, NameMonthsAndDays)
{
    Engine& engine = freshDatabase();
    const char* const state = "SELECT @@LANGUAGE, @@LANGID, @@DATEFIRST, DATEPART(weekday, '20240101')";
    const char* const names =
        "SELECT DATENAME(month, '20240107'), DATENAME(weekday, '20240107'), CONVERT(varchar(11), "
        "CAST('20240107' AS datetime))";
    expectAnswers(
        engine,
        {
            {state, "us_english | 0 | 7 | 2"},
            {names, "January | Sunday | Jan  7 2024"},
            {"SET LANGUAGE Spanish", "-- Changed language setting to Español."},
            {state, "Español | 5 | 1 | 1"},
            {names, "Enero | Domingo | Ene  7 2024"},
            {"SELECT CONVERT(char(8), CAST('5 de' + '' AS datetime), 112)", noDate},
            {"SELECT CONVERT(char(8), CAST('5 ene 2000' AS datetime), 112), CONVERT(char(8), CAST('AGOSTO 6, "
             "1999 10:00' "
             "AS datetime), 112), CONVERT(char(8), CAST('13/02/2000' AS datetime), 112)",
             "20000105 | 19990806 | 20000213"},
            {"SELECT CAST('January 5, 2000' AS datetime)", noDate},
            {"SET DATEFIRST 3 SET DATEFORMAT mdy SELECT @@DATEFIRST, MONTH('02/03/2000')", "3 | 2"},
            {"SET LANGUAGE N'français'", "-- Changed language setting to Français."},
            {"SELECT CONVERT(char(8), CAST('3 AOÛT 2001' AS datetime), 112), CONVERT(char(8), CAST('3 févr "
             "2001' AS "
             "datetime), 112), @@DATEFIRST, MONTH('02/03/2000')",
             "20010803 | 20010203 | 1 | 3"},
            {"SET LANGUAGE Klingon", "Msg 2740, Level 16, State 1: SET LANGUAGE failed because 'Klingon' is "
                                     "not an official language name or a "
                                     "language alias on this SQL Server."},
            {"SET DATEFIRST 8", "Msg 2742, Level 16, State 1: SET DATEFIRST 8 is out of range."},
            {"EXEC sp_helplanguage Klingon",
             "Msg 15033, Level 16, State 1: 'Klingon' is not a valid official language name."},
            {"EXEC sp_helplanguage Spanish",
             "langid | dateformat | datefirst | upgrade | name | alias | months | shortmonths | days | lcid "
             "| "
             "msglangid\n5 | dmy | 1 | 0 | Español | Spanish | "
             "Enero,Febrero,Marzo,Abril,Mayo,Junio,Julio,Agosto,Septiembre,Octubre,Noviembre,Diciembre | "
             "Ene,Feb,Mar,Abr,May,Jun,Jul,Ago,Sep,Oct,Nov,Dic | "
             "Lunes,Martes,Miércoles,Jueves,Viernes,Sábado,Domingo | 3082 | 3082"},
            {"SET LANGUAGE us_english", "-- Changed language setting to us_english."},
            {names, "January | Sunday | Jan  7 2024"},
            {"EXEC sp_addlogin 'pepa', 'Clave1', 'master', 'Español'", "-- New login created."},
        });
    const auto pepa = engine.login("pepa", "Clave1");
    EXPECT_EQ(Engine::run(*pepa, "SELECT @@LANGUAGE AS l, MONTH('02/03/2000') AS m"), "l | m\nEspañol | 3\n");
    Answer ignored;
    Engine::run(*pepa, "SET LANGUAGE us_english");
    pepa->reset(ignored);
    EXPECT_EQ(Engine::run(*pepa, "SELECT @@LANGUAGE AS l"), "l\nEspañol\n");
}

TEST_F(Settings, TheLanguageIsAnnounced)
{
    RawClient one = client({.language = "Spanish"});
    EXPECT_EQ(
        ask(one, "IF @@LANGUAGE <> N'Español' OR MONTH('02/03/2000') <> 3 RAISERROR('language', 16, 1)"), 0);
    const Bytes reply = one.ask(batchMessage("SET LANGUAGE us_english"));
    // ENVCHANGE: its length, language, the new name and the old one, each after its length.
    EXPECT_TRUE(holdsBytes(reply, {0xE3, 37, 0, 2, 10, 'u', 0, 's', 0, '_', 0, 'e', 0}));
    EXPECT_TRUE(holdsText(reply, "Español"));
    RawClient other(tds_.port());
    EXPECT_EQ(firstError(other.ask(loginPacket({"Secret1", 4096, "tempdb", "Klingon", 0x03}))), 4019);
}

TEST_F(Settings, TextSizeCutsWhatIsSent)
{
    RawClient one = client();
    constexpr const char* query =
        "SELECT CAST('abcdefghij' AS varchar(max)), CAST(N'abcdefghij' AS nvarchar(max)), "
        "CAST('abcdefghij' AS varchar(10))";
    constexpr const char* older = "SELECT CAST('abcdefghij' AS text), CAST(N'abcdefghij' AS ntext)";
    EXPECT_TRUE(
        holdsBytes(one.ask(batchMessage(query)), {0xD1, 10, 0, 0, 0, 0, 0, 0, 0, 10, 0, 0, 0, 'a', 'b'}));
    EXPECT_TRUE(holdsBytes(one.ask(batchMessage(older)), {0x23, 0xFF, 0xFF, 0xFF, 0x7F}));
    EXPECT_EQ(ask(one, "SET TEXTSIZE 5 IF @@TEXTSIZE <> 5 RAISERROR('size', 16, 1)"), 0);
    const Bytes cut = one.ask(batchMessage(query));
    EXPECT_TRUE(holdsBytes(cut, {0xD1, 5,   0,   0, 0,   0, 0,   0, 0, 5, 0, 0, 0,  'a', 'b',
                                 'c',  'd', 'e', 0, 0,   0, 0,   4, 0, 0, 0, 0, 0,  0,   0,
                                 4,    0,   0,   0, 'a', 0, 'b', 0, 0, 0, 0, 0, 10, 0,   'a'}));
    const Bytes text = one.ask(batchMessage(older));
    EXPECT_TRUE(holdsBytes(text, {0x23, 5, 0, 0, 0}));
    EXPECT_TRUE(holdsBytes(text, {0x63, 4, 0, 0, 0}));
    EXPECT_TRUE(holdsBytes(text, {5, 0, 0, 0, 'a', 'b', 'c', 'd', 'e', 16}));
    // What the server does with a value itself is not cut.
    EXPECT_EQ(ask(one,
                  "DECLARE @v varchar(max) SELECT @v = CAST('abcdefghij' AS varchar(max)) IF LEN(@v) <> 10 "
                  "RAISERROR('length', 16, 1)"),
              0);
    EXPECT_EQ(ask(one, "SET TEXTSIZE 0 IF @@TEXTSIZE <> 4096 RAISERROR('size', 16, 1)"), 0);
    EXPECT_EQ(ask(one, "SET TEXTSIZE -1 IF @@TEXTSIZE <> -1 RAISERROR('size', 16, 1)"), 0);
    EXPECT_TRUE(holdsBytes(one.ask(batchMessage(query)), {0xD1, 10, 0, 0, 0, 0, 0, 0, 0, 10, 0, 0, 0}));
}

TEST_F(Settings, TheLoginsFlagsDecideTheFirstOptions)
{
    const struct
    {
        std::uint8_t flags;
        std::uint32_t version;
        const char* check;
    } cases[] = {
        {0x02, 0x74000004, "IF @@OPTIONS <> 5432 OR @@TEXTSIZE <> -1 RAISERROR('x', 16, 1)"},
        {0x02, 0x72090002, "IF @@OPTIONS <> 5432 OR @@TEXTSIZE <> 2147483647 RAISERROR('x', 16, 1)"},
        {0x00, 0x74000004, "IF @@OPTIONS <> 0 OR @@TEXTSIZE <> 4096 RAISERROR(\"x\", 16, 1)"},
    };
    for (const auto& item : cases) {
        RawClient one = client({.optionFlags2 = item.flags, .version = item.version});
        EXPECT_EQ(ask(one, item.check), 0) << item.check;
    }
    // A reset connection goes back to them.
    RawClient one = client({.optionFlags2 = 0});
    ASSERT_EQ(ask(one, "SET ANSI_NULLS ON SET QUOTED_IDENTIFIER ON SET TEXTSIZE 9"), 0);
    EXPECT_EQ(firstError(one.ask(batchPacket("IF @@OPTIONS <> 0 OR @@TEXTSIZE <> 4096 RAISERROR('x', 16, 1)",
                                             EndOfMessage | ResetConnection))),
              0);
}

TEST(WaitFor, TakesTheFormsOfTheServer)
{
    Engine& engine = freshDatabase();
    constexpr const char* untilText =
        "DECLARE @t varchar(12) SET @t = CONVERT(varchar(12), DATEADD(ms, 200, GETDATE()), 114) WAITFOR "
        "TIME @t";
    for (const char* batch : {
             "WAITFOR DELAY '00:00:00.2'",
             "WAITFOR DELAY N' 0:0:0:200 '",
             "DECLARE @c char(20) SET @c = '00:00:00.200' WAITFOR DELAY @c",
             "DECLARE @d datetime SET @d = '20000102 00:00:00.200' WAITFOR DELAY @d",
             "DECLARE @t datetime SET @t = DATEADD(ms, 200, GETDATE()) WAITFOR TIME @t",
             untilText,
         }) {
        const long took = timeOf(engine, batch);
        EXPECT_GE(took, 180) << batch;
        EXPECT_LT(took, 2000) << batch;
    }
    EXPECT_GE(timeOf(engine, "DECLARE @s smallint SET @s = 1 WAITFOR DELAY @s"), 980);
    for (const char* batch : {"WAITFOR DELAY ''", "WAITFOR DELAY '00:00'",
                              "DECLARE @n varchar(9) WAITFOR DELAY @n", "WAITFOR DELAY '12:00:00.000 AM'"})
        EXPECT_LT(timeOf(engine, batch), 150) << batch;
    const auto wrong = [](const char* text) {
        return std::string("Msg 148, Level 15, State 1: Incorrect time syntax in time string '") + text +
               "' used with WAITFOR.\n";
    };
    for (const char* text :
         {"5", "24:00:00", "00:60", "nada", "20000101 00:00:01", "00:00:00.1234", "1:2:3:4:5"})
        EXPECT_EQ(engine.run(std::string("PRINT 'never' WAITFOR DELAY '") + text + "'"), wrong(text));
    EXPECT_EQ(engine.run("PRINT 'never' WAITFOR TIME '25:00'"), wrong("25:00"));
    expectAnswers(
        engine,
        {
            {"DECLARE @c varchar(20) SET @c = 'nada' PRINT 'first' WAITFOR DELAY @c",
             "-- first\nMsg 241, Level 16, State 1: Conversion failed when converting date and/or time from "
             "character string."},
            {"DECLARE @t time SET @t = '00:00:01' WAITFOR DELAY @t",
             "Msg 9815, Level 16, State 0: Waitfor delay and waitfor time cannot be of type time."},
            {"WAITFOR DELAY 1", "Msg 102, Level 15, State 1: Incorrect syntax near '1'."},
        });
}

TEST(Prepare, DescribesItsColumns)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (a int NOT NULL, b varchar(5)) INSERT t VALUES (1, 'x')");
    const SqlType text{TypeId::NVarChar, 200};
    const auto prepare = [&engine, &text](const char* declarations, const char* statement, int options) {
        Answer answer;
        answer.showTypes = true;
        std::vector<Parameter> parameters{{"", {TypeId::Int, 4}, {}, true, false},
                                          {"", text, {std::string(declarations), {}}, false, false},
                                          {"", text, {std::string(statement), {}}, false, false},
                                          {"", {TypeId::Int, 4}, {std::int64_t{options}, {}}, false, false}};
        engine.session().executeProcedure("sp_prepare", std::move(parameters), answer);
        return answer.text.substr(0, answer.text.rfind(" = "));
    };
    EXPECT_EQ(prepare("@p int", "SELECT a, b, @p AS p FROM t WHERE a = @p", 1),
              "a:int not null | b:varchar(5) | p:int\n");
    EXPECT_EQ(prepare("", "SELECT a FROM t", 0), "");
    EXPECT_EQ(prepare("", "UPDATE t SET a = 2", 1), "");
    EXPECT_EQ(prepare("", "SELECT nada FROM t", 1),
              "Msg 207, Level 16, State 1: Invalid column name 'nada'.\n"
              "Msg 8180, Level 16, State 1: Statement(s) could not be prepared.\n");
    EXPECT_EQ(prepare("", "DECLARE @v TABLE (c int) SELECT c FROM @v", 1), "");
    expectAnswers(
        engine,
        {{"DECLARE @h int EXEC sp_prepare @h OUTPUT, N'', N'SELECT a FROM t' EXEC sp_execute @h", "a\na\n1"},
         {"SELECT a FROM t", "a\n1"}});
}

TEST(DatatypeInfo, ComesInItsVersions)
{
    Engine& engine = freshDatabase();
    const auto row = [&engine](const std::string& call) {
        const std::string answer = engine.run(call);
        const std::size_t end = answer.find('\n');
        return answer.substr(end + 1, answer.find(" | ", answer.find(" | ", end) + 3) - end - 1);
    };
    EXPECT_EQ(row("EXEC sp_datatype_info_100 91, 3"), "date | 91");
    EXPECT_EQ(row("EXEC sp_datatype_info_100 @data_type = -154, @ODBCVer = 3"), "time | -154");
    EXPECT_EQ(row("EXEC sp_datatype_info_90 -9, 3"), row("EXEC sp_datatype_info_90 -9, @ODBCVer = 3"));
    EXPECT_NE(engine.run("EXEC sp_datatype_info_90 -9, 3").find("date | -9"), std::string::npos);
}

} // namespace practice::test
