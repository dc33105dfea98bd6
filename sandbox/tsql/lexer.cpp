#include "tsql/lexer.h"

#include "tsql/syntax_error.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>

namespace practice {
namespace {

constexpr std::size_t longestName = 128;
constexpr std::size_t longestTemporaryName = 116;
constexpr std::size_t longestQuotedText = 1000; ///< of a string within a message

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// The character at an offset; -1 for bytes that are no UTF-8. `next` becomes the offset behind it.
UChar32 characterAt(std::string_view text, std::size_t offset, std::size_t& next)
{
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    auto position = static_cast<std::int64_t>(offset);
    UChar32 character = 0;
    U8_NEXT(bytes, position, static_cast<std::int64_t>(text.size()), character);
    next = static_cast<std::size_t>(position);
    return character;
}

bool startsName(UChar32 c)
{
    return c == '_' || c == '#' || (c >= 0 && u_isalpha(c));
}

bool continuesName(UChar32 c)
{
    return c == '_' || c == '#' || c == '@' || c == '$' ||
           (c >= 0 && (u_isalnum(c) || u_charType(c) == U_NON_SPACING_MARK));
}

/// UTF-16 units, which is how the server counts.
std::size_t unitsOf(std::string_view text)
{
    std::size_t units = 0;
    for (const char c : text) {
        const auto byte = static_cast<std::uint8_t>(c);
        units += (byte & 0xC0) == 0x80 ? 0 : byte >= 0xF0 ? 2 : 1;
    }
    return units;
}

struct SymbolText
{
    std::string_view text;
    Symbol symbol;
};

/// Longer ones first.
constexpr std::array symbols = std::to_array<SymbolText>({
    {"<=", Symbol::LessEqual},   {"<>", Symbol::NotEqual},     {">=", Symbol::GreaterEqual},
    {"!=", Symbol::NotEqual},    {"!<", Symbol::GreaterEqual}, {"!>", Symbol::LessEqual},
    {"+=", Symbol::PlusEqual},   {"-=", Symbol::MinusEqual},   {"*=", Symbol::StarEqual},
    {"/=", Symbol::SlashEqual},  {"%=", Symbol::PercentEqual}, {"&=", Symbol::AmpersandEqual},
    {"|=", Symbol::BarEqual},    {"^=", Symbol::CaretEqual},   {"=*", Symbol::EqualStar},
    {"::", Symbol::DoubleColon}, {"(", Symbol::Open},          {")", Symbol::Close},
    {",", Symbol::Comma},        {".", Symbol::Dot},           {";", Symbol::Semicolon},
    {":", Symbol::Colon},        {"=", Symbol::Equal},         {"<", Symbol::Less},
    {">", Symbol::Greater},      {"+", Symbol::Plus},          {"-", Symbol::Minus},
    {"*", Symbol::Star},         {"/", Symbol::Slash},         {"%", Symbol::Percent},
    {"&", Symbol::Ampersand},    {"|", Symbol::Bar},           {"^", Symbol::Caret},
    {"~", Symbol::Tilde},        {"{", Symbol::BraceOpen},     {"}", Symbol::BraceClose},
});

} // namespace

std::string_view leadingCharacters(std::string_view text, std::size_t characters)
{
    std::size_t position = 0;
    for (; position < text.size(); ++position) {
        if ((static_cast<std::uint8_t>(text[position]) & 0xC0) != 0x80 && characters-- == 0)
            break;
    }
    return text.substr(0, position);
}

std::string Token::content() const
{
    std::string result;
    result.reserve(text.size());
    const bool isString = kind == TokenKind::String || kind == TokenKind::NationalString;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote && c == quote) {
            ++i; // its twin
        } else if (isString && c == '\\') {
            const std::string_view rest = text.substr(i + 1);
            if (const std::size_t lineBreak = rest.starts_with("\r\n") ? 2 : rest.starts_with('\n') ? 1 : 0) {
                i += lineBreak;
                continue;
            }
        }
        result += c;
    }
    return result;
}

void Lexer::resumeAfter(const Token& token, bool quotedIdentifier)
{
    position_ = token.end;
    line_ = token.line;
    quotedIdentifier_ = quotedIdentifier;
}

void Lexer::skipBlanks()
{
    while (position_ < text_.size()) {
        const char c = text_[position_];
        if (static_cast<std::uint8_t>(c) <= ' ') {
            line_ += c == '\n';
            ++position_;
        } else if (c == '-' && at(1) == '-') {
            position_ = std::min(text_.find('\n', position_), text_.size());
        } else if (c == '/' && at(1) == '*') {
            skipComment();
        } else if (static_cast<std::uint8_t>(c) >= 0x80) {
            std::size_t next = 0;
            const UChar32 character = characterAt(text_, position_, next);
            if (character != 0xFEFF && (character < 0 || !u_isUWhiteSpace(character)))
                return;
            position_ = next;
        } else {
            return;
        }
    }
}

void Lexer::skipComment()
{
    const std::uint32_t line = line_;
    std::size_t depth = 0;
    do {
        if (position_ >= text_.size())
            throw SyntaxError{113, "Missing end comment mark '*/'.", static_cast<int>(line), 1};
        const char c = text_[position_];
        const bool opens = c == '/' && at(1) == '*';
        const bool closes = c == '*' && at(1) == '/';
        depth += opens;
        depth -= closes;
        line_ += c == '\n';
        position_ += opens || closes ? 2 : 1;
    } while (depth > 0);
}

