#include "platform/basic/MomentFormat.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace basic {

namespace {

constexpr qint64 ticksPerMillisecond = 10'000;
constexpr int yearDigits = 4;
constexpr int noon = 12;

/// The locale's short date, with the century that some locales leave out.
QString dayFormat(const QLocale& locale)
{
    QString format = locale.dateFormat(QLocale::ShortFormat);
    if (!format.contains("yyyy"_L1))
        format.replace("yy"_L1, "yyyy"_L1);
    return format;
}

/// The locale's time with seconds, without the time zone that the long form ends or begins with.
QString timeFormat(const QLocale& locale)
{
    QString format = locale.timeFormat(QLocale::LongFormat);
    format.remove(u't');
    return format.remove("()"_L1).trimmed();
}

void addNumber(QString& text, int number, int digits)
{
    std::array<char16_t, 12> reversed{};
    int count = 0;
    for (; number > 0 || count < digits; number /= 10)
        reversed.at(static_cast<std::size_t>(count++)) = static_cast<char16_t>(u'0' + number % 10);
    while (count > 0)
        text += QChar(reversed.at(static_cast<std::size_t>(--count)));
}

} // namespace

MomentFormat::MomentFormat(const QLocale& locale)
    : m_locale(locale), m_day(parsed(dayFormat(locale))), m_time(parsed(timeFormat(locale)))
{}

QString MomentFormat::text(const Moment& moment) const
{
    constexpr qsizetype usualLength = 24;
    const auto time = QTime::fromMSecsSinceStartOfDay(static_cast<int>(moment.ticks / ticksPerMillisecond));
    const auto [year, month, day] = QCalendar().partsFromDate(moment.day);
    const int hourOfHalf = (time.hour() + noon - 1) % noon + 1;
    const Numbers numbers{year, month, day, time.hour(), hourOfHalf, time.minute(), time.second()};
    const bool hasDay = moment.day.isValid() && moment.day != Moment::zeroDay();
    const bool hasTime = !hasDay || moment.ticks != 0;

    QString text;
    text.reserve(usualLength);
    if (hasDay && m_day.pieces.empty())
        text += m_locale.toString(moment.day, m_day.format);
    else if (hasDay)
        write(text, m_day.pieces, numbers);
    if (hasDay && hasTime)
        text += u' ';
    if (hasTime && m_time.pieces.empty())
        text += m_locale.toString(time, m_time.format);
    else if (hasTime)
        write(text, m_time.pieces, numbers);
    return text;
}

MomentFormat::Pattern MomentFormat::parsed(const QString& format) const
{
    Pattern pattern{format, {}};
    if (m_locale.zeroDigit() != "0"_L1)
        return pattern;
    std::vector<Piece> pieces;
    for (qsizetype at = 0; at < format.size();) {
        const QChar letter = format[at];
        if (letter == u'\'')
            return pattern;
        if (!letter.isLetter()) {
            pieces.push_back({Part::Literal, 0, {QString(letter)}});
            ++at;
            continue;
        }
        qsizetype end = at + 1;
        while (end < format.size() &&
               (format[end] == letter || (letter.toLower() == u'a' && format[end].toLower() == u'p')))
            ++end;
        if (!addField(pieces, QStringView(format).sliced(at, end - at)))
            return pattern;
        at = end;
    }
    const bool hasHalfDays =
        std::ranges::any_of(pieces, [](const Piece& p) { return p.part == Part::HalfDay; });
    for (Piece& piece : pieces)
        if (piece.part == Part::Hour12 && !hasHalfDays)
            piece.part = Part::Hour;
    pattern.pieces = std::move(pieces);
    return pattern;
}

void MomentFormat::write(QString& text, const std::vector<Piece>& pieces, const Numbers& numbers)
{
    for (const Piece& piece : pieces) {
        if (piece.part == Part::Literal)
            text += piece.texts.front();
        else if (piece.part == Part::MonthName)
            text += piece.texts.value(numbers.at(Part::Month) - 1);
        else if (piece.part == Part::HalfDay)
            text += piece.texts[numbers.at(Part::Hour) < noon ? 0 : 1];
        else
            addNumber(text, numbers.at(piece.part), piece.digits);
    }
}

/// False for a field that only QLocale can write.
bool MomentFormat::addField(std::vector<Piece>& pieces, QStringView field) const
{
    const std::pair<char16_t, Part> numbers[] = {
        {u'd', Part::Day},    {u'M', Part::Month},  {u'y', Part::Year},   {u'H', Part::Hour},
        {u'h', Part::Hour12}, {u'm', Part::Minute}, {u's', Part::Second},
    };
    const auto known = std::ranges::find(numbers, field.front().unicode(), &std::pair<char16_t, Part>::first);
    const bool isWhole = field.front() == u'y' ? field.size() == yearDigits : field.size() <= 2;
    if (known != std::end(numbers) && isWhole) {
        pieces.push_back({known->second, static_cast<int>(field.size())});
        return true;
    }
    if (field == u"MMM" || field == u"MMMM") {
        const auto length = field.size() == 3 ? QLocale::ShortFormat : QLocale::LongFormat;
        pieces.push_back({Part::MonthName});
        for (int month = 1; month <= 12; ++month)
            pieces.back().texts += m_locale.monthName(month, length);
        return true;
    }
    if (field.first().toLower() != u'a' || field.size() > 2)
        return false;
    const QString letters = field.toString();
    pieces.push_back({Part::HalfDay,
                      0,
                      {m_locale.toString(QTime(1, 0), letters), m_locale.toString(QTime(13, 0), letters)}});
    return true;
}

} // namespace basic
