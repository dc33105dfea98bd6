// Exact decimal arithmetic with the precision and scale that SQL Server gives a result.
#pragma once

#include "types/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace practice {

inline constexpr int maxPrecision = 38;

/// 10^exponent, exponent 0 to 38.
[[nodiscard]] unsigned __int128 powerOfTen(int exponent);

[[nodiscard]] Decimal decimalFromInteger(std::int64_t value);
/// A money value in ten-thousandths, with scale 4.
[[nodiscard]] Decimal decimalFromMoney(std::int64_t tenThousandths);
/// None when it is not finite or reaches 10^38; digits beyond `scale` are rounded.
[[nodiscard]] std::optional<Decimal> decimalFromDouble(double value, int scale);
[[nodiscard]] double toDouble(const Decimal& value);
/// The part before the decimal point; none when it does not fit.
[[nodiscard]] std::optional<std::int64_t> truncated(const Decimal& value);
/// As many digits after the point as the scale says: "-0.50".
[[nodiscard]] std::string toString(const Decimal& value);
/// Sign, digits and one point, nothing else; digits beyond `maxScale` are rounded away.
/// `malformed` tells a text that is no number from one that is too large.
[[nodiscard]] std::optional<Decimal> parseDecimal(std::string_view text, bool& malformed,
                                                  int maxScale = maxPrecision);

/// Number of decimal digits of the magnitude; 1 for zero.
[[nodiscard]] int digitCount(unsigned __int128 magnitude);

/// To another scale, half away from zero; none on overflow of 38 digits.
[[nodiscard]] std::optional<Decimal> rescale(const Decimal& value, int scale);
/// True when the magnitude has at most `precision` digits.
[[nodiscard]] bool fits(const Decimal& value, int precision);

/// Below zero, zero or above zero as left is less, equal or greater.
[[nodiscard]] int compare(const Decimal& left, const Decimal& right);

/// The results carry the scale asked for; none on overflow of 38 digits.
[[nodiscard]] std::optional<Decimal> add(const Decimal& left, const Decimal& right, int scale);
[[nodiscard]] std::optional<Decimal> subtract(const Decimal& left, const Decimal& right, int scale);
[[nodiscard]] std::optional<Decimal> multiply(const Decimal& left, const Decimal& right, int scale);
/// Digits beyond the scale are cut off. `right` is not zero.
[[nodiscard]] std::optional<Decimal> divide(const Decimal& left, const Decimal& right, int scale);
/// Remainder with the sign of `left`. `right` is not zero.
[[nodiscard]] std::optional<Decimal> modulo(const Decimal& left, const Decimal& right, int scale);

/// The numeric types that operators yield for numeric operands of these precisions and scales.
[[nodiscard]] SqlType additionType(const SqlType& left, const SqlType& right);
[[nodiscard]] SqlType multiplicationType(const SqlType& left, const SqlType& right);
[[nodiscard]] SqlType divisionType(const SqlType& left, const SqlType& right);
[[nodiscard]] SqlType moduloType(const SqlType& left, const SqlType& right);
/// The type that holds values of both (UNION, CASE, COALESCE).
[[nodiscard]] SqlType commonDecimalType(const SqlType& left, const SqlType& right);
/// The decimal type that an exact number counts as when it meets a decimal: int is (10,0), money
/// (19,4); a decimal itself unchanged.
[[nodiscard]] SqlType asDecimalType(const SqlType& exact);

} // namespace practice