Token Lexer::take(TokenKind kind, std::size_t length)
{
    Token token;
    token.kind = kind;
    token.begin = static_cast<std::uint32_t>(position_);
    token.end = static_cast<std::uint32_t>(position_ + length);
    token.line = line_;
    token.text = text_.substr(position_, length);
    position_ += length;
    return token;
}

Token Lexer::quoted(TokenKind kind, std::size_t prefix, char close)
{
    std::size_t end = position_ + prefix;
    while (true) {
        end = text_.find(close, end);
        if (end == std::string_view::npos) {
            const std::string_view rest =
                leadingCharacters(text_.substr(position_ + prefix), longestQuotedText);
            throw SyntaxError{
                105, "Unclosed quotation mark after the character string '" + std::string(rest) + "'.",
                static_cast<int>(line_), 1};
        }
        if (end + 1 >= text_.size() || text_[end + 1] != close)
            break;
        end += 2;
    }
    Token token = take(kind, end + 1 - position_);
    token.text = token.text.substr(prefix, token.text.size() - prefix - 1);
    token.quote = close;
    line_ += static_cast<std::uint32_t>(std::ranges::count(token.text, '\n'));
    if (kind == TokenKind::QuotedName)
        checkNameLength(token);
    return token;
}

void Lexer::checkNameLength(const Token& token) const
{
    const auto line = static_cast<int>(token.line);
    if (token.text.empty()) {
        throw SyntaxError{
            1038,
            "An object or column name is missing or empty. For SELECT INTO statements, verify each "
            "column has a name. For other statements, look for empty alias names. Aliases defined as "
            "\"\" or [] are not allowed. Change the alias to a valid name.",
            line, 4};
    }
    const bool temporary = token.text.front() == '#';
    const std::size_t limit = temporary ? longestTemporaryName : longestName;
    if (token.text.size() <= limit)
        return;
    const std::string name = token.content();
    if (unitsOf(name) <= limit)
        return;
    throw SyntaxError{103,
                      "The identifier that starts with '" + std::string(leadingCharacters(name, limit)) +
                          "' is too long. Maximum length is " + std::to_string(limit) + ".",
                      line, 4};
}

Token Lexer::number()
{
    std::size_t length = 0;
    const auto skipDigits = [&] {
        while (isDigit(at(length)))
            ++length;
    };
    auto kind = TokenKind::Integer;
    skipDigits();
    if (at(length) == '.') {
        kind = TokenKind::Decimal;
        ++length;
        skipDigits();
    }
    if (at(length) == 'e' || at(length) == 'E') {
        kind = TokenKind::Float;
        ++length;
        if ((at(length) == '+' || at(length) == '-') && isDigit(at(length + 1)))
            ++length;
        skipDigits();
    }
    return take(kind, length);
}

Token Lexer::money(std::size_t signLength)
{
    std::size_t length = signLength;
    while (isDigit(at(length)) || at(length) == '.')
        ++length;
    Token token = take(TokenKind::Money, length);
    token.text.remove_prefix(signLength);
    return token;
}

Token Lexer::binary()
{
    std::size_t length = 2;
    while (isHexDigit(at(length)))
        ++length;
    Token token = take(TokenKind::Binary, length);
    token.text.remove_prefix(2);
    return token;
}

std::size_t Lexer::nameLength(std::size_t from) const
{
    std::size_t position = position_ + from;
    while (position < text_.size()) {
        std::size_t next = position;
        if (!continuesName(characterAt(text_, position, next)))
            break;
        position = next;
    }
    return position - position_;
}

Token Lexer::word(TokenKind kind, std::size_t prefix)
{
    Token token = take(kind, nameLength(prefix));
    token.keyword = kind == TokenKind::Word ? keywordOf(token.text) : Keyword::None;
    checkNameLength(token);
    return token;
}

std::size_t Lexer::currencyLength() const
{
    std::size_t next = 0;
    const UChar32 character = characterAt(text_, position_, next);
    return character > 0 && u_charType(character) == U_CURRENCY_SYMBOL ? next - position_ : 0;
}

Token Lexer::symbol()
{
    const std::string_view rest = text_.substr(position_, 2);
    const auto found =
        std::ranges::find_if(symbols, [&](const SymbolText& s) { return rest.starts_with(s.text); });
    if (found == symbols.end()) {
        std::size_t next = 0;
        characterAt(text_, position_, next);
        return take(TokenKind::Symbol, next - position_);
    }
    Token token = take(TokenKind::Symbol, found->text.size());
    token.symbol = found->symbol;
    return token;
}

Token Lexer::next()
{
    skipBlanks();
    if (position_ >= text_.size())
        return take(TokenKind::End, 0);
    const char c = text_[position_];
    if (c == '0' && (at(1) == 'x' || at(1) == 'X'))
        return binary();
    if (isDigit(c) || (c == '.' && isDigit(at(1))))
        return number();
    if (c == '\'')
        return quoted(TokenKind::String, 1, '\'');
    if ((c == 'N' || c == 'n') && at(1) == '\'')
        return quoted(TokenKind::NationalString, 2, '\'');
    if (c == '[')
        return quoted(TokenKind::QuotedName, 1, ']');
    if (c == '"')
        return quoted(quotedIdentifier_ ? TokenKind::QuotedName : TokenKind::String, 1, '"');
    if (c == '@')
        return word(TokenKind::Variable, 1);
    std::size_t next = 0;
    if (c == '$' && u_isalpha(characterAt(text_, std::min(position_ + 1, text_.size() - 1), next)))
        return word(TokenKind::Word, 1);
    if (startsName(characterAt(text_, position_, next)))
        return word(TokenKind::Word, 0);
    if (const std::size_t currency = currencyLength())
        return money(currency);
    return symbol();
}

} // namespace practice
