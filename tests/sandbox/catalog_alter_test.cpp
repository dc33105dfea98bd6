// ALTER TABLE: columns and constraints with the rows that stand already.
#include "engine_cases.h"

namespace practice::test {

TEST(AlterTable, AddColumns)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE p (a int PRIMARY KEY) INSERT p VALUES (1) INSERT p VALUES (2)", ""},
            {"ALTER TABLE p ADD x int NOT NULL",
             "Msg 4901, Level 16, State 1: ALTER TABLE only allows columns to be added that can contain "
             "nulls, or have a DEFAULT definition specified, or the column being added is an identity or "
             "timestamp column, or alternatively if none of the previous conditions are satisfied the table "
             "must be empty to allow addition of this column. Column 'x' cannot be added to non-empty table "
             "'p' because it does not satisfy these conditions."},
            {"ALTER TABLE p ADD x int NOT NULL DEFAULT 7, y int DEFAULT 8, z int DEFAULT 9 WITH VALUES, i "
             "int IDENTITY(10,5)",
             ""},
            {"INSERT p (a) VALUES (3) SELECT * FROM p",
             "a | x | y | z | i\n1 | 7 | NULL | 9 | 10\n2 | 7 | NULL | 9 | 15\n3 | 7 | 8 | 9 | 20"},
            {"ALTER TABLE p ADD a int", "Msg 2705, Level 16, State 3: Column names in each table must be "
                                        "unique. Column name 'a' in table 'p' is specified more than once."},
            {"ALTER TABLE p ADD j int IDENTITY",
             "Msg 2744, Level 16, State 2: Multiple identity columns specified for table 'p'. Only one "
             "identity column per table is allowed."},
            {"ALTER TABLE p ADD m AS a * 2, CONSTRAINT u UNIQUE (x, a)", ""},
            {"ALTER TABLE p ADD q int NULL CONSTRAINT cq CHECK (q < 5), CONSTRAINT u UNIQUE (a)",
             "Msg 2714, Level 16, State 5: There is already an object named 'u' in the database.\nMsg 1750, "
             "Level 16, State 0: Could not create constraint or index. See previous errors."},
            {"ALTER TABLE nada ADD x int", "Msg 4902, Level 16, State 1: Cannot find the object \"nada\" "
                                           "because it does not exist or you do not have permissions."},
            {"CREATE TABLE vacia (a int)", ""},
            {"ALTER TABLE vacia ADD b int NOT NULL", ""},
            {"CREATE VIEW v AS SELECT a FROM p", ""},
            {"ALTER TABLE v ADD x int",
             "Msg 4909, Level 16, State 1: Cannot alter 'v' because it is not a table."},
            {"SELECT a, x, y, z, i, m FROM p ORDER BY a",
             "a | x | y | z | i | m\n1 | 7 | NULL | 9 | 10 | 2\n2 | 7 | NULL | 9 | 15 | 4\n3 | 7 | 8 | 9 | "
             "20 | 6"},
        });
}

