// How each statement ends on the wire: which token with which status, command and count.
#include "engine/api/session.h"
#include "engine_harness.h"
#include "raw_client.h"
#include "tds/server.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace practice;
using namespace practice::test;

namespace {

const char* nameOfStatus(std::uint16_t status)
{
    switch (status & ~unsigned{DoneMore}) {
    case 0:
        return "";
    case DoneError:
        return " error";
    case DoneCount:
        return " count";
    default:
        return " ?";
    }
}

/// The tokens of a reply; "rows" for a result set of ints. The last completion, and no other, must tell that
/// nothing follows: else a "!" stands behind it.
std::string tokens(const Bytes& reply)
{
    std::ostringstream out;
    ByteReader reader(reply);
    while (!reader.atEnd()) {
        const auto token = static_cast<Token>(reader.number<std::uint8_t>());
        switch (token) {
        case Token::ColumnMetadata:
            reader.skip(2 + 4 + 2 + 1 + 1);
            reader.skip(std::size_t{2} * reader.number<std::uint8_t>());
            out << "rows ";
            break;
        case Token::Row:
            reader.skip(reader.number<std::uint8_t>());
            break;
        case Token::Done:
        case Token::DoneProcedure:
        case Token::DoneInProcedure: {
            const auto status = reader.number<std::uint16_t>();
            out << (token == Token::Done ? "done(" : token == Token::DoneProcedure ? "proc(" : "in(");
            out << std::hex << reader.number<std::uint16_t>() << std::dec << nameOfStatus(status);
            const auto rows = reader.number<std::uint64_t>();
            if ((status & DoneCount) != 0)
                out << ' ' << rows;
            out << (((status & DoneMore) != 0) == reader.atEnd() ? ")! " : ") ");
            break;
        }
        case Token::Error:
        case Token::Info: {
            ByteReader body(reader.take(reader.number<std::uint16_t>()));
            out << (token == Token::Error ? "error " : "info ") << body.number<std::int32_t>() << ' ';
            break;
        }
        case Token::EnvironmentChange:
            reader.skip(reader.number<std::uint16_t>());
            break;
        case Token::ReturnStatus:
            out << "status " << reader.number<std::int32_t>() << ' ';
            break;
        case Token::ReturnValue: {
            reader.skip(2);
            out << reader.utf16(reader.number<std::uint8_t>());
            reader.skip(1 + 4 + 2);
            const auto type = reader.number<std::uint8_t>();
            const bool text = type == type::varChar || type == type::nVarChar;
            reader.skip(text ? 2 + 5 : 1);
            const std::size_t size = text ? reader.number<std::uint16_t>() : reader.number<std::uint8_t>();
            out << ':' << std::hex << int{type} << std::dec << '[' << size << "] ";
            reader.skip(size);
            break;
        }
        default:
            return out.str() + "unknown token " + std::to_string(static_cast<int>(token));
        }
    }
    std::string text = out.str();
    if (!text.empty())
        text.pop_back();
    return text;
}

class Completions : public testing::Test
{
protected:
    Completions()
    {
        (void)one_.ask(loginPacket({.password = "Secret1", .database = "tempdb"}));
        for (const char* text :
             {"CREATE TABLE t (a int NOT NULL)", "INSERT t VALUES (1) INSERT t VALUES (2)"})
            (void)ask(text);
    }
    std::string ask(std::string_view text) { return tokens(one_.ask(batchPacket(text))); }
    /// A call by name of a procedure with one parameter, @p.
    std::string call(std::string_view name, const Bytes& parameter)
    {
        Bytes payload = withHeaders();
        append(payload, static_cast<std::uint16_t>(name.size()));
        appendText(payload, name);
        append(payload, std::uint16_t{0});
        append(payload, std::uint8_t{2});
        appendText(payload, "@p");
        payload.insert(payload.end(), parameter.begin(), parameter.end());
        return tokens(one_.ask(packet(PacketType::Rpc, payload)));
    }

    TemporaryDirectory directory_;
    std::unique_ptr<Server> server_ =
        openServer({.dataDirectory = directory_.path(), .serverName = "HOST", .saPassword = "Secret1"});
    TdsServer tds_{*server_, [] {
                       ListenOptions options;
                       options.port = 0;
                       return options;
                   }()};
    RawClient one_{tds_.port()};
};

struct Ended
{
    const char* text;
    const char* tokens;
};

} // namespace

