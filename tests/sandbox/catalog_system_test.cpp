// System tables and procedures that read them: they agree with what was defined.
#include "engine/catalog/catalog.h"
#include "engine_cases.h"
#include "sample/sample.h"

namespace practice::test {

TEST(SystemTables, TellTypesAsTheServerDoes)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE tipos (c01 binary(10), c02 bit, c03 char(10), c04 datetime, c05 decimal(10,2), "
             "c06 float, c07 image, c08 int, c09 money, c10 nchar(10), c11 ntext, c12 numeric(18,4), c13 "
             "nvarchar(50), c14 real, c15 smalldatetime, c16 smallint, c17 smallmoney, c18 text, c19 "
             "timestamp, c20 tinyint, c21 uniqueidentifier, c22 varbinary(8), c23 varchar(8), c24 bigint, "
             "c25 sql_variant, c26 sysname)",
             ""},
            {"Select name, xtype, xusertype, length, prec, scale, isnullable, type, usertype from "
             "Ventas..syscolumns  where id = object_id('tipos') order by colid",
             "name | xtype | xusertype | length | prec | scale | isnullable | type | usertype\nc01 | 173 | "
             "173 | 10 | 10 | NULL | 1 | 45 | 3\nc02 | 104 | 104 | 1 | 1 | 0 | 1 | 50 | 16\nc03 | 175 | 175 "
             "| 10 | 10 | NULL | 1 | 47 | 1\nc04 | 61 | 61 | 8 | 23 | 3 | 1 | 111 | 12\nc05 | 106 | 106 | 9 "
             "| 10 | 2 | 1 | 106 | 24\nc06 | 62 | 62 | 8 | 53 | NULL | 1 | 109 | 8\nc07 | 34 | 34 | 16 | "
             "NULL | NULL | 1 | 34 | 20\nc08 | 56 | 56 | 4 | 10 | 0 | 1 | 38 | 7\nc09 | 60 | 60 | 8 | 19 | 4 "
             "| 1 | 110 | 11\nc10 | 239 | 239 | 20 | 10 | NULL | 1 | 47 | 0\nc11 | 99 | 99 | 16 | NULL | "
             "NULL | 1 | 35 | 0\nc12 | 108 | 108 | 9 | 18 | 4 | 1 | 108 | 10\nc13 | 231 | 231 | 100 | 50 | "
             "NULL | 1 | 39 | 0\nc14 | 59 | 59 | 4 | 24 | NULL | 1 | 109 | 23\nc15 | 58 | 58 | 4 | 16 | 0 | "
             "1 | 111 | 22\nc16 | 52 | 52 | 2 | 5 | 0 | 1 | 38 | 6\nc17 | 122 | 122 | 4 | 10 | 4 | 1 | 110 | "
             "21\nc18 | 35 | 35 | 16 | NULL | NULL | 1 | 35 | 19\nc19 | 189 | 189 | 8 | 8 | NULL | 0 | 45 | "
             "80\nc20 | 48 | 48 | 1 | 3 | 0 | 1 | 38 | 5\nc21 | 36 | 36 | 16 | 16 | NULL | 1 | 37 | 0\nc22 | "
             "165 | 165 | 8 | 8 | NULL | 1 | 37 | 4\nc23 | 167 | 167 | 8 | 8 | NULL | 1 | 39 | 2\nc24 | 127 "
             "| 127 | 8 | 19 | 0 | 1 | 38 | 0\nc25 | 98 | 98 | 8016 | 0 | NULL | 1 | 39 | 0\nc26 | 231 | 256 "
             "| 256 | 128 | NULL | 0 | 39 | 18"},
            {"SELECT name, xtype, length, xprec, xscale, variable, allownulls FROM systypes WHERE name IN "
             "('sysname', 'decimal', 'nvarchar', 'int', 'timestamp')",
             "name | xtype | length | xprec | xscale | variable | allownulls\nint | 56 | 4 | 10 | 0 | 0 | "
             "1\ndecimal | 106 | 17 | 38 | 38 | 0 | 1\ntimestamp | 189 | 8 | 0 | 0 | 0 | 0\nnvarchar | 231 | "
             "8000 | 0 | 0 | 1 | 1\nsysname | 231 | 256 | 0 | 0 | 1 | 0"},
            {"SELECT COLUMN_NAME, DATA_TYPE, CHARACTER_MAXIMUM_LENGTH, NUMERIC_PRECISION, NUMERIC_SCALE, "
             "DATETIME_PRECISION, COLLATION_NAME FROM INFORMATION_SCHEMA.COLUMNS WHERE COLUMN_NAME IN "
             "('c03', 'c05', 'c06', 'c13', 'c15', 'c18')",
             "COLUMN_NAME | DATA_TYPE | CHARACTER_MAXIMUM_LENGTH | NUMERIC_PRECISION | NUMERIC_SCALE | "
             "DATETIME_PRECISION | COLLATION_NAME\nc03 | char | 10 | NULL | NULL | NULL | "
             "SQL_Latin1_General_CP1_CI_AS\nc05 | decimal | NULL | 10 | 2 | NULL | NULL\nc06 | float | NULL "
             "| 53 | NULL | NULL | NULL\nc13 | nvarchar | 50 | NULL | NULL | NULL | "
             "SQL_Latin1_General_CP1_CI_AS\nc15 | smalldatetime | NULL | NULL | NULL | 0 | NULL\nc18 | text "
             "| 2147483647 | NULL | NULL | NULL | SQL_Latin1_General_CP1_CI_AS"},
            {"SELECT c.name, c.system_type_id, c.max_length, c.precision, c.scale FROM sys.columns c WHERE "
             "c.object_id = object_id('tipos') AND c.name IN ('c03', 'c05', 'c06', 'c13', 'c15')",
             "name | system_type_id | max_length | precision | scale\nc03 | 175 | 10 | 0 | 0\nc05 | 106 | 9 "
             "| 10 | 2\nc06 | 62 | 8 | 53 | 0\nc13 | 231 | 100 | 0 | 0\nc15 | 58 | 4 | 16 | 0"},
        });
}

