#include "types/number_text.h"

#include "types/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace practice {

namespace {

constexpr std::array<std::string_view, 7> currencySigns{"$", "€", "£", "¥", "¢", "¤", "\\"};

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// The exponent has at least three digits: "1e+020".
std::string widenExponent(std::string text)
{
    const auto at = text.find('e');
    if (at != std::string::npos && text.size() - at == 4)
        text.insert(at + 2, 1, '0');
    return text;
}

std::string printNumber(const char* format, int digits, double value)
{
    std::array<char, 64> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), format, digits, value);
    return widenExponent({buffer.data(), static_cast<std::size_t>(length)});
}

bool takeCurrency(std::string_view& text)
{
    for (const auto sign : currencySigns) {
        if (text.starts_with(sign)) {
            text.remove_prefix(sign.size());
            return true;
        }
    }
    return false;
}

} // namespace

std::string_view trimBlanks(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

ParsedNumber<std::int64_t> parseInteger(std::string_view text)
{
    text = trimBlanks(text);
    if (text.empty())
        return {0, NumberFault::None};
    if (text == "+" || text == "-")
        return {0, NumberFault::None};
    if (text.front() == '+') {
        text.remove_prefix(1);
        if (text.front() == '-')
            return {0, NumberFault::Malformed};
    }
    std::int64_t value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || fault == std::errc::invalid_argument)
        return {0, NumberFault::Malformed};
    return {value, fault == std::errc{} ? NumberFault::None : NumberFault::Overflow};
}

ParsedNumber<double> parseFloat(std::string_view text)
{
    text = trimBlanks(text);
    if (text.empty())
        return {0, NumberFault::None};
    if (text.front() == '+')
        text.remove_prefix(1);
    const bool letters = text.find_first_not_of("0123456789+-.eEdD") != std::string_view::npos;
    // The exponent may be written with a d.
    std::string written(text);
    std::replace_if(
        written.begin(), written.end(), [](char c) { return c == 'd' || c == 'D'; }, 'e');
    text = written;
    double value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (letters || end != text.data() + text.size() || fault == std::errc::invalid_argument)
        return {0, NumberFault::Malformed};
    // Too small is zero, too large a fault; from_chars reports both alike.
    if (fault == std::errc::result_out_of_range) {
        const auto exponent = text.find_first_of("eE");
        const bool tiny = exponent != std::string_view::npos && text.substr(exponent + 1).starts_with('-');
        return {0, tiny ? NumberFault::None : NumberFault::Overflow};
    }
    return {value, NumberFault::None};
}

ParsedNumber<std::int64_t> parseMoney(std::string_view text)
{
    text = trimBlanks(text);
    if (text.empty())
        return {0, NumberFault::None};
    (void)takeCurrency(text);
    std::string digits;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        digits.push_back(text.front());
        text.remove_prefix(1);
    }
    (void)takeCurrency(text);
    bool point = false;
    for (const char c : trimBlanks(text)) {
        point = point || c == '.';
        if (c == ',' && !point)
            continue;
        digits.push_back(c);
    }
    // A sign, a point or commas alone are zero.
    if (digits.empty() || digits == "-" || digits == "+" || digits == "." || digits == "-." || digits == "+.")
        return {0, NumberFault::None};
    bool malformed = false;
    const auto parsed = parseDecimal(digits, malformed, 4);
    if (malformed)
        return {0, NumberFault::Malformed};
    const auto scaled = parsed ? rescale(*parsed, 4) : std::nullopt;
    if (!scaled)
        return {0, NumberFault::Overflow};
    const auto value = truncated({scaled->magnitude, 0, scaled->negative});
    return {value.value_or(0), value ? NumberFault::None : NumberFault::Overflow};
}

std::optional<Guid> parseGuid(std::string_view text)
{
    if (text.starts_with('{')) {
        text.remove_prefix(1);
        if (text.size() < 37 || text[36] != '}')
            return std::nullopt;
    }
    if (text.size() < 36)
        return std::nullopt;
    Guid guid{};
    std::size_t at = 0;
    for (std::size_t i = 0; i < 36;) {
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (text[i++] != '-')
                return std::nullopt;
            continue;
        }
        const int high = hexDigit(text[i]);
        const int low = hexDigit(text[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        guid.at(at++) = static_cast<std::uint8_t>(high * 16 + low);
        i += 2;
    }
    return guid;
}

std::optional<Bytes> parseHex(std::string_view digits)
{
    Bytes bytes;
    bytes.reserve(digits.size() / 2 + 1);
    unsigned pending = 0;
    bool half = digits.size() % 2 == 1;
    for (const char c : digits) {
        const int digit = hexDigit(c);
        if (digit < 0)
            return std::nullopt;
        pending = pending * 16 + static_cast<unsigned>(digit);
        if (half) {
            bytes.push_back(static_cast<std::uint8_t>(pending));
            pending = 0;
        }
        half = !half;
    }
    return bytes;
}

std::string formatFloat(double value, int style)
{
    switch (style) {
    case 1:
        return printNumber("%.*e", 7, value);
    case 2:
        return printNumber("%.*e", 15, value);
    case 3:
        return printNumber("%.*e", 16, value);
    default:
        return printNumber("%.*g", 6, value == 0 ? 0.0 : value);
    }
}

std::string formatFloatExact(double value, bool real)
{
    std::array<char, 64> buffer{};
    const auto written =
        real ? std::to_chars(buffer.data(), buffer.data() + buffer.size(), static_cast<float>(value))
             : std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data())};
}

std::string formatMoney(std::int64_t tenThousandths, int style)
{
    const Decimal exact = decimalFromMoney(tenThousandths);
    if (style == 2 || style == 126)
        return toString(exact);
    std::string text = toString(*rescale(exact, 2));
    if (style != 1)
        return text;
    const std::size_t first = text.front() == '-' ? 1 : 0;
    for (std::size_t at = text.size() - 3; at > first + 3;) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

std::string formatGuid(const Guid& guid)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < guid.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            text.push_back('-');
        text.push_back(digits[guid[i] >> 4U]);
        text.push_back(digits[guid[i] & 15U]);
    }
    return text;
}

std::string formatHex(const Bytes& bytes)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text.push_back(digits[byte >> 4U]);
        text.push_back(digits[byte & 15U]);
    }
    return text;
}

Guid swapGuid(const Guid& guid)
{
    constexpr std::array<std::size_t, 16> order{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    Guid swapped{};
    for (std::size_t i = 0; i < order.size(); ++i)
        swapped.at(i) = guid.at(order.at(i));
    return swapped;
}

} // namespace practice