TEST(AlterTable, ChangeColumnsWithTheirRows)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int NOT NULL, n varchar(20) NULL, d decimal(9,2) NULL, f datetime NULL, tx "
             "text NULL, ts timestamp)",
             ""},
            {"INSERT t (a, n, d, f, tx) VALUES (1, '12', 3.456, '20010203', 'largo') INSERT t (a, n) VALUES "
             "(2, NULL)",
             ""},
            {"ALTER TABLE t ALTER COLUMN n varchar(1)",
             "Msg 8152, Level 16, State 14: String or binary data would be truncated.\n-- The statement has "
             "been terminated."},
            {"ALTER TABLE t ALTER COLUMN n int", ""},
            {"ALTER TABLE t ALTER COLUMN n varchar(5) NOT NULL",
             "Msg 515, Level 16, State 2: Cannot insert the value NULL into column 'n', table "
             "'Ventas.dbo.t'; column does not allow nulls. UPDATE fails.\n-- The statement has been "
             "terminated."},
            {"ALTER TABLE t ALTER COLUMN n numeric  (5) NULL", ""},
            {"ALTER TABLE t ALTER COLUMN d varchar  (10)  COLLATE Latin1_General_CI_AS  NULL", ""},
            {"ALTER TABLE t ALTER COLUMN f smalldatetime  NULL", ""},
            {"ALTER TABLE t ALTER COLUMN a smallint NOT NULL", ""},
            {"ALTER TABLE t ALTER COLUMN tx int",
             "Msg 4928, Level 16, State 1: Cannot alter column 'tx' because it is 'text'."},
            {"ALTER TABLE t ALTER COLUMN tx varchar(max)", ""},
            {"ALTER TABLE t ALTER COLUMN ts int",
             "Msg 4928, Level 16, State 1: Cannot alter column 'ts' because it is 'timestamp'."},
            {"ALTER TABLE t ALTER COLUMN a timestamp",
             "Msg 4927, Level 16, State 1: Cannot alter column 'a' to be data type timestamp."},
            {"ALTER TABLE t ALTER COLUMN nada int",
             "Msg 4924, Level 16, State 1: ALTER TABLE ALTER COLUMN failed because column 'nada' does not "
             "exist in table 't'."},
            {"ALTER TABLE t ALTER COLUMN a nadatipo", "Msg 2715, Level 16, State 6: Column, parameter, or "
                                                      "variable #1: Cannot find data type nadatipo."},
            {"SELECT a, n, d, f, tx FROM t", "a | n | d | f | tx\n1 | 12 | 3.46 | Feb  3 2001 12:00AM | "
                                             "largo\n2 | NULL | NULL | NULL | NULL"},
            {"EXEC sp_columns 't'",
             "TABLE_QUALIFIER | TABLE_OWNER | TABLE_NAME | COLUMN_NAME | DATA_TYPE | TYPE_NAME | PRECISION | "
             "LENGTH | SCALE | RADIX | NULLABLE | REMARKS | COLUMN_DEF | SQL_DATA_TYPE | SQL_DATETIME_SUB | "
             "CHAR_OCTET_LENGTH | ORDINAL_POSITION | IS_NULLABLE | SS_DATA_TYPE\nVentas | dbo | t | a | 5 | "
             "smallint | 5 | 2 | 0 | 10 | 0 | NULL | NULL | 5 | NULL | NULL | 1 | NO | 52\nVentas | dbo | t "
             "| n | 2 | numeric | 5 | 7 | 0 | 10 | 1 | NULL | NULL | 2 | NULL | NULL | 2 | YES | 108\nVentas "
             "| dbo | t | d | 12 | varchar | 10 | 10 | NULL | NULL | 1 | NULL | NULL | 12 | NULL | 10 | 3 | "
             "YES | 39\nVentas | dbo | t | f | 11 | smalldatetime | 16 | 16 | 0 | NULL | 1 | NULL | NULL | 9 "
             "| 3 | NULL | 4 | YES | 111\nVentas | dbo | t | tx | 12 | varchar | -1 | -1 | NULL | NULL | 1 | "
             "NULL | NULL | 12 | NULL | -1 | 5 | YES | 39\nVentas | dbo | t | ts | -2 | timestamp | 8 | 8 | "
             "NULL | NULL | 0 | NULL | NULL | -2 | NULL | NULL | 6 | NO | 45"},
        });
}

