// What every part of the parser stands on: the tokens with look-ahead, names, errors, bounds.
#pragma once

#include "tsql/ast_expression.h"
#include "tsql/lexer.h"
#include "tsql/syntax_error.h"

#include <deque>
#include <initializer_list>
#include <string>
#include <string_view>

namespace practice {

class TokenStream
{
public:
    TokenStream(std::string_view text, bool quotedIdentifier);

    [[nodiscard]] bool atEnd() const { return current_.kind == TokenKind::End; }
    /// Error 102 or 156 at the current token: the word decides which.
    [[noreturn]] void fail() const;

protected:
    /// Guards one level of recursion.
    /// @throws SyntaxError 191 when there are too many
    class Nesting
    {
    public:
        explicit Nesting(TokenStream& stream) : stream_(stream)
        {
            if (++stream_.depth_ > maxNesting)
                stream_.failTooDeep();
        }
        ~Nesting() { --stream_.depth_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        TokenStream& stream_;
    };

    /// Recursion that a stack of 1 MB holds, sanitizers and all.
    static constexpr int maxNesting = 160;
    /// Height of an expression; also bounds chains such as a + b + c ..., which lean to the left.
    static constexpr int maxTreeHeight = 1000;

    // Looking
    [[nodiscard]] const Token& current() const { return current_; }
    [[nodiscard]] const Token& peek(std::size_t distance = 1);
    [[nodiscard]] bool at(Symbol symbol) const { return current_.symbol == symbol; }
    [[nodiscard]] bool at(Keyword keyword) const { return current_.keyword == keyword; }
    [[nodiscard]] bool at(TokenKind kind) const { return current_.kind == kind; }
    /// @param word upper case; for words that are not reserved
    [[nodiscard]] bool atWord(std::string_view word) const { return isWord(current_, word); }
    [[nodiscard]] bool atIdentifier() const { return isIdentifier(current_); }
    [[nodiscard]] bool atString() const { return at(TokenKind::String) || at(TokenKind::NationalString); }
    [[nodiscard]] static bool isWord(const Token& token, std::string_view word);
    [[nodiscard]] static bool isIdentifier(const Token& token);

    // Moving
    Token advance();
    bool accept(Symbol symbol);
    bool accept(Keyword keyword);
    bool acceptWord(std::string_view word);
    void expect(Symbol symbol);
    void expect(Keyword keyword);
    void expectWord(std::string_view word);
    /// All of them in a row, or none.
    bool acceptWords(std::initializer_list<std::string_view> words);
    void setQuotedIdentifier(bool on);

    // Names
    [[nodiscard]] std::string identifier();
    [[nodiscard]] std::string identifierOrString();
    [[nodiscard]] std::string string();
    [[nodiscard]] std::string variable();
    [[nodiscard]] std::string identifierOrVariable();
    /// Any word, keywords included, in upper case.
    [[nodiscard]] std::string anyWord();
    [[nodiscard]] int integer();
    [[nodiscard]] ast::ObjectName objectName();
    /// Up to four parts, the last one the object's.
    /// @throws SyntaxError 117 for more
    [[nodiscard]] ast::ObjectName joinParts(std::vector<std::string> parts) const;
    /// (a, b, c)
    [[nodiscard]] std::vector<std::string> identifierList();
    /// The list without its parentheses.
    [[nodiscard]] std::vector<std::string> identifiers();
    [[nodiscard]] bool onOrOff();
    void skipParenthesised();

    // Places
    [[nodiscard]] ast::SourceRange here() const { return {current_.begin, current_.end, current_.line}; }
    /// From the start of `start` to the end of the last token taken.
    [[nodiscard]] ast::SourceRange since(const ast::SourceRange& start) const
    {
        return {start.begin, previous_.end, start.line};
    }
    [[nodiscard]] std::uint32_t previousEnd() const { return previous_.end; }

    // Errors
    [[noreturn]] void failAt(const Token& token) const;
    [[noreturn]] void fail(int number, const std::string& text, int state = 1) const;
    [[noreturn]] void failTooDeep() const;
    [[noreturn]] void failNoCondition() const;

private:
    [[nodiscard]] const Token& blamed() const { return atEnd() ? previous_ : current_; }

    Lexer lexer_;
    Token current_;
    Token previous_;
    std::deque<Token> ahead_;
    int depth_ = 0;
};

/// Upper case of the letters A to Z; the others stay.
[[nodiscard]] std::string upperCase(std::string_view text);

} // namespace practice
