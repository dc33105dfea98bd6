// Statements of data, control and session; errors, places and bounds.
#include "tsql_render.h"

#include "tsql/parser.h"

#include <gtest/gtest.h>

#include <pthread.h>

using namespace practice;
using test::render;

namespace {

struct Case
{
    const char* text;
    const char* expected;
};

struct Refusal
{
    const char* text;
    int number;
    const char* message;
    int line = 1;
    int state = 1;
};

SyntaxError refusal(std::string_view text)
{
    try {
        (void)parseBatch(text);
        return {0, "accepted", 0, 0};
    } catch (const SyntaxError& error) {
        return error;
    }
}

std::string statements(std::string_view text)
{
    try {
        return render(parseBatch(text).statements);
    } catch (const SyntaxError& error) {
        return std::to_string(error.number) + ": " + error.text;
    }
}

std::string repeated(std::string_view text, int times)
{
    std::string result;
    for (int i = 0; i < times; ++i)
        result += text;
    return result;
}

// The sanitizer's frames are several times as large.
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t smallStack = std::size_t{8} << 20;
#else
constexpr std::size_t smallStack = std::size_t{1} << 20;
#endif

/// Parses on a thread of little stack.
int numberOnSmallStack(const std::string& text)
{
    struct Job
    {
        const std::string& text;
        int number;
    } job{text, -1};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, smallStack);
    pthread_t thread{};
    const auto run = [](void* argument) -> void* {
        auto& task = *static_cast<Job*>(argument);
        task.number = refusal(task.text).number;
        return nullptr;
    };
    EXPECT_EQ(pthread_create(&thread, &attributes, run, &job), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    return job.number;
}

} // namespace

