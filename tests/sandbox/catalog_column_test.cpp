// ALTER COLUMN: from which type to which, and what becomes of the value that stands there.
#include "engine_cases.h"

namespace practice::test {

TEST(Columns, ChangeTheirTypeWithTheValueThatStandsThere)
{
    struct Change
    {
        const char* from;
        const char* value;
        const char* to;       ///< as the designer writes it, odd blanks included
        std::string expected; ///< the value, the type and its length afterwards, or the refusal
    };
    constexpr const char* terminated = "\n-- The statement has been terminated.";
    const auto refusedRow = [&](const char* text) { return std::string(text) + terminated; };
    const std::string truncated =
        refusedRow("Msg 8152, Level 16, State 14: String or binary data would be truncated.");
    const Change cases[] = {
        {"int", "70000", " bigint ", "70000 | bigint | 8"},
        {"int", "70000", " varchar  (10)  COLLATE SQL_Latin1_General_CP1_CI_AS ", "70000 | varchar | 10"},
        {"int", "200", " tinyint ", "200 | tinyint | 1"},
        {"int", "70000", " smallint ",
         refusedRow("Msg 220, Level 16, State 2: Arithmetic overflow error for data type smallint, value = "
                    "70000.")},
        {"int", "70000", " decimal (4) ",
         refusedRow("Msg 8115, Level 16, State 8: Arithmetic overflow error converting int to data type "
                    "numeric.")},
        {"int", "5", " bit  ", "1 | bit | 1"},
        {"int", "5", " datetime  ", "Jan  6 1900 12:00AM | datetime | 8"},
        {"int", "5", " uniqueidentifier ",
         "Msg 206, Level 16, State 2: Operand type clash: int is incompatible with uniqueidentifier"},
        {"int", "5", " timestamp ",
         "Msg 4927, Level 16, State 1: Cannot alter column 'c' to be data type timestamp."},
        {"decimal(10,4)", "1234.5678", " numeric  (5) ", "1235 | numeric | 5"},
        {"decimal(10,4)", "1234.5678", " decimal (3) ",
         refusedRow("Msg 8115, Level 16, State 8: Arithmetic overflow error converting numeric to data type "
                    "numeric.")},
        {"float", "1e10", " int  ",
         refusedRow("Msg 232, Level 16, State 3: Arithmetic overflow error for type int, value = "
                    "10000000000.000000.")},
        {"float", "1.5", " real  ", "1.5 | real | 4"},
        {"money", "12.3456", " smallmoney ", "12.35 | smallmoney | 4"},
        {"money", "922337.5", " smallmoney ",
         refusedRow(
             "Msg 8115, Level 16, State 2: Arithmetic overflow error converting expression to data type "
             "smallmoney.")},
        {"datetime", "'20010203 13:45:40'", " smalldatetime  ", "Feb  3 2001  1:46PM | smalldatetime | 4"},
        {"datetime", "'20010203'", " int  ",
         "Msg 257, Level 16, State 3: Implicit conversion from data type datetime to int is not allowed. Use "
         "the CONVERT function to run this query."},
        {"varchar(10)", "'abcdef'", " varchar  (6)  COLLATE SQL_Latin1_General_CP1_CI_AS ",
         "abcdef | varchar | 6"},
        {"varchar(10)", "'abcdef'", " nvarchar (5)  COLLATE SQL_Latin1_General_CP1_CI_AS ", truncated},
        {"varchar(10)", "'abc'", " char (5)  COLLATE SQL_Latin1_General_CP1_CI_AS ", "abc   | char | 5"},
        {"varchar(10)", "'abc'", " text  COLLATE SQL_Latin1_General_CP1_CI_AS ", "abc | text | 16"},
        {"varchar(10)", "'12'", " int  ", "12 | int | 4"},
        {"varchar(10)", "'abc'", " int  ",
         "Msg 245, Level 16, State 1: Conversion failed when converting the varchar value 'abc' to data type "
         "int.\n-- The statement has been terminated."},
        {"varchar(10)", "'abc'", " numeric  (9) ",
         "Msg 8114, Level 16, State 5: Error converting data type varchar to numeric.\n-- The statement has "
         "been "
         "terminated."},
        {"varchar(10)", "'abc'", " datetime  ",
         "Msg 241, Level 16, State 1: Conversion failed when converting date and/or time from character "
         "string.\n-- The statement has been terminated."},
        {"varchar(10)", "'20010203'", " datetime  ", "Feb  3 2001 12:00AM | datetime | 8"},
        {"varchar(10)", "'abc'", " varbinary  (8) ",
         "Msg 257, Level 16, State 3: Implicit conversion from data type varchar to varbinary is not "
         "allowed. "
         "Use the CONVERT function to run this query."},
        {"nchar(4)", "N'ñu'", " varchar  (4)  COLLATE SQL_Latin1_General_CP1_CI_AS ", "ñu   | varchar | 4"},
        {"binary(4)", "0x41424344", " varbinary  (3) ", truncated},
        {"uniqueidentifier", "'6F9619FF-8B86-D011-B42D-00C04FC964FF'", " varchar  (10) ",
         "Msg 8170, Level 16, State 1: Insufficient result space to convert uniqueidentifier value to char."},
        {"uniqueidentifier", "'6F9619FF-8B86-D011-B42D-00C04FC964FF'", " char (36) ",
         "6F9619FF-8B86-D011-B42D-00C04FC964FF | char | 36"},
        {"text", "'largo'", " text  COLLATE SQL_Latin1_General_CP1_CI_AS ",
         "Msg 4928, Level 16, State 1: Cannot alter column 'c' because it is 'text'."},
        {"ntext", "'largo'", " nvarchar (50) ",
         "Msg 4928, Level 16, State 1: Cannot alter column 'c' because it is 'ntext'."},
        {"timestamp", "DEFAULT", " binary (8) ",
         "Msg 4928, Level 16, State 1: Cannot alter column 'c' because it is 'timestamp'."},
    };
    Engine& engine = freshDatabase();
    for (const auto& [from, value, to, expected] : cases) {
        SCOPED_TRACE(std::string(from) + " to" + to);
        engine.run("CREATE TABLE t (c " + std::string(from) + " NULL)");
        engine.run("INSERT t VALUES (" + std::string(value) + ")");
        std::string answer = engine.run("ALTER TABLE Ventas..t   ALTER COLUMN c" + std::string(to) + " NULL");
        if (answer.empty())
            answer = withoutBareHeads(engine.run(
                "SELECT convert(varchar(40), t.c) + ' | ' + y.name + ' | ' + convert(varchar, k.length) "
                "FROM t, syscolumns k, systypes y WHERE k.id = object_id('t') AND y.xusertype = "
                "k.xusertype"));
        EXPECT_EQ(answer, expected + "\n");
        engine.run("DROP TABLE t");
    }
}

} // namespace practice::test