TEST(SystemTables, AgreeWithTheTables)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE p (a int IDENTITY(5,2) CONSTRAINT pk_p PRIMARY KEY CLUSTERED, b varchar(10) NOT "
             "NULL CONSTRAINT df_b DEFAULT ('a(b)') CONSTRAINT uq_b UNIQUE, c int CONSTRAINT ck_c CHECK (c > "
             "0), d AS c * 2)",
             ""},
            {"CREATE TABLE h (x int, y int CONSTRAINT fk_h REFERENCES p(a) ON DELETE CASCADE ON UPDATE "
             "CASCADE, z text)",
             ""},
            {"CREATE INDEX ix_x ON h (y DESC, x) WITH FILLFACTOR = 70", ""},
            {"SELECT o.name, o.xtype, o.type, p.name FROM sysobjects o LEFT JOIN sysobjects p ON p.id = "
             "o.parent_obj WHERE o.category = 0 AND o.xtype <> 'S' ORDER BY o.id",
             "name | xtype | type | name\np | U  | U  | NULL\ndf_b | D  | D  | p\npk_p | PK | K  | p\nuq_b | "
             "UQ | K  | p\nck_c | C  | C  | p\nh | U  | U  | NULL\nfk_h | F  | F  | h"},
            {"SELECT c.name, c.colstat, c.iscomputed, t.text FROM syscolumns c LEFT JOIN syscomments t ON "
             "t.id = c.cdefault WHERE c.id = object_id('p') ORDER BY c.colid",
             "name | colstat | iscomputed | text\na | 1 | 0 | NULL\nb | 0 | 0 | ('a(b)')\nc | 0 | 0 | "
             "NULL\nd | 4 | 1 | NULL"},
            {"Select i.name, i.indid, i.groupid, i.status, i.OrigFillFactor, case when i.keys is null then "
             "'null' else 'keys' end as claves from Ventas..sysindexes i  where i.id = object_id('h') and "
             "indid <> 255 and (status & 64)=0 order by indid",
             "name | indid | groupid | status | OrigFillFactor | claves\nh | 0 | 1 | 0 | 0 | null\nix_x | 2 "
             "| 1 | 0 | 70 | keys"},
            {"Select * from Ventas..sysindexkeys  where id = object_id('h') and indid = 2 order by colid",
             "id | indid | colid | keyno\n2089058478 | 2 | 1 | 2\n2089058478 | 2 | 2 | 1"},
            {"Select o.name,r.keycnt, r.rkeyindid, r.fkey1, r.fkey2, r.rkey1 from Ventas..sysreferences "
             "r,Ventas..sysobjects o where fkeyid = object_id('h') and o.id=r.constid and o.name='fk_h'",
             "name | keycnt | rkeyindid | fkey1 | fkey2 | rkey1\nfk_h | 1 | 1 | 2 | 0 | 1"},
            {"SELECT fkey, rkey, keyno FROM sysforeignkeys", "fkey | rkey | keyno\n2 | 1 | 1"},
            {"SELECT object_name(constid), object_name(id), colid, status & 15 FROM sysconstraints ORDER BY "
             "constid",
             " |  | colid | \ndf_b | p | 2 | 5\npk_p | p | 0 | 1\nuq_b | p | 0 | 2\nck_c | p | 3 | 4\nfk_h | "
             "h | 0 | 3"},
            {"EXEC sp_helpconstraint 'h', 'nomsg'",
             "constraint_type | constraint_name | delete_action | update_action | status_enabled | "
             "status_for_replication | constraint_keys\nFOREIGN KEY | fk_h | Cascade | Cascade | Enabled | "
             "Is_For_Replication | y\n  |   |   |   |   |   | REFERENCES Ventas.dbo.p (a)\n-- No foreign "
             "keys reference table 'h'."},
            {"EXEC sp_pkeys 'p'", "TABLE_QUALIFIER | TABLE_OWNER | TABLE_NAME | COLUMN_NAME | KEY_SEQ | "
                                  "PK_NAME\nVentas | dbo | p | a | 1 | pk_p"},
            {"EXEC sp_statistics 'h'",
             "TABLE_QUALIFIER | TABLE_OWNER | TABLE_NAME | NON_UNIQUE | INDEX_QUALIFIER | INDEX_NAME | TYPE "
             "| SEQ_IN_INDEX | COLUMN_NAME | COLLATION | CARDINALITY | PAGES | FILTER_CONDITION\nVentas | "
             "dbo | h | NULL | NULL | NULL | 0 | NULL | NULL | NULL | 0 | 1 | NULL\nVentas | dbo | h | 1 | h "
             "| ix_x | 3 | 1 | y | D | 0 | 1 | NULL\nVentas | dbo | h | 1 | h | ix_x | 3 | 2 | x | A | 0 | 1 "
             "| NULL"},
            {"EXEC sp_special_columns 'p'",
             "SCOPE | COLUMN_NAME | DATA_TYPE | TYPE_NAME | PRECISION | LENGTH | SCALE | PSEUDO_COLUMN\n1 | "
             "a | 4 | int identity | 10 | 4 | 0 | 1"},
            {"SELECT CONSTRAINT_NAME, TABLE_NAME, CONSTRAINT_TYPE FROM INFORMATION_SCHEMA.TABLE_CONSTRAINTS "
             "ORDER BY CONSTRAINT_NAME",
             "CONSTRAINT_NAME | TABLE_NAME | CONSTRAINT_TYPE\nck_c | p | CHECK\nfk_h | h | FOREIGN KEY\npk_p "
             "| p | PRIMARY KEY\nuq_b | p | UNIQUE"},
            {"SELECT CONSTRAINT_NAME, UNIQUE_CONSTRAINT_NAME, UPDATE_RULE, DELETE_RULE FROM "
             "INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS",
             "CONSTRAINT_NAME | UNIQUE_CONSTRAINT_NAME | UPDATE_RULE | DELETE_RULE\nfk_h | pk_p | CASCADE | "
             "CASCADE"},
            {"SELECT name, seed_value, increment_value, last_value FROM sys.identity_columns",
             "name | seed_value | increment_value | last_value\na | 5 | 2 | NULL"},
            {"INSERT p (b, c) VALUES ('uno', 1) INSERT h (y) VALUES (5) SELECT last_value FROM "
             "sys.identity_columns",
             "last_value\n5"},
            {"EXEC sp_spaceused 'h'", "name | rows | reserved | data | index_size | unused\nh | 1           "
                                      "| 128 KB | 8 KB | 24 KB | 96 KB"},
        });
}

