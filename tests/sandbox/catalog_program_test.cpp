// Views and procedures with their texts, and new names for things.
#include "engine_cases.h"

namespace practice::test {

TEST(Programs, KeepTheirTextAsSent)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int NOT NULL, b varchar(10) NULL)", ""},
            {"-- comentario\nCREATE VIEW v (x, y) AS SELECT a, b FROM t\n", ""},
            {"EXEC sp_helptext v", "Text\n-- comentario\nCREATE VIEW v (x, y) AS SELECT a, b FROM t"},
            {"Select obj.name,com.text  from Ventas..sysobjects obj, Ventas..syscomments com where obj.type "
             "= 'V' and name='v' and com.id=obj.id order by name",
             "name | text\nv | -- comentario\nCREATE VIEW v (x, y) AS SELECT a, b FROM t"},
            {"SELECT name, colid, length, isnullable FROM syscolumns WHERE id = object_id('v')",
             "name | colid | length | isnullable\nx | 1 | 4 | 0\ny | 2 | 10 | 1"},
            {"ALTER VIEW v AS SELECT a AS solo FROM t", ""},
            {"EXEC sp_helptext v", "Text\nCREATE VIEW v AS SELECT a AS solo FROM t"},
            {"CREATE VIEW enc WITH ENCRYPTION AS SELECT a FROM t", ""},
            {"EXEC sp_helptext enc", "-- The object comments have been encrypted."},
            {"SELECT encrypted, text FROM syscomments WHERE id = object_id('enc')",
             "encrypted | text\n1 | NULL"},
            {"CREATE PROCEDURE p @a int, @b varchar(10) = 'x' OUTPUT AS SELECT @a, nada FROM nada", ""},
            {"EXEC sp_stored_procedures",
             "PROCEDURE_QUALIFIER | PROCEDURE_OWNER | PROCEDURE_NAME | NUM_INPUT_PARAMS | NUM_OUTPUT_PARAMS "
             "| NUM_RESULT_SETS | REMARKS | PROCEDURE_TYPE\nVentas | dbo | p;1 | -1 | -1 | -1 | NULL | 1"},
            {"ALTER PROC p AS SELECT 2 AS dos", ""},
            {"EXEC p", "dos\n2"},
            {"EXEC sp_helptext p", "Text\nCREATE PROC p AS SELECT 2 AS dos"},
            {"DROP PROCEDURE p", ""},
            {"EXEC p", "Msg 2812, Level 16, State 62: Could not find stored procedure 'p'."},
            {"EXEC sp_helptext t", "Msg 15197, Level 16, State 1: There is no text for object 't'."},
            {"EXEC sp_helptext nada",
             "Msg 15009, Level 16, State 1: The object 'nada' does not exist in database 'Ventas'."},
            {"ALTER VIEW nada AS SELECT a FROM t", "Msg 208, Level 16, State 6: Invalid object name 'nada'."},
            {"DROP VIEW nada", "Msg 3701, Level 11, State 5: Cannot drop the view 'nada', because it does "
                               "not exist or you do not have permission."},
            {"SELECT name, xtype FROM sysobjects WHERE category = 0 AND xtype <> 'S'",
             "name | xtype\nt | U \nv | V \nenc | V "},
        });
}

TEST(Programs, MayBeEmptyOrAreRefusedWhole)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE PROCEDURE [NOMBRE_PROCEDIMIENTO] AS ", ""},
            {"EXEC NOMBRE_PROCEDIMIENTO", ""},
            {"Select obj.name,com.text  from Ventas..sysobjects obj, Ventas..syscomments com where obj.type "
             "= "
             "'P' and name='NOMBRE_PROCEDIMIENTO' and com.id=obj.id order by name",
             "name | text\nNOMBRE_PROCEDIMIENTO | CREATE PROCEDURE [NOMBRE_PROCEDIMIENTO] AS "},
            {"DROP PROCEDURE NOMBRE_PROCEDIMIENTO", ""},
            {"CREATE VIEW [NOMBRE_VISTA] AS ", "Msg 102, Level 15, State 1: Incorrect syntax near 'AS'."},
            {"DROP VIEW con blanco", "Msg 102, Level 15, State 1: Incorrect syntax near 'blanco'."},
            {"CREATE TABLE t (a int)", ""},
            {"create\ntrigger g on t for insert as print 'x'",
             "Msg 40510, Level 16, State 1: Statement 'CREATE TRIGGER' is not supported in this version of "
             "SQL "
             "Server."},
            {"CREATE FUNCTION f () RETURNS int AS BEGIN RETURN 1 END",
             "Msg 40510, Level 16, State 1: Statement 'CREATE FUNCTION' is not supported in this version of "
             "SQL Server."},
            {"ALTER TABLE t DISABLE TRIGGER ALL", ""},
            {"SELECT name FROM sysobjects WHERE category = 0 AND xtype <> 'S'", "name\nt"},
        });
}

