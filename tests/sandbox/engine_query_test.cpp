// SELECT: joins, grouping, ordering, set operations, subqueries, views, and what is refused.
#include "engine_cases.h"

namespace practice::test {

class Queries : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        engine = &freshDatabase();
        engine->run("CREATE TABLE Clientes (id int NOT NULL PRIMARY KEY, nombre varchar(20) NOT NULL, ciudad "
                    "char(8) NULL)");
        engine->run("CREATE TABLE Pedidos (num int NOT NULL PRIMARY KEY, cliente int NULL, importe "
                    "decimal(10,2), nota text)");
        engine->run("INSERT Clientes VALUES (1, 'Ana', 'Madrid'), (2, 'luis', 'Vigo'), (3, 'Óscar', NULL)");
        engine->run("INSERT Pedidos VALUES (10, 1, 5.50, 'a'), (11, 1, 20, NULL), (12, 2, 7.25, 'b'), (13, "
                    "NULL, 1, 'c')");
    }
    static Engine* engine;
};
Engine* Queries::engine = nullptr;

TEST_F(Queries, JoinGroupAndOrder)
{
    expectAnswers(
        *engine,
        {
            {"SELECT c.nombre, p.num FROM Clientes c, Pedidos p WHERE c.id = p.cliente ORDER BY p.num DESC",
             "nombre | num\nluis | 12\nAna | 11\nAna | 10"},
            {"SELECT c.id, p.num FROM Clientes c LEFT JOIN Pedidos p ON p.cliente = c.id AND p.importe > 6 "
             "ORDER BY 1, 2",
             "id | num\n1 | 11\n2 | 12\n3 | NULL"},
            {"SELECT c.id, p.num FROM Clientes c FULL OUTER JOIN Pedidos p ON p.cliente = c.id WHERE c.id IS "
             "NULL OR p.num IS NULL",
             "id | num\n3 | NULL\nNULL | 13"},
            {"SELECT c.id FROM Clientes c RIGHT JOIN (Pedidos p INNER JOIN Pedidos q ON p.num = q.num) ON "
             "p.cliente = c.id "
             "ORDER BY p.num",
             "id\n1\n1\n2\nNULL"},
            {"SELECT cliente, COUNT(*) n, SUM(importe) s, AVG(importe), MIN(num) FROM Pedidos GROUP BY "
             "cliente ORDER BY cliente",
             "cliente | n | s |  | \nNULL | 1 | 1.00 | 1.000000 | 13\n1 | 2 | 25.50 | 12.750000 | 10\n2 | 1 "
             "| 7.25 | 7.250000 | 12"},
            {"SELECT cliente + 1, COUNT(cliente) FROM Pedidos GROUP BY cliente + 1 HAVING COUNT(*) > 1",
             "2 | 2"},
            {"SELECT COUNT(*), MAX(num) FROM Pedidos WHERE num > 99", "0 | NULL"},
            {"SELECT nombre AS n FROM Clientes ORDER BY n DESC", "n\nÓscar\nluis\nAna"},
            {"SELECT DISTINCT cliente FROM Pedidos ORDER BY cliente DESC", "cliente\n2\n1\nNULL"},
            {"SELECT TOP 2 num FROM Pedidos ORDER BY importe DESC", "num\n11\n12"},
            {"SELECT TOP 1 WITH TIES cliente FROM Pedidos WHERE cliente IS NOT NULL ORDER BY cliente",
             "cliente\n1\n1"},
            {"SELECT TOP 50 PERCENT num FROM Pedidos ORDER BY num", "num\n10\n11"},
            {"SELECT num FROM Pedidos ORDER BY num OFFSET 1 ROWS FETCH NEXT 2 ROWS ONLY", "num\n11\n12"},
            {"SELECT num, ROW_NUMBER() OVER (PARTITION BY cliente ORDER BY num DESC) r, SUM(importe) OVER () "
             "FROM Pedidos "
             "WHERE cliente = 1",
             "num | r | \n11 | 1 | 25.50\n10 | 2 | 25.50"},
            {"SELECT 'cuenta' = COUNT(*), c.* FROM Clientes c WHERE id = 1 GROUP BY id, nombre, ciudad",
             "cuenta | id | nombre | ciudad\n1 | 1 | Ana | Madrid  "},
        });
}