TEST(SystemTables, AnswerTheDesigners)
{
    Engine& engine = freshDatabase();
    expectAnswers(
        engine,
        {
            {"EXEC sp_help 'nvarchar'",
             "Type_name | Storage_type | Length | Prec | Scale | Nullable | Default_name | Rule_name | "
             "Collation\nnvarchar | nvarchar | 8000 | 4000 | NULL | yes | none | none | "
             "SQL_Latin1_General_CP1_CI_AS"},
            {"EXEC sp_help 'sysname'",
             "Type_name | Storage_type | Length | Prec | Scale | Nullable | Default_name | Rule_name | "
             "Collation\nsysname | nvarchar | 256 | 128 | NULL | no | none | none | "
             "SQL_Latin1_General_CP1_CI_AS"},
            {"EXEC sp_help 'nada'",
             "Msg 15009, Level 16, State 1: The object 'nada' does not exist in database 'Ventas'."},
        });
    engine.run("CREATE TABLE z (id int NOT NULL CONSTRAINT pk PRIMARY KEY)");
    engine.run("CREATE TABLE t (a int CONSTRAINT fk REFERENCES z)");
    engine.run("CREATE VIEW v AS SELECT a FROM t");
    const std::pair<const char*, const char*> shapes[] = {
        {"EXEC sp_helpindex 'z'", "index_name:nvarchar(128) not null | index_description:varchar(210) | "
                                  "index_keys:nvarchar(2078)\npk | "
                                  "clustered, unique, primary key located on PRIMARY | id\n"},
        {"EXEC sp_fkeys 'z'", "PKTABLE_QUALIFIER:nvarchar(128) | PKTABLE_OWNER:nvarchar(128) | "
                              "PKTABLE_NAME:nvarchar(128) not null | "
                              "PKCOLUMN_NAME:nvarchar(128) not null | FKTABLE_QUALIFIER:nvarchar(128) | "
                              "FKTABLE_OWNER:nvarchar(128) "
                              "| FKTABLE_NAME:nvarchar(128) not null | FKCOLUMN_NAME:nvarchar(128) not null "
                              "| KEY_SEQ:smallint not "
                              "null | UPDATE_RULE:smallint | DELETE_RULE:smallint | FK_NAME:nvarchar(128) | "
                              "PK_NAME:nvarchar(128) | "
                              "DEFERRABILITY:smallint not null\nVentas | dbo | z | id | Ventas | dbo | t | a "
                              "| 1 | 1 | 1 | fk | pk | "
                              "7\n"},
        {"EXEC sp_helptext 'v'", "Text:nvarchar(255)\nCREATE VIEW v AS SELECT a FROM t\n"},
        {"SELECT DATABASEPROPERTYEX('Ventas','status') s, DATABASEPROPERTYEX('Ventas','IsAutoClose') c, "
         "suser_sname(0x01) n",
         "s:sql_variant | c:sql_variant | n:nvarchar(128)\nONLINE | 0 | sa\n"},
        {"SELECT TOP 0 * FROM sysfilegroups",
         "groupid:smallint not null | allocpolicy:smallint not null | status:int not null | "
         "groupname:nvarchar(128) not null\n"},
        {"SELECT TOP 0 * FROM sysfiles",
         "fileid:smallint not null | groupid:smallint not null | size:int not null | maxsize:int not null | "
         "growth:int not null | status:int not null | perf:int not null | name:nchar(128) not null | "
         "filename:nchar(260) not null\n"},
    };
    for (const auto& [statement, shape] : shapes)
        EXPECT_EQ(engine.describe(statement), shape) << statement;
}

