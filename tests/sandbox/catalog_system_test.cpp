// System tables and procedures that read them: they agree with what was defined.
#include "engine/catalog/catalog.h"
#include "engine_cases.h"
#include "sample/sample.h"

namespace practice::test {

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
