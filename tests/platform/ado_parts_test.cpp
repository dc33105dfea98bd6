#include "platform/ado/ConnectionString.h"
#include "platform/ado/Diagnostics.h"
#include "platform/ado/Driver.h"
#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/FieldValues.h"
#include "platform/ado/Odbc.h"
#include "platform/ado/ServerAddress.h"
#include "platform/ado/StatementText.h"
#include "platform/ado/Table.h"
#include "platform/ado/Watchdog.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"
#include "platform/basic/VariantText.h"

#include <QLocale>
#include <atomic>
#include <cstring>
#include <gtest/gtest.h>
#include <optional>

using namespace Qt::StringLiterals;
using namespace ado;

namespace {

template <class Call>
std::optional<basic::RuntimeError> errorOf(Call call)
{
    try {
        call();
    } catch (const basic::RuntimeError& error) {
        return error;
    }
    return std::nullopt;
}

template <class Call>
int numberOf(Call call)
{
    const auto error = errorOf(call);
    return error ? error->number() : 0;
}

std::string utf8(const QString& text)
{
    return text.toStdString();
}

TEST(ConnectionStrings, AreReadAsOleDbReadsThem)
{
    struct Case
    {
        QString text;
        QString server, catalog, user, password;
    };
    const Case cases[] = {
        {u"Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=master;User Id=sa;Password=;"_s, u"srv"_s,
         u"master"_s, u"sa"_s, u""_s},
        {u"server=a;ADDRESS = b ;database=x;uid=u;pwd=p"_s, u"b"_s, u"x"_s, u"u"_s, u"p"_s},
        {u"User Id=sa;Password=x;Data Source=other;Data Source=last;"_s, u"last"_s, u""_s, u"sa"_s, u"x"_s},
        {u"Password=\"a;b\"\"c\" ; User Id='o''x';"_s, u""_s, u""_s, u"o'x"_s, u"a;b\"c"_s},
        {u"Password=a\"b'c=d{}==;"_s, u""_s, u""_s, u""_s, u"a\"b'c=d{}=="_s},
        {u";; Password = two words  ;;Odd==key=1;User Id= ;"_s, u""_s, u""_s, u""_s, u"two words"_s},
        {u"Password='  ';User=ñ€😀"_s, u""_s, u""_s, u"ñ€😀"_s, u"  "_s},
    };
    for (const Case& c : cases) {
        const ConnectionRequest request = parseConnectionString(c.text);
        EXPECT_EQ(utf8(request.dataSource), utf8(c.server)) << utf8(c.text);
        EXPECT_EQ(utf8(request.catalog), utf8(c.catalog)) << utf8(c.text);
        EXPECT_EQ(utf8(request.user), utf8(c.user)) << utf8(c.text);
        EXPECT_EQ(utf8(request.password), utf8(c.password)) << utf8(c.text);
    }
    const ConnectionRequest request =
        parseConnectionString(u"Connect Timeout=7;Use Encryption for Data=True"_s);
    EXPECT_EQ(request.timeout, 7);
    EXPECT_TRUE(request.encrypt);

    // What a ";" or a leading quote in an unquoted password does.
    for (const QString& text : {u"Password=a;b;"_s, u"Password=\"abc;User Id=sa;"_s, u"Password='a'b;"_s,
                                u"=x;"_s, u"Connect Timeout=soon"_s})
        EXPECT_EQ(numberOf([&] { parseConnectionString(text); }), number::BadConnectionString) << utf8(text);
}

TEST(ServerAddresses, AreSplit)
{
    const std::pair<QString, ServerAddress> cases[] = {
        {u"srv"_s, {u"srv"_s, u""_s, 0}},
        {u" srv\\SQL2019 "_s, {u"srv"_s, u"SQL2019"_s, 0}},
        {u"srv,1500"_s, {u"srv"_s, u""_s, 1500}},
        {u"srv\\INST, 1500"_s, {u"srv"_s, u""_s, 1500}},
        {u"(local)"_s, {u"localhost"_s, u""_s, 0}},
        {u".\\SQLEXPRESS"_s, {u"localhost"_s, u"SQLEXPRESS"_s, 0}},
        {u"."_s, {u"localhost"_s, u""_s, 0}},
        {u",1433"_s, {u"localhost"_s, u""_s, 1433}},
        {u""_s, {u"localhost"_s, u""_s, 0}},
        {u"TCP:10.0.0.1,1444"_s, {u"10.0.0.1"_s, u""_s, 1444}},
        {u"[::1],1433"_s, {u"::1"_s, u""_s, 1433}},
        {u"fe80::1"_s, {u"fe80::1"_s, u""_s, 0}},
        {u"srv\\MSSQLSERVER"_s, {u"srv"_s, u""_s, 0}},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(parseServerAddress(text), expected) << utf8(text);
    for (const QString& text : {u"srv,"_s, u"srv,port"_s, u"srv,0"_s, u"srv,65536"_s})
        EXPECT_EQ(numberOf([&] { parseServerAddress(text); }), number::NoServer) << utf8(text);
}

TEST(Drivers, AreChosenByRank)
{
    const auto everything = [](const QString&) { return true; };
    const auto nothing = [](const QString&) { return false; };
    const RegisteredDriver free{u"FreeTDS"_s, u"libtdsodbc.so"_s};
    const RegisteredDriver ms9{u"ODBC Driver 9 for SQL Server"_s, u"/opt/9.so"_s};
    const RegisteredDriver ms18{u"ODBC Driver 18 for SQL Server"_s, u"/opt/18.so"_s};
    const RegisteredDriver other{u"PostgreSQL"_s, u"psqlodbc.so"_s};

    EXPECT_EQ(chooseDriver({free, ms9, ms18, other}, everything).name, ms18.name);
    EXPECT_EQ(chooseDriver({ms18, other, free}, nothing).name, free.name); // 18's library is gone
    EXPECT_EQ(chooseDriver({{u"TDS"_s, u"/x/libtdsodbc.so"_s}}, everything).name, u"TDS");

    const auto debian = [](const QString& path) {
        return path == u"/usr/lib/x86_64-linux-gnu/odbc/libtdsodbc.so";
    };
    const Driver unregistered = chooseDriver({other}, debian);
    EXPECT_EQ(unregistered.name, u"/usr/lib/x86_64-linux-gnu/odbc/libtdsodbc.so");
    EXPECT_EQ(unregistered.family, Driver::Family::FreeTds);

    const auto missing = errorOf([&] { chooseDriver({other}, nothing); });
    ASSERT_TRUE(missing);
    EXPECT_TRUE(missing->description().contains(u"tdsodbc"));
}

TEST(Drivers, GetTheirOwnConnectionString)
{
    const ConnectionRequest request{u""_s, u"a b"_s, u"sa"_s, u"x}y;{"_s, false, {}};
    const ServerAddress port{u"srv"_s, u""_s, 1500};
    EXPECT_EQ(utf8(odbcConnectionString({u"FreeTDS"_s, Driver::Family::FreeTds}, port, request)),
              "DRIVER={FreeTDS};SERVER={srv};PORT=1500;Database={a b};UID={sa};PWD={x}y;{};APP={Quermo};"
              "TDS_Version=7.4;ClientCharset=UTF-8;PacketSize=16384;Encryption=request;");
    const ServerAddress instance{u"srv"_s, u"I"_s, 0};
    EXPECT_EQ(utf8(odbcConnectionString({u"D"_s, Driver::Family::Microsoft}, instance, request)),
              "DRIVER={D};SERVER={tcp:srv\\I};Database={a b};UID={sa};PWD={x}}y;{};APP={Quermo};"
              "TrustServerCertificate=yes;Encrypt=no;");
    const ConnectionRequest impossible{u""_s, u""_s, u"sa"_s, u"a};UID={b"_s, false, {}};
    EXPECT_NE(numberOf([&] {
                  odbcConnectionString({u"FreeTDS"_s, Driver::Family::FreeTds}, port, impossible);
              }),
              0);
}

TEST(Diagnostics, LoseTheirOriginAndNothingElse)
{
    const std::pair<QString, QString> cases[] = {
        {u"[FreeTDS][SQL Server]Login failed."_s, u"Login failed."_s},
        {u"[FreeTDS][SQL Server][x] first"_s, u"[x] first"_s},
        {u"[FreeTDS][SQL Server][SQL Server] again"_s, u"[SQL Server] again"_s},
        {u"[FreeTDS][SQL Server][unixODBC][Driver Manager]"_s, u"[unixODBC][Driver Manager]"_s},
        {u"[Microsoft][ODBC Driver 18 for SQL Server][SQL Server]No."_s, u"No."_s},
        {u"[Microsoft][ODBC Driver 18 for SQL Server]Client."_s, u"Client."_s},
        {u"[unixODBC][Driver Manager]Can't open lib 'x'"_s, u"Can't open lib 'x'"_s},
        {u"[unixODBC][FreeTDS][SQL Server]Y"_s, u"Y"_s},
        {u"[dbo].[t] is full"_s, u"[dbo].[t] is full"_s},
        {u""_s, u""_s},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(utf8(withoutOriginGroups(text)), utf8(expected));
}

TEST(Diagnostics, TellTheServersErrorsFromTheClients)
{
    const Diagnostic terminated{u"01000"_s, 3621, u"The statement has been terminated."_s};
    const Diagnostic database{u"01000"_s, 5701, u"Changed database context."_s};
    const Diagnostic print{u"01000"_s, 0, u"hello"_s};
    const Diagnostic duplicate{u"23000"_s, 2627, u"Violation."_s};
    const Diagnostic second{u"42000"_s, 50000, u"later"_s};
    EXPECT_EQ(statementError({terminated, duplicate, second}).number(), 2627);
    EXPECT_EQ(messages({database, print, terminated, duplicate}), QStringList({print.text, terminated.text}));

    const Diagnostic refused{u"08S01"_s, 20009, u"Unable to connect"_s};
    const Diagnostic noHost{u"01000"_s, 20013, u"Unknown host machine name."_s};
    const Diagnostic endOfFile{u"01000"_s, 20017, u"Unexpected EOF"_s};
    const Diagnostic source{u"08001"_s, 0, u"Unable to connect to data source"_s};
    const Diagnostic login{u"28000"_s, 18456, u"Login failed for user 'x'."_s};
    const Diagnostic slow{u"HYT00"_s, 0, u"Timeout expired"_s};
    EXPECT_EQ(connectError({login, source}, u"s"_s).number(), 18456);
    EXPECT_EQ(connectError({slow, source}, u"s"_s).number(), number::TimeOut);
    for (const Diagnostic& cause : {refused, noHost, endOfFile}) {
        const auto error = connectError({source, cause}, u"srv, port 1500"_s);
        EXPECT_EQ(error.number(), number::NoServer);
        EXPECT_TRUE(error.description().contains(u"srv, port 1500"));
    }
    basic::setLanguage(basic::Language::Spanish);
    EXPECT_EQ(utf8(connectTimeOut(u"srv, puerto 1500"_s).description()),
              "Tiempo de espera agotado. El servidor no respondió a tiempo (srv, puerto 1500).");
    EXPECT_EQ(utf8(basic::RuntimeError(basic::error::DiskFull).description()), "Disco lleno");
    basic::setLanguage(basic::Language::English);
    EXPECT_EQ(utf8(connectTimeOut(u"srv, port 1500"_s).description()),
              "Timeout expired. The server did not answer in time (srv, port 1500).");
    EXPECT_EQ(utf8(basic::RuntimeError(basic::error::DiskFull).description()), "Disk full");
    EXPECT_EQ(statementError({endOfFile}).number(), number::DriverFailure);
    EXPECT_EQ(statementError({{u"HY000"_s, 0, u"Odd."_s}}).description(), u"Odd.");
}

TEST(StatementTexts, AreWrappedOnlyWhereADriverWouldRewriteThem)
{
    using enum Driver::Family;
    const QString unchanged[] = {
        u"select '?', \"{?}\", [{d}]] ?] -- ? {x}\n, /* ? ' {call x} */ 'it''s ?'"_s,
        u"select {fn now()}, {FN user()}"_s,
        u"select 'unterminated ? {"_s,
        u"-- it's {x}"_s,
        u"sp_help\rselect 4 / 2 - 1"_s,
        u"ñ€😀"_s,
    };
    for (const QString& text : unchanged) {
        EXPECT_EQ(utf8(textForDriver(text, FreeTds, false).text), utf8(text));
        EXPECT_EQ(utf8(textForDriver(text, Microsoft, false).text), utf8(text));
    }
    const QString rewritten[] = {u"select {d '2020-01-01'}"_s, u"{call sp_help}"_s,  u"{"_s, u"{ fn now()}"_s,
                                 u"-- x\n{d '1'}"_s,           u"/* /* */ {t '1'}"_s};
    for (const QString& text : rewritten) {
        EXPECT_EQ(utf8(textForDriver(text, FreeTds, false).text),
                  "EXEC(N'" + utf8(QString(text).replace(u"'"_s, u"''"_s)) + "')");
        EXPECT_EQ(utf8(textForDriver(text, Microsoft, false).text), utf8(text));
    }
    EXPECT_EQ(textForDriver(u"select 'a', ?"_s, Microsoft, false).text, u"EXEC(N'select ''a'', ?')");
    EXPECT_EQ(numberOf([] { textForDriver(u"delete t"_s + QChar(u'\0') + u" where 1=0"_s, FreeTds, false); }),
              number::BadStatement);
    EXPECT_EQ(numberOf([] { textForDriver(QString(), Microsoft, false); }), number::NoCommandText);
}

TEST(StatementTexts, TravelUnderStandInsThatTheyDoNotHold)
{
    const QString text = u"select {d '2020'} \uE0C0 ?"_s + QChar(u'\0') + QChar(0xD800) + u"? 😀"_s;
    const EncodedText encoded = textForDriver(text, Driver::Family::FreeTds, true);
    EXPECT_EQ(encoded.standIns.size(), 4U);
    QString restored = encoded.text;
    for (const StandIn& standIn : encoded.standIns) {
        EXPECT_FALSE(text.contains(QChar(standIn.sent)));
        EXPECT_FALSE(encoded.text.contains(QChar(standIn.meant)));
        restored.replace(QChar(standIn.sent), QChar(standIn.meant));
    }
    EXPECT_EQ(utf8(restored), utf8(text));
    EXPECT_TRUE(textForDriver(u"select '}'"_s, Driver::Family::FreeTds, true).standIns.empty());
    QString halves;
    for (char16_t half = 0xD800; half < 0xDA00; ++half)
        halves += QString(QChar(half)) + u' ';
    EXPECT_EQ(numberOf([&] { textForDriver(halves, Driver::Family::FreeTds, true); }), number::BadStatement);
}

/// Every kind of storage, with nulls at all places of a word and of a group, over several blocks.
TEST(Tables, GiveBackWhatWasAdded)
{
    constexpr qint64 rows = 10'000;
    Table table({{u"n"_s, Storage::Int32, FieldKind::Integer, 0},
                 {u"d"_s, Storage::Scaled128, FieldKind::Decimal, 4},
                 {u"t"_s, Storage::Text, FieldKind::Text, 0},
                 {u"b"_s, Storage::Binary, FieldKind::Binary, 0}});
    const QString samples[] = {u""_s,
                               u"plain"_s,
                               u"año"_s,
                               u"日本語"_s,
                               u"mostly plain €"_s,
                               QString(200, u'x'),
                               QString(u"\xD800 alone"_s),
                               u"😀"_s};
    const auto isNullAt = [](qint64 row) { return row % 7 == 3 || (row > 5000 && row < 5100); };
    for (qint64 row = 0; row < rows; ++row) {
        if (isNullAt(row)) {
            for (int column = 0; column < 4; ++column)
                table.builder(column).addNull();
        } else {
            const auto number = static_cast<std::int32_t>(row - 5000);
            const Int128 scaled = static_cast<Int128>(number) * 1'000'000'000'000'000'000;
            const QString& text = samples[row % 8];
            const QByteArray bytes = text.toUtf8();
            table.builder(0).addFixed(&number);
            table.builder(1).addFixed(&scaled);
            if (text.isValidUtf16() && row % 2 == 0)
                table.builder(2).addUtf8(bytes.constData(), static_cast<std::size_t>(bytes.size()));
            else
                table.builder(2).addUtf16(text);
            table.builder(3).addBinary(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        }
        table.rowsAdded(1);
    }
    table.seal();
    ASSERT_EQ(table.rowCount(), rows);
    for (qint64 row = 0; row < rows; ++row) {
        for (int column = 0; column < 4; ++column)
            ASSERT_EQ(table.isNull(row, column), isNullAt(row)) << row;
        if (isNullAt(row)) {
            ASSERT_TRUE(table.value(row, 2).isNull());
            ASSERT_EQ(table.text(row, 2, 0), QString());
            continue;
        }
        ASSERT_EQ(table.value(row, 0), basic::Variant(row - 5000));
        const QString digits =
            QString::number(row - 5000) + (row == 5000 ? u".0000"_s : u"00000000000000.0000"_s);
        ASSERT_EQ(utf8(table.value(row, 1).as<basic::Decimal>()->digits), utf8(digits));
        ASSERT_EQ(table.text(row, 2, 0), samples[row % 8]) << row;
        ASSERT_EQ(table.value(row, 3), basic::Variant(samples[row % 8].toUtf8()));
        ASSERT_EQ(table.text(row, 2, 3).left(3), samples[row % 8].left(3));
    }
}

TEST(Tables, TakeLittleMoreThanTheWire)
{
    // As SQL Server sends them: an int in 1 + 4 bytes, a varchar in 2 + n, a datetime in 1 + 8.
    constexpr qint64 rows = 100'000;
    Table table({{u"n"_s, Storage::Int32, FieldKind::Integer, 0},
                 {u"t"_s, Storage::Text, FieldKind::Text, 0},
                 {u"m"_s, Storage::Moment, FieldKind::Date, 0}});
    std::size_t wire = 0;
    for (qint64 row = 0; row < rows; ++row) {
        const auto number = static_cast<std::int32_t>(row);
        const QByteArray text = QByteArray::number(row % 100);
        table.builder(0).addFixed(&number);
        table.builder(1).addUtf8(text.constData(), static_cast<std::size_t>(text.size()));
        table.builder(2).addFixed(&row);
        table.rowsAdded(1);
        wire += 1 + 5 + 2 + static_cast<std::size_t>(text.size()) + 9;
    }
    table.seal();
    EXPECT_LT(table.memoryUsed(), wire * 3 / 2);
}

/// The text of one value that a driver gave; the number of the error when it is refused.
template <class Given>
std::string readBack(Storage storage, field::Add add, const Given& given, int scale = 0,
                     std::size_t length = sizeof(Given))
{
    const Column column{u"c"_s, storage, FieldKind::Decimal, scale};
    ColumnBuilder builder(storage);
    const int number = numberOf([&] { add(builder, column, reinterpret_cast<const char*>(&given), length); });
    if (number != 0)
        return number == number::DriverFailure ? "refused" : "another error";
    const basic::Variant value = builder.seal().value(column, 0);
    return utf8(basic::text(value, QLocale(QLocale::Spanish)));
}

SQL_NUMERIC_STRUCT numeric(std::uint64_t high, std::uint64_t low, bool isPositive, SQLSCHAR scale)
{
    SQL_NUMERIC_STRUCT value{38, scale, static_cast<SQLCHAR>(isPositive ? 1 : 0), {}};
    std::memcpy(value.val, &low, sizeof low);
    std::memcpy(value.val + sizeof low, &high, sizeof high);
    return value;
}

TEST(FieldValues, DecimalsKeepEveryDigitAndNoMore)
{
    using field::addNumeric;
    constexpr std::uint64_t nines18 = 999'999'999'999'999'999;
    constexpr std::uint64_t nines38High = 0x4B3B4CA85A86C47A;
    constexpr std::uint64_t nines38Low = 0x098A223FFFFFFFFF;
    const std::tuple<Storage, SQL_NUMERIC_STRUCT, const char*> cases[] = {
        {Storage::Scaled32, numeric(0, 0, true, 2), "0,00"},
        {Storage::Scaled32, numeric(0, 5, false, 2), "-0,05"},
        {Storage::Scaled32, numeric(0, 999'999'999, false, 2), "-9999999,99"},
        {Storage::Scaled32, numeric(0, 1'000'000'000, true, 2), "refused"},
        {Storage::Scaled32, numeric(1, 0, true, 2), "refused"},
        {Storage::Scaled32, numeric(0, 1, true, 3), "refused"}, // not the scale that was declared
        {Storage::Scaled64, numeric(0, nines18, true, 2), "9999999999999999,99"},
        {Storage::Scaled64, numeric(0, nines18 + 1, true, 2), "refused"},
        {Storage::Scaled128, numeric(nines38High, nines38Low, false, 2),
         "-999999999999999999999999999999999999,99"},
        {Storage::Scaled128, numeric(nines38High, nines38Low + 1, false, 2), "refused"},
        {Storage::Scaled128, numeric(~0ULL, ~0ULL, true, 2), "refused"},
    };
    for (const auto& [storage, given, expected] : cases)
        EXPECT_EQ(readBack(storage, addNumeric, given, 2), expected);
    EXPECT_EQ(readBack(Storage::Scaled32, addNumeric, numeric(0, 1, true, 2), 2, 18), "refused");
}

TEST(FieldValues, DatesOutsideTheirTypeAreNoDates)
{
    struct DateTime
    {
        std::int32_t days;
        std::uint32_t parts;
    };
    const std::pair<DateTime, const char*> dates[] = {
        {{0, 0}, "1/1/1900"},
        {{-53'690, 25'919'999}, "1/1/1753 23:59:59"},
        {{2'958'463, 25'919'999}, "31/12/9999 23:59:59"},
        {{2'958'464, 0}, "refused"},
        {{-693'596, 0}, "refused"},
        {{0, 25'920'000}, "refused"},
        {{0, 0xFFFFFFFF}, "refused"},
    };
    for (const auto& [given, expected] : dates)
        EXPECT_EQ(readBack(Storage::Moment, field::addDateTime, given), expected);
    EXPECT_EQ(readBack(Storage::Moment, field::addDateTime, DateTime{0, 0}, 0, 4), "refused");

    const std::pair<SQL_TIMESTAMP_STRUCT, const char*> small[] = {
        {{1900, 1, 1, 0, 1, 0, 0}, "1/1/1900 0:01:00"}, {{2079, 6, 6, 23, 59, 0, 0}, "6/6/2079 23:59:00"},
        {{2079, 6, 7, 0, 0, 0, 0}, "refused"},          {{1899, 12, 31, 0, 0, 0, 0}, "refused"},
        {{2020, 2, 30, 0, 0, 0, 0}, "refused"},         {{2020, 2, 29, 24, 0, 0, 0}, "refused"},
        {{2020, 2, 29, 0, 60, 0, 0}, "refused"},        {{2020, 2, 29, 0, 0, 60, 0}, "refused"},
    };
    for (const auto& [given, expected] : small)
        EXPECT_EQ(readBack(Storage::Minutes, field::addMinutes, given), expected);
}

TEST(FieldValues, NationalTextIsKeptUnitByUnit)
{
    const std::pair<std::u16string, std::size_t> texts[] = {
        {u"plain", 5}, {u"año ÿ", 5},   {u"año Ā", 7}, {u"日本語", 3 * 2},
        {u"😀", 4},     {u"a\xD83D", 4}, {u"", 0}};
    for (const auto& [units, bytes] : texts) {
        ColumnBuilder builder(Storage::Text);
        const Column column{u"c"_s, Storage::Text, FieldKind::Text, 0};
        field::addUtf16(builder, column, reinterpret_cast<const char*>(units.data()), units.size() * 2);
        EXPECT_EQ(builder.bytes(), bytes + 1) << "in the shortest encoding, behind a header of a byte";
        EXPECT_EQ(builder.seal().text(column, 0, 0).toStdU16String(), units);
    }
    EXPECT_EQ(readBack(Storage::Text, field::addUtf16, u"ab", 0, 3), "refused");
}

TEST(Watchdog, ActsOnlyDuringACallAndKnowsItsLimits)
{
    using namespace std::chrono_literals;
    Watchdog watchdog;
    std::atomic<int> acted = 0;
    const auto act = [&] { ++acted; };
    {
        const Watchdog::Limit limit(watchdog, 20ms, act, act);
        std::this_thread::sleep_for(60ms); // idle: seen by the next call
        EXPECT_EQ(acted, 0);
        EXPECT_TRUE(watchdog.expired());
    }
    {
        const Watchdog::Limit limit(watchdog, 20ms, act, act);
        const Watchdog::Call call(watchdog);
        for (int wait = 0; wait < 500 && acted == 0; ++wait)
            std::this_thread::sleep_for(10ms);
        EXPECT_EQ(acted, 1);
    }
    {
        const Watchdog::Limit limit(watchdog, 10min, act, act);
        EXPECT_FALSE(watchdog.expired());
    }
    const Watchdog::Limit none(watchdog, 0ms, act, act);
    std::this_thread::sleep_for(30ms);
    EXPECT_FALSE(watchdog.expired());
    EXPECT_EQ(acted, 1);
}

} // namespace
