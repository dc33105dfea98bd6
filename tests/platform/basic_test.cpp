#include "platform/basic/BoundedArray.h"
#include "platform/basic/Numbers.h"
#include "platform/basic/RuntimeError.h"
#include "platform/basic/VariantText.h"

#include <QLocale>
#include <gtest/gtest.h>
#include <limits>

using namespace Qt::StringLiterals;
using basic::Variant;

namespace {

const QLocale spanish(QLocale::Spanish, QLocale::Spain);
const QLocale english(QLocale::English, QLocale::UnitedStates);

template <class Call>
int errorOf(Call call)
{
    try {
        call();
    } catch (const basic::RuntimeError& error) {
        return error.number();
    }
    return 0;
}

std::string utf8(const QString& text)
{
    return text.toStdString();
}

TEST(Val, ReadsTheLeadingNumber)
{
    const std::pair<const char16_t*, double> cases[] = {
        {u"", 0},       {u"abc", 0},     {u"12abc", 12},      {u"  1 615 198th Street", 1615198},
        {u"-4,5", -4},  {u"1.5.2", 1.5}, {u".5", 0.5},        {u"5.", 5},
        {u"+7", 7},     {u"-", 0},       {u"-.", 0},          {u"1e3", 1000},
        {u"1D2", 100},  {u"1e", 1},      {u"1e+x", 1},        {u"2E-1", 0.2},
        {u"&HFF", 255}, {u"&hFFFF", -1}, {u"&HFFFF&", 65535}, {u"&H10000", 65536},
        {u"&o17", 15},  {u"&H", 0},      {u"&HFFFFFFFF", -1}, {u"\t1\n2", 12},
        {u"(5)", 0},    {u"\u00a05", 0}, {u"1e-400", 0},      {u"0x10", 0},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(basic::val(text), expected) << utf8(QString::fromUtf16(text));
    EXPECT_EQ(errorOf([] { basic::val(u"1e400"); }), basic::error::Overflow);
}

TEST(IsNumeric, FollowsTheLocale)
{
    struct Case
    {
        const char16_t* text;
        bool spanish;
        bool english;
    };
    const Case cases[] = {
        {u"", false, false},        {u"  ", false, false},      {u"12", true, true},
        {u" 12 ", true, true},      {u"1,5", true, true},       {u"1.5", true, true},
        {u"1.000,50", true, false}, {u"1,000.50", false, true}, {u"1,5,2", false, true},
        {u"-3", true, true},        {u"3-", true, true},        {u"--3", false, false},
        {u"(3)", true, true},       {u"(-3)", false, false},    {u"3 €", true, false},
        {u"$3", false, true},       {u"$", false, false},       {u"1e5", true, true},
        {u"1d-5", true, true},      {u"1e", false, false},      {u"e5", false, false},
        {u".", false, false},       {u",5", true, false},       {u"12x", false, false},
        {u"&HFF", true, true},      {u"&HG", false, false},     {u"1 2", false, false},
        {u"1e999", false, false},   {u"-$3.5", false, true},    {u"+", false, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(basic::isNumeric(QString::fromUtf16(c.text), spanish), c.spanish)
            << utf8(QString::fromUtf16(c.text));
        EXPECT_EQ(basic::isNumeric(QString::fromUtf16(c.text), english), c.english)
            << utf8(QString::fromUtf16(c.text));
    }
    EXPECT_EQ(basic::toDouble(u"-1.234,5"_s, spanish), -1234.5);
    EXPECT_EQ(basic::toDouble(u"(1,234.5)"_s, english), -1234.5);
    EXPECT_FALSE(basic::isNumeric(Variant::null()));
    EXPECT_TRUE(basic::isNumeric(Variant()));
}

TEST(Integers, RoundHalvesToEvenAndKeepTheirRange)
{
    EXPECT_EQ(basic::toInt16(2.5), 2);
    EXPECT_EQ(basic::toInt16(3.5), 4);
    EXPECT_EQ(basic::toInt16(-2.5), -2);
    EXPECT_EQ(basic::toInt16(32767.4), 32767);
    EXPECT_EQ(basic::toInt32(u"&HFFFF"_s), -1);
    EXPECT_EQ(basic::toInt32(Variant(true)), -1);
    EXPECT_EQ(basic::toInt32(Variant(basic::Decimal{u"-7.50"_s})), -8);

    EXPECT_EQ(errorOf([] { basic::toInt16(32767.5); }), basic::error::Overflow);
    EXPECT_EQ(errorOf([] { basic::toInt16(-32769); }), basic::error::Overflow);
    EXPECT_EQ(errorOf([] { basic::toInt32(2147483648.0); }), basic::error::Overflow);
    EXPECT_EQ(errorOf([] { basic::toInt32(std::numeric_limits<double>::quiet_NaN()); }),
              basic::error::Overflow);
    EXPECT_EQ(errorOf([] { basic::toInt32(u"x"_s); }), basic::error::TypeMismatch);
    EXPECT_EQ(errorOf([] { basic::toInt32(u""_s); }), basic::error::TypeMismatch);
    EXPECT_EQ(errorOf([] { basic::toInt32(Variant::null()); }), basic::error::InvalidNull);
}

TEST(NumberText, WritesFifteenDigitsAtMost)
{
    const std::pair<double, const char*> cases[] = {
        {0, "0"},
        {-0.5, "-0,5"},
        {0.1 + 0.2, "0,3"},
        {1234567, "1234567"},
        {123456789012345, "123456789012345"},
        {1e15, "1E+15"},
        {-1.25e300, "-1,25E+300"},
        {0.00001, "0,00001"},
        {1e-20, "1E-20"},
        {1.0 / 3, "0,333333333333333"},
        {100, "100"},
    };
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(utf8(basic::text(value, spanish)), expected);
    EXPECT_EQ(utf8(basic::text(true)), "True");
}

TEST(VariantText, IsWhatConcatenationGives)
{
    using basic::Moment;
    const qint64 afternoon = ((13 * 60LL + 5) * 60 + 9) * 10'000'000;
    const std::tuple<Variant, const char*, const char*> cases[] = {
        {Variant(), "", ""},
        {Variant::null(), "", ""},
        {Variant(u"  ñ€😀 "_s), "  ñ€😀 ", "  ñ€😀 "},
        {Variant(false), "False", "False"},
        {Variant(std::numeric_limits<qint64>::min()), "-9223372036854775808", "-9223372036854775808"},
        {Variant(1234.5), "1234,5", "1234.5"},
        {Variant(basic::Decimal{u"-12345678901234567890.1200"_s}), "-12345678901234567890,1200",
         "-12345678901234567890.1200"},
        {Variant(QByteArray("\x00\xab\x1f", 3)), "0x00AB1F", "0x00AB1F"},
        {Variant(Moment{{2024, 3, 9}, afternoon}), "9/3/2024 13:05:09", "3/9/2024 1:05:09 PM"},
        {Variant(Moment{{2024, 3, 9}, 0}), "9/3/2024", "3/9/2024"},
        {Variant(Moment{{1753, 1, 1}, 0}), "1/1/1753", "1/1/1753"},
        {Variant(Moment{Moment::zeroDay(), afternoon + 9'999'999}), "13:05:09", "1:05:09 PM"},
    };
    for (const auto& [value, inSpanish, inEnglish] : cases) {
        EXPECT_EQ(utf8(basic::text(value, spanish)), inSpanish);
        EXPECT_EQ(utf8(basic::text(value, english)), inEnglish);
    }
}

TEST(MomentFormat, WritesWhatEachLocaleWrites)
{
    const auto locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    ASSERT_GT(locales.size(), 400);
    const QTime times[] = {QTime(0, 0, 1), QTime(9, 5, 7), QTime(12, 0, 0), QTime(23, 59, 59)};
    for (const QLocale& locale : locales) {
        QString dayFormat = locale.dateFormat(QLocale::ShortFormat);
        if (!dayFormat.contains(u"yyyy"_s))
            dayFormat.replace(u"yy"_s, u"yyyy"_s);
        QString timeFormat = locale.timeFormat(QLocale::LongFormat).remove(u't').remove(u"()"_s).trimmed();
        for (const QDate& day : {QDate(1, 1, 1), QDate(1999, 12, 31), QDate(2024, 2, 9), QDate(9999, 10, 10)})
            for (const QTime& time : times) {
                const basic::Moment moment{day, time.msecsSinceStartOfDay() * 10'000LL};
                EXPECT_EQ(basic::text(Variant(moment), locale),
                          locale.toString(day, dayFormat) + u' ' + locale.toString(time, timeFormat))
                    << utf8(locale.name());
            }
        EXPECT_EQ(basic::text(Variant(basic::Moment{QDate(2024, 2, 9), 0}), locale),
                  locale.toString(QDate(2024, 2, 9), dayFormat))
            << "midnight is a day alone in " << utf8(locale.name());
    }
}

TEST(BoundedArray, KeepsItsBounds)
{
    basic::BoundedArray2<QString> names;
    EXPECT_EQ(names.lastRow(), -1);
    EXPECT_EQ(errorOf([&] { names(0, 0); }), basic::error::Subscript);

    names.Redim(200, 4);
    names(200, 4) = u"PRIMARY"_s;
    names(0, 1) = names(200, 4);
    EXPECT_EQ(names.at(0, 1), u"PRIMARY");
    const std::pair<int, int> outside[] = {{-1, 0}, {0, -1}, {201, 0}, {0, 5}};
    for (const auto& [row, column] : outside) {
        EXPECT_EQ(errorOf([&, row = row, column = column] { static_cast<void>(names.at(row, column)); }),
                  basic::error::Subscript);
        EXPECT_EQ(errorOf([&, row = row, column = column] { names(row, column) = u"x"_s; }),
                  basic::error::Subscript);
    }
    names.Redim(0, 4);
    EXPECT_EQ(names.at(0, 1), u"");
    EXPECT_EQ(errorOf([&] { names.Redim(-2, 0); }), basic::error::Subscript);
    EXPECT_EQ(names.lastRow(), 0);
}

TEST(BoundedArray, TellsItsListenersUntilTheyGo)
{
    basic::BoundedArray2<Variant> cells(3, 1);
    std::vector<std::pair<int, int>> seen;
    auto token = cells.subscribe(
        [&](const basic::ArrayChange& change) { seen.emplace_back(change.row, change.column); });
    cells(2, 1) = u"M"_s;
    cells.set(3, 0, 5);
    cells.Redim(1, 1);
    const auto copy = cells;
    token.reset();
    cells(0, 0) = true;
    const std::vector<std::pair<int, int>> expected{{2, 1}, {3, 0}, {-1, -1}};
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(copy.lastRow(), 1);
}

TEST(RuntimeErrors, CarryNumberAndSentence)
{
    try {
        basic::raise(basic::error::Subscript);
    } catch (const basic::RuntimeError& error) {
        EXPECT_EQ(error.number(), 9);
        EXPECT_EQ(error.description(), u"Subscript out of range");
    }
    try {
        basic::raise(2714, u"Ya hay un objeto llamado 'año'."_s);
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "Ya hay un objeto llamado 'año'.");
    }
}

} // namespace
