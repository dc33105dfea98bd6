#include "engine/binder/parsed_texts.h"

#include "engine/messages/errors.h"
#include "tsql/lexer.h"
#include "tsql/parser.h"

namespace practice {

namespace {

constexpr int strayQuote = 105;

Message messageOf(const SyntaxError& error)
{
    return {.number = error.number,
            .severity = 15,
            .state = error.state,
            .text = error.text,
            .procedure = {},
            .line = error.line};
}

template <typename Parse>
auto parsed(Parse parse)
{
    try {
        return parse();
    } catch (const SyntaxError& error) {
        throw SqlError{messageOf(error)};
    }
}

/// A text that breaks off within quotes has two faults: the quote, and that nothing can stand there. They
/// come in the order in which reading meets them.
std::vector<Message> furtherFaults(const std::string& text, bool quotedIdentifier, const Message& first)
{
    if (first.number == strayQuote) {
        const std::size_t from = first.text.find('\'');
        SyntaxError near;
        near.text = "Incorrect syntax near " + first.text.substr(from);
        near.line = first.line;
        return {messageOf(near)};
    }
    try {
        Lexer lexer(text, quotedIdentifier);
        while (lexer.next().kind != TokenKind::End)
            continue;
    } catch (const SyntaxError& error) {
        if (error.number == strayQuote)
            return {messageOf(error)};
    }
    return {};
}

} // namespace

ast::ExpressionPtr parsedExpression(const std::string& text)
{
    return parsed([&text] { return parseExpression(text); });
}

ast::ExpressionPtr parsedCondition(const std::string& text)
{
    return parsed([&text] { return parseCondition(text); });
}

ast::Batch parsedBatch(const std::string& text, bool quotedIdentifier)
{
    try {
        return parsed(
            [&text, quotedIdentifier] { return parseBatch(text, {.quotedIdentifier = quotedIdentifier}); });
    } catch (SqlError& error) {
        error.more = furtherFaults(text, quotedIdentifier, error.message);
        throw;
    }
}

} // namespace practice
