// What a table designer sends when a table is saved: one transaction over many statements, which stands
// or falls as one.
#include "engine_cases.h"

namespace practice::test {

class TableSave : public ::testing::Test
{
protected:
    void SetUp() override
    {
        engine.run("CREATE TABLE Zonas (id int NOT NULL CONSTRAINT PK_Zonas PRIMARY KEY, nombre varchar(20) "
                   "NULL CONSTRAINT DF_Zonas_nombre DEFAULT ('x'))");
        engine.run("CREATE TABLE Clientes (idc int NOT NULL CONSTRAINT PK_Clientes PRIMARY KEY NONCLUSTERED, "
                   "zona int NULL CONSTRAINT FK_CZ REFERENCES Zonas(id), nota varchar(10) NULL)");
        engine.run("CREATE INDEX IX_zona ON Clientes (zona) CREATE INDEX IX_nombre ON Zonas (nombre)");
        engine.run(
            "INSERT Zonas VALUES (1, 'uno') INSERT Zonas VALUES (2, 'dos') INSERT Clientes VALUES (10, "
            "1, 'a') INSERT Clientes VALUES (20, 2, 'b')");
    }

    /// The database as its catalog and its rows tell it.
    std::string picture()
    {
        return engine.run("SELECT name, id, xtype, parent_obj, crdate FROM sysobjects WHERE xtype <> 'S'") +
               engine.run("SELECT id, name, xtype, length, isnullable, colid, cdefault FROM syscolumns WHERE "
                          "id > 100") +
               engine.run("SELECT id, text FROM syscomments") +
               engine.run("SELECT id, name, indid, status, keycnt, groupid, OrigFillFactor, rows FROM "
                          "sysindexes WHERE id > 100") +
               engine.run("SELECT * FROM sysindexkeys SELECT * FROM sysreferences") +
               engine.run("SELECT * FROM Zonas SELECT * FROM Clientes");
    }

    /// A key column of Zonas widened with all that hangs on it, a column renamed, columns added and
    /// taken away, indexes and keys rebuilt.
    void save()
    {
        expectAnswers(
            engine,
            {
                {"USE Ventas", "-- Changed database context to 'Ventas'."},
                {"EXEC sp_rename 'Zonas.[nombre]', 'denominacion', 'COLUMN'",
                 "-- Caution: Changing any part of an object name could break scripts and stored "
                 "procedures.\n-- The COLUMN was renamed to 'denominacion'."},
                {"ALTER TABLE Ventas..Clientes DROP CONSTRAINT FK_CZ", ""},
                {"exec sp_helpindex 'Clientes'",
                 "index_name | index_description | index_keys\nIX_zona | nonclustered located on PRIMARY | "
                 "zona\nPK_Clientes | nonclustered, unique, primary key located on PRIMARY | idc"},
                {"DROP INDEX Clientes.IX_zona", ""},
                {"ALTER TABLE Ventas..Clientes   ALTER COLUMN zona bigint  NULL", ""},
                {"ALTER TABLE Ventas..Zonas DROP CONSTRAINT PK_Zonas", ""},
                {"ALTER TABLE Ventas..Zonas   ALTER COLUMN id bigint  NOT NULL", ""},
                {" CREATE   NONCLUSTERED INDEX IX_zona ON Clientes (zona)  ON [PRIMARY]", ""},
                {" ALTER TABLE Zonas ADD CONSTRAINT [PK_Zonas] PRIMARY KEY   CLUSTERED  (id)   WITH "
                 "FILLFACTOR "
                 "= 80 ON [PRIMARY]",
                 ""},
                {" ALTER TABLE Clientes ADD CONSTRAINT [FK_CZ] FOREIGN KEY (zona) REFERENCES Zonas (id)", ""},
                {"ALTER TABLE Ventas..Zonas DROP CONSTRAINT [DF_Zonas_nombre]", ""},
                {"ALTER TABLE Ventas..Zonas   ALTER COLUMN denominacion varchar  (30)  COLLATE "
                 "SQL_Latin1_General_CP1_CI_AS  NULL",
                 ""},
                {"ALTER TABLE Ventas..Zonas WITH NOCHECK ADD  CONSTRAINT [DF_Zonas_nombre] DEFAULT ('y') FOR "
                 "[denominacion]",
                 ""},
                {"ALTER TABLE Ventas..Zonas  ADD c1 int  NULL,\rc2 varchar  (8)  NOT NULL CONSTRAINT "
                 "[DF_Zonas_c2] DEFAULT (7)",
                 ""},
                {"CREATE  INDEX IX_nombre  ON Ventas..Zonas  (denominacion,c2)\r WITH FILLFACTOR = 60 "
                 ",DROP_EXISTING  ON [PRIMARY]",
                 ""},
                // What the server refuses in between leaves the transaction as it is.
                {"ALTER TABLE Ventas..Clientes DROP CONSTRAINT [DF_Clientes_nota]",
                 "Msg 3728, Level 16, State 1: 'DF_Clientes_nota' is not a constraint.\nMsg 3727, Level 16, "
                 "State 0: Could not drop constraint. See previous errors."},
                {"ALTER TABLE Ventas..Clientes   DROP COLUMN nota", ""},
                {"INSERT Zonas (id) VALUES (3)", ""},
                {"SELECT * FROM Zonas", "id | denominacion | c1 | c2\n1 | uno | NULL | 7\n2 | dos | NULL | "
                                        "7\n3 | y | NULL | 7"},
                {"DELETE Zonas WHERE id = 1",
                 "Msg 547, Level 16, State 0: The DELETE statement conflicted with the REFERENCE constraint "
                 "\"FK_CZ\". The conflict occurred in database \"Ventas\", table \"dbo.Clientes\", column "
                 "'zona'.\n-- The statement has been terminated."},
                {"CREATE TABLE Ventas..Nueva (a int  NULL,\rb char (10)  NOT NULL)", ""},
                {"CREATE VIEW DeZonas AS SELECT id FROM Zonas", ""},
                {"SELECT @@TRANCOUNT", "1"},
            });
    }