TEST(AlterTable, KeepColumnsThatOthersNeed)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE p (a int CONSTRAINT pk_p PRIMARY KEY, b varchar(10) CONSTRAINT df_b DEFAULT "
             "('x'), c varchar(10), d int CONSTRAINT ck_d CHECK (d > 0), e int, f AS e + 1)",
             ""},
            {"CREATE TABLE h (x int CONSTRAINT fk_h REFERENCES p(a))", ""},
            {"CREATE INDEX ix_c ON p (c)", ""},
            {"ALTER TABLE p ALTER COLUMN a bigint NOT NULL",
             "Msg 5074, Level 16, State 1: The object 'pk_p' is dependent on column 'a'.\nMsg 5074, Level "
             "16, State 1: The object 'fk_h' is dependent on column 'a'.\nMsg 4922, Level 16, State 9: ALTER "
             "TABLE ALTER COLUMN a failed because one or more objects access this column."},
            {"ALTER TABLE p ALTER COLUMN a int NOT NULL", ""},
            {"ALTER TABLE h ALTER COLUMN x smallint",
             "Msg 5074, Level 16, State 1: The object 'fk_h' is dependent on column 'x'.\nMsg 4922, Level "
             "16, State 9: ALTER TABLE ALTER COLUMN x failed because one or more objects access this "
             "column."},
            {"ALTER TABLE p ALTER COLUMN b int",
             "Msg 5074, Level 16, State 1: The object 'df_b' is dependent on column 'b'.\nMsg 4922, Level "
             "16, State 9: ALTER TABLE ALTER COLUMN b failed because one or more objects access this "
             "column."},
            {"ALTER TABLE p ALTER COLUMN b varchar(4)", ""},
            {"ALTER TABLE p ALTER COLUMN c varchar(5)",
             "Msg 5074, Level 16, State 1: The index 'ix_c' is dependent on column 'c'.\nMsg 4922, Level 16, "
             "State 9: ALTER TABLE ALTER COLUMN c failed because one or more objects access this column."},
            {"ALTER TABLE p ALTER COLUMN c varchar(50)", ""},
            {"ALTER TABLE p ALTER COLUMN d bigint",
             "Msg 5074, Level 16, State 1: The object 'ck_d' is dependent on column 'd'.\nMsg 4922, Level "
             "16, State 9: ALTER TABLE ALTER COLUMN d failed because one or more objects access this "
             "column."},
            {"ALTER TABLE p ALTER COLUMN f int",
             "Msg 4928, Level 16, State 1: Cannot alter column 'f' because it is 'COMPUTED'."},
            {"ALTER TABLE p DROP COLUMN b",
             "Msg 5074, Level 16, State 1: The object 'df_b' is dependent on column 'b'.\nMsg 4922, Level "
             "16, State 9: ALTER TABLE DROP COLUMN b failed because one or more objects access this column."},
            {"ALTER TABLE p DROP COLUMN e",
             "Msg 5074, Level 16, State 1: The column 'f' is dependent on column 'e'.\nMsg 4922, Level 16, "
             "State 9: ALTER TABLE DROP COLUMN e failed because one or more objects access this column."},
            {"ALTER TABLE p DROP COLUMN nada", "Msg 4924, Level 16, State 1: ALTER TABLE DROP COLUMN failed "
                                               "because column 'nada' does not exist in table 'p'."},
            {"ALTER TABLE p DROP CONSTRAINT df_b, COLUMN b", ""},
            {"ALTER TABLE p DROP CONSTRAINT pk_p",
             "Msg 3725, Level 16, State 0: The constraint 'pk_p' is being referenced by table 'h', foreign "
             "key constraint 'fk_h'.\nMsg 3727, Level 16, State 0: Could not drop constraint. See previous "
             "errors."},
            {"ALTER TABLE h DROP CONSTRAINT fk_h", ""},
            {"ALTER TABLE p DROP CONSTRAINT pk_p", ""},
            {"ALTER TABLE p DROP CONSTRAINT [DF_p_nada]",
             "Msg 3728, Level 16, State 1: 'DF_p_nada' is not a constraint.\nMsg 3727, Level 16, State 0: "
             "Could not drop constraint. See previous errors."},
            {"ALTER TABLE h DROP COLUMN x",
             "Msg 4923, Level 16, State 1: ALTER TABLE DROP COLUMN failed because 'x' is the only data "
             "column in table 'h'. A table must have at least one data column."},
            {"SELECT name FROM syscolumns WHERE id = object_id('p') ORDER BY colid", "name\na\nc\nd\ne\nf"},
        });
}

