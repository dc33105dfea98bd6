// Conversions, decimal arithmetic and dates, against what SQL Server answers.
#include "types/conversion.h"
#include "types/date_time.h"
#include "types/decimal.h"
#include "types/number_text.h"
#include "types/text_encoding.h"

#include <gtest/gtest.h>

using namespace practice;

namespace {

constexpr SqlType varchar(int length = maxLength)
{
    return {TypeId::VarChar, length, 0, 0};
}

constexpr SqlType nvarchar(int length = maxLength)
{
    return {TypeId::NVarChar, length, 0, 0};
}

SqlType plain(TypeId id)
{
    return defaultType(id, true);
}

SqlType decimal(int precision, int scale)
{
    return {TypeId::Decimal, decimalStorage(precision), static_cast<std::uint8_t>(precision),
            static_cast<std::uint8_t>(scale)};
}

Value text(std::string value)
{
    return {std::move(value), {}};
}

Value number(std::int64_t value)
{
    return {value, {}};
}

Decimal exact(std::string_view digits)
{
    bool malformed = false;
    return parseDecimal(digits, malformed).value();
}

/// The value as text, or "<number> <message>" for a refusal.
std::string outcome(const Value& value, const SqlType& from, const SqlType& to, int style = 0)
{
    try {
        const Value result = convert(value, from, to, style);
        if (result.isNull())
            return "NULL";
        if (isBinary(to.id))
            return "0x" + formatHex(std::get<Bytes>(result.data));
        return isCharacter(to.id) ? std::get<std::string>(result.data) : toText(result, to);
    } catch (const ConversionError& error) {
        return std::to_string(error.number) + ' ' + error.text;
    }
}

struct FromText
{
    const char* input;
    SqlType to;
    const char* expected;
};

} // namespace

TEST(Types, ReadsNumbersFromText)
{
    const SqlType money = plain(TypeId::Money);
    const std::vector<FromText> cases{
        {" -42 ", plain(TypeId::Int), "-42"},
        {"", plain(TypeId::Int), "0"},
        {"abc", plain(TypeId::Int),
         "245 Conversion failed when converting the varchar value 'abc' to data type int."},
        {"1.5", plain(TypeId::Int),
         "245 Conversion failed when converting the varchar value '1.5' to data type int."},
        {"3000000000", plain(TypeId::Int),
         "248 The conversion of the varchar value '3000000000' overflowed an int column."},
        {"300", plain(TypeId::TinyInt),
         "244 The conversion of the varchar value '300' overflowed an INT1 column. Use a larger integer "
         "column."},
        {"9223372036854775807", plain(TypeId::BigInt), "9223372036854775807"},
        {"x", plain(TypeId::BigInt), "8114 Error converting data type varchar to bigint."},
        {"TRUE", plain(TypeId::Bit), "1"},
        {"-7", plain(TypeId::Bit), "1"},
        {"1.005", decimal(10, 2), "1.01"},
        {"-.5", decimal(3, 1), "-0.5"},
        {"", decimal(10, 2), "8114 Error converting data type varchar to numeric."},
        {"1e3", decimal(10, 2), "8114 Error converting data type varchar to numeric."},
        {"99999.5", decimal(5, 0), "8115 Arithmetic overflow error converting varchar to data type numeric."},
        {"99999999999999999999999999999999999999", decimal(38, 0), "99999999999999999999999999999999999999"},
        {"100000000000000000000000000000000000000", decimal(38, 0),
         "8115 Arithmetic overflow error converting varchar to data type numeric."},
        {"-$1,234.56785", money, "-1234.57"},
        {"922337203685477.5808", money,
         "8115 Arithmetic overflow error converting expression to data type money."},
        {"12x", money, "235 Cannot convert a char value to money. The char value has incorrect syntax."},
        {"1e20", plain(TypeId::Float), "1e+020"},
        {"0x10", plain(TypeId::Float), "8114 Error converting data type varchar to float."},
    };
    for (const auto& one : cases)
        EXPECT_EQ(outcome(text(one.input), varchar(), one.to), one.expected) << one.input;
}

