#include "engine/functions/date_functions.h"

#include "engine/functions/sql_functions.h"
#include "types/date_time.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>

namespace practice {

namespace {

struct PartName
{
    std::string_view name;
    DatePart part;
};

// The full name of each part stands first.
constexpr PartName partNames[] = {
    {"year", DatePart::Year},
    {"yy", DatePart::Year},
    {"yyyy", DatePart::Year},
    {"quarter", DatePart::Quarter},
    {"qq", DatePart::Quarter},
    {"q", DatePart::Quarter},
    {"month", DatePart::Month},
    {"mm", DatePart::Month},
    {"m", DatePart::Month},
    {"dayofyear", DatePart::DayOfYear},
    {"dy", DatePart::DayOfYear},
    {"y", DatePart::DayOfYear},
    {"day", DatePart::Day},
    {"dd", DatePart::Day},
    {"d", DatePart::Day},
    {"week", DatePart::Week},
    {"wk", DatePart::Week},
    {"ww", DatePart::Week},
    {"iso_week", DatePart::IsoWeek},
    {"isowk", DatePart::IsoWeek},
    {"isoww", DatePart::IsoWeek},
    {"weekday", DatePart::WeekDay},
    {"dw", DatePart::WeekDay},
    {"w", DatePart::WeekDay},
    {"hour", DatePart::Hour},
    {"hh", DatePart::Hour},
    {"minute", DatePart::Minute},
    {"mi", DatePart::Minute},
    {"n", DatePart::Minute},
    {"second", DatePart::Second},
    {"ss", DatePart::Second},
    {"s", DatePart::Second},
    {"millisecond", DatePart::Millisecond},
    {"ms", DatePart::Millisecond},
    {"microsecond", DatePart::Microsecond},
    {"mcs", DatePart::Microsecond},
    {"nanosecond", DatePart::Nanosecond},
    {"ns", DatePart::Nanosecond},
    {"tzoffset", DatePart::TimeZone},
    {"tz", DatePart::TimeZone},
};

DatePart partAt(const Call& call, int i)
{
    return static_cast<DatePart>(call.integer(i));
}

/// As a clock there shows it; the offset is kept to be told.
DateTimeValue pointAt(const Call& call, int value, int type)
{
    const SqlType held = call.type(type);
    const auto point = std::get<DateTimeValue>(call.value(value, held).data);
    if (held.id != TypeId::DateTimeOffset)
        return point;
    DateTimeValue local = localTime(point);
    local.offsetMinutes = point.offsetMinutes;
    return local;
}

/// Ticks of one unit; 0 for the parts that the calendar counts.
std::int64_t ticksOf(DatePart part)
{
    switch (part) {
    case DatePart::DayOfYear:
    case DatePart::Day:
    case DatePart::WeekDay:
        return ticksPerDay;
    case DatePart::Week:
        return 7 * ticksPerDay;
    case DatePart::Hour:
        return ticksPerHour;
    case DatePart::Minute:
        return ticksPerMinute;
    case DatePart::Second:
        return ticksPerSecond;
    case DatePart::Millisecond:
        return ticksPerMillisecond;
    case DatePart::Microsecond:
        return 10;
    default:
        return 0;
    }
}

[[noreturn]] void addOverflow(const SqlType& type)
{
    raise(517, {typeName(type.id)});
}

std::optional<DateTimeValue> addMonths(const DateTimeValue& value, std::int64_t months)
{
    const Civil date = civilFromDays(value.days);
    const std::int64_t total = std::int64_t{date.year} * 12 + date.month - 1 + months;
    if (total < 12 || total >= std::int64_t{10'000} * 12)
        return std::nullopt;
    const int year = static_cast<int>(total / 12);
    const int month = static_cast<int>(total % 12) + 1;
    DateTimeValue moved = value;
    moved.days = daysFromCivil(year, month, std::min(date.day, daysInMonth(year, month)));
    return moved;
}

std::optional<DateTimeValue> addUnits(const DateTimeValue& value, std::int64_t count, DatePart part)
{
    DateTimeValue moved = value;
    if (part == DatePart::Nanosecond) {
        moved.ticks += (count + (count < 0 ? -50 : 50)) / 100;
        return normalized(moved);
    }
    const std::int64_t unit = ticksOf(part);
    const __int128 ticks = static_cast<__int128>(unit) * count + value.ticks;
    __int128 days = ticks / ticksPerDay;
    __int128 rest = ticks % ticksPerDay;
    if (rest < 0) {
        rest += ticksPerDay;
        --days;
    }
    days += value.days;
    if (days < 0 || days > lastDay)
        return std::nullopt;
    moved.days = static_cast<std::int32_t>(days);
    moved.ticks = static_cast<std::int64_t>(rest);
    return moved;
}

// dateadd(part, count, value, type)
void dateAdd(const Call& call)
{
    const DatePart part = partAt(call, 0);
    const std::int64_t count = call.integer(1);
    const SqlType type = call.type(3);
    const auto value = std::get<DateTimeValue>(call.value(2, type).data);
    std::optional<DateTimeValue> moved;
    if (part == DatePart::Year || part == DatePart::Quarter || part == DatePart::Month) {
        const int months = part == DatePart::Year ? 12 : part == DatePart::Quarter ? 3 : 1;
        moved = addMonths(value, count * months);
    } else {
        moved = addUnits(value, count, part);
    }
    if (moved && type.id == TypeId::Time)
        moved->days = 0;
    const auto fitted = moved ? fitToType(*moved, type) : std::nullopt;
    if (!fitted)
        addOverflow(type);
    call.result(Value{*fitted, {}}, type);
}

std::int64_t monthNumber(const DateTimeValue& value)
{
    const Civil date = civilFromDays(value.days);
    return std::int64_t{date.year} * 12 + date.month - 1;
}

/// Boundaries of the part crossed between two points.
__int128 difference(DatePart part, const DateTimeValue& from, const DateTimeValue& to)
{
    switch (part) {
    case DatePart::Year:
        return civilFromDays(to.days).year - civilFromDays(from.days).year;
    case DatePart::Quarter:
        return monthNumber(to) / 3 - monthNumber(from) / 3;
    case DatePart::Month:
        return monthNumber(to) - monthNumber(from);
    case DatePart::DayOfYear:
    case DatePart::Day:
    case DatePart::WeekDay:
        return to.days - from.days;
    case DatePart::Week:
    case DatePart::IsoWeek:
        return (to.days - weekday(to.days) - (from.days - weekday(from.days))) / 7;
    case DatePart::Nanosecond:
        return (static_cast<__int128>(to.days - from.days) * ticksPerDay + to.ticks - from.ticks) * 100;
    default: {
        const std::int64_t unit = ticksOf(part);
        const __int128 days = static_cast<__int128>(to.days - from.days) * (ticksPerDay / unit);
        return days + to.ticks / unit - from.ticks / unit;
    }
    }
}

// datediff(part, from, to, from type, to type, big)
void dateDiff(const Call& call)
{
    const __int128 count = difference(partAt(call, 0), pointAt(call, 1, 3), pointAt(call, 2, 4));
    const bool big = call.integer(5) != 0;
    const __int128 low = big ? INT64_MIN : INT32_MIN;
    const __int128 high = big ? INT64_MAX : INT32_MAX;
    if (count < low || count > high)
        raise(535);
    call.result(static_cast<std::int64_t>(count));
}

int dayOfYear(std::int32_t days)
{
    return days - daysFromCivil(civilFromDays(days).year, 1, 1) + 1;
}

int weekOfYear(std::int32_t days, int firstDay)
{
    const std::int32_t newYear = daysFromCivil(civilFromDays(days).year, 1, 1);
    const int offset = (weekday(newYear) - firstDay % 7 + 7) % 7;
    return (days - newYear + offset) / 7 + 1;
}

int isoWeek(std::int32_t days)
{
    const int mondayBased = (weekday(days) + 6) % 7;
    const std::int32_t thursday = days - mondayBased + 3;
    return (thursday - daysFromCivil(civilFromDays(thursday).year, 1, 1)) / 7 + 1;
}

std::int64_t numberOf(DatePart part, const DateTimeValue& value, int firstDay)
{
    const Civil date = civilFromDays(value.days);
    switch (part) {
    case DatePart::Year:
        return date.year;
    case DatePart::Quarter:
        return (date.month - 1) / 3 + 1;
    case DatePart::Month:
        return date.month;
    case DatePart::DayOfYear:
        return dayOfYear(value.days);
    case DatePart::Day:
        return date.day;
    case DatePart::Week:
        return weekOfYear(value.days, firstDay);
    case DatePart::IsoWeek:
        return isoWeek(value.days);
    case DatePart::WeekDay:
        return (weekday(value.days) - firstDay % 7 + 7) % 7 + 1;
    case DatePart::Hour:
        return value.ticks / ticksPerHour;
    case DatePart::Minute:
        return value.ticks / ticksPerMinute % 60;
    case DatePart::Second:
        return value.ticks / ticksPerSecond % 60;
    case DatePart::Millisecond:
        return value.ticks % ticksPerSecond / ticksPerMillisecond;
    case DatePart::Microsecond:
        return value.ticks % ticksPerSecond / 10;
    case DatePart::Nanosecond:
        return value.ticks % ticksPerSecond * 100;
    case DatePart::TimeZone:
        return value.offsetMinutes;
    }
    return 0;
}

// datepart(part, value, type, first day of the week)
void datePart(const Call& call)
{
    call.result(numberOf(partAt(call, 0), pointAt(call, 1, 2), static_cast<int>(call.integer(3))));
}

// datename(part, value, type, first day of the week)
void dateName(const Call& call, const DateSettings& dates)
{
    const DatePart part = partAt(call, 0);
    const DateTimeValue value = pointAt(call, 1, 2);
    if (part == DatePart::Month)
        return call.result(listedName(dates.language->months, civilFromDays(value.days).month - 1));
    if (part == DatePart::WeekDay)
        return call.result(listedName(dates.language->days, (weekday(value.days) + 6) % 7));
    if (part == DatePart::TimeZone) {
        std::array<char, 16> text{};
        const int minutes = value.offsetMinutes < 0 ? -value.offsetMinutes : value.offsetMinutes;
        std::snprintf(text.data(), text.size(), "%c%02d:%02d", value.offsetMinutes < 0 ? '-' : '+',
                      minutes / 60, minutes % 60);
        return call.result(std::string_view(text.data()));
    }
    call.result(std::string_view(std::to_string(numberOf(part, value, static_cast<int>(call.integer(3))))));
}

// eomonth(date, months)
void endOfMonth(const Call& call)
{
    const auto moved = addMonths({static_cast<std::int32_t>(call.integer(0)), 0, 0}, call.integer(1));
    if (!moved)
        addOverflow({TypeId::Date});
    const Civil date = civilFromDays(moved->days);
    call.result(std::int64_t{daysFromCivil(date.year, date.month, daysInMonth(date.year, date.month))});
}

// isdate(text)
void isDate(const Call& call, const DateSettings& dates)
{
    if (call.isNull(0))
        return call.result(0);
    const ParsedDate parsed = parseDate(call.text(0), dates);
    const bool valid = parsed.fault == DateFault::None && parsed.value.days >= day1753 &&
                       call.text(0).find_first_not_of(' ') != std::string_view::npos;
    call.result(valid ? 1 : 0);
}

std::optional<std::int32_t> dateOf(std::int64_t year, std::int64_t month, std::int64_t day)
{
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1)
        return std::nullopt;
    if (day > daysInMonth(static_cast<int>(year), static_cast<int>(month)))
        return std::nullopt;
    return daysFromCivil(static_cast<int>(year), static_cast<int>(month), static_cast<int>(day));
}

// datefromparts(year, month, day)
void dateFromParts(const Call& call)
{
    const auto days = dateOf(call.integer(0), call.integer(1), call.integer(2));
    if (!days)
        raise(289, {"date"});
    call.result(std::int64_t{*days});
}

// datetimefromparts(year, month, day, hour, minute, second, millisecond)
void dateTimeFromParts(const Call& call)
{
    const auto days = dateOf(call.integer(0), call.integer(1), call.integer(2));
    const auto within = [&call](int i, std::int64_t limit) {
        return call.integer(i) >= 0 && call.integer(i) < limit;
    };
    if (!days || *days < day1753 || !within(3, 24) || !within(4, 60) || !within(5, 60) || !within(6, 1000))
        raise(289, {"datetime"});
    const std::int64_t ticks = call.integer(3) * ticksPerHour + call.integer(4) * ticksPerMinute +
                               call.integer(5) * ticksPerSecond + call.integer(6) * ticksPerMillisecond;
    call.result(datetimeStorage(roundToDateTime({*days, ticks, 0})));
}

} // namespace

std::optional<DatePart> datePartByName(std::string_view name)
{
    const auto same = [name](const PartName& known) {
        return std::equal(name.begin(), name.end(), known.name.begin(), known.name.end(),
                          [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
    };
    const auto* const found = std::find_if(std::begin(partNames), std::end(partNames), same);
    return found == std::end(partNames) ? std::nullopt : std::optional(found->part);
}

const char* datePartName(DatePart part)
{
    const auto* const found = std::find_if(std::begin(partNames), std::end(partNames),
                                           [part](const PartName& known) { return known.part == part; });
    return found->name.data();
}

void registerDateFunctions(sqlite3* connection, const DateSettings& dates)
{
    defineFunction(connection, "t_dateadd", 4, dateAdd);
    defineFunction(connection, "t_datediff", 6, dateDiff);
    defineFunction(connection, "t_datepart", 4, datePart);
    defineDatedFunction(connection, "t_datename", 4, dateName, dates);
    defineFunction(connection, "t_eomonth", 2, endOfMonth);
    defineDatedFunction(connection, "t_isdate", 1, isDate, dates, Nulls::Handle);
    defineFunction(connection, "t_datefromparts", 3, dateFromParts);
    defineFunction(connection, "t_datetimefromparts", 7, dateTimeFromParts);
}

} // namespace practice
