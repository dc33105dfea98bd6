// Reading dates. The text is cut into numbers, words and marks; what a number means follows from
// its neighbours.
#include "types/date_time.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <vector>

namespace practice {

namespace {

/// In the order of DateOrder.
constexpr std::array<std::string_view, 6> orders{"mdy", "dmy", "ymd", "ydm", "myd", "dym"};
static_assert(orders.size() == static_cast<std::size_t>(DateOrder::DayYearMonth) + 1, "in their order");

struct Number
{
    int value = 0;
    int digits = 0;
};

/// The parts of a numeric date as the order names them, each by its letter.
std::string_view partsOf(DateOrder order)
{
    return orders.at(static_cast<std::size_t>(order));
}

int fullYear(const Number& number)
{
    if (number.digits > 2)
        return number.value;
    return number.value + (number.value < 50 ? 2000 : 1900);
}

class DateReader
{
public:
    DateReader(std::string_view text, const DateSettings& settings, bool yearFirst)
        : text_(text), settings_(settings), yearFirst_(yearFirst)
    {}

    ParsedDate read()
    {
        while (fault_ == DateFault::None) {
            skipBlanks();
            if (atEnd())
                break;
            readPart();
        }
        if (fault_ == DateFault::None)
            resolve();
        result_.fault = fault_;
        return result_;
    }

private:
    [[nodiscard]] bool atEnd() const { return position_ >= text_.size(); }
    [[nodiscard]] char peek(std::size_t ahead = 0) const
    {
        return position_ + ahead < text_.size() ? text_[position_ + ahead] : '\0';
    }
    [[nodiscard]] static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    [[nodiscard]] static bool isLetter(char c)
    {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x80 || std::isalpha(byte) != 0;
    }

    void fail(DateFault fault)
    {
        if (fault_ == DateFault::None)
            fault_ = fault;
    }

    void skipBlanks()
    {
        while (!atEnd() && (std::isspace(static_cast<unsigned char>(peek())) != 0))
            ++position_;
    }

    bool take(char expected)
    {
        if (peek() != expected)
            return false;
        ++position_;
        return true;
    }

    Number readNumber()
    {
        Number number;
        while (isDigit(peek())) {
            if (++number.digits > 8) {
                fail(DateFault::Malformed);
                return number;
            }
            number.value = number.value * 10 + (peek() - '0');
            ++position_;
        }
        return number;
    }

