// The parts of a date that DATEADD, DATEDIFF, DATENAME and DATEPART count in.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace practice {

enum class DatePart : std::uint8_t
{
    Year,
    Quarter,
    Month,
    DayOfYear,
    Day,
    Week,
    IsoWeek,
    WeekDay,
    Hour,
    Minute,
    Second,
    Millisecond,
    Microsecond,
    Nanosecond,
    TimeZone,
};

/// By its name or an abbreviation, in any case: "year", "yy", "yyyy" ...
[[nodiscard]] std::optional<DatePart> datePartByName(std::string_view name);
[[nodiscard]] const char* datePartName(DatePart part);

} // namespace practice