TEST_F(Queries, CompareTextAsTheCollationSays)
{
    expectAnswers(
        *engine,
        {
            {"SELECT id FROM Clientes WHERE nombre = 'ANA  '", "id\n1"},
            {"SELECT id FROM Clientes WHERE nombre IN ('LUIS', 'óscar')", "id\n2\n3"},
            {"SELECT id FROM Clientes WHERE nombre = 'oscar'", "id"},
            {"SELECT id FROM Clientes WHERE nombre COLLATE Latin1_General_CI_AI = 'oscar'", "id\n3"},
            {"SELECT id FROM Clientes WHERE nombre COLLATE Latin1_General_CS_AS = 'ANA'", "id"},
            {"SELECT id FROM Clientes WHERE nombre LIKE '[a-l]%' AND ciudad LIKE '%d'", "id\n1"},
            {"SELECT id FROM Clientes WHERE nombre LIKE '_u[^x]s' OR nombre LIKE 'A!%a' ESCAPE '!'", "id\n2"},
            {"SELECT id FROM Clientes WHERE ciudad BETWEEN 'a' AND 'n' ORDER BY id", "id\n1"},
            {"SELECT id FROM Clientes WHERE ciudad COLLATE Latin1_General_BIN = nombre COLLATE "
             "Latin1_General_CI_AS",
             "Msg 468, Level 16, State 9: Cannot resolve the collation conflict between "
             "\"Latin1_General_CI_AS\" and "
             "\"Latin1_General_BIN\" in the equal to operation."},
        });
}

TEST_F(Queries, NestAndCombine)
{
    expectAnswers(
        *engine,
        {
            {"SELECT nombre, (SELECT COUNT(*) FROM Pedidos p WHERE p.cliente = c.id) FROM Clientes c ORDER "
             "BY id",
             "nombre | \nAna | 2\nluis | 1\nÓscar | 0"},
            {"SELECT id FROM Clientes c WHERE NOT EXISTS (SELECT * FROM Pedidos WHERE cliente = c.id)",
             "id\n3"},
            {"SELECT num FROM Pedidos WHERE importe >= ALL (SELECT importe FROM Pedidos)", "num\n11"},
            {"SELECT num FROM Pedidos WHERE cliente = ANY (SELECT id FROM Clientes WHERE ciudad = 'Vigo')",
             "num\n12"},
            {"SELECT n FROM (SELECT cliente, COUNT(*) FROM Pedidos GROUP BY cliente) d (c, n) WHERE c = 1",
             "n\n2"},
            {"SELECT id FROM Clientes UNION SELECT cliente FROM Pedidos ORDER BY id DESC",
             "id\n3\n2\n1\nNULL"},
            {"SELECT 1 UNION ALL SELECT 2.5 UNION ALL SELECT '3'", "1.0\n2.5\n3.0"},
            {"SELECT id FROM Clientes EXCEPT SELECT cliente FROM Pedidos", "id\n3"},
            {"SELECT id FROM Clientes INTERSECT SELECT cliente FROM Pedidos ORDER BY 1", "id\n1\n2"},
            {"WITH n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 4) SELECT SUM(i), MAX(i) FROM "
             "n",
             "10 | 4"},
            {"WITH n AS (SELECT 1 i UNION ALL SELECT i + 1 FROM n) SELECT SUM(i) FROM n",
             "Msg 530, Level 16, State 1: The statement terminated. The maximum recursion 100 has been "
             "exhausted before "
             "statement completion."},
            {"SELECT * FROM (VALUES (1, 'a'), (2, 'b')) v (x, y) WHERE x > 1", "x | y\n2 | b"},
            {"CREATE VIEW Resumen AS SELECT ciudad, COUNT(*) AS n FROM Clientes GROUP BY ciudad", ""},
            {"SELECT r.n FROM Ventas..Resumen r WHERE r.ciudad = 'vigo'", "n\n1"},
        });
}