    Engine& engine = freshDatabase();
};

TEST_F(TableSave, RolledBackLeavesNoTrace)
{
    const std::string before = picture();
    engine.run("BEGIN TRAN");
    save();
    EXPECT_NE(picture(), before);
    expectAnswers(engine,
                  {{"CREATE DATABASE Otra", "Msg 226, Level 16, State 6: CREATE DATABASE statement not "
                                            "allowed within multi-statement transaction."},
                   {"DROP DATABASE Ventas", "Msg 574, Level 16, State 0: DROP DATABASE statement "
                                            "cannot be used inside a user transaction."}});
    engine.run("ROLLBACK");
    EXPECT_EQ(picture(), before);
    expectAnswers(engine,
                  {{"SELECT * FROM Nueva", "Msg 208, Level 16, State 1: Invalid object name 'Nueva'."},
                   {"INSERT Clientes VALUES (30, 3, 'c')",
                    "Msg 547, Level 16, State 0: The INSERT statement conflicted with the FOREIGN KEY "
                    "constraint \"FK_CZ\". The conflict occurred in database \"Ventas\", table "
                    "\"dbo.Zonas\", column 'id'.\n-- The statement has been terminated."},
                   {"INSERT Zonas (id) VALUES (2)",
                    "Msg 2627, Level 14, State 1: Violation of PRIMARY KEY constraint 'PK_Zonas'. "
                    "Cannot insert duplicate key in object 'dbo.Zonas'. The duplicate key value is "
                    "(2).\n-- The statement has been terminated."}});
}

TEST_F(TableSave, CommittedStandsForAllSessions)
{
    const auto other = engine.login("sa", "Secret1", "Ventas");
    engine.run("BEGIN TRAN");
    save();
    EXPECT_EQ(Engine::run(*other, "SELECT name FROM syscolumns WHERE id = object_id('Zonas') ORDER BY colid"),
              "name\nid\nnombre\n");
    engine.run("COMMIT");
    const char* questions[] = {
        "SELECT k.name, k.length, m.text FROM syscolumns k LEFT JOIN syscomments m ON m.id = k.cdefault "
        "WHERE "
        "k.id = object_id('Zonas') ORDER BY k.colid",
        "SELECT name, indid, status, OrigFillFactor FROM sysindexes WHERE id IN (object_id('Zonas'), "
        "object_id('Clientes')) ORDER BY id, indid",
        "EXEC sp_fkeys NULL,NULL,NULL,'Clientes'",
    };
    const char* answers[] = {
        "name | length | text\nid | 8 | NULL\ndenominacion | 30 | ('y')\nc1 | 4 | NULL\nc2 | 8 | (7)\n",
        "name | indid | status | OrigFillFactor\nPK_Zonas | 1 | 2066 | 80\nIX_nombre | 2 | 0 | 60\nClientes "
        "| 0 "
        "| 0 | 0\nPK_Clientes | 2 | 2050 | 0\nIX_zona | 3 | 0 | 0\n",
        "PKTABLE_QUALIFIER | PKTABLE_OWNER | PKTABLE_NAME | PKCOLUMN_NAME | FKTABLE_QUALIFIER | "
        "FKTABLE_OWNER | "
        "FKTABLE_NAME | FKCOLUMN_NAME | KEY_SEQ | UPDATE_RULE | DELETE_RULE | FK_NAME | PK_NAME | "
        "DEFERRABILITY\nVentas | dbo | Zonas | id | Ventas | dbo | Clientes | zona | 1 | 1 | 1 | FK_CZ | "
        "PK_Zonas | 7\n",
    };
    for (std::size_t i = 0; i < std::size(questions); ++i)
        EXPECT_EQ(Engine::run(*other, questions[i]), answers[i]);
}

} // namespace practice::test
