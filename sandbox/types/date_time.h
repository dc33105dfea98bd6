// Calendar arithmetic, and the rounding and limits of each type of date and time.
#pragma once

#include "types/language.h"
#include "types/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace practice {

inline constexpr std::int64_t ticksPerMillisecond = 10'000;
inline constexpr std::int64_t ticksPerSecond = 10'000'000;
inline constexpr std::int64_t ticksPerMinute = 60 * ticksPerSecond;
inline constexpr std::int64_t ticksPerHour = 60 * ticksPerMinute;
inline constexpr std::int64_t ticksPerDay = 24 * ticksPerHour;

/// Day numbers since 0001-01-01.
inline constexpr std::int32_t day1753 = 639'905;      ///< first of datetime
inline constexpr std::int32_t day1900 = 693'595;      ///< zero of datetime, first of smalldatetime
inline constexpr std::int32_t lastSmallDay = 759'130; ///< 2079-06-06
inline constexpr std::int32_t lastDay = 3'652'058;    ///< 9999-12-31

struct Civil
{
    int year = 1;
    int month = 1;
    int day = 1;
};

/// Any date of the proleptic Gregorian calendar; the caller has checked the parts.
[[nodiscard]] std::int32_t daysFromCivil(int year, int month, int day);
[[nodiscard]] Civil civilFromDays(std::int32_t days);
[[nodiscard]] int daysInMonth(int year, int month);
[[nodiscard]] bool isLeapYear(int year);
/// 0 Sunday to 6 Saturday.
[[nodiscard]] int weekday(std::int32_t days);

/// Moves ticks that lie outside one day into `days`.
[[nodiscard]] DateTimeValue normalized(DateTimeValue value);

/// Milliseconds end in 0, 3 or 7, as the 1/300 seconds that a datetime counts show them.
[[nodiscard]] DateTimeValue roundToDateTime(const DateTimeValue& value);
/// The 1/300 seconds since midnight that a datetime stores.
[[nodiscard]] std::int32_t threeHundredths(std::int64_t ticks);
[[nodiscard]] std::int64_t ticksFromThreeHundredths(std::int32_t count);
/// To whole minutes, from 29.999 seconds upwards.
[[nodiscard]] DateTimeValue roundToMinute(const DateTimeValue& value);
/// To `scale` fractional digits; midnight of the next day is possible.
[[nodiscard]] DateTimeValue roundToScale(const DateTimeValue& value, int scale);

/// Brings a point in time to what a type keeps: its parts, its rounding. None beyond its range.
[[nodiscard]] std::optional<DateTimeValue> fitToType(const DateTimeValue& value, const SqlType& type);

/// A datetimeoffset's wall clock.
[[nodiscard]] DateTimeValue localTime(const DateTimeValue& value);

/// A datetime as the days since 1900 with their fraction, and back.
[[nodiscard]] double daysSince1900(const DateTimeValue& value);
[[nodiscard]] std::optional<DateTimeValue> dateTimeFromDays(double daysSince1900);

/// The clock of this machine, local time, with its offset from UTC in `offsetMinutes`.
[[nodiscard]] DateTimeValue currentLocalTime();
[[nodiscard]] DateTimeValue currentUtcTime();

/// The order that a CONVERT style from text implies: 3, 4, 5, 103 ... day first; 2, 11 ... year first;
/// none for 0 and 100, which leave it to the session; month first otherwise.
[[nodiscard]] std::optional<DateOrder> dateOrderOfStyle(int style);
/// "mdy", "dmy" ... in any case, as SET DATEFORMAT names them.
[[nodiscard]] std::optional<DateOrder> dateOrderNamed(std::string_view name);

enum class DateFault : std::uint8_t
{
    None,
    Malformed,
    OutOfRange
};

struct ParsedDate
{
    DateTimeValue value;
    DateFault fault = DateFault::None;
    bool hasOffset = false; ///< value.offsetMinutes was written; days and ticks are still local
    int fractionDigits = 0;
};

/// Reads every form of date and time that SQL Server knows: separated and compact numeric dates, ISO
/// 8601, month names, times alone. A missing date is 1900-01-01.
/// @param yearFirst with a year of four digits in front month and day follow, whatever the order: so do
/// the types that came with date, while datetime keeps the order of its other two parts
[[nodiscard]] ParsedDate parseDate(std::string_view text, const DateSettings& settings = {},
                                   bool yearFirst = false);

/// Text in a CONVERT style; none when there is no such style. `type` tells which parts there are.
[[nodiscard]] std::optional<std::string> formatDate(const DateTimeValue& value, const SqlType& type,
                                                    int style, const Language& language = usEnglish());

} // namespace practice
