#include "platform/basic/Numbers.h"

#include "platform/basic/RuntimeError.h"
#include <QLocale>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <system_error>

using namespace Qt::StringLiterals;

namespace basic {

namespace {

constexpr int significantDigits = 15;

bool isDigit(QChar sign)
{
    return sign >= u'0' && sign <= u'9';
}

bool isExponentSign(QChar sign)
{
    return sign == u'e' || sign == u'E' || sign == u'd' || sign == u'D';
}

/// The value of a number in C's form. What is too small for a double is 0.
double fromDigits(const QByteArray& digits)
{
    const char* const begin = digits.constData() + (digits.startsWith('+') ? 1 : 0);
    double value = 0;
    const auto outcome = std::from_chars(begin, digits.constEnd(), value);
    if (outcome.ec == std::errc::result_out_of_range) {
        const char first = *begin == '-' ? begin[1] : *begin;
        const bool isTiny = digits.contains("e-") || first == '0' || first == '.';
        if (!isTiny)
            raise(error::Overflow);
        return 0;
    }
    return value;
}

/// Position behind the digits that begin at `from`.
qsizetype skipDigits(QStringView text, qsizetype from)
{
    while (from < text.size() && isDigit(text[from]))
        ++from;
    return from;
}

/// Position behind an exponent at `from`, or `from` when no complete exponent stands there.
qsizetype skipExponent(QStringView text, qsizetype from)
{
    if (from >= text.size() || !isExponentSign(text[from]))
        return from;
    qsizetype digits = from + 1;
    if (digits < text.size() && (text[digits] == u'+' || text[digits] == u'-'))
        ++digits;
    const qsizetype end = skipDigits(text, digits);
    return end == digits ? from : end;
}

QByteArray withCExponent(QStringView number)
{
    QByteArray result = number.toLatin1().toLower();
    result.replace('d', 'e');
    return result;
}

struct WholeNumber
{
    double value;
    qsizetype end; ///< behind the digits and the type sign
};

/// A hexadecimal or octal number at the text's begin; none without a digit.
std::optional<WholeNumber> parseRadix(QStringView text)
{
    if (text.size() < 3 || text[0] != u'&')
        return std::nullopt;
    const bool hex = text[1].toUpper() == u'H';
    if (!hex && text[1].toUpper() != u'O')
        return std::nullopt;
    qsizetype end = 2;
    quint64 value = 0;
    const quint64 radix = hex ? 16 : 8;
    for (; end < text.size(); ++end) {
        bool ok = false;
        const quint64 digit = QString(text[end]).toUInt(&ok, static_cast<int>(radix));
        if (!ok)
            break;
        value = value * radix + digit;
        if (value > std::numeric_limits<quint32>::max())
            raise(error::Overflow);
    }
    if (end == 2)
        return std::nullopt;
    if (end < text.size() && text[end] == u'&')
        return WholeNumber{static_cast<double>(static_cast<qint32>(value)), end + 1};
    if (value <= std::numeric_limits<quint16>::max())
        return WholeNumber{static_cast<double>(static_cast<qint16>(value)), end};
    return WholeNumber{static_cast<double>(static_cast<qint32>(value)), end};
}

/// Takes one sign of `signs` off either end.
bool takeEnd(QStringView& text, QStringView sign)
{
    if (sign.isEmpty())
        return false;
    if (text.startsWith(sign)) {
        text = text.sliced(sign.size()).trimmed();
        return true;
    }
    if (text.endsWith(sign)) {
        text = text.chopped(sign.size()).trimmed();
        return true;
    }
    return false;
}

/// Takes the signs around the digits: currency and one of '+', '-' or parentheses, in any order.
/// The result tells whether the number is negative; none when there is more than one sign.
std::optional<bool> takeSigns(QStringView& text, const QLocale& locale)
{
    const QString currency = locale.currencySymbol();
    bool negative = false;
    bool hasSign = false;
    bool hasCurrency = false;
    while (!text.isEmpty()) {
        if (text.startsWith(u'(') && text.endsWith(u')')) {
            if (hasSign)
                return std::nullopt;
            hasSign = negative = true;
            text = text.sliced(1).chopped(1).trimmed();
        } else if (!hasCurrency && takeEnd(text, currency)) {
            hasCurrency = true;
        } else if (!hasSign && takeEnd(text, u"-")) {
            hasSign = negative = true;
        } else if (!hasSign && takeEnd(text, u"+")) {
            hasSign = true;
        } else {
            break;
        }
    }
    return negative;
}

bool isGroupSign(QChar sign, const QString& group)
{
    return group.startsWith(sign) || (sign.isSpace() && !group.isEmpty() && group[0].isSpace());
}

/// The digits, point and exponent of an unsigned number in C's form; none when the text is no number.
std::optional<QByteArray> toCForm(QStringView text, const QLocale& locale)
{
    const QString group = locale.groupSeparator();
    const QString point = locale.decimalPoint();
    QString plain;
    bool afterPoint = false;
    qsizetype position = 0;
    for (; position < text.size(); ++position) {
        const QChar sign = text[position];
        if (isDigit(sign)) {
            plain += sign;
        } else if (!afterPoint && text.sliced(position).startsWith(point)) {
            plain += u'.';
            afterPoint = true;
        } else if (afterPoint || plain.isEmpty() || !isGroupSign(sign, group)) {
            break;
        }
    }
    if (plain.isEmpty() || plain == u".")
        return std::nullopt;
    if (skipExponent(text, position) != text.size())
        return std::nullopt;
    return withCExponent(plain.append(text.sliced(position)));
}

std::optional<double> parse(const QString& text, const QLocale& locale)
{
    QStringView rest = QStringView(text).trimmed();
    if (rest.startsWith(u'&')) {
        const auto number = parseRadix(rest);
        return number && number->end == rest.size() ? std::optional(number->value) : std::nullopt;
    }
    const auto negative = takeSigns(rest, locale);
    if (!negative)
        return std::nullopt;
    const auto digits = toCForm(rest, locale);
    if (!digits)
        return std::nullopt;
    const double value = fromDigits(*digits);
    return *negative ? -value : value;
}

template <class Int>
Int toInt(double value)
{
    const double rounded = std::nearbyint(value);
    if (!(rounded >= std::numeric_limits<Int>::min() && rounded <= std::numeric_limits<Int>::max()))
        raise(error::Overflow);
    return static_cast<Int>(rounded);
}

/// At most 15 digits without an exponent, for numbers that 15 places on either side of the point hold.
QByteArray fixedDigits(double value, int decimals)
{
    QByteArray digits = QByteArray::number(value, 'f', decimals);
    if (digits.contains('.')) {
        while (digits.endsWith('0'))
            digits.chop(1);
        if (digits.endsWith('.'))
            digits.chop(1);
    }
    return digits;
}

QByteArray shortestDigits(double value)
{
    QByteArray scientific = QByteArray::number(value, 'e', significantDigits - 1);
    const auto mark = scientific.indexOf('e');
    const int exponent = scientific.sliced(mark + 1).toInt();
    QByteArray mantissa = scientific.first(mark);
    while (mantissa.endsWith('0'))
        mantissa.chop(1);
    if (mantissa.endsWith('.'))
        mantissa.chop(1);
    const auto places =
        mantissa.size() - (mantissa.startsWith('-') ? 1 : 0) - (mantissa.contains('.') ? 2 : 1);
    const auto decimals = static_cast<int>(places) - exponent;
    if (exponent < significantDigits && decimals <= significantDigits)
        return fixedDigits(value, std::max(decimals, 0));
    return mantissa + (exponent < 0 ? "E-" : "E+") +
           QByteArray::number(std::abs(exponent)).rightJustified(2, '0');
}

struct NumberOf
{
    double operator()(bool value) const { return value ? -1 : 0; }
    double operator()(qint64 value) const { return static_cast<double>(value); }
    double operator()(double value) const { return value; }
    double operator()(const Decimal& value) const { return fromDigits(value.digits.toLatin1()); }
    double operator()(const QString& value) const { return toDouble(value); }
    double operator()(std::monostate) const { return 0; }
    double operator()(const Moment&) const { raise(error::TypeMismatch); }
    double operator()(const QByteArray&) const { raise(error::TypeMismatch); }
    template <class Null>
    double operator()(const Null&) const
    {
        raise(error::InvalidNull);
    }
};

} // namespace

double val(QStringView text)
{
    QString packed;
    packed.reserve(text.size());
    for (const QChar sign : text)
        if (sign != u' ' && sign != u'\t' && sign != u'\n')
            packed += sign;
    if (packed.startsWith(u'&')) {
        const auto number = parseRadix(packed);
        return number ? number->value : 0;
    }
    const qsizetype begin = packed.startsWith(u'-') || packed.startsWith(u'+') ? 1 : 0;
    qsizetype end = skipDigits(packed, begin);
    if (end < packed.size() && packed[end] == u'.')
        end = skipDigits(packed, end + 1);
    const QStringView mantissa = QStringView(packed).sliced(begin, end - begin);
    if (mantissa.isEmpty() || mantissa == u".")
        return 0;
    end = skipExponent(packed, end);
    return fromDigits(withCExponent(QStringView(packed).first(end)));
}

bool isNumeric(const QString& text)
{
    return isNumeric(text, QLocale());
}

bool isNumeric(const QString& text, const QLocale& locale)
{
    try {
        return parse(text, locale).has_value();
    } catch (const RuntimeError&) {
        return false; // beyond the range of a number
    }
}

bool isNumeric(const Variant& value)
{
    switch (value.kind()) {
    case Variant::Kind::Null:
    case Variant::Kind::Date:
    case Variant::Kind::Binary:
        return false;
    case Variant::Kind::Text:
        return isNumeric(*value.as<QString>());
    default:
        return true;
    }
}

double toDouble(const QString& text)
{
    return toDouble(text, QLocale());
}

double toDouble(const QString& text, const QLocale& locale)
{
    const auto value = parse(text, locale);
    if (!value)
        raise(error::TypeMismatch);
    return *value;
}

double toDouble(const Variant& value)
{
    return value.visit(NumberOf{});
}

qint16 toInt16(double value)
{
    return toInt<qint16>(value);
}

qint16 toInt16(const QString& text)
{
    return toInt16(toDouble(text));
}

qint16 toInt16(const Variant& value)
{
    return toInt16(toDouble(value));
}

qint32 toInt32(double value)
{
    return toInt<qint32>(value);
}

qint32 toInt32(const QString& text)
{
    return toInt32(toDouble(text));
}

qint32 toInt32(const Variant& value)
{
    return toInt32(toDouble(value));
}

QString text(double value)
{
    return text(value, QLocale());
}

QString text(double value, const QLocale& locale)
{
    if (!std::isfinite(value))
        return std::isnan(value) ? u"NaN"_s : (value < 0 ? u"-Infinity"_s : u"Infinity"_s);
    return QString::fromLatin1(shortestDigits(value)).replace(u'.', locale.decimalPoint());
}

QString text(int value)
{
    return QString::number(value);
}

QString text(qint64 value)
{
    return QString::number(value);
}

QString text(bool value)
{
    return value ? u"True"_s : u"False"_s;
}

} // namespace basic
