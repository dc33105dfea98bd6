// Functions of text.
#include "engine/functions/sql_functions.h"

#include "engine/store/store.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <optional>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace practice {

namespace {

/// Text addressed by UTF-16 units, as SQL Server counts. ASCII, nearly all there is, is used in place.
class Units
{
public:
    explicit Units(std::string_view text)
        : ascii_(text), wide_(isAscii(text) ? std::u16string() : toUtf16(text))
    {}

    [[nodiscard]] std::size_t size() const { return isWide() ? wide_.size() : ascii_.size(); }
    [[nodiscard]] std::string part(std::size_t from, std::size_t count) const
    {
        return isWide() ? toUtf8(wide_.substr(from, count)) : std::string(ascii_.substr(from, count));
    }

private:
    [[nodiscard]] bool isWide() const { return !wide_.empty(); }

    std::string_view ascii_;
    std::u16string wide_;
};

std::string_view withoutTrailing(std::string_view text)
{
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

// len(text)
void len(const Call& call)
{
    const std::string_view text = withoutTrailing(call.text(0));
    call.result(static_cast<std::int64_t>(isAscii(text) ? text.size() : utf16Length(text)));
}

// blen(bytes): LEN of a binary value
void blen(const Call& call)
{
    call.result(static_cast<std::int64_t>(call.blob(0).size()));
}

struct Span
{
    std::size_t from;
    std::size_t count;
};

/// What start (from 1, possibly below) and length cut out of `size` units.
Span cut(std::int64_t start, std::int64_t length, std::size_t size)
{
    if (length < 0)
        raise(537);
    const std::int64_t first = std::max<std::int64_t>(start, 1);
    const std::int64_t end = start > 0 && length > INT64_MAX - start ? INT64_MAX : start + length;
    const auto total = static_cast<std::int64_t>(size);
    if (first > total || end <= first)
        return {0, 0};
    return {static_cast<std::size_t>(first - 1),
            static_cast<std::size_t>(std::min(end - first, total - first + 1))};
}

void substring(const Call& call)
{
    const Units text(call.text(0));
    const Span span = cut(call.integer(1), call.integer(2), text.size());
    call.result(std::string_view(text.part(span.from, span.count)));
}

void substringOfBytes(const Call& call)
{
    const std::string_view bytes = call.blob(0);
    const Span span = cut(call.integer(1), call.integer(2), bytes.size());
    call.resultBlob(bytes.substr(span.from, span.count));
}

std::size_t partLength(const Call& call, const char* function)
{
    if (call.integer(1) < 0)
        raise(536, {function});
    return static_cast<std::size_t>(call.integer(1));
}

void left(const Call& call)
{
    call.result(std::string_view(Units(call.text(0)).part(0, partLength(call, "left"))));
}

void right(const Call& call)
{
    const Units text(call.text(0));
    const std::size_t count = std::min(partLength(call, "right"), text.size());
    call.result(std::string_view(text.part(text.size() - count, count)));
}

void ltrim(const Call& call)
{
    const std::string_view text = call.text(0);
    call.result(text.substr(std::min(text.find_first_not_of(' '), text.size())));
}

void rtrim(const Call& call)
{
    call.result(withoutTrailing(call.text(0)));
}

// trim(text, characters)
void trim(const Call& call)
{
    const std::string_view characters = call.text(1);
    std::string_view text = call.text(0);
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
    call.result(text.substr(0, text.find_last_not_of(characters) + 1));
}

template <typename Fold>
void recase(const Call& call, char from, char to, Fold fold)
{
    std::string text(call.text(0));
    if (isAscii(text)) {
        for (char& c : text)
            c = c >= from && c <= from + 25 ? static_cast<char>(c - from + to) : c;
        return call.result(std::string_view(text));
    }
    // One character stays one character, as in the server's code pages: no sharp s to two letters.
    std::string result;
    for (std::size_t at = 0; at < text.size();)
        appendUtf8(result, static_cast<char32_t>(fold(static_cast<UChar32>(nextCodePoint(text, at)))));
    call.result(std::string_view(result));
}

void upper(const Call& call)
{
    recase(call, 'a', 'A', u_toupper);
}
void lower(const Call& call)
{
    recase(call, 'A', 'a', u_tolower);
}

void reverse(const Call& call)
{
    const std::string_view text = call.text(0);
    if (isAscii(text))
        return call.result(std::string_view(std::string(text.rbegin(), text.rend())));
    std::u16string units = toUtf16(text);
    std::reverse(units.begin(), units.end());
    call.result(std::string_view(toUtf8(units)));
}

constexpr std::size_t longest = 8000;

void replicate(const Call& call)
{
    std::int64_t times = call.integer(1);
    if (times < 0)
        return sqlite3_result_null(call.context());
    const std::string_view text = call.text(0);
    if (text.empty())
        return call.result(text);
    const bool unlimited = call.integer(2) != 0;
    if (unlimited && times > longestValue / static_cast<std::int64_t>(text.size()))
        return sqlite3_result_error_toobig(call.context());
    if (!unlimited)
        times = std::min(times, static_cast<std::int64_t>(longest / Units(text).size() + 1));
    std::string result;
    for (std::int64_t i = 0; i < times; ++i)
        result += text;
    call.result(std::string_view(unlimited ? result : Units(result).part(0, longest)));
}

void space(const Call& call)
{
    if (call.integer(0) < 0)
        return sqlite3_result_null(call.context());
    const auto count = static_cast<std::size_t>(std::min<std::int64_t>(call.integer(0), longest));
    call.result(std::string_view(std::string(count, ' ')));
}

// stuff(text, start, length, insertion)
void stuff(const Call& call)
{
    const Units text(call.text(0));
    const std::int64_t start = call.integer(1);
    const std::int64_t length = call.integer(2);
    if (start <= 0 || length < 0 || start > static_cast<std::int64_t>(text.size()))
        return sqlite3_result_null(call.context());
    const auto from = static_cast<std::size_t>(start - 1);
    const std::size_t after = from + std::min(static_cast<std::size_t>(length), text.size() - from);
    std::string result = text.part(0, from);
    if (!call.isNull(3))
        result += call.text(3);
    call.result(std::string_view(result + text.part(after, text.size())));
}

// str(number, length, decimals)
void str(const Call& call)
{
    const std::int64_t length = call.integer(1);
    if (length <= 0 || length > static_cast<std::int64_t>(longest))
        return sqlite3_result_null(call.context());
    const auto width = static_cast<int>(length);
    const int decimals = static_cast<int>(std::clamp<std::int64_t>(call.integer(2), 0, 16));
    std::array<char, 400> buffer{};
    int fraction = decimals;
    int size = std::snprintf(buffer.data(), buffer.size(), "%.*f", fraction, call.real(0));
    // Decimals give way before the number does.
    while (size > width && fraction > 0)
        size = std::snprintf(buffer.data(), buffer.size(), "%.*f", --fraction, call.real(0));
    const std::string digits(buffer.data(), static_cast<std::size_t>(size));
    if (size > width)
        return call.result(std::string_view(std::string(static_cast<std::size_t>(width), '*')));
    call.result(std::string_view(std::string(static_cast<std::size_t>(width - size), ' ') + digits));
}

void character(const Call& call)
{
    const std::int64_t code = call.integer(0);
    if (code < 0 || code > 255)
        return sqlite3_result_null(call.context());
    const auto byte = static_cast<std::uint8_t>(code);
    call.result(std::string_view(utf8FromCodePage1252(&byte, 1)));
}

void nationalCharacter(const Call& call)
{
    const std::int64_t code = call.integer(0);
    if (code < 0 || code > 0xffff)
        return sqlite3_result_null(call.context());
    std::string result;
    appendUtf8(result, static_cast<char32_t>(code));
    call.result(std::string_view(result));
}

void ascii(const Call& call)
{
    const std::string_view text = call.text(0);
    if (text.empty())
        return sqlite3_result_null(call.context());
    std::size_t at = 0;
    call.result(static_cast<int>(codePage1252(nextCodePoint(text, at))));
}

void unicode(const Call& call)
{
    const std::u16string units = toUtf16(call.text(0));
    if (units.empty())
        return sqlite3_result_null(call.context());
    call.result(static_cast<int>(units.front()));
}

// quotename(name, quote)
void quoteName(const Call& call)
{
    const std::string_view name = call.text(0);
    const std::string_view wanted = call.text(1);
    constexpr std::array<std::array<char, 2>, 6> pairs = {
        {{'[', ']'}, {'\'', '\''}, {'"', '"'}, {'(', ')'}, {'<', '>'}, {'{', '}'}}};
    const auto* const pair = std::find_if(pairs.begin(), pairs.end(), [wanted](const auto& p) {
        return !wanted.empty() && (wanted[0] == p[0] || wanted[0] == p[1]);
    });
    if (pair == pairs.end() || Units(name).size() > 128)
        return sqlite3_result_null(call.context());
    std::string result(1, (*pair)[0]);
    for (const char c : name) {
        if (c == (*pair)[1])
            result.push_back(c);
        result.push_back(c);
    }
    call.result(std::string_view(result + (*pair)[1]));
}

// concatws(separator, text...): NULLs are passed over
void concatWithSeparator(const Call& call)
{
    std::string result;
    bool first = true;
    for (int i = 1; i < call.count(); ++i) {
        if (call.isNull(i))
            continue;
        if (!first && !call.isNull(0))
            result += call.text(0);
        result += call.text(i);
        first = false;
    }
    call.result(std::string_view(result));
}

char soundexDigit(char letter)
{
    constexpr std::string_view digits = "01230120022455012623010202"; // of A to Z; 0 for none
    return digits[static_cast<std::size_t>(letter - 'A')];
}

std::string soundexOf(std::string_view text)
{
    std::string code;
    char last = '0';
    for (char c : text) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
        if (c < 'A' || c > 'Z')
            break;
        const char digit = soundexDigit(c);
        if (code.empty())
            code.push_back(c);
        else if (digit != '0' && digit != last)
            code.push_back(digit);
        if (c != 'H' && c != 'W')
            last = digit;
        if (code.size() == 4)
            break;
    }
    code.resize(4, '0');
    return code;
}

void soundex(const Call& call)
{
    call.result(std::string_view(soundexOf(call.text(0))));
}

void difference(const Call& call)
{
    const std::string a = soundexOf(call.text(0));
    const std::string b = soundexOf(call.text(1));
    int same = 0;
    for (std::size_t i = 0; i < 4; ++i)
        same += a[i] == b[i] ? 1 : 0;
    call.result(same);
}

/// The parts of a name of up to four, the last first; none for a malformed one.
std::optional<std::array<std::string, 4>> nameParts(std::string_view name)
{
    std::array<std::string, 4> parts;
    std::size_t count = 0;
    for (std::size_t at = 0; at <= name.size();) {
        if (count == parts.size())
            return std::nullopt;
        std::string part;
        const char open = at < name.size() ? name[at] : '\0';
        if (open == '[' || open == '"') {
            const char close = open == '[' ? ']' : '"';
            for (++at; at < name.size(); ++at) {
                if (name[at] == close && (at + 1 == name.size() || name[at + 1] != close))
                    break;
                at += name[at] == close ? 1 : 0;
                part.push_back(name[at]);
            }
            if (at >= name.size())
                return std::nullopt;
            ++at;
            if (at < name.size() && name[at] != '.')
                return std::nullopt;
        } else {
            const std::size_t end = std::min(name.find('.', at), name.size());
            part = name.substr(at, end - at);
            at = end;
        }
        parts[count++] = std::move(part);
        ++at;
    }
    std::reverse(parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>(count));
    return parts;
}

void parseName(const Call& call)
{
    const auto parts = nameParts(call.text(0));
    const std::int64_t wanted = call.integer(1);
    if (!parts || wanted < 1 || wanted > 4 || (*parts)[static_cast<std::size_t>(wanted - 1)].empty())
        return sqlite3_result_null(call.context());
    call.result(std::string_view((*parts)[static_cast<std::size_t>(wanted - 1)]));
}

} // namespace