TEST(SystemTables, AnswerDrivers)
{
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE t (a int CONSTRAINT pk PRIMARY KEY, b nvarchar(20) NULL, c decimal(9,2), d "
             "datetime)",
             ""},
            {"CREATE VIEW v AS SELECT a FROM t", ""},
            {"CREATE PROC p @x int, @y varchar(5) OUTPUT AS SELECT 1", ""},
            {"EXEC sp_tables 't%', NULL, NULL, '''TABLE'',''VIEW'''",
             "TABLE_QUALIFIER | TABLE_OWNER | TABLE_NAME | TABLE_TYPE | REMARKS\nVentas | dbo | t | TABLE | "
             "NULL"},
            {"EXEC sp_tables '%', '', ''",
             "TABLE_QUALIFIER | TABLE_OWNER | TABLE_NAME | TABLE_TYPE | REMARKS"},
            {"EXEC sp_tables '', '', '', '%'",
             "TABLE_QUALIFIER | TABLE_OWNER | TABLE_NAME | TABLE_TYPE | REMARKS\nNULL | NULL | NULL | SYSTEM "
             "TABLE | NULL\nNULL | NULL | NULL | TABLE | NULL\nNULL | NULL | NULL | VIEW | NULL"},
            {"EXEC sp_tables @table_name = 'v'", "TABLE_QUALIFIER | TABLE_OWNER | TABLE_NAME | TABLE_TYPE | "
                                                 "REMARKS\nVentas | dbo | v | VIEW | NULL"},
            {"EXEC sp_tables NULL, NULL, 'master'",
             "Msg 15250, Level 16, State 1: The database name component of the object qualifier must be the "
             "name of the current database."},
            {"EXEC sp_columns @table_name = 't', @column_name = '[a-c]'",
             "TABLE_QUALIFIER | TABLE_OWNER | TABLE_NAME | COLUMN_NAME | DATA_TYPE | TYPE_NAME | PRECISION | "
             "LENGTH | SCALE | RADIX | NULLABLE | REMARKS | COLUMN_DEF | SQL_DATA_TYPE | SQL_DATETIME_SUB | "
             "CHAR_OCTET_LENGTH | ORDINAL_POSITION | IS_NULLABLE | SS_DATA_TYPE\nVentas | dbo | t | a | 4 | "
             "int | 10 | 4 | 0 | 10 | 0 | NULL | NULL | 4 | NULL | NULL | 1 | NO | 56\nVentas | dbo | t | b "
             "| 12 | nvarchar | 20 | 40 | NULL | NULL | 1 | NULL | NULL | -9 | NULL | 40 | 2 | YES | "
             "39\nVentas | dbo | t | c | 3 | decimal | 9 | 11 | 2 | 10 | 1 | NULL | NULL | 3 | NULL | NULL | "
             "3 | YES | 106"},
            {"EXEC sp_columns 't', @ODBCVer = 3, @column_name = 'd'",
             "TABLE_QUALIFIER | TABLE_OWNER | TABLE_NAME | COLUMN_NAME | DATA_TYPE | TYPE_NAME | PRECISION | "
             "LENGTH | SCALE | RADIX | NULLABLE | REMARKS | COLUMN_DEF | SQL_DATA_TYPE | SQL_DATETIME_SUB | "
             "CHAR_OCTET_LENGTH | ORDINAL_POSITION | IS_NULLABLE | SS_DATA_TYPE\nVentas | dbo | t | d | 93 | "
             "datetime | 23 | 16 | 3 | NULL | 1 | NULL | NULL | 9 | 3 | NULL | 4 | YES | 111"},
            {"EXEC sp_sproc_columns 'p'",
             "PROCEDURE_QUALIFIER | PROCEDURE_OWNER | PROCEDURE_NAME | COLUMN_NAME | COLUMN_TYPE | DATA_TYPE "
             "| TYPE_NAME | PRECISION | LENGTH | SCALE | RADIX | NULLABLE | REMARKS | COLUMN_DEF | "
             "SQL_DATA_TYPE | SQL_DATETIME_SUB | CHAR_OCTET_LENGTH | ORDINAL_POSITION | IS_NULLABLE | "
             "SS_DATA_TYPE\nVentas | dbo | p;1 | @x | 1 | 4 | int | 10 | 4 | 0 | 10 | 1 | NULL | NULL | 4 | "
             "NULL | NULL | 1 | YES | 38\nVentas | dbo | p;1 | @y | 2 | 12 | varchar | 5 | 5 | NULL | NULL | "
             "1 | NULL | NULL | 12 | NULL | 5 | 2 | YES | 39"},
            {"EXEC sp_stored_procedures 'p'",
             "PROCEDURE_QUALIFIER | PROCEDURE_OWNER | PROCEDURE_NAME | NUM_INPUT_PARAMS | NUM_OUTPUT_PARAMS "
             "| NUM_RESULT_SETS | REMARKS | PROCEDURE_TYPE\nVentas | dbo | p;1 | -1 | -1 | -1 | NULL | 1"},
            {"EXEC sp_datatype_info 12",
             "TYPE_NAME | DATA_TYPE | PRECISION | LITERAL_PREFIX | LITERAL_SUFFIX | CREATE_PARAMS | NULLABLE "
             "| CASE_SENSITIVE | SEARCHABLE | UNSIGNED_ATTRIBUTE | MONEY | AUTO_INCREMENT | LOCAL_TYPE_NAME "
             "| MINIMUM_SCALE | MAXIMUM_SCALE | SQL_DATA_TYPE | SQL_DATETIME_SUB | NUM_PREC_RADIX | "
             "INTERVAL_PRECISION | USERTYPE\nnvarchar | 12 | 4000 | N' | ' | max length | 1 | 0 | 3 | NULL | "
             "0 | NULL | nvarchar | NULL | NULL | -9 | NULL | NULL | NULL | 0\nsysname | 12 | 128 | N' | ' | "
             "max length | 1 | 0 | 3 | NULL | 0 | NULL | sysname | NULL | NULL | -9 | NULL | NULL | NULL | "
             "18\nvarchar | 12 | 8000 | ' | ' | max length | 1 | 0 | 3 | NULL | 0 | NULL | varchar | NULL | "
             "NULL | 12 | NULL | NULL | NULL | 2"},
            {"EXEC sp_server_info 1",
             "attribute_id | attribute_name | attribute_value\n1 | DBMS_NAME | Microsoft SQL Server"},
            {"EXEC sp_who 51",
             "spid | ecid | status | loginame | hostname | blk | dbname | cmd\n51 | 0 | runnable             "
             "          | sa | here                                                                          "
             "                                                   | 0     | Ventas | SELECT          "},
        });
}

