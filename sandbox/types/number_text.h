// Numbers, identifiers and bytes as text, in the forms of CONVERT's styles.
#pragma once

#include "types/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace practice {

/// What became of a text that should be a number.
enum class NumberFault : std::uint8_t
{
    None,
    Malformed,
    Overflow
};

template <class T>
struct ParsedNumber
{
    T value{};
    NumberFault fault = NumberFault::None;
};

/// Blanks around it are ignored.
[[nodiscard]] std::string_view trimBlanks(std::string_view text);

/// Sign and digits; an empty text is 0.
[[nodiscard]] ParsedNumber<std::int64_t> parseInteger(std::string_view text);
/// Decimal or exponent form; an empty text is 0.
[[nodiscard]] ParsedNumber<double> parseFloat(std::string_view text);
/// With currency sign and thousands' commas, in ten-thousandths; an empty text is 0.
[[nodiscard]] ParsedNumber<std::int64_t> parseMoney(std::string_view text);
/// 36 characters, braces around them allowed; what follows is ignored.
[[nodiscard]] std::optional<Guid> parseGuid(std::string_view text);
/// Pairs of hexadecimal digits, an odd count meaning a leading zero.
[[nodiscard]] std::optional<Bytes> parseHex(std::string_view digits);

/// Style 0: up to 6 digits; 1: 8; 2: 16; 3: 17, so that nothing is lost.
[[nodiscard]] std::string formatFloat(double value, int style);
/// The shortest text that reads back as the same number, as result grids show it.
[[nodiscard]] std::string formatFloatExact(double value, bool real);
/// Style 0: two decimals; 1: with thousands' commas; 2 and 126: four decimals.
[[nodiscard]] std::string formatMoney(std::int64_t tenThousandths, int style);
[[nodiscard]] std::string formatGuid(const Guid& guid);
/// Upper-case pairs without prefix.
[[nodiscard]] std::string formatHex(const Bytes& bytes);

/// A guid in the order of the wire and of a binary column, and back.
[[nodiscard]] Guid swapGuid(const Guid& guid);

} // namespace practice
