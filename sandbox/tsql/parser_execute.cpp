// Calls of procedures, declarations, cursors.
#include "tsql/statement_parser.h"

namespace practice {

using ast::StatementPtr;

// EXECUTE ---------------------------------------------------------------------------------------

StatementPtr StatementParser::executeStatement()
{
    advance();
    if (at(Symbol::Open))
        return executeString();
    if (at(Keyword::As))
        return executeAs();
    auto node = std::make_unique<ast::ExecuteStatement>();
    if (at(TokenKind::Variable) && peek().symbol == Symbol::Equal) {
        node->returnVariable = variable();
        advance();
    }
    callRest(*node);
    return node;
}

StatementPtr StatementParser::bareCall()
{
    auto node = std::make_unique<ast::ExecuteStatement>();
    node->keyword = false;
    callRest(*node);
    return node;
}

void StatementParser::callRest(ast::ExecuteStatement& node)
{
    if (at(TokenKind::Variable))
        node.variable = variable();
    else
        node.procedure = objectName();
    if (at(Symbol::Semicolon) && peek().kind == TokenKind::Integer) {
        advance();
        node.number = integer();
    }
    node.arguments = arguments();
    if (at(Keyword::With) && isWord(peek(), "RECOMPILE")) {
        advance();
        advance();
        node.recompile = true;
    }
}

bool StatementParser::atArgument() const
{
    switch (current().kind) {
    case TokenKind::End:
        return false;
    case TokenKind::Symbol:
        return at(Symbol::Minus) || at(Symbol::Plus);
    case TokenKind::Word:
        return at(Keyword::None) || at(Keyword::Null) || at(Keyword::Default);
    default:
        return true;
    }
}

std::vector<ast::Argument> StatementParser::arguments()
{
    std::vector<ast::Argument> list;
    if (!atArgument())
        return list;
    // A label behind a call without arguments is none.
    if (at(TokenKind::Word) && peek().symbol == Symbol::Colon)
        return list;
    do
        list.push_back(argument());
    while (accept(Symbol::Comma));
    return list;
}

ast::Argument StatementParser::argument()
{
    ast::Argument result;
    if (at(TokenKind::Variable) && peek().symbol == Symbol::Equal) {
        result.name = variable();
        advance();
    }
    if (!atArgument())
        fail();
    result.value = at(Keyword::Default) ? valueOrDefault() : constantOrWord();
    result.output = acceptWord("OUTPUT") || acceptWord("OUT");
    return result;
}

StatementPtr StatementParser::executeString()
{
    expect(Symbol::Open);
    auto node = std::make_unique<ast::ExecuteStringStatement>();
    node->text = value();
    while (accept(Symbol::Comma))
        node->arguments.push_back(argument());
    expect(Symbol::Close);
    if (accept(Keyword::As)) {
        const bool login = acceptWord("LOGIN");
        if (!login)
            expect(Keyword::User);
        expect(Symbol::Equal);
        (login ? node->asLogin : node->asUser) = string();
    }
    if (acceptWord("AT"))
        node->at = identifier();
    return node;
}

/// Behind EXECUTE.
StatementPtr StatementParser::executeAs()
{
    expect(Keyword::As);
    auto node = std::make_unique<ast::ExecuteAsStatement>();
    if (acceptWord("CALLER")) {
        node->caller = true;
        return node;
    }
    node->login = acceptWord("LOGIN");
    if (!node->login)
        expect(Keyword::User);
    expect(Symbol::Equal);
    node->name = string();
    if (at(Keyword::With) && isWord(peek(), "NO")) {
        advance();
        advance();
        expect(Keyword::Revert);
    }
    return node;
}

StatementPtr StatementParser::revert()
{
    expect(Keyword::Revert);
    return std::make_unique<ast::RevertStatement>();
}

// DECLARE ---------------------------------------------------------------------------------------

StatementPtr StatementParser::declareStatement()
{
    expect(Keyword::Declare);
    if (!at(TokenKind::Variable))
        return declareCursor();
    auto node = std::make_unique<ast::DeclareStatement>();
    do
        node->declarations.push_back(declaration());
    while (accept(Symbol::Comma));
    return node;
}

ast::Declaration StatementParser::declaration()
{
    ast::Declaration result;
    result.name = variable();
    accept(Keyword::As);
    if (accept(Keyword::Cursor)) {
        result.kind = ast::DeclarationKind::Cursor;
    } else if (accept(Keyword::Table)) {
        result.kind = ast::DeclarationKind::Table;
        result.table = std::make_unique<ast::TableElements>(tableBody());
    } else {
        result.type = dataType();
        if (accept(Symbol::Equal))
            result.initial = value();
    }
    return result;
}

// Cursors ---------------------------------------------------------------------------------------

StatementPtr StatementParser::declareCursor()
{
    auto node = std::make_unique<ast::DeclareCursorStatement>();
    node->name = identifier();
    while (!at(Keyword::Cursor)) {
        if (!atWord("INSENSITIVE") && !atWord("SCROLL"))
            fail();
        node->options.push_back(anyWord());
    }
    cursorBody(*node);
    return node;
}

/// CURSOR options FOR query [FOR ...]
void StatementParser::cursorBody(ast::DeclareCursorStatement& node)
{
    expect(Keyword::Cursor);
    while (at(TokenKind::Word) && at(Keyword::None))
        node.options.push_back(anyWord());
    for (const auto& option : node.options) {
        node.global = node.global || option == "GLOBAL";
        node.insensitive = node.insensitive || option == "INSENSITIVE" || option == "STATIC";
        node.scroll = node.scroll || option == "SCROLL" || option == "STATIC" || option == "KEYSET" ||
                      option == "DYNAMIC";
        node.readOnly = node.readOnly || option == "READ_ONLY" || option == "FAST_FORWARD";
    }
    expect(Keyword::For);
    std::vector<ast::CommonTable> common;
    if (at(Keyword::With))
        common = commonTables();
    node.query = queryPtr(QueryPlace::Statement);
    node.query->commonTables = std::move(common);
    if (!accept(Keyword::For))
        return;
    if (accept(Keyword::Read)) {
        expectWord("ONLY");
        node.readOnly = true;
        return;
    }
    expect(Keyword::Update);
    if (accept(Keyword::Of))
        node.updateColumns = identifiers();
}

StatementPtr StatementParser::cursorStatement(ast::CursorAction action)
{
    advance();
    auto node = std::make_unique<ast::CursorStatement>();
    node->action = action;
    node->global = acceptWord("GLOBAL");
    node->name = identifierOrVariable();
    return node;
}

StatementPtr StatementParser::fetchStatement()
{
    using enum ast::FetchDirection;
    expect(Keyword::Fetch);
    auto node = std::make_unique<ast::FetchStatement>();
    bool directed = true;
    if (acceptWord("NEXT")) {
        node->direction = Next;
    } else if (acceptWord("PRIOR")) {
        node->direction = Prior;
    } else if (acceptWord("FIRST")) {
        node->direction = First;
    } else if (acceptWord("LAST")) {
        node->direction = Last;
    } else if (atWord("ABSOLUTE") || atWord("RELATIVE")) {
        node->direction = atWord("ABSOLUTE") ? Absolute : Relative;
        advance();
        node->position = constantOrVariable();
    } else {
        directed = false;
    }
    if (directed)
        expect(Keyword::From);
    else
        accept(Keyword::From);
    node->global = acceptWord("GLOBAL");
    node->name = identifierOrVariable();
    if (accept(Keyword::Into)) {
        do
            node->into.push_back(variable());
        while (accept(Symbol::Comma));
    }
    return node;
}

} // namespace practice
