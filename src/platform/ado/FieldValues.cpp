#include "platform/ado/FieldValues.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/Odbc.h"
#include "platform/ado/TimeUnits.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"
#include <QDate>
#include <array>
#include <cstring>

using namespace Qt::StringLiterals;

namespace ado::field {

namespace {

constexpr qint64 partsPerSecond = 300;   ///< in which datetime counts
constexpr qint64 dayOf1900 = 693'595;    ///< 1 January 1900, in days since the year 1
constexpr qint64 lastDay = 3'652'058;    ///< 31 December 9999, the same
constexpr qint64 mostSmallDays = 65'535; ///< behind 1900, of a smalldatetime
constexpr int longestOffset = 14;        ///< hours from UTC

[[noreturn]] void refuseValue(const Column& column)
{
    basic::raise(number::DriverFailure, basic::uiText("No se pudo leer un valor de la columna \"%1\".",
                                                      "A value of the column \"%1\" could not be read.")
                                            .arg(column.name));
}

template <class T>
void addStored(ColumnBuilder& builder, T value)
{
    builder.addFixed(&value);
}

qint64 dayNumber(const Column& column, int year, int month, int day)
{
    const QDate date(year, month, day);
    if (!date.isValid() || year < 1 || year > 9999)
        refuseValue(column);
    return date.toJulianDay() - firstJulianDay;
}

qint64 secondsOf(const Column& column, int hour, int minute, int second)
{
    if (hour > 23 || minute > 59 || second > 59)
        refuseValue(column);
    return (hour * 60LL + minute) * 60 + second;
}

qint64 ticksOf(const Column& column, const SQL_TIMESTAMP_STRUCT& time)
{
    return dayNumber(column, time.year, time.month, time.day) * ticksPerDay +
           secondsOf(column, time.hour, time.minute, time.second) * ticksPerSecond +
           static_cast<qint64>(time.fraction) / 100 % ticksPerSecond;
}

template <class T>
T load(const char* data)
{
    T value;
    std::memcpy(&value, data, sizeof value);
    return value;
}

/// Reads digits of a text with a sign of progress.
class DigitReader
{
public:
    DigitReader(const Column& column, const char* data, std::size_t length)
        : m_column(column), m_at(data), m_end(data + length)
    {}

    bool take(char sign)
    {
        if (m_at == m_end || *m_at != sign)
            return false;
        ++m_at;
        return true;
    }

    /// A whole number of the digits that follow; refuses when there is none.
    int number()
    {
        int value = 0;
        const char* const begin = m_at;
        for (; atDigit() && m_at - begin <= mostNumberDigits; ++m_at)
            value = value * 10 + (*m_at - '0');
        if (m_at == begin || m_at - begin > mostNumberDigits)
            refuseValue(m_column);
        return value;
    }

    /// Digits behind a point, as if there were `scale` of them.
    qint64 fraction(int scale)
    {
        qint64 value = 0;
        for (; scale > 0; --scale) {
            value *= 10;
            if (atDigit())
                value += *m_at++ - '0';
        }
        while (atDigit())
            ++m_at;
        return value;
    }

    /// Digits before and behind a point, without the point; refuses more than `most` of them.
    Int128 scaled(int scale, int most)
    {
        while (take('0'))
            ;
        Int128 value = 0;
        for (int left = most - scale; atDigit(); ++m_at, --left) {
            if (left == 0)
                refuseValue(m_column);
            value = value * 10 + (*m_at - '0');
        }
        take('.');
        for (; scale > 0; --scale)
            value = value * 10 + (atDigit() ? *m_at++ - '0' : 0);
        if (m_at != m_end)
            refuseValue(m_column);
        return value;
    }

    void expect(char sign)
    {
        if (!take(sign))
            refuseValue(m_column);
    }

private:
    static constexpr int mostNumberDigits = 4;

    [[nodiscard]] bool atDigit() const { return m_at != m_end && *m_at >= '0' && *m_at <= '9'; }

