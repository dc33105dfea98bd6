// Tables and indexes: statements, what they answer, and what is there afterwards.
#include "engine_cases.h"

namespace practice::test {

TEST(Tables, RefuseColumnsThatCannotBe)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int, A varchar(3))",
             "Msg 2705, Level 16, State 3: Column names in each table must be unique. Column name 'A' in "
             "table 't' is specified more than once."},
            {"CREATE TABLE t (a nadatipo)", "Msg 2715, Level 16, State 6: Column, parameter, or variable #1: "
                                            "Cannot find data type nadatipo."},
            {"CREATE TABLE t (a varchar(9000))",
             "Msg 131, Level 15, State 3: The size (9000) given to the column 'a' exceeds the maximum "
             "allowed for any data type (8000)."},
            {"CREATE TABLE t (a nvarchar(5000))", "Msg 2717, Level 15, State 2: The size (5000) given to the "
                                                  "column 'a' exceeds the maximum allowed (4000)."},
            {"CREATE TABLE t (a int(4))", "Msg 2716, Level 16, State 1: Column, parameter, or variable #1: "
                                          "Cannot specify a column width on data type int."},
            {"CREATE TABLE t (a decimal(40))",
             "Msg 2750, Level 16, State 1: Column or parameter #1: Specified column precision 40 is greater "
             "than the maximum precision of 38."},
            {"CREATE TABLE t (a decimal(5,6))",
             "Msg 183, Level 15, State 1: The scale (6) for column 'a' must be within the range 0 to 5."},
            {"DECLARE @x numeric(5,9)", "Msg 192, Level 16, State 1: The scale must be less than or equal to "
                                        "the precision."},
            {"CREATE TABLE t (a char(10.5))", "Msg 102, Level 15, State 1: Incorrect syntax near '10.5'."},
            {"CREATE TABLE t (a varchar(-1))", "Msg 102, Level 15, State 1: Incorrect syntax near '-'."},
            {"CREATE TABLE t (a int PRIMARY KEY WITH FILLFACTOR = -1)",
             "Msg 102, Level 15, State 1: Incorrect syntax near '-'."},
            {"CREATE TABLE t (a varchar(0))",
             "Msg 1001, Level 15, State 1: Line 1: Length or precision specification 0 is invalid."},
            {"CREATE TABLE t (a int IDENTITY, b int IDENTITY)",
             "Msg 2744, Level 16, State 2: Multiple identity columns specified for table 't'. Only one "
             "identity column per table is allowed."},
            {"CREATE TABLE t (a varchar(3) IDENTITY)",
             "Msg 2749, Level 16, State 2: Identity column 'a' must be of data type int, bigint, smallint, "
             "tinyint, or decimal or numeric with a scale of 0, unencrypted, and constrained to be "
             "nonnullable."},
            {"CREATE TABLE t (a int IDENTITY NULL)", "Msg 8147, Level 16, State 1: Could not create IDENTITY "
                                                     "attribute on nullable column 'a', table 't'."},
            {"CREATE TABLE t (a timestamp, b timestamp)",
             "Msg 2738, Level 16, State 2: A table can only have one timestamp column. Because table 't' "
             "already has one, the column 'b' cannot be added."},
            {"CREATE TABLE t (a int ROWGUIDCOL)", "Msg 2761, Level 16, State 1: The ROWGUIDCOL property can "
                                                  "only be specified on the uniqueidentifier data type."},
            {"CREATE TABLE t (a int COLLATE Latin1_General_CI_AS)",
             "Msg 447, Level 16, State 0: Expression type int is invalid for COLLATE clause."},
            {"CREATE TABLE t (a varchar(3) COLLATE Nada)",
             "Msg 448, Level 16, State 1: Invalid collation 'Nada'."},
            {"CREATE TABLE t (a char(5000), b char(5000))",
             "Msg 1701, Level 16, State 1: Creating or altering table 't' failed because the minimum row "
             "size would be 10007, including 7 bytes of internal overhead. This exceeds the maximum "
             "allowable table row size of 8060 bytes."},
            {"CREATE TABLE t (a int, b AS zz + 1)", "Msg 207, Level 16, State 1: Invalid column name 'zz'."},
            {"CREATE TABLE t (a int) ON NADA",
             "Msg 1921, Level 16, State 1: Invalid filegroup 'NADA' specified."},
            {"CREATE TABLE nada..t (a int)", "Msg 2702, Level 16, State 2: Database 'nada' does not exist."},
            {"CREATE TABLE nadie.t (a int)",
             "Msg 2760, Level 16, State 1: The specified schema name \"nadie\" either does not exist or you "
             "do not have permission to use it."},
            {"SELECT name FROM sysobjects WHERE xtype <> 'S' AND category = 0", "name"},
        });
}

