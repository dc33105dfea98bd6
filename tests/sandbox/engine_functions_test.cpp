// Expressions: literals, operators, conversions and built-in functions.
#include "engine_cases.h"

namespace practice::test {

TEST(Expressions, FollowTheTypesOfTheirOperands)
{
    expectAnswers(
        freshDatabase(),
        {
            {"SELECT 7/2, 7.0/2, 7%3, 1/3.0, 1e0/4", "3 | 3.500000 | 1 | 0.333333 | 0.25"},
            {"SELECT 10 & 6, 10 | 5, 10 ^ 3, ~5, 0x0A + 1", "2 | 15 | 9 | -6 | 11"},
            {"SELECT 'a' + N'b', '1' + 1, 'x' + NULL", "ab | 2 | NULL"},
            {"SELECT $1.5 * 2, $10 / 4, 0.1 + 0.02", "3.00 | 2.50 | 0.12"},
            {"SELECT 12345678901, 1.10, -.5", "12345678901 | 1.10 | -0.5"},
            {"SELECT CAST('2024-02-28' AS datetime) + 1", "Feb 29 2024 12:00AM"},
            {"SELECT CASE WHEN 1 = 2 THEN 1 ELSE 2.5 END, COALESCE(NULL, 3), NULLIF(1, 1), ISNULL(NULL, 'x')",
             "2.5 | 3 | NULL | x"},
            {"SELECT DATALENGTH(CONVERT(varbinary(8), 255)), CONVERT(char(4), 'ab') + '|'", "4 | ab  |"},
        });
}

TEST(Expressions, JoinNullsAsTheSessionWantsIt)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (a varchar(5) NULL) INSERT t VALUES (NULL)");
    expectAnswers(engine,
                  {
                      {"SELECT 'x' + a FROM t SET CONCAT_NULL_YIELDS_NULL OFF SELECT 'x' + a FROM t "
                       "SELECT 'x' + NULL",
                       "NULL\nx\nx"},
                      {"DECLARE @v varchar(9) SELECT @v = @v + 'y' + a FROM t SELECT @v SET @v = NULL "
                       "SET @v += 'z' SELECT @v",
                       "y\nz"},
                      {"SELECT 1 + NULL, CAST(NULL AS varbinary(2)) + 0x01", "NULL | NULL"},
                      // A plan made under the one setting does not serve the other.
                      {"SET CONCAT_NULL_YIELDS_NULL ON SELECT 'x' + NULL", "NULL"},
                  });
}

TEST(Expressions, RaiseTheServersErrors)
{
    expectAnswers(
        freshDatabase(),
        {
            {"SELECT 1/0", "Msg 8134, Level 16, State 1: Divide by zero error encountered."},
            {"SELECT 2147483647 + 1", "Msg 8115, Level 16, State 2: Arithmetic overflow error converting "
                                      "expression to data type int."},
            {"SELECT CAST(9223372036854775807 AS bigint) + 1",
             "Msg 8115, Level 16, State 2: Arithmetic overflow error converting expression to data type "
             "bigint."},
            {"SELECT 'abc' - 'd'",
             "Msg 8117, Level 16, State 1: Operand data type varchar is invalid for subtract operator."},
            {"SELECT CONVERT(int, 'abc')", "Msg 245, Level 16, State 1: Conversion failed when converting "
                                           "the varchar value 'abc' to data type int."},
            {"SELECT CAST('x' AS decimal(5,2))",
             "Msg 8114, Level 16, State 5: Error converting data type varchar to numeric."},
            {"SELECT CAST(1 AS bit) + CAST(1 AS bit)",
             "Msg 8117, Level 16, State 1: Operand data type bit is invalid for add operator."},
            {"SELECT GETDATE() * 2",
             "Msg 8117, Level 16, State 1: Operand data type datetime is invalid for multiply operator."},
            {"SELECT NEWID() + 1", "Msg 402, Level 16, State 1: The data types uniqueidentifier and int are "
                                   "incompatible in the add operator."},
            {"SELECT nothere(1)",
             "Msg 195, Level 15, State 10: 'nothere' is not a recognized built-in function name."},
            {"SELECT LEN('a', 'b')", "Msg 174, Level 15, State 1: The len function requires 1 argument(s)."},
            {"SELECT LEFT('abc', -1)",
             "Msg 536, Level 16, State 1: Invalid length parameter passed to the left function."},
            {"SELECT DATEADD(year, 9000, '20240101')",
             "Msg 517, Level 16, State 1: Adding a value to a 'datetime' column caused an overflow."},
            {"SELECT SQRT(-1)", "Msg 3623, Level 16, State 1: An invalid floating point operation occurred."},
            {"SELECT CONVERT(int, GETDATE()) + CAST(CAST('20240101' AS date) AS int)",
             "Msg 529, Level 16, State 2: Explicit conversion from data type date to int is not allowed."},
        });
}

