// Views, procedures, functions, triggers, defaults and rules: what stands alone in its batch.
#include "tsql/statement_parser.h"

namespace practice {

using ast::StatementPtr;

/// @throws SyntaxError 111 unless the statement is the batch's first
void StatementParser::requireFirst(ast::DefinitionMode mode, std::string_view what,
                                   const ast::SourceRange& start) const
{
    if (first_)
        return;
    // Procedures have one message for both.
    const std::string_view verb = what == "PROCEDURE"                  ? "CREATE/ALTER"
                                  : mode == ast::DefinitionMode::Alter ? "ALTER"
                                                                       : "CREATE";
    throw SyntaxError{111,
                      "'" + std::string(verb) + " " + std::string(what) +
                          "' must be the first statement in a query batch.",
                      static_cast<int>(start.line), 1};
}

// Views -----------------------------------------------------------------------------------------

StatementPtr StatementParser::createView(ast::DefinitionMode mode)
{
    expect(Keyword::View);
    auto node = std::make_unique<ast::CreateViewStatement>();
    node->mode = mode;
    node->name = objectName();
    if (at(Symbol::Open))
        node->columns = identifierList();
    if (accept(Keyword::With)) {
        do {
            if (acceptWord("ENCRYPTION"))
                node->encryption = true;
            else if (acceptWord("SCHEMABINDING"))
                node->schemaBinding = true;
            else if (acceptWord("VIEW_METADATA"))
                node->viewMetadata = true;
            else
                fail();
        } while (accept(Symbol::Comma));
    }
    expect(Keyword::As);
    const auto start = here();
    std::vector<ast::CommonTable> common;
    if (at(Keyword::With))
        common = commonTables();
    node->query = query(QueryPlace::Statement);
    node->query.commonTables = std::move(common);
    node->query.source = since(start);
    if (accept(Keyword::With)) {
        expect(Keyword::Check);
        expect(Keyword::Option);
        node->checkOption = true;
    }
    skipSemicolons();
    if (!atEnd())
        fail();
    return node;
}

// Procedures ------------------------------------------------------------------------------------

StatementPtr StatementParser::createProcedure(ast::DefinitionMode mode)
{
    advance();
    auto node = std::make_unique<ast::CreateProcedureStatement>();
    node->mode = mode;
    node->name = objectName();
    if (accept(Symbol::Semicolon))
        node->number = integer();
    const bool parentheses = at(Symbol::Open);
    if (parentheses)
        advance();
    if (at(TokenKind::Variable)) {
        do
            node->parameters.push_back(parameter());
        while (accept(Symbol::Comma));
    }
    if (parentheses)
        expect(Symbol::Close);
    procedureOptions(*node);
    expect(Keyword::As);
    if (!atEnd()) // a procedure may do nothing
        node->body = restOfBatch();
    return node;
}

void StatementParser::procedureOptions(ast::CreateProcedureStatement& node)
{
    if (accept(Keyword::With)) {
        do {
            if (acceptWord("RECOMPILE"))
                node.recompile = true;
            else if (acceptWord("ENCRYPTION"))
                node.encryption = true;
            else
                node.executeAs = executeAsOption();
        } while (accept(Symbol::Comma));
    }
    if (accept(Keyword::For)) {
        expect(Keyword::Replication);
        node.forReplication = true;
    }
}

std::string StatementParser::executeAsOption()
{
    if (!accept(Keyword::Exec))
        expect(Keyword::Execute);
    expect(Keyword::As);
    return atString() ? string() : anyWord();
}

ast::ParameterDefinition StatementParser::parameter()
{
    const auto start = here();
    ast::ParameterDefinition result;
    result.name = variable();
    accept(Keyword::As);
    result.type = dataType();
    accept(Keyword::Null); // may be said, and is always so
    if (accept(Symbol::Equal))
        result.defaultValue = constantOrWord();
    result.output = acceptWord("OUTPUT") || acceptWord("OUT");
    result.readOnly = acceptWord("READONLY");
    result.source = since(start);
    return result;
}

// Functions -------------------------------------------------------------------------------------

StatementPtr StatementParser::createFunction(ast::DefinitionMode mode)
{
    expect(Keyword::Function);
    auto node = std::make_unique<ast::CreateFunctionStatement>();
    node->mode = mode;
    node->name = objectName();
    expect(Symbol::Open);
    if (!at(Symbol::Close)) {
        do
            node->parameters.push_back(parameter());
        while (accept(Symbol::Comma));
    }
    expect(Symbol::Close);
    functionReturns(*node);
    if (accept(Keyword::With)) {
        do {
            if (at(Keyword::Exec) || at(Keyword::Execute)) {
                node->options.push_back("EXECUTE AS " + executeAsOption());
            } else if (acceptWords({"RETURNS", "NULL"})) {
                expect(Keyword::On);
                expect(Keyword::Null);
                expectWord("INPUT");
                node->options.emplace_back("RETURNS NULL ON NULL INPUT");
            } else {
                if (!atWord("SCHEMABINDING") && !atWord("ENCRYPTION"))
                    fail();
                node->options.push_back(anyWord());
            }
        } while (accept(Symbol::Comma));
    }
    accept(Keyword::As);
    functionBody(*node);
    return node;
}

void StatementParser::functionReturns(ast::CreateFunctionStatement& node)
{
    expectWord("RETURNS");
    if (accept(Keyword::Table)) {
        node.form = ast::FunctionForm::InlineTable;
    } else if (at(TokenKind::Variable)) {
        node.form = ast::FunctionForm::MultiStatement;
        node.tableVariable = variable();
        expect(Keyword::Table);
        node.tableElements = tableBody();
    } else {
        node.returnType = dataType();
    }
}

void StatementParser::functionBody(ast::CreateFunctionStatement& node)
{
    if (node.form != ast::FunctionForm::InlineTable) {
        expect(Keyword::Begin);
        node.body = statementList();
        expect(Keyword::End);
    } else {
        const auto start = here();
        expect(Keyword::Return);
        auto result = std::make_unique<ast::ReturnStatement>();
        const bool parentheses = at(Symbol::Open);
        if (parentheses)
            advance();
        std::vector<ast::CommonTable> common;
        if (at(Keyword::With))
            common = commonTables();
        result->query = queryPtr(QueryPlace::Statement);
        result->query->commonTables = std::move(common);
        if (parentheses)
            expect(Symbol::Close);
        result->source = since(start);
        node.body.push_back(std::move(result));
    }
    skipSemicolons();
    if (!atEnd())
        fail();
}

// Triggers --------------------------------------------------------------------------------------

void StatementParser::triggerTarget(ast::ObjectName& table, bool& onDatabase, bool& onServer)
{
    expect(Keyword::On);
    onDatabase = accept(Keyword::Database);
    if (onDatabase)
        return;
    onServer = accept(Keyword::All);
    if (onServer)
        expectWord("SERVER");
    else
        table = objectName();
}

StatementPtr StatementParser::createTrigger(ast::DefinitionMode mode)
{
    expect(Keyword::Trigger);
    auto node = std::make_unique<ast::CreateTriggerStatement>();
    node->mode = mode;
    node->name = objectName();
    triggerTarget(node->table, node->onDatabase, node->onServer);
    if (accept(Keyword::With)) {
        if (acceptWord("ENCRYPTION"))
            node->encryption = true;
        else
            (void)executeAsOption();
    }
    if (acceptWord("INSTEAD")) {
        expect(Keyword::Of);
        node->timing = ast::TriggerTiming::InsteadOf;
    } else if (!accept(Keyword::For)) {
        expectWord("AFTER");
    }
    do {
        const bool change = at(Keyword::Insert) || at(Keyword::Update) || at(Keyword::Delete);
        if (!change && !at(TokenKind::Word))
            fail();
        if (!change && !(node->onDatabase || node->onServer))
            fail();
        node->events.push_back(anyWord());
    } while (accept(Symbol::Comma));
    if (accept(Keyword::Not)) {
        expect(Keyword::For);
        expect(Keyword::Replication);
        node->notForReplication = true;
    }
    expect(Keyword::As);
    node->body = restOfBatch();
    return node;
}

// Defaults and rules ----------------------------------------------------------------------------

StatementPtr StatementParser::createDefault()
{
    expect(Keyword::Default);
    auto node = std::make_unique<ast::CreateDefaultStatement>();
    node->name = objectName();
    expect(Keyword::As);
    node->value = value();
    return node;
}

StatementPtr StatementParser::createRule()
{
    expect(Keyword::Rule);
    auto node = std::make_unique<ast::CreateRuleStatement>();
    node->name = objectName();
    expect(Keyword::As);
    node->condition = condition();
    return node;
}

} // namespace practice
