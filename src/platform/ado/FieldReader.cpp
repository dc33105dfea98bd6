#include "platform/ado/FieldReader.h"

#include "platform/ado/Diagnostics.h"
#include "platform/ado/ErrorNumbers.h"
#include <QDate>
#include <cstring>

using namespace Qt::StringLiterals;

namespace ado {

namespace {

// SQL Server's own type codes, beside those of the standard.
constexpr SQLSMALLINT typeVariant = -150;
constexpr SQLSMALLINT typeUdt = -151;
constexpr SQLSMALLINT typeXml = -152;
constexpr SQLSMALLINT typeTime = -154;
constexpr SQLSMALLINT typeOffset = -155;

constexpr SQLULEN longestBound = 8000;       ///< the longest declared length of a type that is not (max)
constexpr std::size_t longGuess = 32'768;    ///< holds most long values in one call
constexpr std::size_t bytesPerCharacter = 3; ///< of UTF-8 for one UTF-16 unit, or one byte of a code page
constexpr std::size_t formattedWidth = 64;   ///< the text of a number or a time
constexpr qint64 ticksPerSecond = 10'000'000;
constexpr qint64 ticksPerDay = 86'400 * ticksPerSecond;
constexpr qint64 firstJulianDay = 1'721'426; ///< 1 January of the year 1
constexpr int shortestScaled = 9;            ///< decimal digits that 32 bits hold
constexpr int longestScaled64 = 18;          ///< decimal digits that 64 bits hold
constexpr int shortestTime = 4;              ///< digits of a second with which a day fits 32 bits

[[noreturn]] void refuseValue(const Column& column)
{
    basic::raise(number::DriverFailure,
                 u"A value of the column \"%1\" could not be read."_s.arg(column.name));
}

template <class T>
void addStored(ColumnBuilder& builder, T value)
{
    builder.addFixed(&value);
}

qint64 dayNumber(int year, unsigned month, unsigned day)
{
    return QDate(year, static_cast<int>(month), static_cast<int>(day)).toJulianDay() - firstJulianDay;
}

qint64 ticksOf(const SQL_TIMESTAMP_STRUCT& time)
{
    const qint64 seconds = (time.hour * 60LL + time.minute) * 60 + time.second;
    return dayNumber(time.year, time.month, time.day) * ticksPerDay + seconds * ticksPerSecond +
           time.fraction / 100;
}

template <class T>
T load(const char* data)
{
    T value;
    std::memcpy(&value, data, sizeof value);
    return value;
}

void addTicks(ColumnBuilder& builder, const Column&, const char* data, std::size_t)
{
    addStored(builder, ticksOf(load<SQL_TIMESTAMP_STRUCT>(data)));
}

void addMinutes(ColumnBuilder& builder, const Column&, const char* data, std::size_t)
{
    const qint64 ticks = ticksOf(load<SQL_TIMESTAMP_STRUCT>(data));
    addStored(builder, static_cast<std::int32_t>(ticks / ticksPerSecond / 60));
}

void addDay(ColumnBuilder& builder, const Column&, const char* data, std::size_t)
{
    const auto date = load<SQL_DATE_STRUCT>(data);
    addStored(builder, static_cast<std::int32_t>(dayNumber(date.year, date.month, date.day)));
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
        for (; atDigit(); ++m_at)
            value = value * 10 + (*m_at - '0');
        if (m_at == begin)
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

    /// Digits before and behind a point, without the point.
    Int128 scaled(int scale)
    {
        Int128 value = 0;
        for (; atDigit(); ++m_at)
            value = value * 10 + (*m_at - '0');
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
    [[nodiscard]] bool atDigit() const { return m_at != m_end && *m_at >= '0' && *m_at <= '9'; }

    const Column& m_column;
    const char* m_at;
    const char* m_end;
};

/// "hh:mm:ss.fffffff" in units of the scale.
qint64 readTime(DigitReader& reader, int scale)
{
    const int hour = reader.number();
    reader.expect(':');
    const int minute = reader.number();
    qint64 value = (hour * 60LL + minute) * 60;
    if (reader.take(':'))
        value += reader.number();
    for (int digit = 0; digit < scale; ++digit)
        value *= 10;
    return reader.take('.') ? value + reader.fraction(scale) : value;
}

void addScaled(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length)
{
    DigitReader reader(column, data, length);
    const bool negative = reader.take('-');
    const Int128 size = reader.scaled(column.scale);
    const Int128 value = negative ? -size : size;
    if (column.storage == Storage::Scaled32)
        addStored(builder, static_cast<std::int32_t>(value));
    else if (column.storage == Storage::Scaled64)
        addStored(builder, static_cast<std::int64_t>(value));
    else
        addStored(builder, value);
}

void addTime(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length)
{
    DigitReader reader(column, data, length);
    const qint64 value = readTime(reader, column.scale);
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
    constexpr int allDigits = 7;
    const qint64 ticks =
        readTime(reader, allDigits) +
        dayNumber(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) * ticksPerDay;
    reader.expect(' ');
    const bool west = reader.take('-');
    if (!west)
        reader.expect('+');
    const int hours = reader.number();
    reader.expect(':');
    const auto minutes = static_cast<std::int16_t>(hours * 60 + reader.number());
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

void addUtf16(ColumnBuilder& builder, const Column&, const char* data, std::size_t length)
{
    builder.addUtf16(
        QStringView(reinterpret_cast<const char16_t*>(data), static_cast<qsizetype>(length / 2)));
}

void addBinary(ColumnBuilder& builder, const Column&, const char* data, std::size_t length)
{
    builder.addBinary(data, length);
}

FieldReader native(Storage storage, FieldKind kind, SQLSMALLINT cType)
{
    return {{{}, storage, kind, 0}, cType, storageWidth(storage)};
}

FieldReader formatted(Storage storage, FieldKind kind, int scale, FieldReader::Add add)
{
    return {{{}, storage, kind, scale}, SQL_C_CHAR, formattedWidth, false, 1, add};
}

FieldReader decimal(SQLULEN precision, int scale)
{
    const Storage storage = precision <= shortestScaled    ? Storage::Scaled32
                            : precision <= longestScaled64 ? Storage::Scaled64
                                                           : Storage::Scaled128;
    return formatted(storage, FieldKind::Decimal, scale, addScaled);
}

FieldReader timestamp(SQLHSTMT statement, SQLUSMALLINT number, int scale)
{
    QString name(32, u'\0');
    SQLSMALLINT bytes = 0;
    SQLColAttributeW(statement, number, SQL_DESC_TYPE_NAME, name.data(),
                     static_cast<SQLSMALLINT>(name.size() * 2), &bytes, nullptr);
    name.truncate(bytes / 2);
    FieldReader reader{{{}, Storage::Moment, FieldKind::Date, scale},
                       SQL_C_TYPE_TIMESTAMP,
                       sizeof(SQL_TIMESTAMP_STRUCT),
                       false,
                       0,
                       addTicks};
    if (name.startsWith("smalldatetime"_L1)) {
        reader.column.storage = Storage::Minutes;
        reader.add = addMinutes;
    } else if (name.startsWith("datetime2"_L1)) {
        reader.column.storage = Storage::IsoMoment;
        reader.column.kind = FieldKind::Text;
    }
    return reader;
}

FieldReader textual(SQLULEN length, Driver::Family family)
{
    // FreeTDS gives text as it stands in its own memory, UTF-8; Microsoft's driver would give the
    // process's code page.
    const bool isWide = family == Driver::Family::Microsoft;
    FieldReader reader{{{}, Storage::Text, FieldKind::Text, 0},
                       static_cast<SQLSMALLINT>(isWide ? SQL_C_WCHAR : SQL_C_CHAR),
                       longGuess,
                       length == 0 || length > longestBound,
                       isWide ? 2U : 1U,
                       isWide ? addUtf16 : addUtf8};
    if (!reader.isLong)
        reader.width = (length + 1) * (isWide ? 2 : bytesPerCharacter);
    return reader;
}

FieldReader binary(SQLULEN length)
{
    const bool isLong = length == 0 || length > longestBound;
    return {{{}, Storage::Binary, FieldKind::Binary, 0},
            SQL_C_BINARY,
            isLong ? longGuess : static_cast<std::size_t>(length),
            isLong,
            0,
            addBinary};
}

FieldReader readerOf(SQLHSTMT statement, SQLUSMALLINT number, SQLSMALLINT type, SQLULEN length, int scale,
                     Driver::Family family)
{
    switch (type) {
    case SQL_BIT:
        return native(Storage::Bit, FieldKind::Boolean, SQL_C_BIT);
    case SQL_TINYINT:
        return native(Storage::UInt8, FieldKind::Integer, SQL_C_UTINYINT);
    case SQL_SMALLINT:
        return native(Storage::Int16, FieldKind::Integer, SQL_C_SSHORT);
    case SQL_INTEGER:
        return native(Storage::Int32, FieldKind::Integer, SQL_C_SLONG);
    case SQL_BIGINT:
        return native(Storage::Int64, FieldKind::Integer, SQL_C_SBIGINT);
    case SQL_REAL:
        return native(Storage::Float, FieldKind::Float, SQL_C_FLOAT);
    case SQL_FLOAT:
    case SQL_DOUBLE:
        return native(Storage::Double, FieldKind::Float, SQL_C_DOUBLE);
    case SQL_DECIMAL:
    case SQL_NUMERIC:
        return decimal(length, scale);
    case SQL_TYPE_TIMESTAMP:
        return timestamp(statement, number, scale);
    case SQL_TYPE_DATE:
        return {{{}, Storage::Day, FieldKind::Date, 0},
                SQL_C_TYPE_DATE,
                sizeof(SQL_DATE_STRUCT),
                false,
                0,
                addDay};
    case typeTime:
        return formatted(scale <= shortestTime ? Storage::IsoTime32 : Storage::IsoTime64, FieldKind::Text,
                         scale, addTime);
    case typeOffset:
        return formatted(Storage::IsoOffset, FieldKind::Text, scale, addOffset);
    case SQL_GUID:
        return {{{}, Storage::Guid, FieldKind::Text, 0}, SQL_C_GUID, sizeof(SQLGUID), false, 0, addGuid};
    case SQL_BINARY:
    case SQL_VARBINARY:
        return binary(length);
    case SQL_LONGVARBINARY:
    case typeUdt:
        return binary(0);
    case SQL_LONGVARCHAR:
    case SQL_WLONGVARCHAR:
    case typeXml:
    case typeVariant:
        return textual(0, family);
    default:
        return textual(length, family);
    }
}

} // namespace

FieldReader describeField(SQLHSTMT statement, SQLUSMALLINT number, Driver::Family family)
{
    constexpr qsizetype longestName = 256;
    QString name(longestName, u'\0');
    SQLSMALLINT nameLength = 0;
    SQLSMALLINT type = 0;
    SQLULEN length = 0;
    SQLSMALLINT scale = 0;
    SQLSMALLINT nullable = 0;
    if (!SQL_SUCCEEDED(SQLDescribeColW(statement, number, odbc::wide(name), longestName, &nameLength, &type,
                                       &length, &scale, &nullable)))
        throw statementError(readDiagnostics(SQL_HANDLE_STMT, statement));
    name.truncate(nameLength);
    FieldReader reader = readerOf(statement, number, type, length, scale, family);
    reader.column.name = name;
    return reader;
}

} // namespace ado
