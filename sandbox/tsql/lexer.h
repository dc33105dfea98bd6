// Cuts a batch into tokens, one at a time.
#pragma once

#include "tsql/keywords.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace practice {

enum class TokenKind : std::uint8_t
{
    End,
    Word,       ///< a name without quotes, or a keyword; also "$identity"
    QuotedName, ///< [x] or "x"
    String,
    NationalString,
    Integer,
    Decimal,
    Float,
    Money,
    Binary,
    Variable, ///< @x, @@x
    Symbol,
};

enum class Symbol : std::uint8_t
{
    None, ///< the token is no symbol, or a character that means nothing
    Open,
    Close,
    Comma,
    Dot,
    Semicolon,
    Colon,
    DoubleColon,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    Plus,
    Minus,
    Star,
    Slash,
    Percent,
    Ampersand,
    Bar,
    Caret,
    Tilde,
    PlusEqual,
    MinusEqual,
    StarEqual,
    SlashEqual,
    PercentEqual,
    AmpersandEqual,
    BarEqual,
    CaretEqual,
    EqualStar,
    BraceOpen,
    BraceClose,
};

struct Token
{
    TokenKind kind = TokenKind::End;
    Symbol symbol = Symbol::None;
    Keyword keyword = Keyword::None; ///< of a Word
    char quote = 0;                  ///< the closing quote of names and strings
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::uint32_t line = 1;
    /// As written, but without quotes (doubled ones still doubled), currency sign and 0x.
    std::string_view text;

    /// The text with doubled quotes halved and line continuations taken out.
    [[nodiscard]] std::string content() const;
};

/// The first `characters` characters of UTF-8 text.
[[nodiscard]] std::string_view leadingCharacters(std::string_view text, std::size_t characters);

class Lexer
{
public:
    Lexer(std::string_view text, bool quotedIdentifier) : text_(text), quotedIdentifier_(quotedIdentifier) {}

    /// The next token; End again and again at the end.
    /// @throws SyntaxError 103, 105, 113, 1038
    [[nodiscard]] Token next();

    /// Goes back to right behind a token that holds no line break, under another rule for quotes.
    void resumeAfter(const Token& token, bool quotedIdentifier);

private:
    void skipBlanks();
    void skipComment();
    [[nodiscard]] char at(std::size_t offset) const
    {
        return position_ + offset < text_.size() ? text_[position_ + offset] : '\0';
    }
    [[nodiscard]] Token quoted(TokenKind kind, std::size_t prefix, char close);
    [[nodiscard]] Token number();
    [[nodiscard]] Token money(std::size_t signLength);
    [[nodiscard]] Token binary();
    [[nodiscard]] Token word(TokenKind kind, std::size_t prefix);
    [[nodiscard]] Token symbol();
    [[nodiscard]] Token take(TokenKind kind, std::size_t length);
    [[nodiscard]] std::size_t nameLength(std::size_t from) const;
    [[nodiscard]] std::size_t currencyLength() const;
    void checkNameLength(const Token& token) const;

    std::string_view text_;
    std::size_t position_ = 0;
    std::uint32_t line_ = 1;
    bool quotedIdentifier_;
};

} // namespace practice