TEST_F(Queries, AreRefusedAsTheServerDoes)
{
    expectAnswers(
        *engine,
        {
            {"SELECT * FROM nada", "Msg 208, Level 16, State 1: Invalid object name 'nada'."},
            {"SELECT * FROM otra..tabla", "Msg 208, Level 16, State 1: Invalid object name 'otra..tabla'."},
            {"SELECT nada FROM Clientes", "Msg 207, Level 16, State 1: Invalid column name 'nada'."},
            {"SELECT x.id FROM Clientes",
             "Msg 4104, Level 16, State 1: The multi-part identifier \"x.id\" could not be bound."},
            {"SELECT cliente FROM Pedidos p, Pedidos q",
             "Msg 209, Level 16, State 1: Ambiguous column name 'cliente'."},
            {"SELECT 1 FROM Clientes a, Pedidos a", "Msg 1011, Level 15, State 1: The correlation name 'a' "
                                                    "is specified multiple times in a FROM clause."},
            {"SELECT @x", "Msg 137, Level 15, State 2: Must declare the scalar variable \"@x\"."},
            {"SELECT cliente, COUNT(*) FROM Pedidos",
             "Msg 8118, Level 16, State 1: Column 'Pedidos.cliente' is invalid in the select list because it "
             "is not contained in an "
             "aggregate function and there is no GROUP BY clause."},
            {"SELECT p.num FROM Pedidos p GROUP BY cliente",
             "Msg 8120, Level 16, State 1: Column 'p.num' is invalid in the select list because it is not "
             "contained in either an "
             "aggregate function or the GROUP BY clause."},
            {"SELECT cliente FROM Pedidos GROUP BY cliente HAVING num > 1",
             "Msg 8121, Level 16, State 1: Column 'Pedidos.num' is invalid in the HAVING clause because it "
             "is not contained in either "
             "an aggregate function or the GROUP BY clause."},
            {"SELECT num FROM Pedidos WHERE COUNT(*) > 1",
             "Msg 147, Level 15, State 1: An aggregate may not appear in the WHERE clause unless it is in a "
             "subquery contained in a "
             "HAVING clause or a select list, and the column being aggregated is an outer reference."},
            {"SELECT SUM(COUNT(*)) FROM Pedidos",
             "Msg 130, Level 16, State 1: Cannot perform an aggregate function on an expression containing "
             "an aggregate or a subquery."},
            {"SELECT num FROM Pedidos ORDER BY 3",
             "Msg 108, Level 16, State 1: The ORDER BY position number 3 is out of range of the number of "
             "items in the select list."},
            {"SELECT DISTINCT cliente FROM Pedidos ORDER BY num",
             "Msg 145, Level 15, State 1: ORDER BY items must appear in the select list if SELECT DISTINCT "
             "is specified."},
            {"SELECT num FROM Pedidos UNION SELECT id FROM Clientes ORDER BY num + 1",
             "Msg 104, Level 16, State 1: ORDER BY items must appear in the select list if the statement "
             "contains a UNION, INTERSECT or "
             "EXCEPT operator."},
            {"SELECT 1, 2 UNION SELECT 1", "Msg 205, Level 16, State 1: All queries combined using a UNION, "
                                           "INTERSECT or EXCEPT operator must have an equal number of "
                                           "expressions in their target lists."},
            {"SELECT (SELECT id FROM Clientes)",
             "Msg 512, Level 16, State 1: Subquery returned more than 1 value. This is not permitted when "
             "the subquery follows =, !=, <, "
             "<= , >, >= or when the subquery is used as an expression."},
            {"SELECT * FROM Clientes WHERE id IN (SELECT id, nombre FROM Clientes)",
             "Msg 116, Level 16, State 1: Only one expression can be specified in the select list when the "
             "subquery is not introduced "
             "with EXISTS."},
            {"SELECT * FROM (SELECT id FROM Clientes ORDER BY id) d",
             "Msg 1033, Level 15, State 1: The ORDER BY clause is invalid in views, inline functions, "
             "derived tables, subqueries, and "
             "common table expressions, unless TOP, OFFSET or FOR XML is also specified."},
            {"SELECT * FROM (SELECT id + 1 FROM Clientes) d",
             "Msg 8155, Level 16, State 2: No column name was specified for column 1 of 'd'."},
            {"SELECT num FROM Pedidos WHERE nota = 'a'",
             "Msg 402, Level 16, State 1: The data types text and varchar are incompatible in the equal to "
             "operator."},
            {"SELECT DISTINCT nota FROM Pedidos", "Msg 421, Level 16, State 1: The text data type cannot be "
                                                  "selected as DISTINCT because it is not comparable."},
            {"SELECT *", "Msg 263, Level 16, State 1: Must specify table to select from."},
        });
}

