#include "tsql/token_stream.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace practice {
namespace {

constexpr std::size_t longestBlamedText = 1000;

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

} // namespace

std::string upperCase(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(), upper);
    return result;
}

TokenStream::TokenStream(std::string_view text, bool quotedIdentifier)
    : lexer_(text, quotedIdentifier), current_(lexer_.next())
{}

const Token& TokenStream::peek(std::size_t distance)
{
    while (ahead_.size() < distance)
        ahead_.push_back(lexer_.next());
    return ahead_[distance - 1];
}

bool TokenStream::isWord(const Token& token, std::string_view word)
{
    return token.kind == TokenKind::Word && token.text.size() == word.size() &&
           std::ranges::equal(token.text, word, {}, upper);
}

bool TokenStream::isIdentifier(const Token& token)
{
    if (token.kind == TokenKind::QuotedName)
        return true;
    return token.kind == TokenKind::Word && token.keyword == Keyword::None && token.text.front() != '$';
}

Token TokenStream::advance()
{
    previous_ = current_;
    if (ahead_.empty()) {
        current_ = lexer_.next();
    } else {
        current_ = ahead_.front();
        ahead_.pop_front();
    }
    return previous_;
}

bool TokenStream::accept(Symbol symbol)
{
    if (!at(symbol))
        return false;
    advance();
    return true;
}

bool TokenStream::accept(Keyword keyword)
{
    if (!at(keyword))
        return false;
    advance();
    return true;
}

bool TokenStream::acceptWord(std::string_view word)
{
    if (!atWord(word))
        return false;
    advance();
    return true;
}

void TokenStream::expect(Symbol symbol)
{
    if (!accept(symbol))
        fail();
}

void TokenStream::expect(Keyword keyword)
{
    if (!accept(keyword))
        fail();
}

void TokenStream::expectWord(std::string_view word)
{
    if (!acceptWord(word))
        fail();
}

bool TokenStream::acceptWords(std::initializer_list<std::string_view> words)
{
    std::size_t distance = 0;
    for (const std::string_view word : words) {
        if (!isWord(distance == 0 ? current_ : peek(distance), word))
            return false;
        ++distance;
    }
    for (; distance > 0; --distance)
        advance();
    return true;
}

void TokenStream::setQuotedIdentifier(bool on)
{
    // What was read ahead was read under the old rule.
    ahead_.clear();
    lexer_.resumeAfter(previous_, on);
    current_ = lexer_.next();
}

std::string TokenStream::identifier()
{
    if (!atIdentifier())
        fail();
    return advance().content();
}

std::string TokenStream::identifierOrString()
{
    return atString() ? string() : identifier();
}

std::string TokenStream::string()
{
    if (!atString())
        fail();
    return advance().content();
}

std::string TokenStream::variable()
{
    if (!at(TokenKind::Variable))
        fail();
    return advance().content();
}

std::string TokenStream::identifierOrVariable()
{
    return at(TokenKind::Variable) ? variable() : identifier();
}

std::string TokenStream::anyWord()
{
    if (!at(TokenKind::Word))
        fail();
    return upperCase(advance().text);
}

int TokenStream::integer()
{
    const bool negative = at(Symbol::Minus) && peek().kind == TokenKind::Integer && accept(Symbol::Minus);
    int value = 0;
    if (!at(TokenKind::Integer))
        fail();
    const std::string_view digits = current_.text;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc())
        fail();
    advance();
    return negative ? -value : value;
}

ast::ObjectName TokenStream::objectName()
{
    std::vector<std::string> parts;
    do // only parts before the last may be left out
        parts.push_back(at(Symbol::Dot) ? std::string() : identifier());
    while (accept(Symbol::Dot));
    return joinParts(std::move(parts));
}

ast::ObjectName TokenStream::joinParts(std::vector<std::string> parts) const
{
    if (parts.size() > 4) {
        std::string all = parts.front();
        for (std::size_t i = 1; i < parts.size(); ++i)
            all += '.' + parts[i];
        fail(117, "The object name '" + all +
                      "' contains more than the maximum number of prefixes. The maximum is 3.");
    }
    ast::ObjectName name;
    const std::array fields{&name.object, &name.schema, &name.database, &name.server};
    for (std::size_t i = 0; i < parts.size(); ++i)
        *fields[i] = std::move(parts[parts.size() - 1 - i]);
    return name;
}

std::vector<std::string> TokenStream::identifiers()
{
    std::vector<std::string> names;
    do
        names.push_back(identifier());
    while (accept(Symbol::Comma));
    return names;
}

std::vector<std::string> TokenStream::identifierList()
{
    expect(Symbol::Open);
    std::vector<std::string> names = identifiers();
    expect(Symbol::Close);
    return names;
}

bool TokenStream::onOrOff()
{
    if (accept(Keyword::On))
        return true;
    expect(Keyword::Off);
    return false;
}

void TokenStream::skipParenthesised()
{
    expect(Symbol::Open);
    for (int depth = 1; depth > 0; advance()) {
        if (atEnd())
            fail();
        depth += at(Symbol::Open);
        depth -= at(Symbol::Close);
    }
}

void TokenStream::failAt(const Token& token) const
{
    const std::string text(leadingCharacters(token.content(), longestBlamedText));
    if (token.keyword != Keyword::None && !atEnd())
        throw SyntaxError{156, "Incorrect syntax near the keyword '" + text + "'.",
                          static_cast<int>(token.line), 1};
    throw SyntaxError{102, "Incorrect syntax near '" + text + "'.", static_cast<int>(token.line), 1};
}

void TokenStream::fail() const
{
    failAt(blamed());
}

void TokenStream::fail(int number, const std::string& text, int state) const
{
    throw SyntaxError{number, text, static_cast<int>(blamed().line), state};
}

void TokenStream::failTooDeep() const
{
    fail(191, "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into "
              "smaller queries.");
}

void TokenStream::failNoCondition() const
{
    fail(4145,
         "An expression of non-boolean type specified in a context where a condition is expected, near '" +
             std::string(leadingCharacters(blamed().content(), longestBlamedText)) + "'.");
}

} // namespace practice
