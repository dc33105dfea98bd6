#include "platform/ado/FieldReader.h"

#include "platform/ado/Diagnostics.h"
#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/TimeUnits.h"
#include "platform/basic/Language.h"

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
constexpr int shortestTime = 4;              ///< digits of a second with which a day fits 32 bits

/// Of its text form; tells a smalldatetime from a datetime, since FreeTDS can call both datetime.
constexpr SQLULEN smallDateTimeCharacters = 16;

FieldReader native(Storage storage, FieldKind kind, SQLSMALLINT cType)
{
    return {{{}, storage, kind, 0}, cType, storageWidth(storage)};
}

FieldReader formatted(Storage storage, FieldKind kind, int scale, field::Add add)
{
    return {{{}, storage, kind, scale}, SQL_C_CHAR, formattedWidth, false, 1, add};
}

/// SQL Server's name of a column's type: two types can be one type of the standard.
QString typeName(SQLHSTMT statement, SQLUSMALLINT number)
{
    QString name(32, u'\0');
    SQLSMALLINT bytes = 0;
    SQLColAttributeW(statement, number, SQL_DESC_TYPE_NAME, name.data(),
                     static_cast<SQLSMALLINT>(name.size() * 2), &bytes, nullptr);
    name.truncate(bytes / 2);
    return name;
}

/// A value as FreeTDS holds it in memory, which spares the driver's conversion.
FieldReader raw(Column column, std::size_t width, field::Add add)
{
    return {std::move(column), SQL_C_BINARY, width, false, 0, add};
}

FieldReader decimal(const QString& type, SQLULEN precision, int scale, Driver::Family family)
{
    const Storage storage = precision <= field::scaled32Digits   ? Storage::Scaled32
                            : precision <= field::scaled64Digits ? Storage::Scaled64
                                                                 : Storage::Scaled128;
    const bool isMoney = type.endsWith("money"_L1);
    if (family == Driver::Family::FreeTds && !isMoney)
        return raw({{}, storage, FieldKind::Decimal, scale}, sizeof(SQL_NUMERIC_STRUCT), field::addNumeric);
    return formatted(storage, FieldKind::Decimal, scale, field::addScaled);
}

FieldReader timestamp(const QString& type, SQLULEN characters, int scale, Driver::Family family)
{
    const bool isDateTime2 = type.startsWith("datetime2"_L1);
    const bool isSmall = characters == smallDateTimeCharacters;
    if (family == Driver::Family::FreeTds && !isDateTime2 && !isSmall)
        return raw({{}, Storage::Moment, FieldKind::Date, scale}, 2 * sizeof(std::int32_t),
                   field::addDateTime);
    FieldReader reader{{{}, Storage::Moment, FieldKind::Date, scale},
                       SQL_C_TYPE_TIMESTAMP,
                       sizeof(SQL_TIMESTAMP_STRUCT),
                       false,
                       0,
                       field::addTicks};
    if (isSmall) {
        reader.column.storage = Storage::Minutes;
        reader.add = field::addMinutes;
    } else if (isDateTime2) {
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
                       isWide ? field::addUtf16 : field::addUtf8};
    if (!reader.isLong)
        reader.width = (length + 1) * (isWide ? 2 : bytesPerCharacter);
    return reader;
}

/// nchar and nvarchar. FreeTDS turns text into UTF-8 through iconv, which costs as much as all else.
FieldReader national(SQLULEN length, Driver::Family family)
{
    FieldReader reader = textual(length, family);
    if (family != Driver::Family::FreeTds || reader.isLong)
        return reader;
    return raw(reader.column, length * sizeof(char16_t), field::addUtf16);
}

FieldReader binary(SQLULEN length)
{
    const bool isLong = length == 0 || length > longestBound;
    return {{{}, Storage::Binary, FieldKind::Binary, 0},
            SQL_C_BINARY,
            isLong ? longGuess : static_cast<std::size_t>(length),
            isLong,
            0,
            field::addBinary};
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
        return decimal(typeName(statement, number), length, scale, family);
    case SQL_TYPE_TIMESTAMP:
        return timestamp(typeName(statement, number), length, scale, family);
    case SQL_TYPE_DATE:
        return {{{}, Storage::Day, FieldKind::Date, 0},
                SQL_C_TYPE_DATE,
                sizeof(SQL_DATE_STRUCT),
                false,
                0,
                field::addDay};
    case typeTime:
        return formatted(scale <= shortestTime ? Storage::IsoTime32 : Storage::IsoTime64, FieldKind::Text,
                         scale, field::addTime);
    case typeOffset:
        return formatted(Storage::IsoOffset, FieldKind::Text, scale, field::addOffset);
    case SQL_GUID:
        return {
            {{}, Storage::Guid, FieldKind::Text, 0}, SQL_C_GUID, sizeof(SQLGUID), false, 0, field::addGuid};
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
    case SQL_WCHAR:
    case SQL_WVARCHAR:
        return national(length, family);
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
    const int mostDigits = reader.column.kind == FieldKind::Decimal ? field::mostDecimalDigits : tickDigits;
    if (reader.column.scale < 0 || reader.column.scale > mostDigits)
        basic::raise(
            number::DriverFailure,
            basic::uiText("El servidor declara la columna \"%1\" con una escala que ningún tipo tiene.",
                          "The server declares the column \"%1\" with a scale that no type has.")
                .arg(name));
    return reader;
}

} // namespace ado
