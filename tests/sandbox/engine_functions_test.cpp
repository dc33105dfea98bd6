// Expressions: literals, operators, conversions and built-in functions.
#include "engine_cases.h"

namespace practice::test {

TEST(Functions, KeepTheTypesThatTheServerGivesThem)
{
    Engine& engine = freshDatabase();
    expectAnswers(
        engine,
        {
            {"SELECT DEGREES(1), DEGREES(CAST(0.5 AS float)), DEGREES($1.0)", "57 | 28.6479 | 57.30"},
            {"SELECT LEFT(DEGREES(1.0), 15), LEFT(RADIANS(180.0), 15), RADIANS(CAST(1 AS bit))",
             "57.295779513082 | 3.1415926535897 | 0.0174533"},
            {"SELECT POWER(10.0, 5), POWER(1.50, 2), SIGN(0.5), POWER(2, 3.9)", "100000.0 | 2.25 | 1.0 | 14"},
        });
    EXPECT_EQ(
        engine.describe("SELECT DEGREES(1.0) a, RADIANS(1.5) b, POWER(1.50, 2) c, DEGREES(CAST(1 AS bit)) d"
                        " WHERE 1 = 0"),
        "a:numeric(38,18) | b:numeric(38,18) | c:numeric(38,2) | d:float\n");
}

TEST(Functions, TakeForNumbersWhatTheServerTakes)
{
    Engine& engine = freshDatabase();
    for (const char* number : {"+", "-", ".", ",", "$", "-.", "$,", "-$.", "1,2,3", ",1", "1e5", "1d5",
                               "-1.5", "$1", "\\", "+1", " 1 ", "\t"})
        EXPECT_EQ(engine.run("SELECT ISNUMERIC('" + std::string(number) + "')"), "\n1\n") << number;
    for (const char* other : {"", " ", "+-", "--", "1-", "e", "d", "1x", "..", "0x1F", "1.2.3", "a"})
        EXPECT_EQ(engine.run("SELECT ISNUMERIC('" + std::string(other) + "')"), "\n0\n") << other;
    expectAnswers(engine,
                  {{"SELECT CAST('-' AS int), CAST('.' AS money), CAST('1d2' AS float)", "0 | 0.00 | 100"},
                   {"SELECT CAST('.' AS float)",
                    "Msg 8114, Level 16, State 5: Error converting data type varchar to float."}});
}

TEST(Functions, TellTheProperties)
{
    Engine& engine = freshDatabase();
    const auto properties = [&engine](const std::string& value) {
        std::string answer =
            engine.run("DECLARE @v sql_variant SET @v = " + value +
                       " SELECT SQL_VARIANT_PROPERTY(@v, 'BaseType'), "
                       "SQL_VARIANT_PROPERTY(@v, 'Precision'), SQL_VARIANT_PROPERTY(@v, 'Scale'), "
                       "SQL_VARIANT_PROPERTY(@v, 'TotalBytes'), "
                       "SQL_VARIANT_PROPERTY(@v, 'MaxLength'), "
                       "SQL_VARIANT_PROPERTY(@v, 'Collation')");
        answer = withoutBareHeads(answer);
        return answer.substr(0, answer.find('\n'));
    };
    EXPECT_EQ(properties("CAST(46279.1 AS decimal(8,2))"), "decimal | 8 | 2 | 9 | 5 | NULL");
    EXPECT_EQ(properties("1"), "int | 10 | 0 | 6 | 4 | NULL");
    EXPECT_EQ(properties("CAST('ab' AS varchar(10))"),
              "varchar | 0 | 0 | 10 | 10 | SQL_Latin1_General_CP1_CI_AS");
    EXPECT_EQ(properties("N'abc'"), "nvarchar | 0 | 0 | 14 | 6 | SQL_Latin1_General_CP1_CI_AS");
    EXPECT_EQ(properties("GETDATE()"), "datetime | 23 | 3 | 10 | 8 | NULL");
    EXPECT_EQ(properties("CAST('12:00' AS time(3))"), "time | 12 | 3 | 7 | 4 | NULL");
    EXPECT_EQ(properties("$1"), "money | 19 | 4 | 10 | 8 | NULL");
    EXPECT_EQ(properties("0x0102"), "varbinary | 0 | 0 | 6 | 2 | NULL");
    EXPECT_EQ(properties("NULL"), "NULL | NULL | NULL | NULL | NULL | NULL");
    expectAnswers(engine, {{"SELECT SQL_VARIANT_PROPERTY(SERVERPROPERTY('Edition'), 'BaseType'), "
                            "SQL_VARIANT_PROPERTY(1.5, 'nada')",
                            "nvarchar | NULL"},
                           {"SELECT TYPEPROPERTY('int', 'precision'), TYPEPROPERTY('tinyint', 'PRECISION'), "
                            "TYPEPROPERTY('datetime', 'Precision'), TYPEPROPERTY('float', 'precision'), "
                            "TYPEPROPERTY('sysname', 'precision'), TYPEPROPERTY('text', 'precision'), "
                            "TYPEPROPERTY('money', 'scale'), TYPEPROPERTY('varchar', 'scale'), "
                            "TYPEPROPERTY('integer', 'precision'), TYPEPROPERTY('nada', 'precision'), "
                            "TYPEPROPERTY('sysname', 'AllowsNull'), TYPEPROPERTY('char', 'UsesAnsiTrim')",
                            "10 | 3 | 23 | 53 | 128 | 2147483647 | 4 | NULL | 10 | NULL | 0 | 1"}});
}

TEST(Functions, DescribeTheirResults)
{
    EXPECT_EQ(
        freshDatabase().describe(
            "SELECT 1 a, 1.50 b, 'xy' c, N'x' d, GETDATE() e, CAST(1 AS tinyint) + CAST(2 AS tinyint) f, "
            "1.5 * 2.25 g, 'a' + 'bc' h, NULL i, SUM(1.5) j, COUNT(*) k, LEFT('abc', 2) l"),
        "a:int not null | b:numeric(3,2) not null | c:varchar(2) not null | d:nvarchar(1) not null | "
        "e:datetime not null | "
        "f:tinyint not null | g:numeric(6,3) not null | h:varchar(3) not null | i:int | j:decimal(38,1) | "
        "k:int not null | "
        "l:varchar(2)\n1 | 1.50 | xy | x | " +
            [] {
                const std::string now = freshDatabase().run("SELECT GETDATE()");
                return now.substr(1, now.size() - 2);
            }() +
            " | 3 | 3.375 | abc | NULL | 1.5 | 1 | ab\n");
}

} // namespace practice::test