TEST(Tables, RefuseConstraintsThatCannotBe)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int NULL PRIMARY KEY)",
             "Msg 8111, Level 16, State 1: Cannot define PRIMARY KEY constraint on nullable column in table "
             "'t'.\nMsg 1750, Level 16, State 0: Could not create constraint or index. See previous errors."},
            {"CREATE TABLE t (a int, b int, PRIMARY KEY (a), PRIMARY KEY (b))",
             "Msg 8110, Level 16, State 0: Cannot add multiple PRIMARY KEY constraints to table 't'."},
            {"CREATE TABLE t (a int UNIQUE CLUSTERED, b int UNIQUE CLUSTERED)",
             "Msg 8112, Level 16, State 0: Cannot add more than one clustered index for constraints on table "
             "'t'."},
            {"CREATE TABLE t (a int IDENTITY DEFAULT 1)",
             "Msg 1754, Level 16, State 0: Defaults cannot be created on columns with an IDENTITY attribute. "
             "Table 't', column 'a'.\nMsg 1750, Level 16, State 0: Could not create constraint or index. See "
             "previous errors."},
            {"CREATE TABLE t (a timestamp DEFAULT 1)",
             "Msg 1755, Level 16, State 0: Defaults cannot be created on columns of data type timestamp. "
             "Table 't', column 'a'.\nMsg 1750, Level 16, State 0: Could not create constraint or index. See "
             "previous errors."},
            {"CREATE TABLE t (a int DEFAULT 1 DEFAULT 2)",
             "Msg 1781, Level 16, State 1: Column already has a DEFAULT bound to it.\nMsg 1750, Level 16, "
             "State 0: Could not create constraint or index. See previous errors."},
            {"CREATE TABLE t (a int DEFAULT (zz))",
             "Msg 128, Level 15, State 1: The name \"zz\" is not permitted in this context. Valid "
             "expressions are constants, constant expressions, and (in some contexts) variables. Column "
             "names are not permitted."},
            {"CREATE TABLE t (a int, CHECK (zz > 1))",
             "Msg 207, Level 16, State 1: Invalid column name 'zz'."},
            {"CREATE TABLE t (a int, CONSTRAINT u UNIQUE (zz))",
             "Msg 1911, Level 16, State 1: Column name 'zz' does not exist in the target table or view.\nMsg "
             "1750, Level 16, State 0: Could not create constraint or index. See previous errors."},
            {"CREATE TABLE t (a int, CONSTRAINT u UNIQUE (a, a))",
             "Msg 1909, Level 16, State 1: Cannot use duplicate column names in index key list. Column name "
             "'a' listed more than once.\nMsg 1750, Level 16, State 0: Could not create constraint or index. "
             "See previous errors."},
            {"CREATE TABLE t (a text, CONSTRAINT u UNIQUE (a))",
             "Msg 1919, Level 16, State 1: Column 'a' in table 't' is of a type that is invalid for use as a "
             "key column in an index.\nMsg 1750, Level 16, State 0: Could not create constraint or index. "
             "See previous errors."},
            {"CREATE TABLE t (a int CONSTRAINT c CHECK (a > 1), b int CONSTRAINT c CHECK (b > 1))",
             "Msg 2714, Level 16, State 5: There is already an object named 'c' in the database.\nMsg 1750, "
             "Level 16, State 0: Could not create constraint or index. See previous errors."},
            {"CREATE TABLE t (a int REFERENCES nada(b))",
             "Msg 1767, Level 16, State 0: Foreign key 'FK__t__a' references invalid table 'nada'.\nMsg "
             "1750, Level 16, State 0: Could not create constraint or index. See previous errors."},
            {"SELECT name FROM sysobjects WHERE xtype <> 'S' AND category = 0", "name"},
        });
}