TEST(SystemTables, CanAllBeRead)
{
    Engine& engine = freshDatabase();
    engine.run("CREATE TABLE t (a int PRIMARY KEY, b text)");
    for (const SystemTable& table : systemTables()) {
        const std::string name = table.schema + '.' + table.name;
        SCOPED_TRACE(name);
        std::string heads;
        for (const auto& column : table.columns)
            heads += (heads.empty() ? "" : " | ") + column.name;
        const std::string answer = engine.run("SELECT * FROM " + name);
        EXPECT_EQ(answer.substr(0, answer.find('\n')), heads);
        EXPECT_EQ(answer.find("Msg "), std::string::npos) << answer;
    }
}

TEST(SystemTables, SplitLongTexts)
{
    Engine& engine = freshDatabase();
    const std::string view = "CREATE VIEW larga AS SELECT '" + std::string(9000, 'x') + "' AS c /* ñ */";
    EXPECT_EQ(engine.run(view), "");
    EXPECT_EQ(
        engine.run("SELECT colid, datalength(text) AS bytes FROM syscomments WHERE id = object_id('larga') "
                   "ORDER BY colid"),
        "colid | bytes\n1 | 8000\n2 | 8000\n3 | " + std::to_string(2 * (view.size() - 1 - 8000)) + "\n");
    const std::string rows =
        engine.run("SELECT text FROM syscomments WHERE id = object_id('larga') ORDER BY colid");
    std::string joined = rows.substr(rows.find('\n') + 1);
    std::erase(joined, '\n');
    EXPECT_EQ(joined, view);
    std::string lines = engine.run("EXEC sp_helptext larga");
    lines.erase(0, lines.find('\n') + 1);
    EXPECT_EQ(lines.find('\n'), 255U);
    std::erase(lines, '\n');
    EXPECT_EQ(lines, view);
}