TEST(Programs, RefuseViewsThatCannotBe)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int NOT NULL, b varchar(10) NULL)", ""},
            {"CREATE VIEW v AS SELECT a, a FROM t",
             "Msg 4506, Level 16, State 1: Column names in each view or function must be unique. Column name "
             "'a' in view or function 'v' is specified more than once."},
            {"CREATE VIEW v AS SELECT a + 1 FROM t",
             "Msg 4511, Level 16, State 1: Create View or Function failed because no column name was "
             "specified for column 1."},
            {"CREATE VIEW v (x) AS SELECT a, b FROM t",
             "Msg 8158, Level 16, State 1: 'v' has more columns than were specified in the column list."},
            {"CREATE VIEW v (x, y, z) AS SELECT a, b FROM t",
             "Msg 4502, Level 16, State 1: View or function 'v' has more column names specified than columns "
             "defined."},
            {"CREATE VIEW v AS SELECT a FROM t ORDER BY a",
             "Msg 1033, Level 15, State 1: The ORDER BY clause is invalid in views, inline functions, "
             "derived tables, subqueries, and common table expressions, unless TOP, OFFSET or FOR XML is "
             "also specified."},
            {"CREATE VIEW v AS SELECT nada FROM t",
             "Msg 207, Level 16, State 1: Invalid column name 'nada'."},
            {"CREATE VIEW v AS SELECT a FROM nada",
             "Msg 208, Level 16, State 1: Invalid object name 'nada'."},
            {"CREATE VIEW Ventas..v AS SELECT a FROM t",
             "Msg 166, Level 15, State 1: 'CREATE VIEW' does not allow specifying the database name as a "
             "prefix to the object name."},
            {"CREATE VIEW t AS SELECT 1 AS a",
             "Msg 2714, Level 16, State 3: There is already an object named 't' in the database."},
            {"CREATE VIEW v AS SELECT TOP 1 a FROM t ORDER BY a", ""},
            {"SELECT name FROM sysobjects WHERE xtype = 'V' AND category = 0", "name\nv"},
        });
}

TEST(Programs, AreRenamed)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int CONSTRAINT pk PRIMARY KEY, b int CONSTRAINT ck CHECK (b > 0), c int)",
             ""},
            {"CREATE INDEX ix ON t (c)", ""},
            {"EXEC sp_rename 't', 'tabla'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures.\n-- "
             "The object was renamed to 'tabla'."},
            {"EXEC sp_rename 'tabla.c', 'A', 'COLUMN'",
             "Msg 15335, Level 11, State 1: Error: The @newname value 'A' is already in use as a COLUMN name "
             "and would cause a duplicate that is not permitted."},
            {"EXEC sp_rename 'tabla.b', 'bb', 'COLUMN'",
             "Msg 15336, Level 16, State 1: Object 'tabla.b' cannot be renamed because the object "
             "participates in enforced dependencies."},
            {"EXEC sp_rename 'tabla.[c]', 'con blanco', 'COLUMN'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures.\n-- "
             "The COLUMN was renamed to 'con blanco'."},
            {"EXEC sp_rename 'tabla.ix', 'pk', 'INDEX'",
             "Msg 15335, Level 11, State 1: Error: The @newname value 'pk' is already in use as a INDEX name "
             "and would cause a duplicate that is not permitted."},
            {"EXEC sp_rename 'tabla.ix', 'ix2', 'INDEX'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures.\n-- "
             "The INDEX was renamed to 'ix2'."},
            {"EXEC sp_rename 'pk', 'clave'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures.\n-- "
             "The object was renamed to 'clave'."},
            {"EXEC sp_helpindex tabla",
             "index_name | index_description | index_keys\nclave | clustered, unique, primary key located on "
             "PRIMARY | a\nix2 | nonclustered located on PRIMARY | con blanco"},
            {"SELECT * FROM tabla", "a | b | con blanco"},
            {"EXEC sp_rename 'tabla', 'clave'",
             "Msg 15335, Level 11, State 1: Error: The @newname value 'clave' is already in use as a object "
             "name and would cause a duplicate that is not permitted."},
            {"EXEC sp_rename 'nada', 'algo'",
             "Msg 15225, Level 11, State 1: No item by the name of 'nada' could be found in the current "
             "database 'Ventas', given that @itemtype was input as '(null)'."},
            {"EXEC sp_rename 'tabla.nada', 'algo', 'COLUMN'",
             "Msg 15248, Level 11, State 1: Either the parameter @objname is ambiguous or the claimed "
             "@objtype (COLUMN) is wrong."},
            {"EXEC sp_rename 'tabla', 'algo', 'COSA'",
             "Msg 15249, Level 11, State 1: Error: Explicit @itemtype 'COSA' is unrecognized."},
            {"EXEC sp_rename 'tabla', ''",
             "Msg 15223, Level 11, State 1: Error: The input parameter 'newname' is not allowed to be null."},
            {"EXEC sp_rename 'sysobjects', 'x'", "Msg 15001, Level 16, State 1: Object 'sysobjects' does not "
                                                 "exist or is not a valid object for this operation."},
            {"SELECT name FROM sysobjects WHERE category = 0 AND xtype <> 'S' ORDER BY name",
             "name\nck\nclave\ntabla"},
        });
}

} // namespace practice::test