TEST(Tables, HoldRelationsToTheirRules)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE p (a int PRIMARY KEY CLUSTERED, b int UNIQUE, c varchar(10) UNIQUE, d int)", ""},
            {"CREATE TABLE h (a bigint CONSTRAINT fk REFERENCES p(a))",
             "Msg 1778, Level 16, State 0: Column 'p.a' is not the same data type as referencing column "
             "'h.a' in foreign key 'fk'.\nMsg 1750, Level 16, State 0: Could not create constraint or index. "
             "See previous errors."},
            {"CREATE TABLE h (c varchar(20) CONSTRAINT fk REFERENCES p(c))",
             "Msg 1753, Level 16, State 0: Column 'p.c' is not the same length or scale as referencing "
             "column 'h.c' in foreign key 'fk'. Columns participating in a foreign key relationship must be "
             "defined with the same length and scale.\nMsg 1750, Level 16, State 0: Could not create "
             "constraint or index. See previous errors."},
            {"CREATE TABLE h (c varchar(10) COLLATE Latin1_General_BIN CONSTRAINT fk REFERENCES p(c))",
             "Msg 1757, Level 16, State 0: Column 'p.c' is not of same collation as referencing column 'h.c' "
             "in foreign key 'fk'.\nMsg 1750, Level 16, State 0: Could not create constraint or index. See "
             "previous errors."},
            {"CREATE TABLE h (d int CONSTRAINT fk REFERENCES p(d))",
             "Msg 1776, Level 16, State 0: There are no primary or candidate keys in the referenced table "
             "'p' that match the referencing column list in the foreign key 'fk'.\nMsg 1750, Level 16, State "
             "0: Could not create constraint or index. See previous errors."},
            {"CREATE TABLE h (a int CONSTRAINT fk REFERENCES p(zz))",
             "Msg 1770, Level 16, State 0: Foreign key 'fk' references invalid column 'zz' in referenced "
             "table 'p'.\nMsg 1750, Level 16, State 0: Could not create constraint or index. See previous "
             "errors."},
            {"CREATE TABLE h (a int, CONSTRAINT fk FOREIGN KEY (zz) REFERENCES p(a))",
             "Msg 1769, Level 16, State 1: Foreign key 'fk' references invalid column 'zz' in referencing "
             "table 'h'.\nMsg 1750, Level 16, State 0: Could not create constraint or index. See previous "
             "errors."},
            {"CREATE TABLE h (a int, b int, CONSTRAINT fk FOREIGN KEY (a, b) REFERENCES p(a))",
             "Msg 8139, Level 16, State 0: Number of referencing columns in foreign key differs from number "
             "of referenced columns, table 'h'.\nMsg 1750, Level 16, State 0: Could not create constraint or "
             "index. See previous errors."},
            {"CREATE TABLE h (a int, b int, CONSTRAINT fk FOREIGN KEY (a, b) REFERENCES p)",
             "Msg 1774, Level 16, State 0: The number of columns in the referencing column list for foreign "
             "key 'fk' does not match those of the primary key in the referenced table 'p'.\nMsg 1750, Level "
             "16, State 0: Could not create constraint or index. See previous errors."},
            {"CREATE TABLE h (a int CONSTRAINT fk REFERENCES p ON DELETE CASCADE, b int CONSTRAINT fk2 "
             "REFERENCES p(b) ON DELETE CASCADE)",
             "Msg 1785, Level 16, State 0: Introducing FOREIGN KEY constraint 'fk2' on table 'h' may cause "
             "cycles or multiple cascade paths. Specify ON DELETE NO ACTION or ON UPDATE NO ACTION, or "
             "modify other FOREIGN KEY constraints.\nMsg 1750, Level 16, State 0: Could not create "
             "constraint or index. See previous errors."},
            {"CREATE TABLE h (a int PRIMARY KEY, b int CONSTRAINT fk REFERENCES h ON DELETE CASCADE)",
             "Msg 1785, Level 16, State 0: Introducing FOREIGN KEY constraint 'fk' on table 'h' may cause "
             "cycles or multiple cascade paths. Specify ON DELETE NO ACTION or ON UPDATE NO ACTION, or "
             "modify other FOREIGN KEY constraints.\nMsg 1750, Level 16, State 0: Could not create "
             "constraint or index. See previous errors."},
            {"CREATE TABLE h (a int CONSTRAINT fk REFERENCES p ON DELETE CASCADE, b int CONSTRAINT fk2 "
             "REFERENCES p(b), s int)",
             ""},
            {"EXEC sp_fkeys 'p'",
             "PKTABLE_QUALIFIER | PKTABLE_OWNER | PKTABLE_NAME | PKCOLUMN_NAME | FKTABLE_QUALIFIER | "
             "FKTABLE_OWNER | FKTABLE_NAME | FKCOLUMN_NAME | KEY_SEQ | UPDATE_RULE | DELETE_RULE | FK_NAME | "
             "PK_NAME | DEFERRABILITY\nVentas | dbo | p | a | Ventas | dbo | h | a | 1 | 1 | 0 | fk | "
             "PK__p__78B3EFCA | 7\nVentas | dbo | p | b | Ventas | dbo | h | b | 1 | 1 | 1 | fk2 | "
             "UQ__p__b__79A81403 | 7"},
            {"EXEC sp_fkeys NULL,NULL,NULL,'h'",
             "PKTABLE_QUALIFIER | PKTABLE_OWNER | PKTABLE_NAME | PKCOLUMN_NAME | FKTABLE_QUALIFIER | "
             "FKTABLE_OWNER | FKTABLE_NAME | FKCOLUMN_NAME | KEY_SEQ | UPDATE_RULE | DELETE_RULE | FK_NAME | "
             "PK_NAME | DEFERRABILITY\nVentas | dbo | p | a | Ventas | dbo | h | a | 1 | 1 | 0 | fk | "
             "PK__p__78B3EFCA | 7\nVentas | dbo | p | b | Ventas | dbo | h | b | 1 | 1 | 1 | fk2 | "
             "UQ__p__b__79A81403 | 7"},
            {"EXEC sp_fkeys",
             "Msg 15252, Level 11, State 1: The primary or foreign key table name must be given."},
            {"DROP TABLE p", "Msg 3726, Level 16, State 1: Could not drop object 'p' because it is "
                             "referenced by a FOREIGN KEY constraint."},
            {"INSERT p (a, b) VALUES (1, 2) INSERT h (a, b, s) VALUES (1, 2, 9)", ""},
            {"ALTER TABLE h ADD CONSTRAINT fk3 FOREIGN KEY (s) REFERENCES p(b)",
             "Msg 547, Level 16, State 0: The ALTER TABLE statement conflicted with the FOREIGN KEY "
             "constraint \"fk3\". The conflict occurred in database \"Ventas\", table \"dbo.p\", column "
             "'b'."},
            {"ALTER TABLE h WITH NOCHECK ADD CONSTRAINT fk3 FOREIGN KEY (s) REFERENCES p(b)", ""},
            {"ALTER TABLE h WITH CHECK CHECK CONSTRAINT fk3",
             "Msg 547, Level 16, State 0: The ALTER TABLE statement conflicted with the FOREIGN KEY "
             "constraint \"fk3\". The conflict occurred in database \"Ventas\", table \"dbo.p\", column "
             "'b'."},
            {"SELECT name, is_disabled, is_not_trusted FROM sys.foreign_keys ORDER BY name",
             "name | is_disabled | is_not_trusted\nfk | 0 | 0\nfk2 | 0 | 0\nfk3 | 0 | 1"},
            {"ALTER TABLE p DROP CONSTRAINT fk3",
             "Msg 3733, Level 16, State 2: Constraint 'fk3' does not belong to table 'p'.\nMsg 3727, Level "
             "16, State 0: Could not drop constraint. See previous errors."},
            {"DROP TABLE h DROP TABLE p", ""},
        });
}

