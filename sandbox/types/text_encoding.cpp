#include "types/text_encoding.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace practice {

namespace {

constexpr char32_t replacement = 0xFFFD;

/// Code page 1252 from 0x80 to 0x9F; the five unassigned bytes stand for themselves.
constexpr std::array<char16_t, 32> upperControls{
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178,
};

int continuationCount(unsigned char lead)
{
    if (lead >= 0xC2 && lead <= 0xDF)
        return 1;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 2;
    return lead >= 0xF0 && lead <= 0xF4 ? 3 : 0;
}

void appendUtf16(std::u16string& out, char32_t codePoint)
{
    if (codePoint < 0x10000) {
        out.push_back(static_cast<char16_t>(codePoint));
        return;
    }
    codePoint -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (codePoint >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF)));
}

} // namespace

char32_t nextCodePoint(std::string_view text, std::size_t& position)
{
    const auto lead = static_cast<unsigned char>(text[position++]);
    if (lead < 0x80)
        return lead;
    const int extra = continuationCount(lead);
    if (extra == 0 || position + static_cast<std::size_t>(extra) > text.size())
        return replacement;
    char32_t code = lead & (0x3FU >> extra);
    for (int i = 0; i < extra; ++i) {
        const auto next = static_cast<unsigned char>(text[position + static_cast<std::size_t>(i)]);
        if ((next & 0xC0U) != 0x80U)
            return replacement;
        code = (code << 6) | (next & 0x3FU);
    }
    const bool overlong = (extra == 2 && code < 0x800) || (extra == 3 && code < 0x10000);
    if (overlong || code > 0x10FFFF)
        return replacement;
    position += static_cast<std::size_t>(extra);
    return code;
}

void appendUtf8(std::string& out, char32_t codePoint)
{
    const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (codePoint < 0x80) {
        put(codePoint);
    } else if (codePoint < 0x800) {
        put(0xC0 | (codePoint >> 6));
        put(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        put(0xE0 | (codePoint >> 12));
        put(0x80 | ((codePoint >> 6) & 0x3F));
        put(0x80 | (codePoint & 0x3F));
    } else {
        put(0xF0 | (codePoint >> 18));
        put(0x80 | ((codePoint >> 12) & 0x3F));
        put(0x80 | ((codePoint >> 6) & 0x3F));
        put(0x80 | (codePoint & 0x3F));
    }
}

std::u16string toUtf16(std::string_view utf8)
{
    std::u16string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();)
        appendUtf16(out, nextCodePoint(utf8, i));
    return out;
}

std::string toUtf8(std::u16string_view utf16)
{
    std::string out;
    out.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        char32_t code = utf16[i];
        const bool pair = code >= 0xD800 && code < 0xDC00 && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
                          utf16[i + 1] < 0xE000;
        if (pair)
            code = 0x10000 + ((code - 0xD800) << 10) + (utf16[++i] - 0xDC00U);
        appendUtf8(out, code);
    }
    return out;
}

std::string utf8FromUtf16Bytes(const std::uint8_t* bytes, std::size_t count)
{
    std::u16string units(count / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<char16_t>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
    return toUtf8(units);
}

std::size_t utf16Length(std::string_view utf8)
{
    if (isAscii(utf8))
        return utf8.size();
    std::size_t units = 0;
    for (std::size_t i = 0; i < utf8.size();)
        units += nextCodePoint(utf8, i) >= 0x10000 ? 2 : 1;
    return units;
}

std::uint8_t codePage1252(char32_t codePoint)
{
    if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF))
        return static_cast<std::uint8_t>(codePoint);
    const auto* found = std::find(upperControls.begin(), upperControls.end(), codePoint);
    if (found == upperControls.end())
        return '?';
    return static_cast<std::uint8_t>(0x80 + (found - upperControls.begin()));
}

std::string toCodePage1252(std::string_view utf8)
{
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const char32_t code = nextCodePoint(utf8, i);
        out.append(code >= 0x10000 ? 2 : 1, static_cast<char>(codePage1252(code)));
    }
    return out;
}

std::string utf8FromCodePage1252(const std::uint8_t* bytes, std::size_t count)
{
    std::string out;
    out.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t byte = bytes[i];
        const bool mapped = byte >= 0x80 && byte < 0xA0;
        appendUtf8(out, mapped ? upperControls.at(byte - 0x80U) : byte);
    }
    return out;
}

std::string restrictToCodePage1252(std::string text)
{
    if (isAscii(text))
        return text;
    const std::string bytes = toCodePage1252(text);
    return utf8FromCodePage1252(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

bool isAscii(std::string_view text)
{
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t chunk = 0;
        std::memcpy(&chunk, text.data() + i, 8);
        if ((chunk & 0x8080808080808080ULL) != 0)
            return false;
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(),
                       [](char c) { return static_cast<signed char>(c) >= 0; });
}

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return result;
}

} // namespace practice