TEST(AlterTable, SwitchConstraints)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int, b int, CONSTRAINT ck1 CHECK (a > 0), CONSTRAINT ck2 CHECK (a < b))", ""},
            {"INSERT t VALUES (0, 1)",
             "Msg 547, Level 16, State 0: The INSERT statement conflicted with the CHECK constraint \"ck1\". "
             "The conflict occurred in database \"Ventas\", table \"dbo.t\", column 'a'.\n-- The statement "
             "has been terminated."},
            {"INSERT t VALUES (5, 1)", "Msg 547, Level 16, State 0: The INSERT statement conflicted with the "
                                       "CHECK constraint \"ck2\". The conflict occurred in database "
                                       "\"Ventas\", table \"dbo.t\".\n-- The statement has been terminated."},
            {"ALTER TABLE t NOCHECK CONSTRAINT ck1", ""},
            {"INSERT t VALUES (0, 1)", ""},
            {"ALTER TABLE t WITH CHECK CHECK CONSTRAINT ck1",
             "Msg 547, Level 16, State 0: The ALTER TABLE statement conflicted with the CHECK constraint "
             "\"ck1\". The conflict occurred in database \"Ventas\", table \"dbo.t\", column 'a'."},
            {"ALTER TABLE t CHECK CONSTRAINT ALL", ""},
            {"INSERT t VALUES (0, 1)",
             "Msg 547, Level 16, State 0: The INSERT statement conflicted with the CHECK constraint \"ck1\". "
             "The conflict occurred in database \"Ventas\", table \"dbo.t\", column 'a'.\n-- The statement "
             "has been terminated."},
            {"ALTER TABLE t CHECK CONSTRAINT nada",
             "Msg 4917, Level 16, State 0: Constraint 'nada' does not exist.\nMsg 4916, Level 16, State 0: "
             "Could not enable or disable the constraint. See previous errors."},
            {"ALTER TABLE t ADD CONSTRAINT ck3 CHECK (a > 0)",
             "Msg 547, Level 16, State 0: The ALTER TABLE statement conflicted with the CHECK constraint "
             "\"ck3\". The conflict occurred in database \"Ventas\", table \"dbo.t\", column 'a'."},
            {"ALTER TABLE t WITH NOCHECK ADD CONSTRAINT ck3 CHECK (a > 0), CONSTRAINT df DEFAULT (3) FOR b",
             ""},
            {"ALTER TABLE t ADD CONSTRAINT df2 DEFAULT (4) FOR b",
             "Msg 1781, Level 16, State 1: Column already has a DEFAULT bound to it.\nMsg 1750, Level 16, "
             "State 0: Could not create constraint or index. See previous errors."},
            {"ALTER TABLE t ADD CONSTRAINT df2 DEFAULT (4) FOR nada",
             "Msg 1752, Level 16, State 0: Column 'nada' in table 't' is invalid for creating a default "
             "constraint.\nMsg 1750, Level 16, State 0: Could not create constraint or index. See previous "
             "errors."},
            {"INSERT t (a) VALUES (1) SELECT * FROM t", "a | b\n0 | 1\n1 | 3"},
        });
}

TEST(AlterTable, ServeTheTableDesigner)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE Ventas..Zona (id int NOT NULL,\nnombre char (10)  NULL CONSTRAINT "
             "[DF_Zona_nombre] DEFAULT (0))",
             ""},
            {"ALTER TABLE Ventas..Zona WITH NOCHECK ADD CONSTRAINT PK_Zona PRIMARY KEY  CLUSTERED  (id)\n "
             "WITH FILLFACTOR = 50 ON [PRIMARY]",
             ""},
            {"CREATE  INDEX IX_Zona  ON Ventas..Zona  (nombre)\n ON [PRIMARY]", ""},
            {"CREATE  INDEX IX_Zona  ON Ventas..Zona  (nombre)\n WITH DROP_EXISTING  ON [PRIMARY]", ""},
            {"CREATE TABLE Ventas..Pueblo (zona int  NULL)", ""},
            {"ALTER TABLE Pueblo ADD CONSTRAINT [FK_Pueblo] FOREIGN KEY (zona ) REFERENCES Zona (id)", ""},
            {"ALTER TABLE Ventas..Zona DROP CONSTRAINT PK_Zona",
             "Msg 3725, Level 16, State 0: The constraint 'PK_Zona' is being referenced by table 'Pueblo', "
             "foreign key constraint 'FK_Pueblo'.\nMsg 3727, Level 16, State 0: Could not drop constraint. "
             "See previous errors."},
            {"ALTER TABLE Ventas..Pueblo DROP CONSTRAINT FK_Pueblo", ""},
            {"ALTER TABLE Ventas..Zona DROP CONSTRAINT PK_Zona", ""},
            {"DROP INDEX Zona.IX_Zona", ""},
            {"ALTER TABLE Ventas..Zona DROP CONSTRAINT [DF_Zona_nombre]", ""},
            {"ALTER TABLE Ventas..Zona   ALTER COLUMN nombre varchar  (20)  COLLATE Latin1_General_CI_AS  "
             "NULL",
             ""},
            {"ALTER TABLE Ventas..Zona WITH NOCHECK ADD  CONSTRAINT [DF_Zona_nombre] DEFAULT (0) FOR "
             "[nombre]",
             ""},
            {"ALTER TABLE Ventas..Zona  ADD otra int  NULL,\nmas decimal (9)  NULL", ""},
            {"EXEC sp_rename 'Zona.[otra]', 'nueva', 'COLUMN'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures.\n-- "
             "The COLUMN was renamed to 'nueva'."},
            {"EXEC sp_rename 'Zona.[]', 'nueva', 'COLUMN'",
             "Msg 15253, Level 11, State 1: Syntax error parsing SQL identifier 'Zona.[]'."},
            {" ALTER TABLE Zona ADD CONSTRAINT [PK_Zona] PRIMARY KEY   NONCLUSTERED  (id)   WITH FILLFACTOR "
             "= 50 ON [PRIMARY]",
             ""},
            {"Select name, xtype, length, prec, scale, isnullable from Ventas..syscolumns  where id = "
             "object_id('Zona') order by colid",
             "name | xtype | length | prec | scale | isnullable\nid | 56 | 4 | 10 | 0 | 0\nnombre | 167 | 20 "
             "| 20 | NULL | 1\nnueva | 56 | 4 | 10 | 0 | 1\nmas | 106 | 5 | 9 | 0 | 1"},
            {"SELECT i.name, i.indid, i.status, i.OrigFillFactor, k.colid FROM sysindexes i, sysindexkeys k "
             "WHERE i.id = object_id('Zona') AND k.id = i.id AND k.indid = i.indid",
             "name | indid | status | OrigFillFactor | colid\nPK_Zona | 2 | 2050 | 50 | 1"},
        });
}