TEST(Tables, AreDroppedByTheirOwnStatement)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int CONSTRAINT ck CHECK (a > 0))", ""},
            {"DROP VIEW t", "Msg 3705, Level 16, State 1: Cannot use DROP VIEW with 't' because 't' is a "
                            "table. Use DROP TABLE."},
            {"DROP TABLE ck", "Msg 3701, Level 11, State 5: Cannot drop the table 'ck', because it does not "
                              "exist or you do not have permission."},
            {"DROP TABLE sysobjects",
             "Msg 3708, Level 16, State 1: Cannot drop the table 'sysobjects' because it is a system table."},
            {"DROP VIEW sysconstraints", "Msg 3708, Level 16, State 1: Cannot drop the view 'sysconstraints' "
                                         "because it is a system view."},
            {"DROP TABLE dbo.nada", "Msg 3701, Level 11, State 5: Cannot drop the table 'dbo.nada', because "
                                    "it does not exist or you do not have permission."},
            {"DROP TABLE IF EXISTS nada", ""},
            {"DROP TABLE Ventas.dbo.t", ""},
            {"SELECT name FROM sysobjects WHERE xtype <> 'S' AND category = 0", "name"},
        });
}

TEST(Tables, InAListAreDroppedEachByItself)
{
    const char* missing = "Msg 3701, Level 11, State 5: Cannot drop the table 'nada', because it does not "
                          "exist or you do not have permission.";
    const std::string referenced = std::string(missing) + "\nMsg 3726, Level 16, State 1: Could not drop "
                                                          "object 'p' because it is referenced by a FOREIGN "
                                                          "KEY constraint.";
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE a (x int) CREATE TABLE p (x int PRIMARY KEY) CREATE TABLE h (x int "
             "REFERENCES p)",
             ""},
            {"DROP TABLE nada, p, h, a", referenced.c_str()},
            {"SELECT name FROM sysobjects WHERE xtype = 'U'", "name\np"},
            {"DROP TABLE p, nada IF @@ERROR = 3701 PRINT 'seguido'",
             (std::string(missing) + "\n-- seguido").c_str()},
            {"CREATE TABLE a (x int)", ""},
            {"BEGIN TRY DROP TABLE a, nada PRINT 'nunca' END TRY BEGIN CATCH PRINT ERROR_NUMBER() "
             "END CATCH",
             "-- 3701"},
            {"CREATE TABLE t (a int, b int) CREATE INDEX i1 ON t (a) CREATE INDEX i2 ON t (b)", ""},
            {"DROP INDEX t.i1, t.nada, t.i2",
             "Msg 3701, Level 11, State 7: Cannot drop the index 't.nada', because it does not exist "
             "or you do not have permission."},
            {"EXEC sp_helpindex t", "-- The object does not have any indexes."},
        });
}