    const Column& m_column;
    const char* m_at;
    const char* m_end;
};

void addDecimal(ColumnBuilder& builder, const Column& column, Int128 value)
{
    if (column.storage == Storage::Scaled32)
        addStored(builder, static_cast<std::int32_t>(value));
    else if (column.storage == Storage::Scaled64)
        addStored(builder, static_cast<std::int64_t>(value));
    else
        addStored(builder, value);
}

int digitsOf(Storage storage)
{
    return storage == Storage::Scaled32   ? scaled32Digits
           : storage == Storage::Scaled64 ? scaled64Digits
                                          : mostDecimalDigits;
}

unsigned __int128 powerOfTen(int exponent)
{
    unsigned __int128 power = 1;
    for (; exponent > 0; --exponent)
        power *= 10;
    return power;
}

/// "hh:mm:ss.fffffff" in units of the scale.
qint64 readTime(DigitReader& reader, const Column& column, int scale)
{
    const int hour = reader.number();
    reader.expect(':');
    const int minute = reader.number();
    qint64 value = secondsOf(column, hour, minute, reader.take(':') ? reader.number() : 0);
    for (int digit = 0; digit < scale; ++digit)
        value *= 10;
    return reader.take('.') ? value + reader.fraction(scale) : value;
}

} // namespace

void addTicks(ColumnBuilder& builder, const Column& column, const char* data, std::size_t)
{
    addStored(builder, ticksOf(column, load<SQL_TIMESTAMP_STRUCT>(data)));
}

void addMinutes(ColumnBuilder& builder, const Column& column, const char* data, std::size_t)
{
    const qint64 ticks = ticksOf(column, load<SQL_TIMESTAMP_STRUCT>(data));
    const qint64 days = ticks / ticksPerDay - dayOf1900;
    if (days < 0 || days > mostSmallDays)
        refuseValue(column);
    addStored(builder, static_cast<std::int32_t>(ticks / ticksPerSecond / 60));
}

void addDay(ColumnBuilder& builder, const Column& column, const char* data, std::size_t)
{
    const auto date = load<SQL_DATE_STRUCT>(data);
    addStored(builder, static_cast<std::int32_t>(dayNumber(column, date.year, date.month, date.day)));
}

void addGuid(ColumnBuilder& builder, const Column&, const char* data, std::size_t)
{
    const auto guid = load<SQLGUID>(data);
    const std::array<unsigned char, 8> head{
        static_cast<unsigned char>(guid.Data1 >> 24), static_cast<unsigned char>(guid.Data1 >> 16),
        static_cast<unsigned char>(guid.Data1 >> 8),  static_cast<unsigned char>(guid.Data1),
        static_cast<unsigned char>(guid.Data2 >> 8),  static_cast<unsigned char>(guid.Data2),
        static_cast<unsigned char>(guid.Data3 >> 8),  static_cast<unsigned char>(guid.Data3)};
    std::array<unsigned char, 16> bytes{};
    std::ranges::copy(head, bytes.begin());
    std::memcpy(bytes.data() + head.size(), guid.Data4, sizeof guid.Data4);
    builder.addFixed(bytes.data());
}

void addScaled(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length)
{
    DigitReader reader(column, data, length);
    const bool negative = reader.take('-');
    const Int128 size = reader.scaled(column.scale, digitsOf(column.storage));
    addDecimal(builder, column, negative ? -size : size);
}

void addNumeric(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length)
{
    if (length != sizeof(SQL_NUMERIC_STRUCT))
        refuseValue(column);
    const auto numeric = load<SQL_NUMERIC_STRUCT>(data);
    const auto size = load<unsigned __int128>(data + offsetof(SQL_NUMERIC_STRUCT, val));
    if (numeric.scale != column.scale || size >= powerOfTen(digitsOf(column.storage)))
        refuseValue(column);
    const auto value = static_cast<Int128>(size);
    addDecimal(builder, column, numeric.sign == 0 ? -value : value);
}

void addDateTime(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length)
{
    if (length != 2 * sizeof(std::int32_t))
        refuseValue(column);
    const qint64 days = dayOf1900 + load<std::int32_t>(data);
    const qint64 parts = load<std::uint32_t>(data + sizeof(std::int32_t));
    if (days < 0 || days > lastDay || parts >= secondsPerDay * partsPerSecond)
        refuseValue(column);
    // The server shows whole milliseconds: .000, .003, .007.
    const qint64 milliseconds = (parts * 10 + 1) / 3;
    addStored(builder, days * ticksPerDay + milliseconds * (ticksPerSecond / 1000));
}

void addTime(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length)
{
    DigitReader reader(column, data, length);
    const qint64 value = readTime(reader, column, column.scale);
    if (column.storage == Storage::IsoTime32)
        addStored(builder, static_cast<std::int32_t>(value));
    else
        addStored(builder, value);
}

/// "yyyy-mm-dd hh:mm:ss.fffffff +hh:mm"
void addOffset(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length)
{
    DigitReader reader(column, data, length);
    const int year = reader.number();
    reader.expect('-');
    const int month = reader.number();
    reader.expect('-');
    const int day = reader.number();
    reader.expect(' ');
    const qint64 ticks =
        dayNumber(column, year, month, day) * ticksPerDay + readTime(reader, column, tickDigits);
    reader.expect(' ');
    const bool west = reader.take('-');
    if (!west)
        reader.expect('+');
    const int hours = reader.number();
    reader.expect(':');
    const auto minutes = static_cast<std::int16_t>(hours * 60 + reader.number());
    if (minutes > longestOffset * 60)
        refuseValue(column);
    std::array<char, sizeof ticks + sizeof minutes> bytes{};
    const auto offset = static_cast<std::int16_t>(west ? -minutes : minutes);
    std::memcpy(bytes.data(), &ticks, sizeof ticks);
    std::memcpy(bytes.data() + sizeof ticks, &offset, sizeof offset);
    builder.addFixed(bytes.data());
}

void addUtf8(ColumnBuilder& builder, const Column&, const char* data, std::size_t length)
{
    builder.addUtf8(data, length);
}

void addUtf16(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length)
{
    if (length % 2 != 0)
        refuseValue(column);
    builder.addUtf16(
        QStringView(reinterpret_cast<const char16_t*>(data), static_cast<qsizetype>(length / 2)));
}

void addBinary(ColumnBuilder& builder, const Column&, const char* data, std::size_t length)
{
    builder.addBinary(data, length);
}

} // namespace ado::field
