// Tokens follow each other within the text, lie where they say, and the end comes.
#include "fuzz_check.h"

#include "tsql/lexer.h"
#include "tsql/syntax_error.h"

namespace {

void readAll(std::string_view text, bool quotedIdentifier)
{
    practice::Lexer lexer(text, quotedIdentifier);
    std::uint32_t behind = 0;
    std::uint32_t line = 1;
    for (;;) {
        const practice::Token token = lexer.next();
        if (token.kind == practice::TokenKind::End)
            return;
        fuzz::check(token.begin >= behind && token.end > token.begin && token.end <= text.size());
        fuzz::check(token.line >= line);
        fuzz::check(token.content().size() <= token.text.size());
        behind = token.end;
        line = token.line;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const bool quotedIdentifier : {true, false}) {
        try {
            readAll(text, quotedIdentifier);
        } catch (const practice::SyntaxError& error) {
            fuzz::check(error.number > 0 && error.line > 0 && !error.text.empty());
        }
    }
    return 0;
}