TEST_F(Queries, ReadTheCatalogAsTheConsoleAsksIt)
{
    expectAnswers(
        *engine,
        {
            {"select  g.groupname,g.status,  g.groupid, 'filecount' =         (select count(*) from "
             "Ventas..sysfiles f             "
             "Where f.groupid = g.groupid                 and (f.status & 0x40 <> 0x40))     from "
             "Ventas..sysfilegroups g order by groupid",
             "groupname | status | groupid | filecount\nPRIMARY | 16 | 1 | 1"},
            {"Select t.name as tabla,t.xtype as tipo,u.name as usuario from Ventas..sysobjects "
             "t,Ventas..sysusers u where (t.xtype = 'U'or "
             "t.xtype = 'X') and u.uid = t.uid order by t.name",
             "tabla | tipo | usuario\nClientes | U  | dbo\nPedidos | U  | dbo"},
            {"declare @low nvarchar(11)\rselect @low = convert(varchar(11),low) from master.dbo.spt_values  "
             "where type = N'E' and number = "
             "1\r(select str(convert(dec(15),sum(size))*  @low / 1048576,10,2) from Ventas.dbo.sysfiles)",
             "      2.00"},
            {" SELECT usu.Name as nombre,lo.loginname as login         From                    "
             "Ventas..sysusers usu ,master.dbo.syslogins lo  "
             "       Where usu.sid = lo.sid and                    (usu.islogin = 1 and usu.isaliased = 0 "
             "and usu.hasdbaccess = 1) ",
             "nombre | login\ndbo | sa"},
            {" SELECT usu.Name,case                    when (usg.uid is null) then 'public'                  "
             "  Else: usg.Name            "
             "       End                  ,lo.loginname         From                   sysusers usu left "
             "outer join                    "
             "(sysmembers mem inner join sysusers usg on mem.groupuid = usg.uid) on usu.uid = mem.memberuid  "
             "                 left outer "
             "join master.dbo.syslogins  lo on usu.sid = lo.sid         Where                   (usu.islogin "
             "= 1 and usu.isaliased = 0 and "
             "usu.hasdbaccess = 1) and                   (usg.issqlrole = 1 or usg.uid is null)",
             "Name |  | loginname\ndbo | db_owner | sa"},
            {"Select obj.name,com.text  from Ventas..sysobjects obj, Ventas..syscomments com where obj.type "
             "= 'V' and name='Resumen' and "
             "com.id=obj.id order by name",
             "name | text\nResumen | CREATE VIEW Resumen AS SELECT ciudad, COUNT(*) AS n FROM Clientes GROUP "
             "BY ciudad"},
        });
}

} // namespace practice::test
