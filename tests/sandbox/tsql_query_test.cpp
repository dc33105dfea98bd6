// Expressions and queries: what the parser makes of them.
#include "tsql_render.h"

#include "tsql/parser.h"

#include <gtest/gtest.h>

using namespace practice;
using test::render;

namespace {

struct Case
{
    const char* text;
    const char* expected;
};

std::string statements(std::string_view text)
{
    try {
        return render(parseBatch(text).statements);
    } catch (const SyntaxError& error) {
        return std::to_string(error.number) + ": " + error.text;
    }
}

std::string expression(std::string_view text)
{
    try {
        return render(parseExpression(text).get());
    } catch (const SyntaxError& error) {
        return std::to_string(error.number) + ": " + error.text;
    }
}

std::string condition(std::string_view text)
{
    try {
        return render(parseCondition(text).get());
    } catch (const SyntaxError& error) {
        return std::to_string(error.number) + ": " + error.text;
    }
}

} // namespace

TEST(Expressions, FollowThePrecedencesOfTransactSql)
{
    const Case cases[] = {
        {"1 + 2 * 3 - 4", "((1 + (2 * 3)) - 4)"},
        {"a - b - c", "((a - b) - c)"},
        {"a | b & c + d", "(((a | b) & c) + d)"},
        {"a ^ b % c", "(a ^ (b % c))"},
        {"-a * ~b", "(-a * ~b)"},
        {"- -1", "--1"},
        {"(1 + 2) * 3", "((1 + 2) * 3)"},
        {"str(convert(dec(15),sum(size))*  @low / 1048576,10,2)",
         "str(((decimal(15)<sum(size)> * @low) / 1048576), 10, 2)"},
        {"a + 'x' COLLATE Latin1_General_CI_AS", "(a + 'x' collate Latin1_General_CI_AS)"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(expression(text), expected) << text;
}

TEST(Expressions, ReadEveryKindOfOperand)
{
    const Case cases[] = {
        {"N'it''s'", "N'it's'"},
        {"'a\\\r\nb'", "'ab'"},
        {"0xDEADbeef", "0xDEADbeef"},
        {"0x", "0x"},
        {"1.50", "dec:1.50"},
        {".5", "dec:.5"},
        {"1e", "float:1e"},
        {"1.5E-3", "float:1.5E-3"},
        {"$1.5", "$1.5"},
        {"-$2", "-$2"},
        {"\xE2\x82\xAC"
         "3",
         "$3"},
        {"NULL", "null"},
        {"@@ROWCOUNT", "@@ROWCOUNT"},
        {"@año", "@año"},
        {"[a]]b].\"c\"\"d\"", "[a]]b].[c\"d]"},
        {"db..t.c", "db..t.c"},
        {"t.IDENTITYCOL", "t.IDENTITYCOL"},
        {"$ROWGUID", "ROWGUIDCOL"},
        {"count(*)", "count(*)"},
        {"COUNT(DISTINCT a)", "COUNT(distinct a)"},
        {"dbo.f(1, default)", "dbo.f(1, default)"},
        {"left(a, 1) + right(b, 2)", "([left](a, 1) + [right](b, 2))"},
        {"current_timestamp", "[current_timestamp]"},
        {"coalesce(a, nullif(b, 0))", "[coalesce](a, [nullif](b, 0))"},
        {"row_number() over (partition by a, b order by c desc)", "row_number() over(a, b; c desc)"},
        {"sum(a) over (order by b rows between unbounded preceding and 1 following)",
         "sum(a) over(; b; rows unbounded<..1>)"},
        {"sum(a) over (order by b range current row)", "sum(a) over(; b; range row)"},
        {"case when a = 1 then 'x' else 'y' end", "case( (a = 1)=>'x' else 'y')"},
        {"case a when 1 then 'x' when 2 then 'y' end", "case(a 1=>'x' 2=>'y')"},
        {"iif(a > 1, 'x', 'y')", "case( (a > 1)=>'x' else 'y')"},
        {"cast(a as varchar(max))", "varchar(max)<a>"},
        {"try_cast(a as decimal(10, 2))", "try:decimal(10,2)<a>"},
        {"convert(nvarchar(30), getdate(), 120)", "nvarchar(30)<getdate(), 120>"},
        {"try_convert(double precision, a)", "try:float<a>"},
        {"cast(a as national character varying(5))", "nvarchar(5)<a>"},
        {"cast(a as dbo.phone)", "user:dbo.phone<a>"},
        {"{ts '2024-01-02 03:04:05'}", "datetime<'2024-01-02 03:04:05'>"},
        {"{fn ucase({fn concat('a', b)})}", "upper(concat('a', b))"},
        {"(select max(a) from t) + 1", "([select max(a) from t] + 1)"},
        {"((select 1) union select 2)", "[{select 1 union select 2}]"},
        {"/* a /* nested */ comment */ 1 -- and a line", "1"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(expression(text), expected) << text;
}

TEST(Conditions, NestAndBindAsTheServerReadsThem)
{
    const Case cases[] = {
        {"a = 1 or b = 2 and not c = 3", "((a = 1) or ((b = 2) and not(c = 3)))"},
        {"a = 1 and b = 2 and c = 3", "((a = 1) and (b = 2) and (c = 3))"},
        {"(a = 1 or b = 2) and ((c)) = 3", "(((a = 1) or (b = 2)) and (c = 3))"},
        {"(a + 1) * 2 > 3", "(((a + 1) * 2) > 3)"},
        {"a between 1 and 2 + 1 and b = 1", "((a between 1..(2 + 1)) and (b = 1))"},
        {"a not between 1 and 2", "(a not between 1..2)"},
        {"a not like 'x!%' escape '!'", "(a not like 'x!%' escape '!')"},
        {"a in (1, 2 + 3) or a not in (select b from t)",
         "((a in {1, (2 + 3)}) or (a not in [select b from t]))"},
        {"a in ((select b from t))", "(a in [select b from t])"},
        {"a in ((select b from t) union all select c from u)",
         "(a in [{select b from t unionall select c from u}])"},
        {"a is not null or b is null", "((a is not null) or (b is null))"},
        {"exists (select * from t) and a >= all (select b from u)",
         "(exists[select * from t] and (a >= all [select b from u]))"},
        {"a <> some (select 1)", "(a <> any [select 1])"},
        {"a !< 1 and b !> 2 and c != 3 and d > = 4 and e < > 5",
         "((a >= 1) and (b <= 2) and (c <> 3) and (d >= 4) and (e <> 5))"},
        {"a.x *= b.x and a.y =* b.y", "((a.x *= b.x) and (a.y =* b.y))"},
        {"not not (a = 1)", "notnot(a = 1)"},
        {"f.status & 0x40 <> 0x40", "((f.status & 0x40) <> 0x40)"},
        {"contains(*, 'x') or freetext(a, @v)", "(contains([*], 'x') or freetext(a, @v))"},
        {"uid=5and action IN(203,198 )", "((uid = 5) and (action in {203, 198}))"},
        {"a", "4145: An expression of non-boolean type specified in a context where a condition is expected, "
              "near 'a'."},
        {"a and b = 1", "4145: An expression of non-boolean type specified in a context where a condition is "
                        "expected, near 'and'."},
        {"(a = 1) + 1", "102: Incorrect syntax near '+'."},
        {"a = 1 = 2", "102: Incorrect syntax near '='."},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(condition(text), expected) << text;
}

TEST(Queries, ReadSelectListsAndSources)
{
    const Case cases[] = {
        {"select all a, b as c, d e, f = g, 'h i' = j, k 'l', m as 'n', *, t.*, db..u.* from t",
         "[select a, b as c, d as e, g as f, j as [h i], k as l, m as n, *, t.*, db..u.* from t]"},
        {"select @a = 1, @b += x from t", "[select @a=1, @b+=x from t]"},
        {"select distinct top 10 percent with ties a from t order by a desc, 2",
         "[select distinct top 10% ties a from t order a desc, 2]"},
        {"select top (@n + 1) a into #x from ##y", "[select top (@n + 1) a into #x from ##y]"},
        {"select * from a, b c cross join d left outer join e on c.x = e.x",
         "[select * from a, ((b c cross d) left e on (c.x = e.x))]"},
        {"select * from a join b join c on b.i = c.i on a.i = b.i",
         "[select * from (a inner (b inner c on (b.i = c.i)) on (a.i = b.i))]"},
        {"select * from (a full join b on a.i = b.i) right join c on 1 = 1",
         "[select * from ((a full b on (a.i = b.i)) right c on (1 = 1))]"},
        {"select * from a cross apply f(a.i) g (x, y) outer apply (select 1 z) h",
         "[select * from ((a crossapply f(a.i) g(x,y)) outerapply [select 1 as z] h)]"},
        {"select * from a b with (nolock), c (updlock, holdlock), d as e (nolock), f (nolock) x, g "
         "(index(2))",
         "[select * from a[NOLOCK] b, c[UPDLOCK,HOLDLOCK], d[NOLOCK] e, f[NOLOCK] x, g[INDEX]]"},
        {"select * from @t x, ::fn_helpcollations() y, (values (1, 'a'), (2, 'b')) v (i, s)",
         "[select * from @t x, ::fn_helpcollations() y, values(1, 'a')(2, 'b') v(i,s)]"},
        {"select * from ((select 1 a) union (select 2)) x",
         "[select * from [{select 1 as a union select 2}] x]"},
        {"select * from ((select 1 a) x join b on 1 = 1)",
         "[select * from ([select 1 as a] x inner b on (1 = 1))]"},
        {"select * from {oj a left join b on a.i = b.i}", "[select * from (a left b on (a.i = b.i))]"},
        {"select a, count(*) from t group by all a with rollup having count(*) > 1",
         "[select a, count(*) from t group all a rollup having (count(*) > 1)]"},
        {"select 1 union all select 2 union all select 3 except select 4 intersect select 5 order by 1",
         "[{{select 1 unionall select 2 unionall select 3} except {select 4 intersect select 5}} order 1]"},
        {"(select 1) union (select 2 union all select 3)", "[{select 1 union {select 2 unionall select 3}}]"},
        {"with a (x) as (select 1), b as (select x from a) select * from b option (maxdop 1)",
         "[with a(x)[select 1], b[select x from a] select * from b]"},
        {"select a from t order by a offset 5 rows fetch next 10 rows only",
         "[select a from t order a offset 5 fetch 10]"},
        {"select a from t for xml path('r'), root('x')", "[select a from t for]"},
        // Anything that no keyword claims is an alias, the word of the batch separator too.
        {"select 1 go", "[select 1 as go]"},
        {"select * from t go", "[select * from t go]"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(statements(text), expected) << text;
}

TEST(Names, AreTakenApartAndPutTogether)
{
    const auto parsed = parseObjectName("srv.[my db]..\"t]x\"");
    EXPECT_EQ(parsed, (ast::ObjectName{"srv", "my db", "", "t]x"}));
    EXPECT_EQ(renderName(parsed), "srv.[my db]..[t]]x]");
    EXPECT_EQ(renderName("Año"), "Año");
    EXPECT_EQ(renderName("select"), "[select]");
    EXPECT_EQ(renderName("1a"), "[1a]");
    EXPECT_EQ(renderName("@v"), "[@v]");
    EXPECT_EQ(parseObjectName(" mi tabla . [x y] "), (ast::ObjectName{"", "", "mi tabla", "x y"}));
    EXPECT_EQ(parseObjectName("select"), (ast::ObjectName{"", "", "", "select"}));
    for (const char* text : {"", " ", "a.", "a.b.c.d.e", "a.[]", "[a", "[a] b", "[a]]"})
        EXPECT_TRUE(parseObjectName(text).empty()) << text;
    EXPECT_TRUE(isReservedWord("Percent"));
    EXPECT_FALSE(isReservedWord("log"));
}

TEST(Names, WithQuotedIdentifierOffDoubleQuotesAreStrings)
{
    EXPECT_EQ(render(parseExpression("\"a\"\"b\"", {.quotedIdentifier = false}).get()), "'a\"b'");
    EXPECT_EQ(
        statements(
            "select \"a\" set quoted_identifier off select \"it's\" set quoted_identifier on select \"b\""),
        "[select a]; set QUOTED_IDENTIFIER off; [select 'it's']; set QUOTED_IDENTIFIER on; [select b]");
}