TEST(Types, ReadsEveryFormOfDate)
{
    const SqlType datetime = plain(TypeId::DateTime);
    const char* malformed = "241 Conversion failed when converting date and/or time from character string.";
    const char* outOfRange = "242 The conversion of a varchar data type to a datetime data type resulted in "
                             "an out-of-range value.";
    const std::vector<FromText> cases{
        {"20240229", datetime, "2024-02-29 00:00:00.000"},
        {"240102 3:04", datetime, "2024-01-02 03:04:00.000"},
        {"1999", datetime, "1999-01-01 00:00:00.000"},
        {"", datetime, "1900-01-01 00:00:00.000"},
        {"1/2/24", datetime, "2024-01-02 00:00:00.000"},
        {"12-31-1950", datetime, "1950-12-31 00:00:00.000"},
        {"1.2.50", datetime, "1950-01-02 00:00:00.000"},
        {"2024-01-02T03:04:05.998", datetime, "2024-01-02 03:04:05.997"},
        {"2024-01-02 23:59:59.999", datetime, "2024-01-03 00:00:00.000"},
        {"2024-01-02T03:04:05Z", datetime, "2024-01-02 03:04:05.000"},
        {"Jan  2 2024  3:04PM", datetime, "2024-01-02 15:04:00.000"},
        {"2 January, 2024", datetime, "2024-01-02 00:00:00.000"},
        {"15-Apr-2024", datetime, "2024-04-15 00:00:00.000"},
        {"Apr 2024", datetime, "2024-04-01 00:00:00.000"},
        {"2024 Apr 15", datetime, "2024-04-15 00:00:00.000"},
        {"3:04:05:7PM", datetime, "1900-01-01 15:04:05.007"},
        {"12 AM", datetime, "1900-01-01 00:00:00.000"},
        {"hello", datetime, malformed},
        {"2024-01-02 03:04:05.1234", datetime, malformed},
        {"1/2", datetime, malformed},
        {"99999999999", datetime, malformed},
        {"2023-02-29", datetime, outOfRange},
        {"13/1/2024", datetime, outOfRange},
        {"1752-12-31", datetime, outOfRange},
        {"25:00", datetime, outOfRange},
        {"2079-06-07", plain(TypeId::SmallDateTime),
         "242 The conversion of a varchar data type to a smalldatetime data type resulted in an out-of-range "
         "value."},
        {"2024-01-02 03:04:29.999", plain(TypeId::SmallDateTime), "2024-01-02 03:05:00.000"},
        {"0001-01-01", plain(TypeId::Date), "0001-01-01"},
        {"2023-02-29", plain(TypeId::Date), malformed},
        {"12:00:00.1234567", plain(TypeId::Time), "12:00:00.1234567"},
        {"9999-12-31 23:59:59.9999999", plain(TypeId::DateTime2), "9999-12-31 23:59:59.9999999"},
        {"2024-01-01 00:30 +02:00", plain(TypeId::DateTimeOffset), "2024-01-01 00:30:00.0000000 +02:00"},
    };
    for (const auto& one : cases) {
        std::string seen;
        try {
            const Value value = convert(text(one.input), varchar(), one.to);
            seen = outcome(value, one.to, varchar(), 121);
        } catch (const ConversionError& error) {
            seen = std::to_string(error.number) + ' ' + error.text;
        }
        EXPECT_EQ(seen, one.expected) << one.input;
    }
    EXPECT_EQ(outcome(text("1/2/24"), varchar(), datetime, 103), "Feb  1 2024 12:00AM");
}

