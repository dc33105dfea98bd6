#include "types/decimal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace practice {

namespace {

using UInt128 = unsigned __int128;

constexpr std::array<UInt128, maxPrecision + 1> makePowers()
{
    std::array<UInt128, maxPrecision + 1> powers{};
    powers[0] = 1;
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 10;
    return powers;
}

constexpr auto powers = makePowers();

constexpr bool tooLarge(UInt128 magnitude)
{
    return magnitude >= powers[maxPrecision];
}

Decimal makeDecimal(UInt128 magnitude, int scale, bool negative)
{
    return {magnitude, static_cast<std::uint8_t>(scale), negative && magnitude != 0};
}

SqlType numericType(int precision, int scale)
{
    return {TypeId::Numeric, decimalStorage(precision), static_cast<std::uint8_t>(precision),
            static_cast<std::uint8_t>(scale)};
}

/// Multiplication and division give up digits after the point, down to six, to save those before.
SqlType reduced(int precision, int scale)
{
    if (precision <= maxPrecision)
        return numericType(precision, scale);
    return numericType(maxPrecision, std::min(scale, std::max(maxPrecision - (precision - scale), 6)));
}

/// A product of two magnitudes, least significant part first.
using Product = std::array<std::uint64_t, 4>;

Product product(UInt128 left, UInt128 right)
{
    const std::array<std::uint64_t, 2> a{static_cast<std::uint64_t>(left),
                                         static_cast<std::uint64_t>(left >> 64)};
    const std::array<std::uint64_t, 2> b{static_cast<std::uint64_t>(right),
                                         static_cast<std::uint64_t>(right >> 64)};
    Product out{};
    for (std::size_t i = 0; i < 2; ++i) {
        UInt128 carry = 0;
        for (std::size_t j = 0; j < 2; ++j) {
            carry += static_cast<UInt128>(a[i]) * b[j] + out[i + j];
            out[i + j] = static_cast<std::uint64_t>(carry);
            carry >>= 64;
        }
        out[i + 2] = static_cast<std::uint64_t>(carry);
    }
    return out;
}

std::uint64_t divideBy(Product& value, std::uint64_t divisor)
{
    UInt128 remainder = 0;
    for (std::size_t i = value.size(); i-- > 0;) {
        remainder = (remainder << 64) | value[i];
        value[i] = static_cast<std::uint64_t>(remainder / divisor);
        remainder %= divisor;
    }
    return static_cast<std::uint64_t>(remainder);
}

/// Integer and fraction compared apart, so that no scaling can overflow.
int compareMagnitudes(const Decimal& left, const Decimal& right)
{
    const auto leftUnit = powers.at(left.scale);
    const auto rightUnit = powers.at(right.scale);
    const UInt128 leftWhole = left.magnitude / leftUnit;
    const UInt128 rightWhole = right.magnitude / rightUnit;
    if (leftWhole != rightWhole)
        return leftWhole < rightWhole ? -1 : 1;
    const UInt128 leftRest = left.magnitude % leftUnit * powers.at(maxPrecision - left.scale);
    const UInt128 rightRest = right.magnitude % rightUnit * powers.at(maxPrecision - right.scale);
    if (leftRest == rightRest)
        return 0;
    return leftRest < rightRest ? -1 : 1;
}

} // namespace

UInt128 powerOfTen(int exponent)
{
    return powers.at(static_cast<std::size_t>(exponent));
}

Decimal decimalFromInteger(std::int64_t value)
{
    const auto bits = static_cast<std::uint64_t>(value);
    return makeDecimal(value < 0 ? 0 - bits : bits, 0, value < 0);
}

Decimal decimalFromMoney(std::int64_t tenThousandths)
{
    Decimal result = decimalFromInteger(tenThousandths);
    result.scale = 4;
    return result;
}

std::optional<Decimal> decimalFromDouble(double value, int scale)
{
    if (!std::isfinite(value) || std::fabs(value) >= 1e38)
        return std::nullopt;
    // More digits than asked for, so that the rounding below sees on which side of a half it is.
    std::array<char, 160> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), "%.*f", scale + 30, value);
    bool malformed = false;
    const auto parsed = parseDecimal({buffer.data(), static_cast<std::size_t>(length)}, malformed, scale);
    return parsed ? rescale(*parsed, scale) : std::nullopt;
}

double toDouble(const Decimal& value)
{
    // The division of two integers that are exact as doubles is correctly rounded; beyond that the
    // decimal text decides.
    constexpr UInt128 exact = UInt128{1} << 53;
    if (value.magnitude < exact && value.scale <= 22) {
        const double quotient =
            static_cast<double>(value.magnitude) / static_cast<double>(powers.at(value.scale));
        return value.negative ? -quotient : quotient;
    }
    return std::strtod(toString(value).c_str(), nullptr);
}