TEST(Tables, ExistWithinTransactions)
{
    expectAnswers(
        freshDatabase(),
        {
            {"BEGIN TRAN CREATE TABLE t (a int CONSTRAINT pk PRIMARY KEY) INSERT t VALUES (1) ROLLBACK", ""},
            {"SELECT * FROM t", "Msg 208, Level 16, State 1: Invalid object name 't'."},
            {"CREATE TABLE t (a int CONSTRAINT pk PRIMARY KEY, b int) INSERT t VALUES (1, 2)", ""},
            {"BEGIN TRAN ALTER TABLE t DROP COLUMN b ALTER TABLE t ALTER COLUMN a int NOT NULL ALTER TABLE t "
             "ADD c int ROLLBACK",
             ""},
            {"BEGIN TRAN DROP TABLE t ROLLBACK", ""},
            {"SELECT * FROM t", "a | b\n1 | 2"},
            {"CREATE TABLE #t (a int, b varchar(3)) CREATE TABLE #t (a int)",
             "Msg 2714, Level 16, State 6: There is already an object named '#t' in the database."},
            {"CREATE TABLE #t (a int, b varchar(3))",
             "Msg 2714, Level 16, State 6: There is already an object named '#t' in the database."},
            {"ALTER TABLE #t ADD c int INSERT #t VALUES (1, 'x', 2) SELECT * FROM #t",
             "a | b | c\n1 | x | 2"},
            {"DROP TABLE #t", ""},
            {"DROP TABLE #t", "Msg 3701, Level 11, State 5: Cannot drop the table '#t', because it does not "
                              "exist or you do not have permission."},
        });
}