TEST(Types, WritesDatesInEveryStyle)
{
    const SqlType datetime = plain(TypeId::DateTime);
    const Value point = convert(text("2024-01-02 15:04:05.678"), varchar(), datetime);
    const std::vector<std::pair<int, const char*>> styles{
        {0, "Jan  2 2024  3:04PM"},
        {1, "01/02/24"},
        {101, "01/02/2024"},
        {102, "2024.01.02"},
        {3, "02/01/24"},
        {104, "02.01.2024"},
        {105, "02-01-2024"},
        {106, "02 Jan 2024"},
        {107, "Jan 02, 2024"},
        {108, "15:04:05"},
        {109, "Jan  2 2024  3:04:05:677PM"},
        {110, "01-02-2024"},
        {111, "2024/01/02"},
        {112, "20240102"},
        {113, "02 Jan 2024 15:04:05:677"},
        {114, "15:04:05:677"},
        {120, "2024-01-02 15:04:05"},
        {121, "2024-01-02 15:04:05.677"},
        {23, "2024-01-02"},
        {126, "2024-01-02T15:04:05.677"},
        {99, "281 99 is not a valid style number when converting from datetime to a character string."},
    };
    for (const auto& [style, expected] : styles)
        EXPECT_EQ(outcome(point, datetime, varchar(), style), expected) << style;
    EXPECT_EQ(outcome(point, datetime, varchar(10)), "Jan  2 202");
    const SqlType newer{TypeId::DateTime2, 7, 0, 3};
    EXPECT_EQ(outcome(convert(point, datetime, newer), newer, varchar()), "2024-01-02 15:04:05.677");
}

