// Names as values: reading one from a text of its own, and writing one into a script.
#include "tsql/lexer.h"
#include "tsql/parser.h"

#include <algorithm>
#include <array>
#include <optional>

namespace practice {
namespace {

constexpr std::string_view blanks = " \t\r\n";

/// Takes the parts of a name off a text, one by one.
class NameReader
{
public:
    explicit NameReader(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool more() const { return more_; }

    /// @return the next part, empty when nothing stands in its place, or none when it can't be read
    std::optional<std::string> next()
    {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size()));
        const bool quoted = rest_.starts_with('[') || rest_.starts_with('"');
        std::optional<std::string> part = quoted ? quotedPart() : barePart();
        more_ = rest_.starts_with('.');
        if (!more_ && !rest_.empty())
            return std::nullopt;
        rest_.remove_prefix(more_ ? 1 : 0);
        return part;
    }

private:
    std::optional<std::string> quotedPart()
    {
        const char close = rest_.front() == '[' ? ']' : '"';
        std::string part;
        std::size_t at = 1;
        for (; at < rest_.size(); ++at) {
            if (rest_[at] == close && (at + 1 == rest_.size() || rest_[at + 1] != close))
                break;
            at += rest_[at] == close ? 1 : 0;
            part += rest_[at];
        }
        if (at >= rest_.size() || part.empty())
            return std::nullopt;
        rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks, at + 1), rest_.size()));
        return part;
    }

    std::string barePart()
    {
        std::string part(rest_.substr(0, rest_.find('.')));
        rest_.remove_prefix(part.size());
        part.erase(part.find_last_not_of(blanks) + 1);
        return part;
    }

    std::string_view rest_;
    bool more_ = true;
};

} // namespace

ast::ObjectName parseObjectName(std::string_view text)
{
    std::array<std::string, 4> parts; // the object first, the server last
    NameReader reader(text);
    for (std::size_t count = 0; reader.more(); ++count) {
        const std::optional<std::string> part = reader.next();
        if (!part || count == parts.size())
            return {};
        std::rotate(parts.rbegin(), parts.rbegin() + 1, parts.rend());
        parts.front() = *part;
    }
    if (parts.front().empty())
        return {};
    return {parts[3], parts[2], parts[1], parts[0]};
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