    std::string readWord()
    {
        std::string word;
        while (isLetter(peek()))
            word.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(text_[position_++]))));
        return word;
    }

    /// 'a' or 'p' when the text goes on with AM or PM, taken off; 0 otherwise.
    char readHalf()
    {
        std::size_t i = position_;
        while (i < text_.size() && text_[i] == ' ')
            ++i;
        if (i + 1 >= text_.size())
            return 0;
        const char half = static_cast<char>(std::tolower(static_cast<unsigned char>(text_[i])));
        const char m = static_cast<char>(std::tolower(static_cast<unsigned char>(text_[i + 1])));
        const bool wordGoesOn = i + 2 < text_.size() && isLetter(text_[i + 2]);
        if ((half != 'a' && half != 'p') || m != 'm' || wordGoesOn)
            return 0;
        position_ = i + 2;
        return half;
    }

    void readPart()
    {
        const char c = peek();
        if (isDigit(c)) {
            readNumeric();
        } else if (isLetter(c)) {
            readName();
        } else if ((c == '+' || c == '-') && hasTime_) {
            readOffset();
        } else if (c == ',' || ((c == '-' || c == '/' || c == '.') && (month_ != 0 || !numbers_.empty()))) {
            ++position_;
        } else {
            fail(DateFault::Malformed);
        }
    }

    void readName()
    {
        const std::string word = readWord();
        if (word == "t" && (compact_ || !numbers_.empty()) && isDigit(peek())) {
            iso_ = true;
            return;
        }
        if (word == "z" && hasTime_) {
            result_.hasOffset = true;
            return;
        }
        const int month = monthNamed(*settings_.language, word);
        if (month == 0 || month_ != 0)
            return fail(DateFault::Malformed);
        month_ = month;
    }

    void readNumeric()
    {
        const Number number = readNumber();
        if (fault_ != DateFault::None)
            return;
        if (peek() == ':')
            return readTime(number);
        if (const char half = readHalf(); half != 0) {
            setTime(number.value, 0, 0, 0, half);
            return;
        }
        const bool alone = numbers_.empty() && !compact_ && month_ == 0;
        if (alone && (number.digits == 8 || number.digits == 6))
            return readCompact(number);
        if (number.digits > 4 || number.digits == 3 || compact_ || numbers_.size() == 3)
            return fail(DateFault::Malformed);
        numbers_.push_back(number);
    }

    void readCompact(const Number& number)
    {
        compact_ = true;
        const int day = number.value % 100;
        const int month = number.value / 100 % 100;
        const int year = number.value / 10'000;
        setDate(number.digits == 8 ? year : fullYear({year, 2}), month, day);
    }

    void readTime(const Number& hour)
    {
        if (hasTime_)
            return fail(DateFault::Malformed);
        take(':');
        const Number minute = readNumber();
        Number second;
        std::int64_t fraction = 0;
        if (take(':')) {
            second = readNumber();
            if (second.digits == 0)
                return fail(DateFault::Malformed);
            if (peek() == '.' || peek() == ':')
                fraction = readFraction();
        }
        if (minute.digits == 0 || minute.digits > 2 || second.digits > 2 || hour.digits > 2)
            return fail(DateFault::Malformed);
        if (minute.value > 59 || second.value > 59)
            return fail(DateFault::OutOfRange);
        setTime(hour.value, minute.value, second.value, fraction, readHalf());
    }

    /// After a point the digits are decimals; after a colon they count milliseconds.
    std::int64_t readFraction()
    {
        const bool decimals = peek() == '.';
        ++position_;
        const Number number = readNumber();
        if (number.digits == 0 || number.digits > (decimals ? 7 : 3)) {
            fail(DateFault::Malformed);
            return 0;
        }
        if (!decimals)
            return number.value * ticksPerMillisecond;
        result_.fractionDigits = number.digits;
        std::int64_t ticks = number.value;
        for (int i = number.digits; i < 7; ++i)
            ticks *= 10;
        return ticks;
    }

    void setTime(int hour, int minute, int second, std::int64_t fraction, char half)
    {
        if (hasTime_)
            return fail(DateFault::Malformed);
        hasTime_ = true;
        if (hour > 23 || (half == 'a' && hour > 12))
            return fail(DateFault::OutOfRange);
        if (half == 'a' && hour == 12)
            hour = 0;
        else if (half == 'p' && hour < 12)
            hour += 12;
        result_.value.ticks =
            hour * ticksPerHour + minute * ticksPerMinute + second * ticksPerSecond + fraction;
    }

    void readOffset()
    {
        const bool negative = peek() == '-';
        ++position_;
        const Number hours = readNumber();
        if (hours.digits == 0 || hours.digits > 2 || !take(':'))
            return fail(DateFault::Malformed);
        const Number minutes = readNumber();
        if (minutes.digits != 2 || result_.hasOffset)
            return fail(DateFault::Malformed);
        const int total = hours.value * 60 + minutes.value;
        if (minutes.value > 59 || total > 14 * 60)
            return fail(DateFault::OutOfRange);
        result_.hasOffset = true;
        result_.value.offsetMinutes = static_cast<std::int16_t>(negative ? -total : total);
    }

    void resolve()
    {
        if (compact_) {
            if (month_ != 0 || !numbers_.empty())
                fail(DateFault::Malformed);
            return;
        }
        if (month_ != 0)
            return resolveNamedMonth();
        switch (numbers_.size()) {
        case 0:
            result_.value.days = day1900;
            return;
        case 1:
            if (numbers_[0].digits != 4)
                return fail(DateFault::Malformed);
            return setDate(numbers_[0].value, 1, 1);
        case 3:
            return resolveNumeric();
        default:
            return fail(DateFault::Malformed);
        }
    }

    void resolveNamedMonth()
    {
        if (numbers_.empty() || numbers_.size() > 2)
            return fail(DateFault::Malformed);
        if (numbers_.size() == 1)
            return setDate(fullYear(numbers_[0]), month_, 1);
        const bool yearFirst = numbers_[0].digits == 4;
        const Number& year = numbers_[yearFirst ? 0 : 1];
        setDate(fullYear(year), month_, numbers_[yearFirst ? 1 : 0].value);
    }

    void resolveNumeric()
    {
        if (numbers_[0].digits == 4 && (yearFirst_ || iso_))
            return setDate(numbers_[0].value, numbers_[1].value, numbers_[2].value);
        const std::string_view parts = partsOf(settings_.order);
        if (yearFirst_ && settings_.order == DateOrder::YearDayMonth)
            return fail(DateFault::Malformed);
        // Four digits are the year wherever they stand; the other two keep their order.
        std::size_t year = parts.find('y');
        for (std::size_t i = 0; i < numbers_.size(); ++i)
            year = numbers_[i].digits == 4 ? i : year;
        const std::size_t first = year == 0 ? 1 : 0;
        const std::size_t second = year == 2 ? 1 : 2;
        const bool monthFirst = parts.find('m') < parts.find('d');
        setDate(fullYear(numbers_[year]), numbers_[monthFirst ? first : second].value,
                numbers_[monthFirst ? second : first].value);
    }

    void setDate(int year, int month, int day)
    {
        const bool valid = year >= 1 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
                           day <= daysInMonth(year, month);
        if (!valid)
            return fail(DateFault::OutOfRange);
        result_.value.days = daysFromCivil(year, month, day);
    }

    std::string_view text_;
    DateSettings settings_;
    bool yearFirst_;
    bool iso_ = false; ///< a T stands between date and time
    std::size_t position_ = 0;
    ParsedDate result_;
    DateFault fault_ = DateFault::None;
    std::vector<Number> numbers_;
    int month_ = 0;
    bool compact_ = false;
    bool hasTime_ = false;
};

} // namespace

std::optional<DateOrder> dateOrderOfStyle(int style)
{
    switch (style % 100) {
    case 0:
        return std::nullopt;
    case 3:
    case 4:
    case 5:
    case 6:
        return DateOrder::DayMonthYear;
    case 2:
    case 11:
    case 12:
    case 20:
    case 21:
    case 23:
    case 26:
    case 27:
        return DateOrder::YearMonthDay;
    default:
        return DateOrder::MonthDayYear;
    }
}

std::optional<DateOrder> dateOrderNamed(std::string_view name)
{
    for (std::size_t i = 0; i < orders.size(); ++i) {
        const bool same =
            std::equal(name.begin(), name.end(), orders[i].begin(), orders[i].end(),
                       [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
        if (same)
            return static_cast<DateOrder>(i);
    }
    return std::nullopt;
}

ParsedDate parseDate(std::string_view text, const DateSettings& settings, bool yearFirst)
{
    return DateReader(text, settings, yearFirst).read();
}

} // namespace practice