TEST(SystemTables, SurviveARestartExceptInTempdb)
{
    Engine engine;
    engine.run("CREATE DATABASE Duradera");
    engine.run("USE Duradera CREATE TABLE t (a int CONSTRAINT pk PRIMARY KEY) INSERT t VALUES (7)");
    engine.run("CREATE TABLE tempdb..pasajera (a int CONSTRAINT pkt PRIMARY KEY)");
    engine.run("EXEC sp_addlogin 'ana', 'Clave-1'");
    engine.restart();
    EXPECT_EQ(engine.run("SELECT a FROM Duradera..t"), "a\n7\n");
    EXPECT_EQ(engine.run("SELECT name FROM tempdb..sysobjects WHERE name LIKE 'p%'"), "name\n");
    EXPECT_EQ(engine.run("CREATE TABLE tempdb..pasajera (a int CONSTRAINT pkt PRIMARY KEY)"), "");
    EXPECT_NO_THROW((void)engine.login("ana", "Clave-1"));
    EXPECT_EQ(engine.run("SELECT count(*) AS n FROM Duradera..sysobjects WHERE id = 1"), "n\n1\n");
}

TEST(Sample, IsACompanyOfItsOwn)
{
    const TemporaryDirectory directory;
    const auto server = openServer({directory.path(), "PRACTICE", "Secret1"});
    buildSample(*server);
    buildSample(*server);
    Answer ignored;
    const auto session = server->login({"begona", "Ventas-2001", "", "tests", "", ""}, ignored);
    const auto expect = [&](const char* batch, const char* answer) {
        SCOPED_TRACE(batch);
        EXPECT_EQ(Engine::run(*session, batch), answer);
    };
    expect("SELECT db_name() AS d, user_name() AS u", "d | u\nComercial | begona\n");
    expect("SELECT name, rows FROM sysindexes WHERE indid < 2 AND rows > 1000 ORDER BY rows",
           "name | rows\nPK_Pedidos | 20000\nPK_LineasPedido | 100000\n");
    expect("SELECT xtype, count(*) AS n FROM sysobjects WHERE category = 0 AND xtype <> 'S' GROUP BY xtype "
           "ORDER BY xtype",
           "xtype | n\nC  | 6\nD  | 11\nF  | 10\nP  | 3\nPK | 10\nU  | 10\nUQ | 2\nV  | 3\n");
    expect("SELECT Poblacion FROM Archivo..sysusers u, Clientes c WHERE u.name = 'begona' AND "
           "c.IdCliente = 5",
           "Poblacion\nMaó\n");
    expect(
        "SELECT count(*) AS n FROM LineasPedido l, Pedidos p WHERE p.IdPedido = l.IdPedido AND l.Importe > 0",
        "n\n100000\n");
    expect("DECLARE @n int EXEC SubePrecios 3, @Cambiados = @n OUTPUT SELECT @n AS n", "n\n20\n");
    expect("DELETE Zonas WHERE IdZona = 1",
           "Msg 547, Level 16, State 0: The DELETE statement conflicted with the REFERENCE constraint "
           "\"FK_Clientes_Zonas\". The conflict occurred in database \"Comercial\", table \"dbo.Clientes\", "
           "column "
           "'IdZona'.\n-- The statement has been terminated.\n");
}

} // namespace practice::test