TEST(Functions, OfText)
{
    expectAnswers(
        freshDatabase(),
        {
            {"SELECT LEN('abc  '), DATALENGTH('abc  '), DATALENGTH(N'abc'), LEN(N'ñandú')", "3 | 5 | 6 | 5"},
            {"SELECT SUBSTRING('hello', 2, 3), SUBSTRING('hello', 0, 3), LEFT('abc', 2), RIGHT('abc', 2)",
             "ell | he | ab | bc"},
            {"SELECT '[' + LTRIM('  a ') + RTRIM(' b  ') + TRIM('  c  ') + ']'", "[a  bc]"},
            {"SELECT UPPER('año'), LOWER('AÑO'), REVERSE('año')", "AÑO | año | oña"},
            {"SELECT REPLACE('aXbx', 'x', '-'), STUFF('abcdef', 2, 3, 'ZZ'), REPLICATE('ab', 3), SPACE(2) + "
             "'|'",
             "a-b- | aZZef | ababab |   |"},
            {"SELECT CHARINDEX('C', 'abcabc', 4), CHARINDEX('z', 'abc'), PATINDEX('%[0-9]%', 'ab3'), "
             "PATINDEX('a%', 'abc')",
             "6 | 0 | 3 | 1"},
            {"SELECT STR(3.14159, 8, 2), STR(12345, 3), STR(2)", "    3.14 | *** |          2"},
            {"SELECT QUOTENAME('a]b'), QUOTENAME('x', ''''), PARSENAME('a.b.c', 1), PARSENAME('a.[b.c]', 1)",
             "[a]]b] | 'x' | c | b.c"},
            {"SELECT CHAR(65), ASCII('a'), UNICODE(N'€'), NCHAR(8364), CHAR(300)",
             "A | 97 | 8364 | € | NULL"},
            {"SELECT CONCAT('a', NULL, 1), CONCAT_WS('-', 'a', NULL, 'b'), SOUNDEX('Robert'), "
             "DIFFERENCE('Smith', 'Smyth')",
             "a1 | a-b | R163 | 4"},
        });
}

TEST(Functions, OfDatesAndNumbers)
{
    expectAnswers(
        freshDatabase(),
        {
            {"SELECT DATEADD(month, 1, '2024-01-31'), DATEADD(hh, -1, '20240101')",
             "Feb 29 2024 12:00AM | Dec 31 2023 11:00PM"},
            {"SELECT DATEDIFF(year, '20231231', '20240101'), DATEDIFF(dd, '20240101', '20240301'), "
             "DATEDIFF(mi, '10:00', '11:30')",
             "1 | 60 | 90"},
            {"SELECT DATENAME(weekday, '2024-05-06'), DATEPART(dw, '2024-05-06'), DATEPART(wk, "
             "'2024-01-07'), "
             "DATEPART(iso_week, '2024-12-30')",
             "Monday | 2 | 2 | 1"},
            {"SELECT YEAR('20240506'), MONTH('20240506'), DAY('20240506'), EOMONTH('20240210')",
             "2024 | 5 | 6 | 2024-02-29"},
            {"SELECT ISDATE('2024-02-30'), ISDATE('20240229'), ISNUMERIC('1e3'), ISNUMERIC('x'), "
             "ISNUMERIC('')",
             "0 | 1 | 1 | 0 | 0"},
            {"SET DATEFIRST 1 SELECT DATEPART(dw, '2024-05-06') SET DATEFIRST 7", "1"},
            {"SELECT CONVERT(varchar(20), CAST('2024-01-02 03:04:05' AS datetime), 120), "
             "CONVERT(char(8), CAST('2024-01-02' AS datetime), 112)",
             "2024-01-02 03:04:05 | 20240102"},
            {"SELECT ABS(-5), CEILING(1.2), FLOOR(-1.2), ROUND(123.456, 1), ROUND(155, -1), ROUND(1.55, 1, "
             "1)",
             "5 | 2 | -2 | 123.500 | 160 | 1.50"},
            {"SELECT POWER(2, 10), SQRT(16), SIGN(-3.5), SQUARE(3), LOG10(1000)", "1024 | 4 | -1.0 | 9 | 3"},
        });
}

