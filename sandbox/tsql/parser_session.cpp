// SET, USE, and what looks after the server.
#include "tsql/statement_parser.h"

#include <algorithm>
#include <array>

namespace practice {

using ast::StatementPtr;

namespace {

/// SET options that are ON or OFF.
constexpr auto switches = std::to_array<std::string_view>({
    "ANSI_DEFAULTS",
    "ANSI_NULLS",
    "ANSI_NULL_DFLT_OFF",
    "ANSI_NULL_DFLT_ON",
    "ANSI_PADDING",
    "ANSI_WARNINGS",
    "ARITHABORT",
    "ARITHIGNORE",
    "CONCAT_NULL_YIELDS_NULL",
    "CURSOR_CLOSE_ON_COMMIT",
    "DISABLE_DEF_CNST_CHK",
    "FMTONLY",
    "FORCEPLAN",
    "IMPLICIT_TRANSACTIONS",
    "NOCOUNT",
    "NOEXEC",
    "NO_BROWSETABLE",
    "NUMERIC_ROUNDABORT",
    "PARSEONLY",
    "QUOTED_IDENTIFIER",
    "REMOTE_PROC_TRANSACTIONS",
    "SHOWPLAN_ALL",
    "SHOWPLAN_TEXT",
    "SHOWPLAN_XML",
    "XACT_ABORT",
});

/// SET options that take a value; ROWCOUNT, TEXTSIZE and OFFSETS are words of their own.
constexpr auto valued = std::to_array<std::string_view>({
    "CONTEXT_INFO",
    "DATEFIRST",
    "DATEFORMAT",
    "DEADLOCK_PRIORITY",
    "FIPS_FLAGGER",
    "LANGUAGE",
    "LOCK_TIMEOUT",
    "QUERY_GOVERNOR_COST_LIMIT",
});

} // namespace

// SET -------------------------------------------------------------------------------------------

StatementPtr StatementParser::setStatement()
{
    expect(Keyword::Set);
    if (at(TokenKind::Variable))
        return setVariable();
    auto node = std::make_unique<ast::SetOptionStatement>();
    switch (current().keyword) {
    case Keyword::IdentityInsert:
        node->options.push_back(anyWord());
        node->table = objectName();
        node->on = onOrOff();
        return node;
    case Keyword::Tran:
    case Keyword::Transaction:
        setIsolation(*node);
        return node;
    case Keyword::Statistics: {
        advance();
        std::string option = "STATISTICS " + anyWord();
        node->options.push_back(option);
        while (accept(Symbol::Comma))
            node->options.push_back("STATISTICS " + anyWord());
        node->on = onOrOff();
        return node;
    }
    case Keyword::RowCount:
    case Keyword::TextSize:
        node->options.push_back(anyWord());
        node->value = constantOrVariable();
        return node;
    case Keyword::Offsets:
        do
            node->options.push_back(anyWord());
        while (accept(Symbol::Comma) || !(at(Keyword::On) || at(Keyword::Off)));
        node->on = onOrOff();
        return node;
    case Keyword::None:
        break;
    default:
        fail();
    }
    if (at(TokenKind::Word) && std::ranges::binary_search(valued, upperCase(current().text))) {
        node->options.push_back(anyWord());
        if (node->options.front() == "FIPS_FLAGGER" && (at(Keyword::On) || at(Keyword::Off)))
            node->on = onOrOff();
        else
            node->value = constantOrWord();
        return node;
    }
    setSwitches(*node);
    return node;
}

void StatementParser::setSwitches(ast::SetOptionStatement& node)
{
    do {
        if (!atIdentifier())
            fail();
        const std::string written = current().content();
        if (!std::ranges::binary_search(switches, upperCase(written)))
            fail(195, "'" + written + "' is not a recognized SET option.", 5);
        node.options.push_back(anyWord());
    } while (accept(Symbol::Comma));
    node.on = onOrOff();
    const bool quotes = std::ranges::any_of(node.options, [](const auto& name) {
        return name == "QUOTED_IDENTIFIER" || name == "ANSI_DEFAULTS";
    });
    if (quotes)
        setQuotedIdentifier(*node.on);
}

void StatementParser::setIsolation(ast::SetOptionStatement& node)
{
    advance();
    expectWord("ISOLATION");
    expectWord("LEVEL");
    node.options.emplace_back("TRANSACTION ISOLATION LEVEL");
    const auto start = here();
    auto level = std::make_unique<ast::Literal>();
    level->literalKind = ast::LiteralKind::String;
    level->bareWord = true;
    if (accept(Keyword::Read)) {
        if (!atWord("UNCOMMITTED") && !atWord("COMMITTED"))
            fail();
        level->text = "READ " + anyWord();
    } else if (acceptWord("REPEATABLE")) {
        expect(Keyword::Read);
        level->text = "REPEATABLE READ";
    } else {
        if (!atWord("SERIALIZABLE") && !atWord("SNAPSHOT"))
            fail();
        level->text = anyWord();
    }
    node.value = finish(std::move(level), start);
}

StatementPtr StatementParser::setVariable()
{
    auto node = std::make_unique<ast::SetVariableStatement>();
    node->variable = variable();
    node->op = assignmentOperator();
    if (!at(Keyword::Cursor)) {
        node->value = value();
        return node;
    }
    node->cursor = std::make_unique<ast::DeclareCursorStatement>();
    cursorBody(*node->cursor);
    return node;
}

StatementPtr StatementParser::useStatement()
{
    expect(Keyword::Use);
    auto node = std::make_unique<ast::UseStatement>();
    node->database = identifier();
    return node;
}

// Server ----------------------------------------------------------------------------------------

StatementPtr StatementParser::dbcc()
{
    expect(Keyword::Dbcc);
    auto node = std::make_unique<ast::DbccStatement>();
    node->command = anyWord();
    if (accept(Symbol::Open)) {
        if (!at(Symbol::Close)) {
            do {
                ast::ExpressionPtr argument = constantOrWord();
                if (at(Symbol::Dot))
                    qualify(*argument);
                node->arguments.push_back(std::move(argument));
            } while (accept(Symbol::Comma));
        }
        expect(Symbol::Close);
    }
    if (accept(Keyword::With))
        node->options = namedOptions();
    return node;
}

/// A table may come with its schema: the words are put together as written.
void StatementParser::qualify(ast::Expression& word)
{
    if (word.kind != ast::ExpressionKind::Literal || !static_cast<ast::Literal&>(word).bareWord)
        fail();
    auto& name = static_cast<ast::Literal&>(word);
    while (accept(Symbol::Dot))
        name.text += '.' + (at(Symbol::Dot) ? std::string() : identifier());
    name.source = since(name.source);
}

StatementPtr StatementParser::kill()
{
    expect(Keyword::Kill);
    auto node = std::make_unique<ast::KillStatement>();
    node->spid = constantOrVariable();
    if (accept(Keyword::With)) {
        expectWord("STATUSONLY");
        node->statusOnly = true;
    }
    return node;
}

StatementPtr StatementParser::shutdown()
{
    expect(Keyword::Shutdown);
    auto node = std::make_unique<ast::ShutdownStatement>();
    if (accept(Keyword::With)) {
        expectWord("NOWAIT");
        node->noWait = true;
    }
    return node;
}

StatementPtr StatementParser::checkpoint()
{
    expect(Keyword::Checkpoint);
    if (at(TokenKind::Integer))
        advance(); // how long it may take
    return std::make_unique<ast::CheckpointStatement>();
}

StatementPtr StatementParser::reconfigure()
{
    expect(Keyword::Reconfigure);
    auto node = std::make_unique<ast::ReconfigureStatement>();
    if (accept(Keyword::With)) {
        expectWord("OVERRIDE");
        node->withOverride = true;
    }
    return node;
}

} // namespace practice
