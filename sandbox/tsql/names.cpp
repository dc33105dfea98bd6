// Names as values: reading one from a text of its own, and writing one into a script.
#include "tsql/parser.h"
#include "tsql/token_stream.h"

#include <array>

namespace practice {
namespace {

class NameReader : public TokenStream
{
public:
    explicit NameReader(std::string_view text) : TokenStream(text, true) {}
    [[nodiscard]] ast::ObjectName read() { return objectName(); }
};

} // namespace

ast::ObjectName parseObjectName(std::string_view text)
{
    try {
        NameReader reader(text);
        ast::ObjectName name = reader.read();
        return reader.atEnd() ? name : ast::ObjectName{};
    } catch (const SyntaxError&) {
        return {};
    }
}

std::string renderName(std::string_view name)
{
    try {
        Lexer lexer(name, true);
        const Token token = lexer.next();
        const bool bare = token.kind == TokenKind::Word && token.keyword == Keyword::None &&
                          token.begin == 0 && token.end == name.size() && name.front() != '$';
        if (bare)
            return std::string(name);
    } catch (const SyntaxError&) {
        // What cannot be read bare is quoted like anything else.
    }
    std::string quoted = "[";
    for (const char c : name) {
        quoted += c;
        if (c == ']')
            quoted += c;
    }
    return quoted + "]";
}

std::string renderName(const ast::ObjectName& name)
{
    std::string result;
    for (const auto* part : std::array{&name.server, &name.database, &name.schema, &name.object}) {
        if (!result.empty())
            result += '.';
        if (!part->empty())
            result += renderName(*part);
    }
    return result;
}

bool isReservedWord(std::string_view word)
{
    return keywordOf(word) != Keyword::None;
}

} // namespace practice
