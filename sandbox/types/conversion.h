// Conversions between types: which there are, and the parts that `convert` is made of.
#pragma once

#include "types/value.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace practice {

enum class ConversionRule : std::uint8_t
{
    Implicit,  ///< happens by itself in an assignment or an expression
    Explicit,  ///< only by CAST or CONVERT; error 257 otherwise
    Forbidden, ///< error 529 with CAST or CONVERT, 206 without
};

[[nodiscard]] ConversionRule conversionRule(TypeId from, TypeId to);

/// Raised by conversions; the engine turns it into the message of the statement.
struct ConversionError
{
    int number; ///< SQL Server's: 245, 8114, 8115, 8152, 241, 242, 220, 8169, 257, 529 ...
    std::string text;
};

/// Converts as CAST and CONVERT do. `style` is CONVERT's third argument (0 when absent), used
/// between date or money or float or binary types and text; where it says nothing of dates, `dates` do.
/// @throws ConversionError with SQL Server's number and wording.
[[nodiscard]] Value convert(const Value& value, const SqlType& from, const SqlType& to, int style = 0,
                            const DateSettings& dates = {});

/// The text that a CONVERT to varchar without style gives ("Jan  2 2024  3:04AM" for datetime).
[[nodiscard]] std::string toText(const Value& value, const SqlType& type);

/// Converts as an assignment to a column does: the rule must be implicit, and text or bytes that
/// do not fit raise 8152 instead of being cut (blanks at the end and zero bytes may go).
/// @throws ConversionError
[[nodiscard]] Value convertForColumn(const Value& value, const SqlType& from, const SqlType& to);

/// The inner type of a sql_variant that holds `value`, for a value of type `type`.
[[nodiscard]] Value toVariant(const Value& value, const SqlType& type);

// One part each, for values that are not null and conversions that are allowed.
[[nodiscard]] Value convertToInteger(const Value& value, const SqlType& from, const SqlType& to);
[[nodiscard]] Value convertToMoney(const Value& value, const SqlType& from, const SqlType& to);
[[nodiscard]] Value convertToDecimal(const Value& value, const SqlType& from, const SqlType& to);
[[nodiscard]] Value convertToFloat(const Value& value, const SqlType& from, const SqlType& to);
[[nodiscard]] Value convertToDate(const Value& value, const SqlType& from, const SqlType& to, int style,
                                  const DateSettings& dates);
[[nodiscard]] Value convertToText(const Value& value, const SqlType& from, const SqlType& to, int style,
                                  const Language& language = usEnglish());
[[nodiscard]] Value convertToBinary(const Value& value, const SqlType& from, const SqlType& to, int style);
[[nodiscard]] Value convertToGuid(const Value& value, const SqlType& from);

/// The bytes that a conversion to varbinary gives, in full.
[[nodiscard]] Bytes bytesOf(const Value& value, const SqlType& from);
/// The number in the last eight bytes, most significant first.
[[nodiscard]] std::int64_t integerFromBytes(const Bytes& bytes);
/// The type as error 8114 and 8115 name it: decimal is always "numeric".
[[nodiscard]] std::string numericName(TypeId id);

[[noreturn]] void failConversion(int number, std::initializer_list<std::string_view> parts);
/// 8115 "Arithmetic overflow error converting <what> to data type <to>."
[[noreturn]] void failOverflow(std::string_view what, TypeId to);

} // namespace practice
