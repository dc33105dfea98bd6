// A batch, and which statement starts where.
#include "tsql/parser.h"
#include "tsql/statement_parser.h"

#include <utility>

namespace practice {

using ast::StatementPtr;

ast::Batch StatementParser::batch()
{
    ast::Batch result;
    for (skipSemicolons(); !atEnd(); openEnd_ = !skipSemicolons())
        result.statements.push_back(statement());
    requireLabels();
    return result;
}

bool StatementParser::skipSemicolons()
{
    const bool any = at(Symbol::Semicolon);
    while (accept(Symbol::Semicolon)) {
    }
    return any;
}

ast::StatementList StatementParser::statementList()
{
    ast::StatementList list;
    skipSemicolons();
    openEnd_ = false;
    do {
        list.push_back(statement());
        openEnd_ = !skipSemicolons();
    } while (!at(Keyword::End) && !atEnd());
    return list;
}

ast::StatementList StatementParser::restOfBatch()
{
    ast::StatementList list;
    skipSemicolons();
    do {
        list.push_back(statement());
        openEnd_ = !skipSemicolons();
    } while (!atEnd());
    return list;
}

StatementPtr StatementParser::statement()
{
    const Nesting nesting(*this);
    const auto start = here();
    first_ = std::exchange(untouched_, false);
    afterOpenEnd_ = std::exchange(openEnd_, false);
    StatementPtr result = dispatch();
    result->source = since(start);
    return result;
}

StatementPtr StatementParser::dispatch()
{
    switch (current().keyword) {
    case Keyword::None:
        return wordStatement();
    case Keyword::Select:
        return selectStatement({});
    case Keyword::With:
        return withStatement();
    case Keyword::Insert:
        return insertStatement({});
    case Keyword::Update:
        return peek().keyword == Keyword::Statistics ? updateStatistics() : updateStatement({});
    case Keyword::Delete:
        return deleteStatement({});
    case Keyword::Truncate:
        return truncateStatement();
    case Keyword::Create:
        return createStatement();
    case Keyword::Alter:
        return alterStatement();
    case Keyword::Drop:
        return dropStatement();
    case Keyword::Begin:
        return beginStatement();
    case Keyword::If:
        return ifStatement();
    case Keyword::While:
        return whileStatement();
    case Keyword::Break:
        return breakStatement();
    case Keyword::Continue:
        return continueStatement();
    case Keyword::Commit:
        return transaction(ast::TransactionAction::Commit);
    case Keyword::Rollback:
        return transaction(ast::TransactionAction::Rollback);
    case Keyword::Save:
        return transaction(ast::TransactionAction::Save);
    case Keyword::Return:
        return returnStatement();
    case Keyword::Goto:
        return gotoStatement();
    case Keyword::WaitFor:
        return waitFor();
    case Keyword::Print:
        return print();
    case Keyword::Raiserror:
        return raiserror();
    case Keyword::Exec:
    case Keyword::Execute:
        return executeStatement();
    case Keyword::Revert:
        return revert();
    case Keyword::Declare:
        return declareStatement();
    case Keyword::Open:
        return cursorStatement(ast::CursorAction::Open);
    case Keyword::Close:
        return cursorStatement(ast::CursorAction::Close);
    case Keyword::Deallocate:
        return cursorStatement(ast::CursorAction::Deallocate);
    case Keyword::Fetch:
        return fetchStatement();
    case Keyword::Set:
        return setStatement();
    case Keyword::Use:
        return useStatement();
    case Keyword::Dbcc:
        return dbcc();
    case Keyword::Kill:
        return kill();
    case Keyword::Shutdown:
        return shutdown();
    case Keyword::Checkpoint:
        return checkpoint();
    case Keyword::Reconfigure:
        return reconfigure();
    case Keyword::Backup:
        return backup();
    case Keyword::Restore:
        return restore();
    case Keyword::Grant:
        return permission(ast::PermissionAction::Grant);
    case Keyword::Deny:
        return permission(ast::PermissionAction::Deny);
    case Keyword::Revoke:
        return permission(ast::PermissionAction::Revoke);
    default:
        fail();
    }
}

/// Statements whose first word is not reserved, queries in parentheses, labels and bare calls.
StatementPtr StatementParser::wordStatement()
{
    if (at(Symbol::Open))
        return selectStatement({});
    if (at(TokenKind::Word) && peek().symbol == Symbol::Colon)
        return label();
    if (atWord("THROW"))
        return throwStatement();
    if ((atWord("ENABLE") || atWord("DISABLE")) && peek().keyword == Keyword::Trigger)
        return enableTrigger();
    if (first_ && (atIdentifier() || at(Symbol::Dot)))
        return bareCall();
    fail();
}

// CREATE, ALTER, DROP ---------------------------------------------------------------------------

StatementPtr StatementParser::createStatement()
{
    const auto start = here();
    expect(Keyword::Create);
    if (at(TokenKind::Word) && at(Keyword::None))
        return createWord();
    if (accept(Keyword::Or)) {
        expect(Keyword::Alter);
        return createKeyword(ast::DefinitionMode::CreateOrAlter, start);
    }
    switch (current().keyword) {
    case Keyword::Table:
        return createTable();
    case Keyword::Unique:
    case Keyword::Clustered:
    case Keyword::NonClustered:
    case Keyword::Index:
        return createIndex();
    case Keyword::Database:
        return createDatabase();
    case Keyword::Statistics:
        return createStatistics();
    case Keyword::User:
        return createUser();
    case Keyword::Default:
        requireFirst(ast::DefinitionMode::Create, "DEFAULT", start);
        return createDefault();
    case Keyword::Rule:
        requireFirst(ast::DefinitionMode::Create, "RULE", start);
        return createRule();
    case Keyword::Schema:
        requireFirst(ast::DefinitionMode::Create, "SCHEMA", start);
        return createSchema();
    default:
        return createKeyword(ast::DefinitionMode::Create, start);
    }
}

/// What can be created and altered alike.
StatementPtr StatementParser::createKeyword(ast::DefinitionMode mode, const ast::SourceRange& start)
{
    switch (current().keyword) {
    case Keyword::View:
        requireFirst(mode, "VIEW", start);
        return createView(mode);
    case Keyword::Proc:
    case Keyword::Procedure:
        requireFirst(mode, "PROCEDURE", start);
        return createProcedure(mode);
    case Keyword::Function:
        requireFirst(mode, "FUNCTION", start);
        return createFunction(mode);
    case Keyword::Trigger:
        requireFirst(mode, "TRIGGER", start);
        return createTrigger(mode);
    default:
        fail();
    }
}

StatementPtr StatementParser::createWord()
{
    if (acceptWord("LOGIN"))
        return createLogin();
    if (acceptWord("ROLE"))
        return createRole(false);
    if (acceptWords({"SERVER", "ROLE"}))
        return createRole(true);
    expectWord("TYPE");
    return createType();
}

StatementPtr StatementParser::alterStatement()
{
    const auto start = here();
    expect(Keyword::Alter);
    switch (current().keyword) {
    case Keyword::Table:
        return alterTable();
    case Keyword::Index:
        return alterIndex();
    case Keyword::Database:
        return alterDatabase();
    case Keyword::User:
        return alterUser();
    case Keyword::Schema:
        return alterSchema();
    case Keyword::Authorization:
        return alterAuthorization();
    default:
        break;
    }
    if (acceptWord("LOGIN"))
        return alterLogin();
    if (acceptWord("ROLE"))
        return alterRole(false);
    if (acceptWords({"SERVER", "ROLE"}))
        return alterRole(true);
    return createKeyword(ast::DefinitionMode::Alter, start);
}

StatementPtr StatementParser::dropStatement()
{
    using enum ast::DropKind;
    expect(Keyword::Drop);
    const Keyword keyword = current().keyword;
    if (keyword == Keyword::None) {
        const bool serverRole = acceptWords({"SERVER", "ROLE"});
        if (serverRole || acceptWord("ROLE"))
            return dropObjects(Role, false);
        if (acceptWord("LOGIN"))
            return dropObjects(Login, false);
        if (acceptWord("SYNONYM"))
            return dropObjects(Synonym, true);
        expectWord("TYPE");
        return dropObjects(Type, true);
    }
    const Token word = advance();
    switch (keyword) {
    case Keyword::Index:
        return dropIndex();
    case Keyword::Table:
        return dropObjects(Table, true);
    case Keyword::View:
        return dropObjects(View, true);
    case Keyword::Proc:
    case Keyword::Procedure:
        return dropObjects(Procedure, true);
    case Keyword::Function:
        return dropObjects(Function, true);
    case Keyword::Trigger:
        return dropObjects(Trigger, true);
    case Keyword::Default:
        return dropObjects(Default, true);
    case Keyword::Rule:
        return dropObjects(Rule, true);
    case Keyword::Statistics:
        return dropObjects(Statistics, true);
    case Keyword::Database:
        return dropObjects(Database, false);
    case Keyword::User:
        return dropObjects(User, false);
    case Keyword::Schema:
        return dropObjects(Schema, false);
    default:
        failAt(word);
    }
}

// What others call ------------------------------------------------------------------------------

namespace {

template <class Parse>
auto parseAlone(std::string_view text, const ParserOptions& options, Parse parse)
{
    StatementParser parser(text, options.quotedIdentifier);
    auto result = parse(parser);
    if (!parser.atEnd())
        parser.fail();
    return result;
}

} // namespace

ast::Batch parseBatch(std::string_view text, const ParserOptions& options)
{
    return StatementParser(text, options.quotedIdentifier).batch();
}

ast::ExpressionPtr parseExpression(std::string_view text, const ParserOptions& options)
{
    return parseAlone(text, options, [](StatementParser& parser) { return parser.value(); });
}

ast::ExpressionPtr parseCondition(std::string_view text, const ParserOptions& options)
{
    return parseAlone(text, options, [](StatementParser& parser) { return parser.condition(); });
}

ast::DataType parseDataType(std::string_view text)
{
    return parseAlone(text, {}, [](StatementParser& parser) { return parser.dataType(); });
}

} // namespace practice
