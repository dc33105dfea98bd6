// The languages that a session may speak: the names of months and days, and how dates are read.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace practice {

struct Language
{
    std::string_view name;       ///< "us_english"
    std::string_view alias;      ///< "English"
    std::string_view dateFormat; ///< "mdy"
    std::string_view months;     ///< joined by commas, like the next two
    std::string_view shortMonths;
    std::string_view days; ///< from Monday on
    int id;
    int dateFirst; ///< first day of the week, 1 Monday to 7 Sunday
    int lcid;
    int messageLanguage;
};

/// The order of the parts of a numeric date.
enum class DateOrder : std::uint8_t
{
    MonthDayYear,
    DayMonthYear,
    YearMonthDay,
    YearDayMonth,
    MonthYearDay,
    DayYearMonth
};

/// In the order of their ids.
[[nodiscard]] std::span<const Language> languages();
[[nodiscard]] const Language& usEnglish();
/// By name or alias, in any case; nullptr when there is none.
[[nodiscard]] const Language* findLanguage(std::string_view name);

/// How a session reads and writes dates.
struct DateSettings
{
    DateOrder order = DateOrder::MonthDayYear;
    const Language* language = &usEnglish();
};

/// The name at a place of one of the lists above, counted from 0.
[[nodiscard]] std::string_view listedName(std::string_view list, int place);
/// The number of the month, 1 to 12, that a word names in full or short; 0 for none.
[[nodiscard]] int monthNamed(const Language& language, std::string_view word);

} // namespace practice
