// INSERT, UPDATE, DELETE, TRUNCATE and SELECT INTO with the constraints they meet.
#include "engine_cases.h"

namespace practice::test {

class Changes : public ::testing::Test
{
protected:
    void SetUp() override
    {
        engine.run("CREATE TABLE Clientes (id int IDENTITY(1,1) NOT NULL CONSTRAINT PK_Clientes PRIMARY KEY, "
                   "nombre varchar(10) NOT NULL, "
                   "alta datetime NOT NULL DEFAULT ('20240101'), saldo money NULL)");
        engine.run("CREATE UNIQUE INDEX IX_nombre ON Clientes (nombre)");
        engine.run("CREATE TABLE Pedidos (num int NOT NULL PRIMARY KEY, cliente int NULL CONSTRAINT "
                   "FK_PedCli REFERENCES Clientes (id), "
                   "importe decimal(8,2) NULL CONSTRAINT CK_importe CHECK (importe > 0), jefe int NULL "
                   "CONSTRAINT FK_jefe REFERENCES Pedidos (num))");
        engine.run("CREATE TABLE Lineas (pedido int NULL CONSTRAINT FK_LinPed REFERENCES Pedidos (num) ON "
                   "DELETE CASCADE ON UPDATE CASCADE, n int NULL)");
        engine.run("INSERT Clientes (nombre) VALUES ('Ana') INSERT Clientes (nombre) VALUES ('Luis')");
        engine.run("INSERT Pedidos VALUES (1, 1, 5, NULL), (2, 1, 6, 1), (3, NULL, NULL, NULL) INSERT Lineas "
                   "VALUES (1, 1), (1, 2), (2, 1)");
    }
    Engine& engine = freshDatabase();
};

constexpr const char* terminated = "\n-- The statement has been terminated.";

TEST_F(Changes, CountTheirRows)
{
    EXPECT_EQ(engine.runCounted("INSERT Lineas SELECT num, 9 FROM Pedidos\nUPDATE Lineas SET n = n + 1 WHERE "
                                "n = 9\nDELETE Lineas WHERE n = 10\n"
                                "TRUNCATE TABLE Lineas\nSELECT @@ROWCOUNT"),
              "(3 rows)\n(3 rows)\n(3 rows)\n\n0\n(1 rows)\n");
    EXPECT_EQ(engine.runCounted("SET NOCOUNT ON DELETE Pedidos WHERE num = 3 SET NOCOUNT OFF"), "");
}

TEST_F(Changes, MeetTheirConstraints)
{
    const std::string end = terminated;
    const std::pair<const char*, std::string> cases[] = {
        {"INSERT Clientes (nombre) VALUES (NULL)",
         "Msg 515, Level 16, State 2: Cannot insert the value NULL into column 'nombre', table "
         "'Ventas.dbo.Clientes'; column does not allow "
         "nulls. INSERT fails."},
        {"UPDATE Clientes SET nombre = NULL",
         "Msg 515, Level 16, State 2: Cannot insert the value NULL into column 'nombre', table "
         "'Ventas.dbo.Clientes'; column does not allow "
         "nulls. UPDATE fails."},
        {"INSERT Clientes (nombre) VALUES ('demasiado largo')",
         "Msg 8152, Level 16, State 14: String or binary data would be truncated."},
        {"INSERT Pedidos (num, importe) VALUES (9, 1234567.891)",
         "Msg 8115, Level 16, State 8: Arithmetic overflow error converting numeric to data type numeric."},
        {"INSERT Clientes (nombre) VALUES ('ANA ')",
         "Msg 2601, Level 14, State 1: Cannot insert duplicate key row in object 'dbo.Clientes' with unique "
         "index 'IX_nombre'. The duplicate "
         "key value is (ANA )."},
        {"INSERT Pedidos (num) SELECT num + 1 FROM Pedidos WHERE num < 3",
         "Msg 2627, Level 14, State 1: Violation of PRIMARY KEY constraint '%PK%'. Cannot insert duplicate "
         "key in object 'dbo.Pedidos'. The "
         "duplicate key value is (2)."},
        {"INSERT Pedidos (num, cliente) VALUES (9, 77)",
         "Msg 547, Level 16, State 0: The INSERT statement conflicted with the FOREIGN KEY constraint "
         "\"FK_PedCli\". The conflict occurred in "
         "database \"Ventas\", table \"dbo.Clientes\", column 'id'."},
        {"INSERT Pedidos (num, importe) VALUES (9, -1)",
         "Msg 547, Level 16, State 0: The INSERT statement conflicted with the CHECK constraint "
         "\"CK_importe\". The conflict occurred in "
         "database \"Ventas\", table \"dbo.Pedidos\", column 'importe'."},
        {"UPDATE Pedidos SET jefe = 50 WHERE num = 3",
         "Msg 547, Level 16, State 0: The UPDATE statement conflicted with the FOREIGN KEY SAME TABLE "
         "constraint \"FK_jefe\". The conflict "
         "occurred in database \"Ventas\", table \"dbo.Pedidos\", column 'num'."},
        {"DELETE Clientes", "Msg 547, Level 16, State 0: The DELETE statement conflicted with the REFERENCE "
                            "constraint \"FK_PedCli\". The conflict occurred in "
                            "database \"Ventas\", table \"dbo.Pedidos\", column 'cliente'."},
        {"DELETE Pedidos WHERE num = 1",
         "Msg 547, Level 16, State 0: The DELETE statement conflicted with the SAME TABLE REFERENCE "
         "constraint \"FK_jefe\". The conflict "
         "occurred in database \"Ventas\", table \"dbo.Pedidos\", column 'jefe'."},
    };
    const std::string before =
        engine.run("SELECT * FROM Pedidos SELECT * FROM Clientes SELECT * FROM Lineas");
    for (const auto& [statement, expected] : cases) {
        SCOPED_TRACE(statement);
        std::string answer = engine.run(statement);
        // The server invents a part of this name.
        if (const auto at = answer.find("'PK__"); at != std::string::npos)
            answer.replace(at + 1, answer.find('\'', at + 1) - at - 1, "%PK%");
        EXPECT_EQ(answer, expected + end + "\n");
        EXPECT_EQ(engine.run("SELECT * FROM Pedidos SELECT * FROM Clientes SELECT * FROM Lineas"), before);
    }
}

TEST_F(Changes, JudgeUniquenessAfterTheStatement)
{
    expectAnswers(engine, {
                              {"CREATE TABLE u (k int UNIQUE, v varchar(3)) INSERT u VALUES (1, 'a'), (2, "
                               "'b'), (NULL, 'c') UPDATE u SET k = k + 1 SELECT * FROM u",
                               "k | v\n2 | a\n3 | b\nNULL | c"},
                              {"UPDATE u SET k = CASE k WHEN 2 THEN 3 WHEN 3 THEN 2 END WHERE k IS NOT NULL "
                               "SELECT k FROM u WHERE v = 'a'",
                               "k\n3"},
                          });
    EXPECT_NE(engine.run("INSERT u VALUES (NULL, 'd')").find("The duplicate key value is (<NULL>)."),
              std::string::npos);
}

TEST_F(Changes, MakeTablesOfQueries)
{
    EXPECT_EQ(
        engine.describe("SELECT id, nombre, saldo * 2 AS doble INTO Copia FROM Clientes SELECT * FROM Copia"),
        "id:int not null | nombre:varchar(10) not null | doble:money\n1 | Ana | NULL\n2 | Luis | NULL\n");
    expectAnswers(
        engine, {
                    {"SELECT COLUMNPROPERTY(OBJECT_ID('Copia'), 'id', 'IsIdentity')", "1"},
                    {"SELECT 1 INTO Otra", "Msg 1038, Level 15, State 5: An object or column name is missing "
                                           "or empty. For SELECT INTO statements, verify each "
                                           "column has a name. For other statements, look for empty alias "
                                           "names. Aliases defined as \"\" or [] are not allowed. "
                                           "Change the alias to a valid name."},
                    {"SELECT * INTO #copia FROM Clientes SELECT COUNT(*) FROM #copia DROP TABLE #copia", "2"},
                });
}

} // namespace practice::test