TEST_F(Completions, EachStatementOfABatchEndsWithItsOwn)
{
    for (const Ended& expected : std::initializer_list<Ended>{
             {"", "done(fd)"},
             {"PRINT 'x'", "info 0 done(fd)"},
             {"PRINT 'x' PRINT 'y'", "info 0 done(fd) info 0 done(fd)"},
             {"DECLARE @v int", "done(fd)"},
             {"DECLARE @v int SELECT a FROM t", "rows done(c1 count 2)"},
             {"DECLARE @v int = 1, @w int = 2", "done(c1 count 1) done(c1 count 1)"},
             {"DECLARE @v int SET @v = 1", "done(c1 count 1)"},
             {"DECLARE @v int SELECT @v = a FROM t SELECT @v = 1", "done(c1 count 2) done(c1 count 1)"},
             {"DECLARE @t table (a int NOT NULL) INSERT @t SELECT a FROM t", "done(c3 count 2)"},
             {"UPDATE t SET a = a DELETE t WHERE a > 9", "done(c5 count 2) done(c4 count 0)"},
             {"SET NOCOUNT OFF USE tempdb", "done(fd) info 5701 done(fd)"},
             {"BEGIN TRAN SAVE TRAN s COMMIT BEGIN TRAN ROLLBACK",
              "done(d4) done(d4) done(d5) done(d4) done(d2)"},
             {"IF 1 = 1 PRINT 'x' ELSE PRINT 'y'", "info 0 done(fd)"},
             {"IF 1 = 2 PRINT 'x'", "done(fd)"},
             {"DECLARE @i int SET @i = 0 WHILE @i < 2 BEGIN SET @i = @i + 1 PRINT @i END",
              "done(c1 count 1) done(c1 count 1) info 0 done(fd) done(c1 count 1) info 0 done(fd)"},
             {"SET NOCOUNT ON SELECT a FROM t PRINT 'x' UPDATE t SET a = a SET NOCOUNT OFF",
              "done(fd) rows done(c1) info 0 done(fd) done(c5) done(fd)"},
             {"DECLARE c CURSOR FOR SELECT a FROM t OPEN c FETCH c DEALLOCATE c",
              "done(fd) done(fd) rows done(c1 count 1) done(fd)"},
         })
        EXPECT_EQ(ask(expected.text), expected.tokens) << expected.text;
}

TEST_F(Completions, ErrorsMarkTheStatementThatFailed)
{
    for (const Ended& expected : std::initializer_list<Ended>{
             {"SELECT 1 FROM", "error 102 done(fd error)"},
             {"SET @x = 1 SET @y = 2", "error 137 error 137 done(fd error)"},
             {"INSERT t VALUES (NULL) PRINT 'x'", "error 515 info 3621 done(c3 error) info 0 done(fd)"},
             {"RAISERROR('x', 16, 1) RAISERROR('y', 10, 1)",
              "error 50000 done(fd error) info 50000 done(fd)"},
             {"BEGIN TRY INSERT t VALUES (NULL) END TRY BEGIN CATCH PRINT 'x' END CATCH",
              "done(c3 count 0) info 0 done(fd)"},
             {"BEGIN TRY RAISERROR('x', 16, 1) END TRY BEGIN CATCH PRINT 'x' END CATCH",
              "done(fd) info 0 done(fd)"},
             {"EXEC nada PRINT 'x'", "error 2812 proc(e0 error) info 0 done(fd)"},
             // The batch is given up inside the procedure, yet the reply ends outside of it.
             {"EXEC ('SELECT CAST(''x'' AS int)') PRINT 'x'", "rows error 245 in(c1 error) done(fd error)"},
         })
        EXPECT_EQ(ask(expected.text), expected.tokens) << expected.text;
}

TEST_F(Completions, ProceduresEndInsideAndThenThemselves)
{
    (void)ask("CREATE PROCEDURE p AS PRINT 'x' UPDATE t SET a = a SELECT a FROM t RETURN 3");
    (void)ask("CREATE PROCEDURE q AS SET NOCOUNT ON EXEC p DECLARE @v int SET @v = 1 RAISERROR('x', 16, 1)");
    const std::string inner = "info 0 in(fd) in(c5 count 2) rows in(c1 count 2) ";
    EXPECT_EQ(ask("EXEC p PRINT 'x'"), inner + "status 3 proc(e0) info 0 done(fd)");
    // Without counts, procedures tell of result sets and errors alone.
    EXPECT_EQ(ask("EXEC q"), "info 0 rows in(c1) error 50000 in(fd error) status 0 proc(e0)");
    EXPECT_EQ(ask("EXEC ('PRINT ''x''') PRINT 'y'"), "info 0 in(fd) status 0 proc(e0) info 0 done(fd)");
    EXPECT_EQ(ask("EXEC sp_executesql N'PRINT ''x'''"), "info 0 in(fd) status 0 proc(e0)");
    EXPECT_EQ(ask("BEGIN TRY EXEC q END TRY BEGIN CATCH PRINT 'x' END CATCH"),
              "info 0 rows in(c1) proc(e0) info 0 done(fd)");
    EXPECT_EQ(ask("CREATE TABLE #r (a int) INSERT #r EXEC p"), "done(fd) info 0 done(c3 count 2)");
}

TEST_F(Completions, CallsGiveValuesBackInTheTypesOfTheirCaller)
{
    (void)ask("CREATE PROCEDURE p @p int OUTPUT AS SET @p = @p + 1 RETURN 2");
    const std::string inner = "in(c1 count 1) status 2 ";
    EXPECT_EQ(call("p", {1, type::intN, 4, 4, 41, 0, 0, 0}), inner + "@p:26[4] proc(e0)");
    EXPECT_EQ(call("p", {1, type::intN, 8, 8, 41, 0, 0, 0, 0, 0, 0, 0}), inner + "@p:26[8] proc(e0)");
    EXPECT_EQ(call("p", {1, type::varChar, 10, 0, 9, 4, 0xD0, 0, 0x34, 2, 0, '4', '1'}),
              inner + "@p:a7[2] proc(e0)");
    EXPECT_EQ(call("p", {0, type::intN, 4, 4, 41, 0, 0, 0}), inner + "proc(e0)");
    EXPECT_EQ(call("nada", {0, type::intN, 4, 4, 41, 0, 0, 0}), "error 2812 proc(e0 error)");
    // Nothing comes back of a call that took the batch with it.
    (void)ask("CREATE PROCEDURE q @p int OUTPUT AS SELECT @p = CAST('x' AS int)");
    EXPECT_EQ(call("q", {1, type::intN, 4, 4, 41, 0, 0, 0}), "error 245 in(c1 error) proc(e0)");
}
