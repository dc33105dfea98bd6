// Dates and times as text, in the styles of CONVERT.
#include "types/date_time.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace practice {

namespace {

[[gnu::format(printf, 1, 2)]] std::string print(const char* format, ...)
{
    std::array<char, 64> buffer{};
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

/// How a style writes the date, the time, and what stands between.
enum class DatePart : std::uint8_t
{
    None,
    MonthNameDayYear,  ///< Jan  2 2024
    DayMonthName,      ///< 02 Jan 2024
    MonthNameDayComma, ///< Jan 02, 2024
    MonthDay,
    YearMonth,
    DayMonth,
    Compact,
};
enum class TimePart : std::uint8_t
{
    None,
    Short12,
    Long12,
    Seconds,
    Seconds12,
    Milliseconds,
    Iso,
    IsoZulu
};

struct Style
{
    DatePart date;
    TimePart time;
    char separator = 0; ///< between the numbers of the date
    bool century = true;
    char fraction = '.'; ///< before the fraction of a datetime
};

std::optional<Style> styleOf(int style)
{
    const bool century = style >= 100;
    switch (style) {
    case 0:
    case 100:
        return Style{DatePart::MonthNameDayYear, TimePart::Short12};
    case 9:
    case 109:
        return Style{DatePart::MonthNameDayYear, TimePart::Long12, 0, true, ':'};
    case 1:
    case 101:
        return Style{DatePart::MonthDay, TimePart::None, '/', century};
    case 2:
    case 102:
        return Style{DatePart::YearMonth, TimePart::None, '.', century};
    case 3:
    case 103:
        return Style{DatePart::DayMonth, TimePart::None, '/', century};
    case 4:
    case 104:
        return Style{DatePart::DayMonth, TimePart::None, '.', century};
    case 5:
    case 105:
        return Style{DatePart::DayMonth, TimePart::None, '-', century};
    case 6:
    case 106:
        return Style{DatePart::DayMonthName, TimePart::None, ' ', century};
    case 7:
    case 107:
        return Style{DatePart::MonthNameDayComma, TimePart::None, 0, century};
    case 8:
    case 24:
    case 108:
        return Style{DatePart::None, TimePart::Seconds};
    case 10:
    case 110:
        return Style{DatePart::MonthDay, TimePart::None, '-', century};
    case 11:
    case 111:
        return Style{DatePart::YearMonth, TimePart::None, '/', century};
    case 12:
    case 112:
        return Style{DatePart::Compact, TimePart::None, 0, century};
    case 13:
    case 113:
        return Style{DatePart::DayMonthName, TimePart::Milliseconds, ' ', true, ':'};
    case 14:
    case 114:
        return Style{DatePart::None, TimePart::Milliseconds, 0, true, ':'};
    case 20:
    case 120:
        return Style{DatePart::YearMonth, TimePart::Seconds, '-'};
    case 21:
    case 25:
    case 121:
        return Style{DatePart::YearMonth, TimePart::Milliseconds, '-'};
    case 22:
        return Style{DatePart::MonthDay, TimePart::Seconds12, '/', false};
    case 23:
        return Style{DatePart::YearMonth, TimePart::None, '-'};
    case 126:
        return Style{DatePart::YearMonth, TimePart::Iso, '-'};
    case 127:
        return Style{DatePart::YearMonth, TimePart::IsoZulu, '-'};
    default:
        return std::nullopt;
    }
}

std::string dateText(const Style& style, const Civil& date, const Language& language)
{
    const int year = style.century ? date.year : date.year % 100;
    const int width = style.century ? 4 : 2;
    const std::string month(listedName(language.shortMonths, date.month - 1));
    const char* name = month.c_str();
    const char mark = style.separator;
    switch (style.date) {
    case DatePart::MonthNameDayYear:
        return print("%s %2d %0*d", name, date.day, width, year);
    case DatePart::DayMonthName:
        return print("%02d %s %0*d", date.day, name, width, year);
    case DatePart::MonthNameDayComma:
        return print("%s %02d, %0*d", name, date.day, width, year);
    case DatePart::MonthDay:
        return print("%02d%c%02d%c%0*d", date.month, mark, date.day, mark, width, year);
    case DatePart::YearMonth:
        return print("%0*d%c%02d%c%02d", width, year, mark, date.month, mark, date.day);
    case DatePart::DayMonth:
        return print("%02d%c%02d%c%0*d", date.day, mark, date.month, mark, width, year);
    case DatePart::Compact:
        return print("%0*d%02d%02d", width, year, date.month, date.day);
    default:
        return {};
    }
}

/// The fraction with its mark: three digits for datetime, as many as declared for the newer types.
std::string fractionText(const SqlType& type, std::int64_t ticks, char mark)
{
    const auto rest = static_cast<long>(ticks % ticksPerSecond);
    if (type.id == TypeId::DateTime || type.id == TypeId::SmallDateTime)
        return print("%c%03ld", mark, rest / ticksPerMillisecond);
    if (type.scale == 0)
        return {};
    return print(".%07ld", rest).substr(0, 1U + type.scale);
}

std::string timeText(const Style& style, const SqlType& type, std::int64_t ticks)
{
    const int hour = static_cast<int>(ticks / ticksPerHour);
    const int minute = static_cast<int>(ticks / ticksPerMinute % 60);
    const int second = static_cast<int>(ticks / ticksPerSecond % 60);
    const int hour12 = hour % 12 == 0 ? 12 : hour % 12;
    const char* half = hour < 12 ? "AM" : "PM";
    std::string seconds = print("%02d:%02d:%02d", hour, minute, second);
    switch (style.time) {
    case TimePart::Short12:
        return print("%2d:%02d%s", hour12, minute, half);
    case TimePart::Long12:
        return print("%2d:%02d:%02d", hour12, minute, second) + fractionText(type, ticks, style.fraction) +
               half;
    case TimePart::Seconds:
        return seconds;
    case TimePart::Seconds12:
        return print("%2d:%02d:%02d %s", hour12, minute, second, half);
    case TimePart::Milliseconds:
        return seconds + fractionText(type, ticks, style.fraction);
    case TimePart::Iso:
    case TimePart::IsoZulu:
        // Without a fraction when a datetime has none.
        if (type.id == TypeId::SmallDateTime || (type.id == TypeId::DateTime && ticks % ticksPerSecond == 0))
            return seconds;
        return seconds + fractionText(type, ticks, '.');
    default:
        return {};
    }
}

std::string offsetText(int minutes)
{
    const int size = minutes < 0 ? -minutes : minutes;
    return print("%c%02d:%02d", minutes < 0 ? '-' : '+', size / 60, size % 60);
}

} // namespace

std::optional<std::string> formatDate(const DateTimeValue& value, const SqlType& type, int style,
                                      const Language& language)
{
    const auto found = styleOf(style);
    if (!found)
        return std::nullopt;
    const bool zulu = found->time == TimePart::IsoZulu;
    const bool iso = zulu || found->time == TimePart::Iso;
    const DateTimeValue shown = type.id == TypeId::DateTimeOffset && !zulu ? localTime(value) : value;
    std::string date =
        type.id == TypeId::Time ? std::string() : dateText(*found, civilFromDays(shown.days), language);
    std::string time = type.id == TypeId::Date ? std::string() : timeText(*found, type, shown.ticks);
    if (type.id == TypeId::Time && !time.empty() && time.front() == ' ')
        time.erase(0, 1);
    if (!date.empty() && !time.empty())
        date += iso ? 'T' : ' ';
    date += time;
    if (zulu && type.id == TypeId::DateTimeOffset)
        date += 'Z';
    if (!zulu && type.id == TypeId::DateTimeOffset && !time.empty()) {
        if (!iso)
            date += ' ';
        date += offsetText(value.offsetMinutes);
    }
    return date;
}

} // namespace practice
