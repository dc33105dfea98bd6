// LIKE, PATINDEX and what else matches patterns.
#include "engine/functions/sql_functions.h"

#include "types/text_encoding.h"

#include <string>
#include <vector>

#include <unicode/uchar.h>

namespace practice {

namespace {

/// Code points, folded when the comparison ignores case.
std::u32string folded(std::string_view text, bool caseSensitive)
{
    std::u32string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = nextCodePoint(text, at);
        result.push_back(caseSensitive ? c : static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), 0)));
    }
    return result;
}

struct Element
{
    enum class Kind : std::uint8_t
    {
        Character,
        AnyOne,
        AnyRun,
        Set
    } kind = Kind::Character;
    char32_t character = 0;
    bool negated = false;
    std::vector<std::pair<char32_t, char32_t>> ranges{};

    [[nodiscard]] bool accepts(char32_t c) const
    {
        if (kind == Kind::AnyOne)
            return true;
        if (kind == Kind::Character)
            return c == character;
        for (const auto& [low, high] : ranges) {
            if (c >= low && c <= high)
                return !negated;
        }
        return negated;
    }
};

using Pattern = std::vector<Element>;

/// Reads "[a-f]" behind its bracket. A set without an end matches nothing.
Element readSet(const std::u32string& text, std::size_t& at, char32_t escape)
{
    Element set{.kind = Element::Kind::Set};
    if (at < text.size() && text[at] == U'^') {
        set.negated = true;
        ++at;
    }
    const auto next = [&text, &at, escape] {
        if (escape != 0 && text[at] == escape && at + 1 < text.size())
            ++at;
        return text[at++];
    };
    for (bool first = true; at < text.size() && (first || text[at] != U']'); first = false) {
        if (first && text[at] == U']')
            break;
        const char32_t low = next();
        char32_t high = low;
        if (at + 1 < text.size() && text[at] == U'-' && text[at + 1] != U']') {
            ++at;
            high = next();
        }
        set.ranges.emplace_back(low, high);
    }
    if (at < text.size())
        ++at;
    else
        set = Element{.kind = Element::Kind::Set};
    return set;
}

Pattern readPattern(const std::u32string& text, char32_t escape)
{
    Pattern pattern;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = text[at++];
        if (escape != 0 && c == escape && at < text.size())
            pattern.push_back({.character = text[at++]});
        else if (c == U'%')
            pattern.push_back({.kind = Element::Kind::AnyRun});
        else if (c == U'_')
            pattern.push_back({.kind = Element::Kind::AnyOne});
        else if (c == U'[')
            pattern.push_back(readSet(text, at, escape));
        else
            pattern.push_back({.character = c});
    }
    return pattern;
}

/// The classical walk with one point of return, which is enough since the last % decides.
bool matches(const Pattern& pattern, std::u32string_view text)
{
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t afterRun = std::u32string_view::npos;
    std::size_t resume = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p].kind == Element::Kind::AnyRun) {
            afterRun = ++p;
            resume = t;
        } else if (p < pattern.size() && pattern[p].accepts(text[t])) {
            ++p;
            ++t;
        } else if (afterRun != std::u32string_view::npos) {
            p = afterRun;
            t = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p].kind == Element::Kind::AnyRun)
        ++p;
    return p == pattern.size();
}

std::u32string_view withoutTrailing(std::u32string_view text)
{
    return text.substr(0, text.find_last_not_of(U' ') + 1);
}

struct CompiledPattern
{
    std::string text;
    bool caseSensitive = false;
    Pattern pattern;
};