void registerTextFunctions(sqlite3* connection)
{
    defineFunction(connection, "t_len", 1, len);
    defineFunction(connection, "t_blen", 1, blen);
    defineFunction(connection, "t_substring", 3, substring);
    defineFunction(connection, "t_bsubstring", 3, substringOfBytes);
    defineFunction(connection, "t_left", 2, left);
    defineFunction(connection, "t_right", 2, right);
    defineFunction(connection, "t_ltrim", 1, ltrim);
    defineFunction(connection, "t_rtrim", 1, rtrim);
    defineFunction(connection, "t_trim", 2, trim);
    defineFunction(connection, "t_upper", 1, upper);
    defineFunction(connection, "t_lower", 1, lower);
    defineFunction(connection, "t_reverse", 1, reverse);
    defineFunction(connection, "t_replicate", 3, replicate);
    defineFunction(connection, "t_space", 1, space);
    defineFunction(connection, "t_stuff", 4, stuff, Nulls::Handle);
    defineFunction(connection, "t_str", 3, str);
    defineFunction(connection, "t_char", 1, character);
    defineFunction(connection, "t_nchar", 1, nationalCharacter);
    defineFunction(connection, "t_ascii", 1, ascii);
    defineFunction(connection, "t_unicode", 1, unicode);
    defineFunction(connection, "t_quotename", 2, quoteName);
    defineFunction(connection, "t_concatws", -1, concatWithSeparator, Nulls::Handle);
    defineFunction(connection, "t_soundex", 1, soundex);
    defineFunction(connection, "t_difference", 2, difference);
    defineFunction(connection, "t_parsename", 2, parseName);
}

} // namespace practice