std::optional<std::int64_t> truncated(const Decimal& value)
{
    const UInt128 whole = value.magnitude / powers.at(value.scale);
    const UInt128 limit = (UInt128{1} << 63) - (value.negative ? 0 : 1);
    if (whole > limit)
        return std::nullopt;
    const auto bits = static_cast<std::uint64_t>(whole);
    return static_cast<std::int64_t>(value.negative ? 0 - bits : bits);
}

std::string toString(const Decimal& value)
{
    std::array<char, 48> buffer{};
    auto* position = buffer.data() + buffer.size();
    UInt128 rest = value.magnitude;
    int digits = 0;
    do {
        if (digits == value.scale && digits > 0)
            *--position = '.';
        *--position = static_cast<char>('0' + static_cast<int>(rest % 10));
        rest /= 10;
        ++digits;
    } while (rest != 0 || digits <= value.scale);
    if (value.negative)
        *--position = '-';
    return {position, static_cast<std::size_t>(buffer.data() + buffer.size() - position)};
}

std::optional<Decimal> parseDecimal(std::string_view text, bool& malformed, int maxScale)
{
    malformed = false;
    std::size_t i = 0;
    const bool negative = i < text.size() && text[i] == '-';
    if (i < text.size() && (text[i] == '-' || text[i] == '+'))
        ++i;
    UInt128 magnitude = 0;
    int scale = 0;
    int digits = 0;
    bool point = false;
    bool overflow = false;
    bool cut = false;
    bool roundUp = false;
    for (; i < text.size(); ++i) {
        if (text[i] == '.' && !point) {
            point = true;
            continue;
        }
        if (text[i] < '0' || text[i] > '9') {
            malformed = true;
            return std::nullopt;
        }
        ++digits;
        const auto digit = static_cast<unsigned>(text[i] - '0');
        const bool full = magnitude >= powers[maxPrecision - 1];
        if (point && (cut || scale == maxScale || full)) {
            roundUp = roundUp || (!cut && digit >= 5);
            cut = true;
            continue;
        }
        overflow = overflow || full;
        magnitude = overflow ? 0 : magnitude * 10 + digit;
        scale += point ? 1 : 0;
    }
    if (digits == 0) {
        malformed = true;
        return std::nullopt;
    }
    magnitude += roundUp ? 1 : 0;
    if (overflow || tooLarge(magnitude))
        return std::nullopt;
    return makeDecimal(magnitude, scale, negative);
}

int digitCount(UInt128 magnitude)
{
    const auto* found = std::upper_bound(powers.begin(), powers.end(), magnitude);
    return std::max(1, static_cast<int>(found - powers.begin()));
}

std::optional<Decimal> rescale(const Decimal& value, int scale)
{
    if (scale == value.scale)
        return value;
    if (scale < value.scale) {
        const UInt128 unit = powers.at(static_cast<std::size_t>(value.scale - scale));
        const UInt128 half = value.magnitude % unit >= unit / 2 ? 1 : 0;
        return makeDecimal(value.magnitude / unit + half, scale, value.negative);
    }
    const int shift = scale - value.scale;
    if (value.magnitude >= powers.at(static_cast<std::size_t>(maxPrecision - shift)))
        return std::nullopt;
    return makeDecimal(value.magnitude * powers.at(static_cast<std::size_t>(shift)), scale, value.negative);
}

bool fits(const Decimal& value, int precision)
{
    return value.magnitude < powers.at(static_cast<std::size_t>(precision));
}

int compare(const Decimal& left, const Decimal& right)
{
    if (left.negative != right.negative)
        return left.negative ? -1 : 1;
    const int order = compareMagnitudes(left, right);
    return left.negative ? -order : order;
}

std::optional<Decimal> add(const Decimal& left, const Decimal& right, int scale)
{
    const int common = std::max<int>(left.scale, right.scale);
    auto a = rescale(left, common);
    auto b = rescale(right, common);
    if (!a || !b) {
        // Too many digits at the larger scale: settle for the result's own.
        a = rescale(left, scale);
        b = rescale(right, scale);
    }
    if (!a || !b)
        return std::nullopt;
    Decimal sum = *a;
    if (a->negative == b->negative) {
        sum.magnitude = a->magnitude + b->magnitude;
    } else if (a->magnitude >= b->magnitude) {
        sum.magnitude = a->magnitude - b->magnitude;
    } else {
        sum.magnitude = b->magnitude - a->magnitude;
        sum.negative = b->negative;
    }
    sum.negative = sum.negative && sum.magnitude != 0;
    const auto result = rescale(sum, scale);
    return result && !tooLarge(result->magnitude) ? result : std::nullopt;
}

