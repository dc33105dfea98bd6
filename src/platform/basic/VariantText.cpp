#include "platform/basic/VariantText.h"

#include "platform/basic/MomentFormat.h"
#include "platform/basic/Numbers.h"
#include <QLocale>

using namespace Qt::StringLiterals;

namespace basic {

namespace {

/// Values of a column are written one after the other in one locale, whose formats take far longer to
/// work out than a date to write.
const MomentFormat& formatOf(const QLocale& locale)
{
    thread_local MomentFormat format(locale);
    if (format.locale() != locale)
        format = MomentFormat(locale);
    return format;
}

struct Writer
{
    const QLocale& locale;

    QString operator()(bool value) const { return text(value); }
    QString operator()(qint64 value) const { return text(value); }
    QString operator()(double value) const { return text(value, locale); }
    QString operator()(const QString& value) const { return value; }
    QString operator()(const Moment& value) const { return formatOf(locale).text(value); }
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

QString text(const Variant& value)
{
    return text(value, QLocale());
}

QString text(const Variant& value, const QLocale& locale)
{
    return value.visit(Writer{locale});
}

} // namespace basic
