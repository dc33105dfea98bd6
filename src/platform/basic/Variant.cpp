#include "platform/basic/Variant.h"

#include "platform/basic/Numbers.h"
#include <QLocale>

using namespace Qt::StringLiterals;

namespace basic {

namespace {

constexpr qint64 ticksPerMillisecond = 10'000;

/// The locale's short date, with the century that some locales leave out.
QString dayText(const QDate& day, const QLocale& locale)
{
    QString format = locale.dateFormat(QLocale::ShortFormat);
    if (!format.contains("yyyy"_L1))
        format.replace("yy"_L1, "yyyy"_L1);
    return locale.toString(day, format);
}

/// The locale's time with seconds, without the time zone that the long form ends or begins with.
QString timeText(qint64 ticks, const QLocale& locale)
{
    const QTime time = QTime::fromMSecsSinceStartOfDay(static_cast<int>(ticks / ticksPerMillisecond));
    QString format = locale.timeFormat(QLocale::LongFormat);
    format.remove(u't');
    return locale.toString(time, format.remove("()"_L1).trimmed());
}

QString momentText(const Moment& moment, const QLocale& locale)
{
    if (moment.day == Moment::zeroDay())
        return timeText(moment.ticks, locale);
    const QString day = dayText(moment.day, locale);
    return moment.ticks == 0 ? day : day + u' ' + timeText(moment.ticks, locale);
}

struct Writer
{
    const QLocale& locale;

    QString operator()(bool value) const { return text(value); }
    QString operator()(qint64 value) const { return text(value); }
    QString operator()(double value) const { return text(value, locale); }
    QString operator()(const QString& value) const { return value; }
    QString operator()(const Moment& value) const { return momentText(value, locale); }
    QString operator()(const Decimal& value) const
    {
        return QString(value.digits).replace(u'.', locale.decimalPoint());
    }
    QString operator()(const QByteArray& value) const
    {
        return "0x"_L1 + QString::fromLatin1(value.toHex().toUpper());
    }
    template <class Nothing>
    QString operator()(const Nothing&) const
    {
        return {};
    }
};

} // namespace

Variant Variant::null()
{
    Variant result;
    result.m_value = NullValue{};
    return result;
}

QString text(const Variant& value)
{
    return text(value, QLocale());
}

QString text(const Variant& value, const QLocale& locale)
{
    return value.visit(Writer{locale});
}

} // namespace basic