std::optional<Decimal> subtract(const Decimal& left, const Decimal& right, int scale)
{
    return add(left, makeDecimal(right.magnitude, right.scale, !right.negative), scale);
}

std::optional<Decimal> multiply(const Decimal& left, const Decimal& right, int scale)
{
    Product value = product(left.magnitude, right.magnitude);
    int excess = left.scale + right.scale - scale;
    // All but the last digit are cut off at once; that last one decides about rounding.
    while (excess > 1) {
        const int step = std::min(excess - 1, 18);
        divideBy(value, static_cast<std::uint64_t>(powers.at(static_cast<std::size_t>(step))));
        excess -= step;
    }
    const bool roundUp = excess == 1 && divideBy(value, 10) >= 5;
    if (value[2] != 0 || value[3] != 0)
        return std::nullopt;
    const UInt128 magnitude =
        (static_cast<UInt128>(value[1]) << 64 | value[0]) + static_cast<UInt128>(roundUp ? 1 : 0);
    if (tooLarge(magnitude))
        return std::nullopt;
    const int reached = excess < 0 ? scale + excess : scale;
    return rescale(makeDecimal(magnitude, reached, left.negative != right.negative), scale);
}

std::optional<Decimal> divide(const Decimal& left, const Decimal& right, int scale)
{
    UInt128 quotient = left.magnitude / right.magnitude;
    UInt128 remainder = left.magnitude % right.magnitude;
    int shift = scale + right.scale - left.scale;
    // Schoolbook division; ten additions a digit stay below 2^128 where a multiplication would not.
    for (; shift > 0; --shift) {
        unsigned digit = 0;
        UInt128 sum = 0;
        for (int i = 0; i < 10; ++i) {
            sum += remainder;
            if (sum >= right.magnitude) {
                sum -= right.magnitude;
                ++digit;
            }
        }
        remainder = sum;
        if (quotient >= powers[maxPrecision - 1])
            return std::nullopt;
        quotient = quotient * 10 + digit;
    }
    if (shift < 0)
        quotient /= powers.at(static_cast<std::size_t>(std::min(-shift, maxPrecision)));
    return makeDecimal(quotient, scale, left.negative != right.negative);
}

std::optional<Decimal> modulo(const Decimal& left, const Decimal& right, int scale)
{
    const int common = std::max<int>(left.scale, right.scale);
    const auto a = rescale(left, common);
    const auto b = rescale(right, common);
    if (!a || !b)
        return std::nullopt;
    return rescale(makeDecimal(a->magnitude % b->magnitude, common, left.negative), scale);
}

SqlType additionType(const SqlType& left, const SqlType& right)
{
    const int whole = std::max(left.precision - left.scale, right.precision - right.scale);
    const int scale = std::max(left.scale, right.scale);
    const int precision = whole + scale + 1;
    if (precision <= maxPrecision)
        return numericType(precision, scale);
    return numericType(maxPrecision, std::min(scale, std::max(0, maxPrecision - whole)));
}

SqlType multiplicationType(const SqlType& left, const SqlType& right)
{
    return reduced(left.precision + right.precision + 1, left.scale + right.scale);
}

SqlType divisionType(const SqlType& left, const SqlType& right)
{
    const int scale = std::max(6, left.scale + right.precision + 1);
    return reduced(left.precision - left.scale + right.scale + scale, scale);
}

SqlType moduloType(const SqlType& left, const SqlType& right)
{
    const int scale = std::max(left.scale, right.scale);
    return reduced(std::min(left.precision - left.scale, right.precision - right.scale) + scale, scale);
}

SqlType commonDecimalType(const SqlType& left, const SqlType& right)
{
    const int whole = std::max(left.precision - left.scale, right.precision - right.scale);
    const int scale = std::min<int>(std::max(left.scale, right.scale), maxPrecision - whole);
    return numericType(std::max(1, whole + scale), scale);
}

SqlType asDecimalType(const SqlType& exact)
{
    switch (exact.id) {
    case TypeId::Bit:
        return numericType(1, 0);
    case TypeId::TinyInt:
        return numericType(3, 0);
    case TypeId::SmallInt:
        return numericType(5, 0);
    case TypeId::BigInt:
        return numericType(19, 0);
    case TypeId::SmallMoney:
        return numericType(10, 4);
    case TypeId::Money:
        return numericType(19, 4);
    case TypeId::Decimal:
    case TypeId::Numeric:
        return exact;
    default:
        return numericType(10, 0);
    }
}

} // namespace practice