TEST(Types, ConvertsBetweenNumbers)
{
    const SqlType whole = plain(TypeId::Int);
    const SqlType real = plain(TypeId::Float);
    const SqlType money = plain(TypeId::Money);
    EXPECT_EQ(outcome({1.9, {}}, real, whole), "1");
    EXPECT_EQ(outcome({-1.9, {}}, real, whole), "-1");
    EXPECT_EQ(outcome({3e9, {}}, real, whole),
              "232 Arithmetic overflow error for type int, value = 3000000000.000000.");
    EXPECT_EQ(outcome({exact("-1.9"), {}}, decimal(10, 1), whole), "-1");
    EXPECT_EQ(outcome(number(15'000), money, whole), "2"); // money rounds
    EXPECT_EQ(outcome(number(70'000), whole, plain(TypeId::SmallInt)),
              "220 Arithmetic overflow error for data type smallint, value = 70000.");
    EXPECT_EQ(outcome(number(3'000'000'000), plain(TypeId::BigInt), whole),
              "8115 Arithmetic overflow error converting expression to data type int.");
    EXPECT_EQ(outcome(number(-1), whole, plain(TypeId::TinyInt)),
              "220 Arithmetic overflow error for data type tinyint, value = -1.");
    EXPECT_EQ(outcome({exact("2.345"), {}}, decimal(10, 3), decimal(3, 2)), "2.35");
    EXPECT_EQ(outcome({exact("123.45"), {}}, decimal(5, 2), decimal(4, 2)),
              "8115 Arithmetic overflow error converting numeric to data type numeric.");
    EXPECT_EQ(outcome({0.5, {}}, real, decimal(1, 0)), "1");
    EXPECT_EQ(outcome({1e30, {}}, real, decimal(38, 2)), "1000000000000000019884624838656.00");
    EXPECT_EQ(outcome(number(3), whole, plain(TypeId::DateTime)), "Jan  4 1900 12:00AM");
    EXPECT_EQ(outcome(convert(text("1900-01-02 12:00"), varchar(), plain(TypeId::DateTime)),
                      plain(TypeId::DateTime), real),
              "1.5");
    EXPECT_EQ(outcome(number(1), whole, plain(TypeId::Date)),
              "529 Explicit conversion from data type int to date is not allowed.");
}

TEST(Types, WritesNumbersAndCutsText)
{
    EXPECT_EQ(outcome({1e6, {}}, plain(TypeId::Float), varchar()), "1e+006");
    EXPECT_EQ(outcome({0.1, {}}, plain(TypeId::Float), varchar(), 3), "1.0000000000000001e-001");
    EXPECT_EQ(outcome(number(12'345'678'950), plain(TypeId::Money), varchar(), 1), "1,234,567.90");
    EXPECT_EQ(outcome(number(-9'999), plain(TypeId::Money), varchar(), 2), "-0.9999");
    EXPECT_EQ(outcome(number(12'345), plain(TypeId::Int), varchar(3)), "*");
    EXPECT_EQ(outcome(number(12'345), plain(TypeId::Int), nvarchar(3)),
              "8115 Arithmetic overflow error converting expression to data type nvarchar.");
    EXPECT_EQ(outcome({exact("-0.50"), {}}, decimal(5, 2), {TypeId::Char, 8, 0, 0}), "-0.50   ");
    EXPECT_EQ(outcome(text("año€日本😀"), nvarchar(), varchar()), "año€????");
    EXPECT_EQ(outcome(text("a😀b"), nvarchar(), nvarchar(3)), "a😀");
    EXPECT_EQ(outcome(text("a😀"), nvarchar(), {TypeId::NChar, 5, 0, 0}), "a😀  ");
    EXPECT_EQ(outcome(text("x"), varchar(), plain(TypeId::UniqueIdentifier)),
              "8169 Conversion failed when converting from a character string to uniqueidentifier.");
    EXPECT_EQ(
        outcome(text("{00112233-4455-6677-8899-aabbccddeeff}"), varchar(), plain(TypeId::UniqueIdentifier)),
        "00112233-4455-6677-8899-AABBCCDDEEFF");
    const auto store = [](const char* value, const SqlType& to) {
        try {
            return std::get<std::string>(convertForColumn(text(value), varchar(), to).data);
        } catch (const ConversionError& error) {
            return std::to_string(error.number);
        }
    };
    EXPECT_EQ(store("abc  ", varchar(3)), "abc");
    EXPECT_EQ(store("abcd", varchar(3)), "8152");
}

TEST(Types, ConvertsToAndFromBytes)
{
    const SqlType eight{TypeId::Binary, 8, 0, 0};
    const SqlType two{TypeId::VarBinary, 2, 0, 0};
    const SqlType open{TypeId::VarBinary, maxLength, 0, 0};
    EXPECT_EQ(outcome(number(258), plain(TypeId::Int), eight), "0x0000000000000102");
    EXPECT_EQ(outcome(number(66'051), plain(TypeId::Int), two), "0x0203");
    EXPECT_EQ(outcome(text("é€"), varchar(), eight), "0xE980000000000000");
    EXPECT_EQ(outcome(text("é"), nvarchar(), open), "0xE900");
    EXPECT_EQ(outcome({exact("1.5"), {}}, decimal(2, 1), eight), "0x020100010F000000");
    EXPECT_EQ(outcome(text("0x0aFF"), varchar(), open, 1), "0x0AFF");
    EXPECT_EQ(outcome({Bytes{0x0A, 0xFF}, {}}, open, varchar(), 1), "0x0AFF");
    EXPECT_EQ(outcome({Bytes{0xFF, 0xFF, 0xFF, 0xFE}, {}}, open, plain(TypeId::Int)), "-2");
    EXPECT_EQ(outcome({Bytes{0x3D, 0xD8, 0x00, 0xDE}, {}}, open, nvarchar()), "😀");
    const SqlType guid = plain(TypeId::UniqueIdentifier);
    const Value id = convert(text("00112233-4455-6677-8899-AABBCCDDEEFF"), varchar(), guid);
    EXPECT_EQ(outcome(id, guid, open), "0x33221100554477668899AABBCCDDEEFF");
    EXPECT_EQ(convert(convert(id, guid, open), open, guid), id);
    const SqlType datetime = plain(TypeId::DateTime);
    const Value point = convert(text("1753-01-01 23:59:59.997"), varchar(), datetime);
    EXPECT_EQ(outcome(point, datetime, eight), "0xFFFF2E46018B81FF");
    EXPECT_EQ(convert(convert(point, datetime, eight), eight, datetime), point);
}

TEST(Types, KeepsHalfASurrogatePair)
{
    const std::string cut = std::get<std::string>(convert(text("a😀"), nvarchar(), nvarchar(2)).data);
    EXPECT_EQ(toUtf16(cut), (std::u16string{u'a', 0xD83D}));
    EXPECT_EQ(toUtf16("\xC3\x28\xF0\x9F"),
              (std::u16string{0xFFFD, u'(', 0xFFFD, 0xFFFD})); // bad bytes stay bounded
}

TEST(Decimals, ComputeExactly)
{
    const auto shown = [](const std::optional<Decimal>& value) {
        return value ? toString(*value) : "overflow";
    };
    const char* largest = "99999999999999999999999999999999999999";
    EXPECT_EQ(shown(add(exact("0.1"), exact("-0.25"), 2)), "-0.15");
    EXPECT_EQ(shown(add(exact(largest), exact("1"), 0)), "overflow");
    EXPECT_EQ(shown(subtract(exact("1"), exact("1.00"), 2)), "0.00");
    EXPECT_EQ(shown(multiply(exact("-12345678901234567890.5"), exact("2.25"), 3)),
              "-27777777527777777753.625");
    EXPECT_EQ(shown(multiply(exact("0.0000000000000000005"), exact("0.1"), 19)), "0.0000000000000000001");
    EXPECT_EQ(shown(multiply(exact(largest), exact("10"), 0)), "overflow");
    EXPECT_EQ(shown(multiply(exact(largest), exact("0.00000000000000000000000000000000000001"), 6)),
              "1.000000");
    EXPECT_EQ(shown(divide(exact("1"), exact("3"), 6)), "0.333333");
    EXPECT_EQ(shown(divide(exact("-2"), exact(largest), 38)), "-0.00000000000000000000000000000000000002");
    EXPECT_EQ(shown(divide(exact(largest), exact("0.1"), 0)), "overflow");
    EXPECT_EQ(shown(modulo(exact("-7.5"), exact("2"), 1)), "-1.5");
    EXPECT_LT(compare(exact("-1.01"), exact("-1.001")), 0);
    EXPECT_EQ(compare(exact("1.50"), exact("1.5")), 0);
    EXPECT_GT(compare(exact(largest), exact("0.00000000000000000000000000000000000001")), 0);
    EXPECT_EQ(toDouble(exact("0.1")), 0.1);
}

TEST(Decimals, TellTheTypeOfAResult)
{
    EXPECT_EQ(describe(additionType(decimal(10, 2), decimal(5, 4))), "numeric(13,4)");
    EXPECT_EQ(describe(multiplicationType(decimal(10, 2), decimal(5, 4))), "numeric(16,6)");
    EXPECT_EQ(describe(divisionType(decimal(10, 2), decimal(5, 4))), "numeric(20,8)");
    EXPECT_EQ(describe(divisionType(decimal(38, 10), decimal(38, 10))), "numeric(38,6)");
    EXPECT_EQ(describe(multiplicationType(decimal(38, 20), decimal(38, 20))), "numeric(38,6)");
    EXPECT_EQ(describe(commonDecimalType(decimal(38, 0), decimal(10, 5))), "numeric(38,0)");
}

TEST(Dates, CountDays)
{
    EXPECT_EQ(daysFromCivil(1, 1, 1), 0);
    EXPECT_EQ(daysFromCivil(1753, 1, 1), day1753);
    EXPECT_EQ(daysFromCivil(1900, 1, 1), day1900);
    EXPECT_EQ(daysFromCivil(2079, 6, 6), lastSmallDay);
    EXPECT_EQ(daysFromCivil(9999, 12, 31), lastDay);
    for (std::int32_t days = 0; days <= lastDay; days += 97) {
        const Civil date = civilFromDays(days);
        ASSERT_EQ(daysFromCivil(date.year, date.month, date.day), days);
    }
    EXPECT_EQ(weekday(daysFromCivil(2024, 2, 29)), 4);
}