TEST(Indexes, AreMadeAndRefused)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int NOT NULL, b int NULL, c varchar(500) NULL, d varchar(500) NULL, e "
             "char(901) NULL, x text NULL)",
             ""},
            {"INSERT t (a, b) VALUES (1, 1) INSERT t (a, b) VALUES (2, 1) INSERT t (a, b) VALUES (3, NULL) "
             "INSERT t (a, b) VALUES (4, NULL)",
             ""},
            {"CREATE INDEX i1 ON t (zz)",
             "Msg 1911, Level 16, State 1: Column name 'zz' does not exist in the target table or view."},
            {"CREATE INDEX i1 ON nada (a)", "Msg 1088, Level 16, State 12: Cannot find the object \"nada\" "
                                            "because it does not exist or you do not have permissions."},
            {"CREATE INDEX i1 ON sysobjects (id)",
             "Msg 1914, Level 16, State 1: Index cannot be created on object 'sysobjects' because the object "
             "is not a user table or view."},
            {"CREATE UNIQUE INDEX i1 ON t (b)",
             "Msg 1505, Level 16, State 1: The CREATE UNIQUE INDEX statement terminated because a duplicate "
             "key was found for the object name 'dbo.t' and the index name 'i1'. The duplicate key value is "
             "(<NULL>).\n-- The statement has been terminated."},
            {"CREATE INDEX i1 ON t (x)", "Msg 1919, Level 16, State 1: Column 'x' in table 't' is of a type "
                                         "that is invalid for use as a key column in an index."},
            {"CREATE INDEX i1 ON t (e)",
             "Msg 1944, Level 16, State 1: Index 'i1' was not created. This index has a key length of at "
             "least 901 bytes. The maximum permissible key length is 900 bytes."},
            {"CREATE INDEX i1 ON t (a, a)", "Msg 1909, Level 16, State 1: Cannot use duplicate column names "
                                            "in index key list. Column name 'a' listed more than once."},
            {"CREATE INDEX i1 ON t (a) ON nada",
             "Msg 1921, Level 16, State 1: Invalid filegroup 'nada' specified."},
            {"CREATE INDEX i1 ON t (a) WITH FILLFACTOR = 190",
             "Msg 129, Level 15, State 1: Fillfactor 190 is not a valid percentage; fillfactor must be "
             "between 1 and 100."},
            {"CREATE INDEX i1 ON t (a) WITH IGNORE_DUP_KEY",
             "Msg 1916, Level 16, State 4: CREATE INDEX options nonunique and ignore_dup_key are mutually "
             "exclusive."},
            {"CREATE INDEX i1 ON t (c, d)",
             "-- Warning! The maximum key length is 900 bytes. The index 'i1' has maximum length of 1000 "
             "bytes. For some combination of large values, the insert/update operation will fail."},
            {"CREATE INDEX i1 ON t (a)", "Msg 1913, Level 16, State 1: The operation failed because an index "
                                         "or statistics with name 'i1' already exists on table 't'."},
            {"CREATE INDEX i2 ON t (a) WITH DROP_EXISTING",
             "Msg 7999, Level 16, State 9: Could not find any index named 'i2' for table 't'."},
            {"CREATE INDEX i1 ON t (a DESC, b) WITH PAD_INDEX, FILLFACTOR = 90, DROP_EXISTING", ""},
            {"CREATE CLUSTERED INDEX ic ON t (a)", ""},
            {"CREATE CLUSTERED INDEX ic2 ON t (b)",
             "Msg 1902, Level 16, State 3: Cannot create more than one clustered index on table 't'. Drop "
             "the existing clustered index 'ic' before creating another."},
            {"CREATE INDEX ic ON t (a) WITH DROP_EXISTING",
             "Msg 1925, Level 16, State 2: Cannot convert a clustered index to a nonclustered index by using "
             "the DROP_EXISTING option. To change the index type from clustered to nonclustered, delete the "
             "clustered index, and then create a nonclustered index by using two separate statements."},
            {"CREATE UNIQUE INDEX iu ON t (a, b) WITH IGNORE_DUP_KEY", ""},
            {"ALTER TABLE t ADD CONSTRAINT pk PRIMARY KEY (a), CONSTRAINT uq UNIQUE (a, b)", ""},
            {"ALTER TABLE t ADD CONSTRAINT pk2 PRIMARY KEY (a)",
             "Msg 1779, Level 16, State 0: Table 't' already has a primary key defined on it.\nMsg 1750, "
             "Level 16, State 0: Could not create constraint or index. See previous errors."},
            {"ALTER TABLE t ADD CONSTRAINT uq2 UNIQUE (b)",
             "Msg 1505, Level 16, State 1: The CREATE UNIQUE INDEX statement terminated because a duplicate "
             "key was found for the object name 'dbo.t' and the index name 'uq2'. The duplicate key value is "
             "(<NULL>).\nMsg 1750, Level 16, State 0: Could not create constraint or index. See previous "
             "errors.\n-- The statement has been terminated."},
            {"CREATE UNIQUE INDEX pk ON t (b) WITH DROP_EXISTING",
             "Msg 1907, Level 16, State 1: Cannot recreate index 'pk'. The new index definition does not "
             "match the constraint being enforced by the existing index."},
            {"EXEC sp_helpindex t",
             "index_name | index_description | index_keys\ni1 | nonclustered located on PRIMARY | a(-), "
             "b\nic | clustered located on PRIMARY | a\niu | nonclustered, ignore duplicate keys, unique "
             "located on PRIMARY | a, b\npk | nonclustered, unique, primary key located on PRIMARY | a\nuq | "
             "nonclustered, unique, unique key located on PRIMARY | a, b"},
            {"SELECT name, indid, status, OrigFillFactor, keycnt, rows FROM sysindexes WHERE id = "
             "object_id('t') ORDER BY indid",
             "name | indid | status | OrigFillFactor | keycnt | rows\nic | 1 | 16 | 0 | 1 | 4\ni1 | 2 | 256 "
             "| 90 | 2 | 4\niu | 3 | 3 | 0 | 2 | 4\npk | 4 | 2050 | 0 | 1 | 4\nuq | 5 | 4098 | 0 | 2 | 4\ntt "
             "| 255 | 0 | 0 | 0 | 0"},
            {"DROP INDEX t.pk", "Msg 3723, Level 16, State 4: An explicit DROP INDEX is not allowed on index "
                                "'t.pk'. It is being used for PRIMARY KEY constraint enforcement."},
            {"DROP INDEX t.nada", "Msg 3701, Level 11, State 7: Cannot drop the index 't.nada', because it "
                                  "does not exist or you do not have permission."},
            {"DROP INDEX t.i1, t.iu", ""},
            {"DROP INDEX ic ON t", ""},
            {"EXEC sp_helpindex t",
             "index_name | index_description | index_keys\npk | nonclustered, unique, primary key located on "
             "PRIMARY | a\nuq | nonclustered, unique, unique key located on PRIMARY | a, b"},
            {"EXEC sp_helpindex nada",
             "Msg 15009, Level 16, State 1: The object 'nada' does not exist in database 'Ventas'."},
        });
}