TEST(Statements, ChangeData)
{
    const Case cases[] = {
        {"insert t values (1, default), (null, 'x')", "insert t (1, default)(null, 'x')"},
        {"insert into db..t (a, [b c]) select 1, 2", "insert db..t(a,b c) [select 1, 2]"},
        {"insert #t exec sp_who 'sa'", "insert #t exec sp_who('sa')"},
        {"insert into @t default values", "insert @t defaults"},
        {"insert t (a) output inserted.a into @o (x) values (1)",
         "insert t(a) output inserted.a into @o(x) (1)"},
        {"insert t ((select 1))", "insert t [select 1]"},
        {"insert t (nolock, snapshot) values (1, 2)", "insert t(nolock,snapshot) (1, 2)"},
        {"if 1 = 1 begin with x as (select 1 a) select a from x; with y as (select 2 b) delete y end",
         "if (1 = 1) {{[with x[select 1 as a] select a from x]; with y[select 2 as b] delete y}}"},
        {"update t set a = 1, t.b += 2, @v = 3, @w = c = d + 1 from t join u on t.i = u.i where u.x = 5",
         "update t set a=1, t.b+=2, @v=3, @w=c=(d + 1) from (t inner u on (t.i = u.i)) where (u.x = 5)"},
        {"update top (5) t with (rowlock) set a = default where current of c",
         "update top 5 t[ROWLOCK] set a=default current of c"},
        {"delete t", "delete t"},
        {"delete from a output deleted.* from t a, u where a.i = u.i",
         "delete a output deleted.* from t a, u where (a.i = u.i)"},
        {"with x as (select 1 a) delete x where a = 1", "with x[select 1 as a] delete x where (a = 1)"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(statements(text), expected) << text;
}

TEST(Statements, ControlTheFlow)
{
    const Case cases[] = {
        {"if a.b = 1 print 'x'", "if (a.b = 1) {print 'x'}"},
        {"if 1 = 1 select 1; else if 2 = 2 select 2 else select 3 select 4",
         "if (1 = 1) {[select 1]} else {if (2 = 2) {[select 2]} else {[select 3]}}; [select 4]"},
        {"while @i < 5 begin set @i += 1; if @i = 3 break continue end",
         "while (@i < 5) {{set @i+=1; if (@i = 3) {break}; continue}}"},
        {"begin try select 1 / 0 end try begin catch; throw end catch",
         "try {[select (1 / 0)]} catch {throw none}"},
        {"begin try end try begin catch end catch", "try {} catch {}"},
        {"begin tran t1 save transaction s rollback tran s commit work rollback commit tran @n begin "
         "distributed tran",
         "begin tran t1; save tran s; rollback tran s; commit tran; rollback tran; commit tran @n; begin "
         "tran"},
        {"again: goto again return return 1 + 2 return",
         "again:; goto again; return; return (1 + 2); return"},
        {"waitfor delay '00:00:01' waitfor time @t", "wait for '00:00:01'; wait until @t"},
        {"raiserror('x %d', 16, -1, @a, 5) with nowait, log raiserror 50001 'old'",
         "raiserror 'x %d', 16, -1 {@a, 5} nowait log; raiserror 50001 {'old'}"},
        {"throw 50001, 'x', 1", "throw 50001"},
        {";;select 1;;select 2;", "[select 1]; [select 2]"},
        {"  -- nothing\n/* at all */", ""},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(statements(text), expected) << text;
}

TEST(Statements, DeclareSetAndCall)
{
    const Case cases[] = {
        {"declare @a int, @b as varchar(10) = 'x', @c decimal(5, 2), @d datetime",
         "declare @a int, @b varchar(10)='x', @c decimal(5,2), @d datetime"},
        {"declare @t table (a int primary key, b text), @c cursor", "declare @t table of 2, @c cursor"},
        {"set @a = (select 1) set @b *= 2", "set @a=[select 1]; set @b*=2"},
        {"set nocount on set ansi_nulls, ansi_padding off",
         "set NOCOUNT on; set ANSI_NULLS, ANSI_PADDING off"},
        {"set identity_insert db..t on", "set IDENTITY_INSERT db..t on"},
        {"set transaction isolation level read uncommitted",
         "set TRANSACTION ISOLATION LEVEL `READ UNCOMMITTED`"},
        {"set rowcount 10 set textsize @n set lock_timeout -1",
         "set ROWCOUNT 10; set TEXTSIZE @n; set LOCK_TIMEOUT -1"},
        {"set language Español set dateformat dmy set datefirst 1",
         "set LANGUAGE `Español`; set DATEFORMAT `dmy`; set DATEFIRST 1"},
        {"set statistics io, time on", "set STATISTICS IO, STATISTICS TIME on"},
        {"sp_who", "call sp_who()"},
        {"dbo.p 1, @x = -2.5, @y = @z output select 1", "call dbo.p(1, @x=-dec:2.5, @y=@z out); [select 1]"},
        {"exec @r = master..sp_help t, 'x', default, null, [a b] with recompile",
         "exec @r=master..sp_help(`t`, 'x', default, null, `a b`) recompile"},
        {"execute @p;2 exec p;2 @a out", "exec @p;2(); exec p;2(@a out)"},
        {"EXEC sp_fkeys NULL,NULL,NULL,'t'", "exec sp_fkeys(null, null, null, 't')"},
        {"exec('select ' + @c)", "exec text ('select ' + @c)"},
        {"declare c insensitive cursor for select 1 for read only open c",
         "cursor c(INSENSITIVE) read [select 1]; open c"},
        {"declare c cursor local fast_forward for select a from t order by a",
         "cursor c(LOCAL,FAST_FORWARD) read [select a from t order a]"},
        {"fetch c fetch next from c into @a, @b fetch absolute -1 from @c close c deallocate c",
         "fetch next c; fetch next c into (@a,@b); fetch absolute -1 @c; close c; deallocate c"},
        {"dbcc checkident (dbo.t, reseed, 0) dbcc useroptions dbcc checkdb with no_infomsgs",
         "dbcc CHECKIDENT(`dbo.t`, `reseed`, 0); dbcc USEROPTIONS(); dbcc CHECKDB()"},
        // The separator that clients strip is a call for the server.
        {"go", "call go()"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(statements(text), expected) << text;
}

TEST(SyntaxErrors, NameTheTokenTheLineAndTheKind)
{
    const Refusal cases[] = {
        {"select * from where", 156, "Incorrect syntax near the keyword 'where'."},
        {"selec * from t", 102, "Incorrect syntax near '*'."},
        {"select 1\nfoo bar", 102, "Incorrect syntax near 'bar'.", 2},
        {"select 1 from t x y", 102, "Incorrect syntax near 'y'."},
        {"print 1 select\r\n\r\n  from", 156, "Incorrect syntax near the keyword 'from'.", 3},
        {"select 1\rfrom\rt where", 102, "Incorrect syntax near 'where'."},
        {"select * from", 102, "Incorrect syntax near 'from'."},
        {"print 1 go", 102, "Incorrect syntax near 'go'."},
        {"use my db", 102, "Incorrect syntax near 'db'."},
        {"use 1a", 102, "Incorrect syntax near '1'."},
        {"drop table a b", 102, "Incorrect syntax near 'b'."},
        {"select 'a' 'b' 'c'", 102, "Incorrect syntax near 'c'."},
        {"select ?", 102, "Incorrect syntax near '?'."},
        {"select a from t compute sum(a)", 156, "Incorrect syntax near the keyword 'compute'."},
        {"merge t using u on 1 = 1", 156, "Incorrect syntax near the keyword 'merge'."},
        {"bulk insert t from 'x'", 156, "Incorrect syntax near the keyword 'bulk'."},
        {"begin end", 156, "Incorrect syntax near the keyword 'end'."},
        {"create table select (a int)", 156, "Incorrect syntax near the keyword 'select'."},
        {"if 1 print 'x'", 4145,
         "An expression of non-boolean type specified in a context where a condition is expected, near "
         "'print'."},
        {"select 1\n'abc''\nd", 105, "Unclosed quotation mark after the character string 'abc''\nd'.", 2},
        {"select [abc", 105, "Unclosed quotation mark after the character string 'abc'."},
        {"select 1\n/* a /* b */ c", 113, "Missing end comment mark '*/'.", 2},
        {"select 1 as []", 1038,
         "An object or column name is missing or empty. For SELECT INTO statements, verify each column has a "
         "name. For "
         "other statements, look for empty alias names. Aliases defined as \"\" or [] are not allowed. "
         "Change the alias to "
         "a valid name.",
         1, 4},
        {"select a.b.c.d.e.f", 117,
         "The object name 'a.b.c.d.e.f' contains more than the maximum number of prefixes. The maximum is "
         "3."},
        {"set foo on", 195, "'foo' is not a recognized SET option.", 1, 5},
        {"select 1\ncreate view v as select 1", 111,
         "'CREATE VIEW' must be the first statement in a query batch.", 2},
        {"begin create procedure p as select 1 end", 111,
         "'CREATE/ALTER PROCEDURE' must be the first statement in a query batch."},
        {"use x alter trigger g on t for insert as return", 111,
         "'ALTER TRIGGER' must be the first statement in a query batch."},
        {"create view v as select 1 select 2", 156, "Incorrect syntax near the keyword 'select'."},
        {"create view v as", 102, "Incorrect syntax near 'as'."},
        {"create table t (a int, b, c int)", 173, "The definition for column 'b' must include a data type."},
        {"create table t (a null)", 173, "The definition for column 'a' must include a data type."},
        {"select 1 with x as (select 2 a) select a from x", 319,
         "Incorrect syntax near the keyword 'with'. If this statement is a common table expression, an "
         "xmlnamespaces "
         "clause or a change tracking context clause, the previous statement must be terminated with a "
         "semicolon."},
        {"grant fly to x", 102, "Incorrect syntax near 'fly'."},
    };
    for (const auto& [text, number, message, line, state] : cases) {
        const SyntaxError error = refusal(text);
        EXPECT_EQ(error.number, number) << text;
        EXPECT_EQ(error.text, message) << text;
        EXPECT_EQ(error.line, line) << text;
        EXPECT_EQ(error.state, state) << text;
    }
}

TEST(SyntaxErrors, CountANamesLengthInUtf16Units)
{
    EXPECT_EQ(refusal("select " + repeated("ñ", 128)).number, 0);
    const SyntaxError error = refusal("select\n" + repeated("ñ", 129));
    EXPECT_EQ(error.number, 103);
    EXPECT_EQ(error.text, "The identifier that starts with '" + repeated("ñ", 128) +
                              "' is too long. Maximum length is 128.");
    EXPECT_EQ(error.line, 2);
    EXPECT_EQ(refusal("select [" + repeated("a", 129) + "]").number, 103);
    EXPECT_EQ(refusal("select * from #" + repeated("a", 116)).number, 103);
    EXPECT_EQ(refusal("select '" + repeated("a", 5000) + "'").number, 0);
}

TEST(Bounds, DeepNestingIsRefusedWithoutASmallStackRunningOver)
{
    const int deep = 10000;
    const std::string texts[] = {
        "select " + repeated("(", deep) + "1" + repeated(")", deep),
        "select 1 where " + repeated("(", deep) + "1 = 1" + repeated(")", deep),
        "select 1 where " + repeated("not ", deep) + "1 = 1",
        "select " + repeated("- ", deep) + "1",
        "select " + repeated("f(", deep) + repeated(")", deep),
        "select " + repeated("case when 1 = 1 then ", deep) + "1" + repeated(" end", deep),
        "select " + repeated("(select ", deep) + "1" + repeated(")", deep),
        "select * from " + repeated("(select * from ", deep) + "t" + repeated(") x", deep),
        "select * from " + repeated("(", deep) + "t" + repeated(")", deep),
        "select * from t " + repeated("join (t ", deep),
        repeated("(", deep) + "select 1" + repeated(")", deep),
        repeated("begin ", deep) + "select 1" + repeated(" end", deep),
        repeated("if 1 = 1 ", deep) + "select 1",
        "select " + repeated("1 + ", deep) + "1",
        "select 'a'" + repeated(" collate x", deep),
        "select 1" + repeated(" union select 1 except select 1", deep),
        "select " + repeated("(", 150) + "1" + repeated(repeated(" + 1", 50) + ")", 150),
    };
    for (const auto& text : texts)
        EXPECT_EQ(numberOnSmallStack(text), 191) << text.substr(0, 60);
    EXPECT_EQ(numberOnSmallStack("select * from t" + repeated(", t", 256)), 106);
}

TEST(Bounds, WhatPeopleWriteStaysWithinThem)
{
    const std::string texts[] = {
        "select " + repeated("(", 60) + "1" + repeated(")", 60),
        repeated("(select a from t where a in ", 30) + "(1)" + repeated(")", 30),
        "select 1 where a = 0" + repeated(" or a = 1", 20000),
        "select 1 where a in (0" + repeated(", 1", 100000) + ")",
        "select 1" + repeated(" union all select 1", 5000),
        "select 'a'" + repeated(" + 'b'", 900),
        repeated("begin ", 50) + "select 1" + repeated(" end", 50),
    };
    for (const auto& text : texts)
        EXPECT_EQ(numberOnSmallStack(text), 0) << text.substr(0, 60);
}

TEST(Bounds, ALargeBatchIsReadWhole)
{
    const std::string text =
        repeated("insert into t (a, b) values (1, 'some text of a usual length')\r\n", 40000);
    const auto batch = parseBatch(text);
    ASSERT_EQ(batch.statements.size(), 40000U);
    EXPECT_EQ(batch.statements.back()->source.line, 40000U);
}

TEST(Places, AreTheStatementsOwnText)
{
    const std::string text = "-- head\r\n  select 1 ;\r\nif 1 = 1 -- why\n  print ( 'a' + 'b' ) /* end */";
    const auto batch = parseBatch(text);
    const auto slice = [&](const ast::SourceRange& range) {
        return text.substr(range.begin, range.end - range.begin);
    };
    ASSERT_EQ(batch.statements.size(), 2U);
    EXPECT_EQ(slice(batch.statements[0]->source), "select 1");
    EXPECT_EQ(batch.statements[0]->source.line, 2U);
    EXPECT_EQ(batch.statements[1]->source.line, 3U);
    const auto& print = *ast::as<ast::IfStatement>(*batch.statements[1]).then;
    EXPECT_EQ(slice(print.source), "print ( 'a' + 'b' )");
    EXPECT_EQ(print.source.line, 4U);
    EXPECT_EQ(slice(ast::as<ast::PrintStatement>(print).value->source), "( 'a' + 'b' )");
}
