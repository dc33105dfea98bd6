#include "engine/binder/parsed_texts.h"

#include "engine/messages/errors.h"
#include "tsql/parser.h"

namespace practice {

namespace {

template <typename Parse>
auto parsed(Parse parse)
{
    try {
        return parse();
    } catch (const SyntaxError& error) {
        throw SqlError{{.number = error.number,
                        .severity = 15,
                        .state = error.state,
                        .text = error.text,
                        .procedure = {},
                        .line = error.line}};
    }
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
    return parsed(
        [&text, quotedIdentifier] { return parseBatch(text, {.quotedIdentifier = quotedIdentifier}); });
}

} // namespace practice