/// A pattern is nearly always the same for all rows: it is kept with the statement.
const Pattern& compiled(const Call& call, std::string_view text, bool caseSensitive, char32_t escape,
                        CompiledPattern& own)
{
    constexpr int patternArgument = 1;
    const auto* held = static_cast<CompiledPattern*>(sqlite3_get_auxdata(call.context(), patternArgument));
    if (held != nullptr && held->text == text && held->caseSensitive == caseSensitive)
        return held->pattern;
    own = {std::string(text), caseSensitive, readPattern(folded(text, caseSensitive), escape)};
    sqlite3_set_auxdata(call.context(), patternArgument, new CompiledPattern(own),
                        [](void* owned) { delete static_cast<CompiledPattern*>(owned); });
    return own.pattern;
}

// like(text, pattern, escape, case sensitive, unicode)
void like(const Call& call)
{
    const bool caseSensitive = call.integer(3) != 0;
    char32_t escape = 0;
    if (!call.text(2).empty())
        escape = folded(call.text(2), caseSensitive).front();
    const std::u32string text = folded(call.text(0), caseSensitive);
    CompiledPattern own;
    const Pattern& pattern = compiled(call, call.text(1), caseSensitive, escape, own);
    bool matched = matches(pattern, text);
    // Outside Unicode the blanks at the end of the text count only where the pattern wants them.
    if (!matched && call.integer(4) == 0 && !text.empty() && text.back() == U' ')
        matched = matches(pattern, withoutTrailing(text));
    call.result(matched ? 1 : 0);
}

std::int64_t unitsBefore(const std::u32string& text, std::size_t place)
{
    std::int64_t units = 0;
    for (std::size_t i = 0; i < place; ++i)
        units += text[i] > 0xffff ? 2 : 1;
    return units;
}

// patindex(pattern, text, case sensitive)
void patIndex(const Call& call)
{
    const bool caseSensitive = call.integer(2) != 0;
    const std::u32string text = folded(call.text(1), caseSensitive);
    Pattern pattern = readPattern(folded(call.text(0), caseSensitive), 0);
    const bool anchored = pattern.empty() || pattern.front().kind != Element::Kind::AnyRun;
    if (anchored)
        return call.result(matches(pattern, text) ? 1 : 0);
    pattern.erase(pattern.begin());
    for (std::size_t from = 0; from <= text.size(); ++from) {
        if (matches(pattern, std::u32string_view(text).substr(from)))
            return call.result(from == text.size() && !pattern.empty() ? std::int64_t{0}
                                                                       : unitsBefore(text, from) + 1);
    }
    call.result(0);
}

// charindex(part, text, start, case sensitive)
void charIndex(const Call& call)
{
    const bool caseSensitive = call.integer(3) != 0;
    const std::u32string part = folded(call.text(0), caseSensitive);
    const std::u32string text = folded(call.text(1), caseSensitive);
    const std::int64_t start = call.integer(2);
    const std::size_t from = start > 1 ? static_cast<std::size_t>(start - 1) : 0;
    const std::size_t found = part.empty() ? std::u32string::npos : text.find(part, from);
    call.result(found == std::u32string::npos ? std::int64_t{0} : unitsBefore(text, found) + 1);
}

// replace(text, part, substitute, case sensitive)
void replace(const Call& call)
{
    const bool caseSensitive = call.integer(3) != 0;
    const std::u32string original = folded(call.text(0), true);
    const std::u32string text = folded(call.text(0), caseSensitive);
    const std::u32string part = folded(call.text(1), caseSensitive);
    if (part.empty())
        return call.resultArgument(0);
    std::string result;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t found = std::min(text.find(part, at), text.size());
        for (; at < found; ++at)
            appendUtf8(result, original[at]);
        if (found < text.size()) {
            result += call.text(2);
            at = found + part.size();
        }
    }
    call.result(std::string_view(result));
}

} // namespace

void registerPatternFunctions(sqlite3* connection)
{
    defineFunction(connection, "t_like", 5, like);
    defineFunction(connection, "t_patindex", 3, patIndex);
    defineFunction(connection, "t_charindex", 4, charIndex);
    defineFunction(connection, "t_replace", 4, replace);
}

} // namespace practice