TEST(AlterTable, ConversionsThatFailLeaveTheTransactionAlive)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (a varchar(10), b varchar(10)) INSERT t VALUES ('x', 'y')");
    expectAnswers(
        engine,
        {
            {"BEGIN TRAN INSERT t VALUES ('z', 'z') ALTER TABLE t ALTER COLUMN a int PRINT @@ERROR PRINT "
             "@@TRANCOUNT",
             "Msg 245, Level 16, State 1: Conversion failed when converting the varchar value 'x' to data "
             "type "
             "int.\n-- The statement has been terminated.\n-- 245\n-- 1"},
            {"ALTER TABLE t ALTER COLUMN a decimal(5,2) ALTER TABLE t ALTER COLUMN b datetime PRINT "
             "@@TRANCOUNT",
             "Msg 8114, Level 16, State 5: Error converting data type varchar to numeric.\n"
             "-- The statement has been terminated.\n"
             "Msg 241, Level 16, State 1: Conversion failed when converting date and/or time from character "
             "string.\n-- The statement has been terminated.\n-- 1"},
            {"BEGIN TRY ALTER TABLE t ALTER COLUMN a int END TRY BEGIN CATCH PRINT XACT_STATE() END CATCH",
             "-- 1"},
            {"COMMIT SELECT COUNT(*) FROM t", "2"},
            // Elsewhere such a failure takes the batch and its transaction.
            {"BEGIN TRAN SELECT a + 1 FROM t", "Msg 245, Level 16, State 1: Conversion failed when "
                                               "converting the varchar value 'x' to data type int."},
            {"PRINT @@TRANCOUNT", "-- 0"},
        });
}

TEST(AlterTable, RefusesNotNullUnderAnIndex)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (a int NULL, b varchar(5) NULL, c int NOT NULL) CREATE INDEX ia ON t (a) "
               "CREATE INDEX ib ON t (b) CREATE INDEX ic ON t (c)");
    expectAnswers(
        engine,
        {
            {"ALTER TABLE t ALTER COLUMN b varchar(5) NOT NULL",
             "Msg 5074, Level 16, State 1: The index 'ib' is dependent on column 'b'.\nMsg 4922, Level "
             "16, State 9: ALTER TABLE ALTER COLUMN b failed because one or more objects access this "
             "column."},
            {"ALTER TABLE t ALTER COLUMN a int NOT NULL",
             "Msg 5074, Level 16, State 1: The index 'ia' is dependent on column 'a'.\nMsg 4922, Level "
             "16, State 9: ALTER TABLE ALTER COLUMN a failed because one or more objects access this "
             "column."},
            {"ALTER TABLE t ALTER COLUMN b varchar(9) NULL ALTER TABLE t ALTER COLUMN c int NULL "
             "SELECT name, length, isnullable FROM syscolumns WHERE id = object_id('t')",
             "name | length | isnullable\na | 4 | 1\nb | 9 | 1\nc | 4 | 1"},
        });
}

} // namespace practice::test
