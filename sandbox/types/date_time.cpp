#include "types/date_time.h"

#include <array>
#include <chrono>
#include <cmath>
#include <ctime>

namespace practice {

namespace {

constexpr std::int32_t day1970 = 719'162;

std::int64_t roundTo(std::int64_t ticks, std::int64_t unit)
{
    return (ticks + unit / 2) / unit * unit;
}

DateTimeValue withTicks(DateTimeValue value, std::int64_t ticks)
{
    value.ticks = ticks;
    return normalized(value);
}

DateTimeValue now(std::int16_t offsetMinutes, std::chrono::system_clock::time_point point)
{
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, ticksPerSecond>>;
    const auto ticks = std::chrono::duration_cast<Ticks>(point.time_since_epoch()).count();
    DateTimeValue value{day1970, ticks + offsetMinutes * ticksPerMinute, offsetMinutes};
    return normalized(value);
}

} // namespace

std::int32_t daysFromCivil(int year, int month, int day)
{
    // Years begin in March here, so that the leap day is the last of its year.
    const int shifted = month <= 2 ? year - 1 : year;
    const int era = shifted / 400;
    const int yearOfEra = shifted % 400;
    const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * 146'097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 306;
}

Civil civilFromDays(std::int32_t days)
{
    const int shifted = days + 306;
    const int era = shifted / 146'097;
    const int dayOfEra = shifted % 146'097;
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int shiftedMonth = (5 * dayOfYear + 2) / 153;
    const int month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    return {era * 400 + yearOfEra + (month <= 2 ? 1 : 0), month,
            dayOfYear - (153 * shiftedMonth + 2) / 5 + 1};
}

bool isLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(int year, int month)
{
    constexpr std::array<int, 12> lengths{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : lengths.at(static_cast<std::size_t>(month - 1));
}

int weekday(std::int32_t days)
{
    return (days + 1) % 7; // 0001-01-01 was a Monday
}

DateTimeValue normalized(DateTimeValue value)
{
    std::int64_t carry = value.ticks / ticksPerDay;
    if (value.ticks % ticksPerDay < 0)
        --carry;
    value.days += static_cast<std::int32_t>(carry);
    value.ticks -= carry * ticksPerDay;
    return value;
}

std::int32_t threeHundredths(std::int64_t ticks)
{
    return static_cast<std::int32_t>((ticks * 3 + 50'000) / 100'000);
}

std::int64_t ticksFromThreeHundredths(std::int32_t count)
{
    return (std::int64_t{count} * 10 + 1) / 3 * ticksPerMillisecond;
}

DateTimeValue roundToDateTime(const DateTimeValue& value)
{
    return withTicks(value, ticksFromThreeHundredths(threeHundredths(value.ticks)));
}

DateTimeValue roundToMinute(const DateTimeValue& value)
{
    const DateTimeValue exact = roundToDateTime(value);
    return withTicks(exact, roundTo(exact.ticks, ticksPerMinute));
}

DateTimeValue roundToScale(const DateTimeValue& value, int scale)
{
    std::int64_t unit = 1;
    for (int i = scale; i < 7; ++i)
        unit *= 10;
    return withTicks(value, roundTo(value.ticks, unit));
}

std::optional<DateTimeValue> fitToType(const DateTimeValue& value, const SqlType& type)
{
    DateTimeValue result = value;
    std::int32_t first = 0;
    std::int32_t last = lastDay;
    switch (type.id) {
    case TypeId::Date:
        result = {value.days, 0, 0};
        break;
    case TypeId::Time:
        result = {day1900, roundToScale({0, value.ticks, 0}, type.scale).ticks, 0};
        break;
    case TypeId::SmallDateTime:
        result = roundToMinute({value.days, value.ticks, 0});
        first = day1900;
        last = lastSmallDay;
        break;
    case TypeId::DateTime:
        result = roundToDateTime({value.days, value.ticks, 0});
        first = day1753;
        break;
    case TypeId::DateTime2:
        result = roundToScale({value.days, value.ticks, 0}, type.scale);
        break;
    default:
        result = roundToScale(value, type.scale);
        break;
    }
    if (result.days < first || result.days > last)
        return std::nullopt;
    return result;
}

DateTimeValue localTime(const DateTimeValue& value)
{
    return normalized({value.days, value.ticks + value.offsetMinutes * ticksPerMinute, 0});
}

double daysSince1900(const DateTimeValue& value)
{
    return value.days - day1900 + threeHundredths(value.ticks) / (300.0 * 86'400.0);
}

std::optional<DateTimeValue> dateTimeFromDays(double days)
{
    if (!(days >= day1753 - day1900 && days < lastDay - day1900 + 1))
        return std::nullopt;
    const double whole = std::floor(days);
    const auto count = static_cast<std::int32_t>(std::lround((days - whole) * 300.0 * 86'400.0));
    return normalized({static_cast<std::int32_t>(whole) + day1900, ticksFromThreeHundredths(count), 0});
}

DateTimeValue currentUtcTime()
{
    return now(0, std::chrono::system_clock::now());
}

DateTimeValue currentLocalTime()
{
    const auto point = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(point);
    std::tm local{};
    localtime_r(&seconds, &local);
    return now(static_cast<std::int16_t>(local.tm_gmtoff / 60), point);
}

} // namespace practice