TEST(Functions, OfTheSession)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE Pedidos (num int IDENTITY(5,5) PRIMARY KEY, nombre nvarchar(30) NULL)");
    expectAnswers(
        engine,
        {
            {"SELECT DB_NAME(), USER_NAME(), SUSER_SNAME(), HOST_NAME(), APP_NAME(), @@SERVERNAME",
             "Ventas | dbo | sa | here | tests | PRACTICE"},
            {"SELECT DB_NAME(DB_ID('Ventas')), OBJECT_NAME(OBJECT_ID('dbo.Pedidos')), OBJECT_ID('nothere')",
             "Ventas | Pedidos | NULL"},
            {"SELECT COL_LENGTH('Pedidos', 'nombre'), COL_NAME(OBJECT_ID('Pedidos'), 2), "
             "COLUMNPROPERTY(OBJECT_ID('Pedidos'), 'num', 'IsIdentity')",
             "60 | nombre | 1"},
            {"SELECT OBJECTPROPERTY(OBJECT_ID('Pedidos'), 'TableHasPrimaryKey'), IDENT_SEED('Pedidos'), "
             "IDENT_INCR('Pedidos'), "
             "IDENT_CURRENT('Pedidos')",
             "1 | 5 | 5 | 5"},
            {"SELECT IS_MEMBER('db_owner'), IS_SRVROLEMEMBER('sysadmin'), HAS_DBACCESS('Ventas'), "
             "IS_MEMBER('nothere')",
             "1 | 1 | 1 | NULL"},
            {"SELECT DATABASEPROPERTYEX('Ventas', 'Status'), DATABASEPROPERTYEX('', 'Recovery'), "
             "DATABASEPROPERTY('Ventas', 'IsAutoClose')",
             "ONLINE | NULL | 0"},
            {"INSERT Pedidos (nombre) VALUES ('a') SELECT @@IDENTITY, SCOPE_IDENTITY(), @@ROWCOUNT, @@ERROR",
             "5 | 5 | 1 | 0"},
        });
}

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

TEST(Functions, HashBytes)
{
    expectAnswers(
        freshDatabase(),
        {
            {"SELECT CONVERT(varchar(130), HASHBYTES('MD5', 'abc'), 2)", "900150983CD24FB0D6963F7D28E17F72"},
            {"SELECT CONVERT(varchar(130), HASHBYTES('md4', 'abc'), 2)", "A448017AAF21D8525FC10AE87AA6729D"},
            {"SELECT CONVERT(varchar(130), HASHBYTES('SHA', 'abc'), 2), CONVERT(varchar(130), "
             "HASHBYTES('SHA1', 0x616263), 2)",
             "A9993E364706816ABA3E25717850C26C9CD0D89D | A9993E364706816ABA3E25717850C26C9CD0D89D"},
            {"SELECT CONVERT(varchar(130), HASHBYTES('SHA2_256', 'abc'), 2)",
             "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD"},
            {"SELECT DATALENGTH(HASHBYTES('SHA2_512', 'abc'))", "64"},
            // Texts are hashed as they are stored.
            {"SELECT CONVERT(varchar(130), HASHBYTES('MD5', N'abc'), 2), CONVERT(varchar(130), "
             "HASHBYTES('MD5', 'ñ'), 2)",
             "CE1473CF80C6B3FDA8E3DFC006ADC315 | EDB907361219FB8D50279EABAB0B83B1"},
            {"SELECT HASHBYTES('nada', 'abc'), HASHBYTES('MD5', NULL)", "NULL | NULL"},
            {"SELECT HASHBYTES('MD2', 'abc')", "Msg 40510, Level 16, State 1: Statement 'HASHBYTES MD2' is "
                                               "not supported in this version of SQL "
                                               "Server."},
            {"SELECT HASHBYTES('MD5', 1)",
             "Msg 8116, Level 16, State 1: Argument data type int is invalid for "
             "argument 2 of hashbytes function."},
        });
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
