// Control of flow, transactions, messages.
#include "tsql/statement_parser.h"

namespace practice {

using ast::StatementPtr;

StatementPtr StatementParser::beginStatement()
{
    const Token& next = peek();
    if (next.keyword == Keyword::Tran || next.keyword == Keyword::Transaction ||
        next.keyword == Keyword::Distributed)
        return transaction(ast::TransactionAction::Begin);
    expect(Keyword::Begin);
    if (acceptWord("TRY"))
        return tryCatch();
    auto node = std::make_unique<ast::BlockStatement>();
    node->statements = statementList();
    expect(Keyword::End);
    return node;
}

/// Behind BEGIN TRY.
StatementPtr StatementParser::tryCatch()
{
    auto node = std::make_unique<ast::TryCatchStatement>();
    const auto part = [&](ast::StatementList& list) {
        skipSemicolons();
        if (!at(Keyword::End))
            list = statementList();
        expect(Keyword::End);
    };
    part(node->tryPart);
    expectWord("TRY");
    skipSemicolons();
    expect(Keyword::Begin);
    expectWord("CATCH");
    part(node->catchPart);
    expectWord("CATCH");
    return node;
}

StatementPtr StatementParser::ifStatement()
{
    expect(Keyword::If);
    auto node = std::make_unique<ast::IfStatement>();
    node->condition = condition();
    node->then = statement();
    if (at(Symbol::Semicolon) && peek().keyword == Keyword::Else)
        advance();
    if (accept(Keyword::Else))
        node->otherwise = statement();
    return node;
}

StatementPtr StatementParser::whileStatement()
{
    expect(Keyword::While);
    auto node = std::make_unique<ast::WhileStatement>();
    node->condition = condition();
    ++loops_;
    node->body = statement();
    --loops_;
    return node;
}

StatementPtr StatementParser::breakStatement()
{
    if (loops_ == 0)
        fail(135, "Cannot use a BREAK statement outside the scope of a WHILE statement.");
    advance();
    return std::make_unique<ast::BreakStatement>();
}

StatementPtr StatementParser::continueStatement()
{
    if (loops_ == 0)
        fail(136, "Cannot use a CONTINUE statement outside the scope of a WHILE statement.");
    advance();
    return std::make_unique<ast::ContinueStatement>();
}

StatementPtr StatementParser::transaction(ast::TransactionAction action)
{
    advance();
    auto node = std::make_unique<ast::TransactionStatement>();
    node->action = action;
    accept(Keyword::Distributed);
    const bool named = accept(Keyword::Tran) || accept(Keyword::Transaction);
    const bool needsWord = action == ast::TransactionAction::Begin || action == ast::TransactionAction::Save;
    if (!named && needsWord)
        fail();
    if (!named) {
        acceptWord("WORK");
        return node;
    }
    const bool label = at(TokenKind::Word) && peek().symbol == Symbol::Colon;
    if (action == ast::TransactionAction::Save || at(TokenKind::Variable) || (atIdentifier() && !label))
        node->name = identifierOrVariable();
    if (at(Keyword::With) && isWord(peek(), "MARK")) {
        advance();
        advance();
        if (atString())
            node->mark = string();
    }
    return node;
}

StatementPtr StatementParser::returnStatement()
{
    expect(Keyword::Return);
    auto node = std::make_unique<ast::ReturnStatement>();
    const bool label = at(TokenKind::Word) && peek().symbol == Symbol::Colon;
    if (atValue() && !label)
        node->value = value();
    return node;
}

StatementPtr StatementParser::gotoStatement()
{
    expect(Keyword::Goto);
    auto node = std::make_unique<ast::GotoStatement>();
    const std::size_t line = here().line;
    node->label = identifier();
    jumps_.push_back({node->label, line});
    return node;
}

StatementPtr StatementParser::label()
{
    auto node = std::make_unique<ast::LabelStatement>();
    node->label = identifier();
    if (!labels_.insert(upperCase(node->label)).second)
        fail(132,
             "The label '" + node->label +
                 "' has already been declared. Label names must be unique within a query batch or stored "
                 "procedure.");
    expect(Symbol::Colon);
    return node;
}

void StatementParser::requireLabels() const
{
    for (const Jump& jump : jumps_) {
        if (!labels_.contains(upperCase(jump.label)))
            throw SyntaxError{133,
                              "A GOTO statement references the label '" + jump.label +
                                  "' but the label has not been declared.",
                              static_cast<int>(jump.line), 1};
    }
}

StatementPtr StatementParser::waitFor()
{
    expect(Keyword::WaitFor);
    auto node = std::make_unique<ast::WaitForStatement>();
    node->delay = acceptWord("DELAY");
    if (!node->delay)
        expectWord("TIME");
    if (!atString() && !at(TokenKind::Variable))
        fail();
    node->time = constantOrVariable();
    return node;
}

StatementPtr StatementParser::print()
{
    expect(Keyword::Print);
    auto node = std::make_unique<ast::PrintStatement>();
    node->value = value();
    return node;
}

StatementPtr StatementParser::raiserror()
{
    expect(Keyword::Raiserror);
    auto node = std::make_unique<ast::RaiserrorStatement>();
    if (!at(Symbol::Open)) { // RAISERROR 50001 'text'
        node->message = constantOrVariable();
        node->arguments.push_back(constantOrVariable());
        return node;
    }
    advance();
    node->message = constantOrVariable();
    expect(Symbol::Comma);
    node->severity = constantOrVariable();
    expect(Symbol::Comma);
    node->state = constantOrVariable();
    while (accept(Symbol::Comma))
        node->arguments.push_back(constantOrVariable());
    expect(Symbol::Close);
    raiserrorOptions(*node);
    return node;
}

void StatementParser::raiserrorOptions(ast::RaiserrorStatement& node)
{
    if (!accept(Keyword::With))
        return;
    do {
        if (acceptWord("LOG"))
            node.log = true;
        else if (acceptWord("NOWAIT"))
            node.noWait = true;
        else if (acceptWord("SETERROR"))
            node.setError = true;
        else
            fail();
    } while (accept(Symbol::Comma));
}

StatementPtr StatementParser::throwStatement()
{
    expectWord("THROW");
    auto node = std::make_unique<ast::ThrowStatement>();
    if (!at(TokenKind::Integer) && !at(TokenKind::Variable))
        return node;
    node->number = constantOrVariable();
    expect(Symbol::Comma);
    node->message = constantOrVariable();
    expect(Symbol::Comma);
    node->state = constantOrVariable();
    return node;
}

} // namespace practice
