// Conversions to dates and times.
#include "types/conversion.h"
#include "types/date_time.h"
#include "types/decimal.h"
#include "types/number_text.h"

namespace practice {

namespace {

[[noreturn]] void failSyntax(TypeId to)
{
    if (to == TypeId::SmallDateTime)
        failConversion(295,
                       {"Conversion failed when converting character string to smalldatetime data type."});
    failConversion(241, {"Conversion failed when converting date and/or time from character string."});
}

[[noreturn]] void failRange(TypeId from, TypeId to)
{
    failConversion(242, {"The conversion of a ", typeName(from), " data type to a ", typeName(to),
                         " data type resulted in an out-of-range value."});
}

Value fitted(const DateTimeValue& value, TypeId from, const SqlType& to)
{
    const auto result = fitToType(value, to);
    if (!result)
        failRange(from, to.id);
    return {*result, {}};
}

Value fromText(const std::string& text, TypeId from, const SqlType& to, int style, const DateSettings& dates)
{
    const bool old = isOldDate(to.id);
    const DateSettings reading{dateOrderOfStyle(style).value_or(dates.order), dates.language};
    const ParsedDate parsed = parseDate(text, reading, !old);
    const bool tooFine = old && parsed.fractionDigits > 3;
    const bool strayOffset = old && parsed.hasOffset && parsed.value.offsetMinutes != 0;
    if (parsed.fault == DateFault::Malformed || tooFine || strayOffset)
        failSyntax(to.id);
    if (parsed.fault == DateFault::OutOfRange) {
        if (!old)
            failSyntax(to.id);
        failRange(from, to.id);
    }
    if (to.id != TypeId::DateTimeOffset)
        return fitted(parsed.value, from, to);
    const auto shift = parsed.value.offsetMinutes * ticksPerMinute;
    DateTimeValue utc = parsed.value;
    utc.ticks -= shift;
    return fitted(normalized(utc), from, to);
}

/// Eight bytes: days since 1900 and 1/300 seconds, both most significant byte first; fewer bytes
/// leave off the days.
Value fromBytes(const Bytes& bytes, const SqlType& to)
{
    const std::int64_t number = integerFromBytes(bytes);
    DateTimeValue value;
    if (to.id == TypeId::SmallDateTime) {
        value.days = day1900 + static_cast<std::uint16_t>(number >> 16);
        value.ticks = static_cast<std::uint16_t>(number) * ticksPerMinute;
    } else {
        const auto days = std::int64_t{static_cast<std::int32_t>(number >> 32)} + day1900;
        const auto count = static_cast<std::uint32_t>(number);
        if (days < day1753 || days > lastDay || count >= 300U * 86'400U)
            failOverflow("expression", to.id);
        value.days = static_cast<std::int32_t>(days);
        value.ticks = ticksFromThreeHundredths(static_cast<std::int32_t>(count));
    }
    if (value.ticks >= ticksPerDay)
        failOverflow("expression", to.id);
    return fitted(value, TypeId::VarBinary, to);
}

Value fromNumber(const Value& value, const SqlType& from, const SqlType& to)
{
    double days = 0;
    if (isDecimal(from.id))
        days = toDouble(std::get<Decimal>(value.data));
    else if (isMoney(from.id))
        days = static_cast<double>(std::get<std::int64_t>(value.data)) / 10'000.0;
    else if (isInteger(from.id))
        days = static_cast<double>(std::get<std::int64_t>(value.data));
    else
        days = std::get<double>(value.data);
    const auto point = dateTimeFromDays(days);
    const auto result = point ? fitToType(*point, to) : std::nullopt;
    if (!result)
        failOverflow("expression", to.id);
    return {*result, {}};
}

} // namespace

Value convertToDate(const Value& value, const SqlType& from, const SqlType& to, int style,
                    const DateSettings& dates)
{
    if (isCharacter(from.id))
        return fromText(std::get<std::string>(value.data), from.id, to, style, dates);
    if (isBinary(from.id))
        return fromBytes(std::get<Bytes>(value.data), to);
    if (!isDateTime(from.id))
        return fromNumber(value, from, to);
    const auto& point = std::get<DateTimeValue>(value.data);
    if (from.id == TypeId::DateTimeOffset && to.id != TypeId::DateTimeOffset)
        return fitted(localTime(point), from.id, to);
    return fitted(point, from.id, to);
}

} // namespace practice