TEST(Indexes, AreCheckedAtEachWrite)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int CONSTRAINT pk PRIMARY KEY, b varchar(5) CONSTRAINT uq UNIQUE, c int)",
             ""},
            {"INSERT t VALUES (1, 'uno', 1)", ""},
            {"INSERT t VALUES (1, 'dos', 1)",
             "Msg 2627, Level 14, State 1: Violation of PRIMARY KEY constraint 'pk'. Cannot insert duplicate "
             "key in object 'dbo.t'. The duplicate key value is (1).\n-- The statement has been terminated."},
            {"INSERT t VALUES (2, 'UNO ', 1)",
             "Msg 2627, Level 14, State 1: Violation of UNIQUE KEY constraint 'uq'. Cannot insert duplicate "
             "key in object 'dbo.t'. The duplicate key value is (UNO ).\n-- The statement has been "
             "terminated."},
            {"INSERT t VALUES (3, NULL, 1)", ""},
            {"INSERT t VALUES (4, NULL, 1)",
             "Msg 2627, Level 14, State 1: Violation of UNIQUE KEY constraint 'uq'. Cannot insert duplicate "
             "key in object 'dbo.t'. The duplicate key value is (<NULL>).\n-- The statement has been "
             "terminated."},
            {"CREATE UNIQUE INDEX ix ON t (c, b)", ""},
            {"UPDATE t SET b = 'uno' WHERE a = 3",
             "Msg 2601, Level 14, State 1: Cannot insert duplicate key row in object 'dbo.t' with unique "
             "index 'ix'. The duplicate key value is (1, uno).\n-- The statement has been terminated."},
            {"DROP INDEX t.ix ALTER TABLE t DROP CONSTRAINT uq", ""},
            {"INSERT t VALUES (4, NULL, 1)", ""},
        });
}

} // namespace practice::test
