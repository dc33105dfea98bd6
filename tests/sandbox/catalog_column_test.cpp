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

TEST(Columns, OfTheDesignerAreDefinedAsTheyAreTyped)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE Ventas..[con blanco] (a decimal (9)  NULL,\rb numeric  (18,4)  NOT NULL "
             "CONSTRAINT "
             "[DF_con blanco_b] DEFAULT (1),\rc varchar  (8)  NULL CONSTRAINT [DF_con blanco_c] DEFAULT "
             "(('x')))",
             ""},
            {"ALTER TABLE Ventas..[con blanco]  ADD d int  NULL,\re bit   NOT NULL CONSTRAINT [DF_con "
             "blanco_e] "
             "DEFAULT (0)",
             ""},
            {"Select k.name, k.xtype, k.length, k.prec, k.scale, k.isnullable, m.text, o.name from "
             "Ventas..syscolumns k left join Ventas..syscomments m on m.id = k.cdefault left join "
             "Ventas..sysobjects o on o.id = k.cdefault and o.xtype Like 'D' where k.id = "
             "object_id('[con blanco]') order by k.colid",
             "name | xtype | length | prec | scale | isnullable | text | name\n"
             "a | 106 | 5 | 9 | 0 | 1 | NULL | NULL\n"
             "b | 108 | 9 | 18 | 4 | 0 | (1) | DF_con blanco_b\n"
             "c | 167 | 8 | 8 | NULL | 1 | (('x')) | DF_con blanco_c\n"
             "d | 56 | 4 | 10 | 0 | 1 | NULL | NULL\n"
             "e | 104 | 1 | 1 | 0 | 0 | (0) | DF_con blanco_e"},
            {"ALTER TABLE Ventas..[con blanco]  ADD f int  NULL ON SECUNDARIO",
             "Msg 156, Level 15, State 1: Incorrect syntax near the keyword 'ON'."},
            {"ALTER TABLE Ventas..[con blanco]  ADD f varchar  ()  NULL",
             "Msg 102, Level 15, State 1: Incorrect syntax near ')'."},
            {"ALTER TABLE Ventas..[con blanco]  ADD f NULL",
             "Msg 173, Level 15, State 1: The definition for column 'f' must include a data type."},
            {"ALTER TABLE Ventas..[con blanco]  ADD f int  NULL CONSTRAINT [DF_con blanco_f] DEFAULT (hola)",
             "Msg 128, Level 15, State 1: The name \"hola\" is not permitted in this context. Valid "
             "expressions are constants, constant expressions, and (in some contexts) variables. Column "
             "names "
             "are not permitted."},
            {"ALTER TABLE Ventas..con blanco  ADD f int  NULL",
             "Msg 102, Level 15, State 1: Incorrect syntax near 'blanco'."},
            {"EXEC sp_rename '[con blanco].[a]', 'primera', 'COLUMN'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures.\n"
             "-- The COLUMN was renamed to 'primera'."},
            {"EXEC sp_rename 'con blanco.[primera]', 'a', 'COLUMN'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures.\n"
             "-- The COLUMN was renamed to 'a'."},
            {"CREATE INDEX ix ON [con blanco] (a, b)", ""},
            {"exec sp_helpindex 'con blanco'",
             "index_name | index_description | index_keys\nix | nonclustered located on PRIMARY | a, b"},
            {"EXEC sp_rename 'con blanco', 'select'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures.\n"
             "-- The object was renamed to 'select'."},
            {"SELECT name FROM sysobjects WHERE id = object_id('select')", "name\nselect"},
        });
}

TEST(Columns, UnderAUniqueConstraintMayOnlyGrow)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a varchar(10) NOT NULL CONSTRAINT pk PRIMARY KEY, u varchar(10) CONSTRAINT uq "
             "UNIQUE)",
             ""},
            {"ALTER TABLE t ALTER COLUMN u varchar(20)", ""},
            {"ALTER TABLE t ALTER COLUMN u varchar(10)",
             "Msg 5074, Level 16, State 1: The object 'uq' is dependent on column 'u'.\nMsg 4922, Level 16, "
             "State 9: ALTER TABLE ALTER COLUMN u failed because one or more objects access this column."},
            {"ALTER TABLE t ALTER COLUMN a varchar(20) NOT NULL",
             "Msg 5074, Level 16, State 1: The object 'pk' is dependent on column 'a'.\nMsg 4922, Level 16, "
             "State 9: ALTER TABLE ALTER COLUMN a failed because one or more objects access this column."},
            {"INSERT t VALUES ('a', 'x') INSERT t VALUES ('b', 'X')",
             "Msg 2627, Level 14, State 1: Violation of UNIQUE KEY constraint 'uq'. Cannot insert duplicate "
             "key in object 'dbo.t'. The duplicate key value is (X).\n-- The statement has been terminated."},
        });
}

TEST(Columns, OfTimesAreAsLongAsTheirFraction)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (t0 time(0), t3 time(3), t7 time, d0 datetime2(0), d3 datetime2(3), "
               "o2 datetimeoffset(2), o7 datetimeoffset)");
    expectAnswers(engine,
                  {{"SELECT name, length, prec, scale, xprec, xscale FROM syscolumns WHERE id = "
                    "object_id('t') ORDER BY colid",
                    "name | length | prec | scale | xprec | xscale\nt0 | 3 | 8 | 0 | 8 | 0\n"
                    "t3 | 4 | 12 | 3 | 12 | 3\nt7 | 5 | 16 | 7 | 16 | 7\nd0 | 6 | 19 | 0 | 19 | 0\n"
                    "d3 | 7 | 23 | 3 | 23 | 3\no2 | 8 | 29 | 2 | 29 | 2\no7 | 10 | 34 | 7 | 34 | 7"}});
}

} // namespace practice::test
