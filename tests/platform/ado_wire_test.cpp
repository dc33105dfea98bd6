// Data access over a real wire, against a server that answers as each test tells it.
#include "ado_scripted.h"

#include "platform/ado/Command.h"
#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/Recordset.h"
#include "platform/ado/Transcript.h"

#include <QLocale>
#include <algorithm>
#include <gtest/gtest.h>
#include <map>

using namespace Qt::StringLiterals;
using namespace scripted;
using ado::Recordset;

namespace {

class AdoWire : public testing::Test
{
protected:
    void SetUp() override
    {
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        connection.setCommandTimeout(60);
        connection.Open(server.connectionString());
    }

    Recordset open(const QString& text = u"select"_s)
    {
        Recordset recordset;
        recordset.setCursorType(1);
        recordset.setCursorLocation(3);
        recordset.Open(text, connection, -1, -1, 1);
        return recordset;
    }

    Server server;
    ado::Connection connection;
};

/// Columns of every type with a value each.
std::vector<std::pair<ColumnInfo, Value>> everyType()
{
    std::vector<std::pair<ColumnInfo, Value>> cells;
    for (const auto& sample : practice::test::samples())
        cells.push_back({{sample.name, sample.type}, practice::test::valueOf(sample)});
    cells.push_back({{"varbinary", {TypeId::VarBinary, 10, 0, 0}}, {practice::Bytes{0x00, 0xFF, 0x10}, {}}});
    cells.push_back({{"image", {TypeId::Image, 16, 0, 0}}, {practice::Bytes{0x01, 0x02}, {}}});
    cells.push_back({{"variant", {TypeId::SqlVariant, 8016, 0, 0}},
                     practice::test::valueOf(practice::test::samples()[9])});
    cells.back().second.variantType = practice::test::samples()[9].type;
    cells.push_back(
        {{"timestamp", {TypeId::Timestamp, 8, 0, 0}}, {practice::Bytes{0, 0, 0, 0, 0, 0, 0x07, 0xD1}, {}}});
    return cells;
}

bool isLong(const std::pair<ColumnInfo, Value>& cell)
{
    const auto& type = cell.first.type;
    return type.length == practice::maxLength || type.id == TypeId::Text || type.id == TypeId::NText ||
           type.id == TypeId::Image || type.id == TypeId::SqlVariant;
}

TEST_F(AdoWire, ReadsEveryType)
{
    std::map<std::string, std::string> expected{
        {"bit", "True"},
        {"real", "1,5"},
        {"float", "-0,25"},
        {"smallmoney", "-214748,3648"},
        {"money", "-922337203685477,5808"},
        {"decimal", "-1234567890123456789012345678,0123456789"},
        {"numeric", "1234567,89"},
        {"smalldatetime", "6/6/2079 23:59:00"},
        {"datetime", "1/1/1753 23:59:59"},
        {"date", "1/1/0001"},
        {"varbinary", "0x00FF10"},
        {"image", "0x0102"},
        {"variant", "-1234567890123456789012345678.0123456789"},
        {"timestamp", "0x00000000000007D1"},
    };
    for (const auto& sample : practice::test::samples())
        expected.try_emplace(sample.name, sample.text == nullptr ? "" : sample.text);

    auto cells = everyType();
    // Columns behind a long one are read one by one, those before it many rows at a time.
    for (const bool longFirst : {false, true}) {
        std::stable_partition(cells.begin(), cells.end(),
                              [&](const auto& cell) { return isLong(cell) == longFirst; });
        std::vector<ColumnInfo> columns;
        std::vector<Value> values;
        for (const auto& [column, value] : cells) {
            columns.push_back(column);
            values.push_back(value);
        }
        server.answer([=](ResultSink& sink) {
            sink.columns(columns);
            sink.row(values);
            sink.row(std::vector<Value>(columns.size()));
            sink.row(values);
            counted(sink, 3);
        });
        const Recordset recordset = open();
        ASSERT_EQ(recordset.RecordCount(), 3);
        ASSERT_EQ(recordset.FieldCount(), static_cast<int>(columns.size()));
        for (int column = 0; column < recordset.FieldCount(); ++column) {
            const std::string name = recordset.FieldName(column).toStdString();
            EXPECT_EQ(recordset.cellText(0, column).toStdString(), expected.at(name)) << name;
            EXPECT_EQ(recordset.cellText(2, column), recordset.cellText(0, column)) << name;
            EXPECT_TRUE(recordset.isNull(1, column)) << name;
            EXPECT_EQ(recordset.isNull(0, column), name == "null") << name;
            EXPECT_EQ(recordset.Value(qint64{1}, column), basic::Variant::null()) << name;
        }
        EXPECT_EQ(recordset.Value(u"BigInt"_s), basic::Variant(std::numeric_limits<qint64>::min()));
        EXPECT_EQ(recordset.Value(u"datetime"_s),
                  basic::Variant(basic::Moment{QDate(1753, 1, 1), 863'999'970'000}));
        EXPECT_EQ(recordset.Value(u"smalldatetime"_s),
                  basic::Variant(basic::Moment{QDate(2079, 6, 6), 863'400'000'000}));
    }
}

TEST_F(AdoWire, ReadsLongValuesWhole)
{
    // Lengths around the buffer of one call, where a piece may end within a character.
    const std::vector<ColumnInfo> columns{{"a", integer()},
                                          {"t", {TypeId::NVarChar, practice::maxLength, 0, 0}},
                                          {"b", {TypeId::VarBinary, practice::maxLength, 0, 0}},
                                          {"z", {TypeId::NVarChar, 30, 0, 0}}};
    const int lengths[] = {0, 1, 32766, 32767, 32768, 65533, 65534, 65535, 65536, 300'000};
    const auto textOf = [](int length) {
        std::string value = std::string(static_cast<std::size_t>(length % 5), 'x');
        while (value.size() + 4 <= static_cast<std::size_t>(length))
            value += value.size() % 3 == 0 ? "😀" : "ñ€";
        return value;
    };
    server.answer([&](ResultSink& sink) {
        sink.columns(columns);
        for (const int length : lengths)
            sink.row(std::vector<Value>{number(length),
                                        text(textOf(length)),
                                        {practice::Bytes(static_cast<std::size_t>(length), 0xA5), {}},
                                        text("fin ñ")});
        sink.row(std::vector<Value>{{}, {}, {}, {}});
        counted(sink, std::size(lengths) + 1);
    });
    const Recordset recordset = open();
    ASSERT_EQ(recordset.RecordCount(), static_cast<qint64>(std::size(lengths)) + 1);
    for (qint64 row = 0; row < static_cast<qint64>(std::size(lengths)); ++row) {
        const int length = lengths[row];
        EXPECT_EQ(recordset.Value(row, 0), basic::Variant(length));
        EXPECT_TRUE(recordset.cellText(row, 1).toStdString() == textOf(length)) << length;
        EXPECT_TRUE(recordset.Value(row, 2) == basic::Variant(QByteArray(length, '\xA5'))) << length;
        EXPECT_EQ(recordset.cellText(row, 3), u"fin ñ");
    }
    EXPECT_TRUE(recordset.isNull(std::size(lengths), 2));
}

TEST_F(AdoWire, CountsRowsAtAnyNumberOfThem)
{
    for (const int rows : {0, 1, 511, 512, 513, 1024, 5000, 20'000}) {
        server.answer([&](ResultSink& sink) { integers(sink, rows); });
        Recordset recordset = open();
        ASSERT_EQ(recordset.RecordCount(), rows);
        EXPECT_EQ(recordset.RecordsAffected(), rows);
        qint64 seen = 0;
        for (; !recordset.Eof(); recordset.MoveNext(), ++seen)
            ASSERT_EQ(recordset.Value(0), basic::Variant(seen));
        EXPECT_EQ(seen, rows);
        EXPECT_EQ(numberOf([&] { recordset.MoveNext(); }), basic::error::NoCurrentRecord);
        EXPECT_EQ(numberOf([&] { static_cast<void>(recordset.Value(0)); }), basic::error::NoCurrentRecord);
        if (rows > 0) {
            recordset.MoveFirst();
            EXPECT_EQ(recordset.Value(u"N"_s), basic::Variant(0));
            EXPECT_EQ(numberOf([&] { static_cast<void>(recordset.Value(u"m"_s)); }),
                      basic::error::ItemNotFound);
            EXPECT_EQ(numberOf([&] { static_cast<void>(recordset.Value(1)); }), basic::error::ItemNotFound);
            EXPECT_EQ(numberOf([&] { static_cast<void>(recordset.cellText(rows, 0)); }),
                      basic::error::Subscript);
        }
    }
}

TEST_F(AdoWire, SendsEveryTextAsTyped)
{
    const QString texts[] = {
        u"Select name from master.dbo.sysdatabases order by name"_s,
        u"  two  blanks\rand\r\nbreaks\t "_s,
        u"sp_helplogins"_s,
        u"exec sp_who 5"_s,
        u"select 'ñ€😀日本', '{d ''x''}?' -- ? {call}"_s,
        u"select {fn now()}"_s,
        u"COMMIT"_s,
        u"-- it's a comment"_s,
        QString(200'000, u'x'),
    };
    QStringList observed;
    ado::setStatementObserver([&](const QString& text) { observed += text; });
    std::vector<std::string> expected;
    for (const QString& text : texts) {
        connection.Execute(text, nullptr, -1);
        open(text);
        expected.insert(expected.end(), 2, text.toStdString());
    }
    connection.BeginTrans();
    connection.RollbackTrans();
    ado::Command command;
    command.setActiveConnection(connection);
    command.setCommandText(u"sp_helpuser"_s);
    static_cast<void>(command.Execute());
    expected.insert(expected.end(), {"BEGIN TRANSACTION", "ROLLBACK TRANSACTION", "sp_helpuser"});
    EXPECT_TRUE(server.engine.dialogue.heard() == expected);
    QStringList sent;
    for (const std::string& text : expected)
        sent += QString::fromStdString(text);
    EXPECT_TRUE(observed == sent);

    // So does what FreeTDS would rewrite, refuse or cut.
    for (const QString& text :
         {u"select {d '2020-01-01'}, ?"_s,
          u"/* /* */ ? */ select {fn now()}, '{', [?], \"{call\" -- {t '1'}"_s, u"{call sp_help}"_s,
          u"exec sp_help ?"_s, u"exec {?= call x}"_s, u"select 'ñ€😀{\uE0C0\uE0FF'"_s, u"{"_s,
          QString(u"select 1"_s + QChar(u'\0') + u", 2 {"_s), u"{d '"_s + QString(70'000, u'?') + u"'}"_s}) {
        observed.clear();
        connection.Execute(text);
        EXPECT_EQ(QString::fromStdString(server.engine.dialogue.heard().back()), text);
        EXPECT_EQ(observed, QStringList{text});
    }
    ado::setStatementObserver({});
}

TEST_F(AdoWire, StepsThroughTheResultsOfABatch)
{
    server.answer([](ResultSink& sink) {
        message(sink, 0, 0, "[before]");
        sink.done({});
        integers(sink, 2);
        failed(sink, 547, "[FK] conflict in \"año\"");
        message(sink, 3621, 0, "terminated");
        counted(sink, 7);
        integers(sink, 1);
        failed(sink, 2627, "duplicate");
    });
    Recordset first = open();
    EXPECT_EQ(first.RecordCount(), 2);
    EXPECT_EQ(first.Messages(), QStringList{u"[before]"_s});
    const auto error = errorOf([&] { static_cast<void>(first.NextRecordset()); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number(), 547);
    EXPECT_EQ(error->description(), u"[FK] conflict in \"año\"");
    auto second = first.NextRecordset();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->FieldCount(), 0);
    EXPECT_EQ(second->RecordsAffected(), 7);
    EXPECT_TRUE(second->Eof());

    // Another statement in between does not take the rest away.
    EXPECT_EQ(numberOf([&] { connection.Execute(u"other"_s); }), 547);
    auto third = second->NextRecordset();
    ASSERT_TRUE(third);
    EXPECT_EQ(third->RecordCount(), 1);
    EXPECT_EQ(numberOf([&] { static_cast<void>(third->NextRecordset()); }), 2627);
    EXPECT_FALSE(third->NextRecordset());
    EXPECT_EQ(first.RecordCount(), 2);
}

TEST_F(AdoWire, RaisesTheFirstErrorAndRunsTheRest)
{
    std::atomic<int> finished = 0;
    const auto late = [&](ResultSink& sink) {
        failed(sink, 208, "Invalid object name 'x'.");
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        failed(sink, 209, "later");
        integers(sink, 3);
        counted(sink, 1);
        ++finished;
    };
    std::atomic<bool> interrupted = false;
    server.engine.dialogue.setScript(
        [&](std::string_view, ResultSink& sink, const std::atomic<bool>& cancelled) {
            late(sink);
            interrupted = interrupted || cancelled;
        });
    EXPECT_EQ(numberOf([&] { connection.Execute(u"x"_s); }), 208);
    EXPECT_EQ(numberOf([&] { open(); }), 208);
    EXPECT_EQ(finished, 2);
    EXPECT_FALSE(interrupted);

    // In the middle of rows, at any number of them.
    for (const int rows : {0, 3, 512, 700}) {
        server.answer([rows](ResultSink& sink) {
            const std::vector<ColumnInfo> columns{{"n", integer()}};
            sink.columns(columns);
            for (int row = 0; row < rows; ++row)
                sink.row(std::vector<Value>{number(row)});
            failed(sink, 8134, "Divide by zero error encountered.");
        });
        EXPECT_EQ(numberOf([&] { open(); }), 8134) << rows;
        EXPECT_EQ(numberOf([&] { connection.Execute(u"x"_s); }), 8134) << rows;
    }
    EXPECT_EQ(connection.State(), 1);
}

TEST_F(AdoWire, TellsWhatAStatementAffectedAndSaid)
{
    server.answer([](ResultSink& sink) {
        counted(sink, 3);
        message(sink, 0, 0, "uno");
        integers(sink, 2);
        message(sink, 50000, 10, "dos");
        counted(sink, 0);
    });
    qint64 affected = -9;
    connection.Execute(u"x"_s, &affected, -1);
    EXPECT_EQ(affected, 0);
    EXPECT_EQ(connection.Messages(), QStringList({u"uno"_s, u"dos"_s}));
    server.answer([](ResultSink& sink) { sink.done({}); });
    connection.Execute(u"x"_s, &affected, -1);
    EXPECT_EQ(affected, -1);
    EXPECT_EQ(connection.Messages(), QStringList());
    const Recordset nothing = open();
    EXPECT_EQ(nothing.FieldCount(), 0);
    EXPECT_EQ(nothing.RecordsAffected(), -1);
}

TEST_F(AdoWire, EndsAStatementAtItsTimeLimit)
{
    connection.setCommandTimeout(1);
    server.engine.dialogue.setScript(
        [](std::string_view text, ResultSink& sink, const std::atomic<bool>& cancelled) {
            // Rows that trickle, so that no single wait is long; or none at all.
            const std::vector<ColumnInfo> columns{{"t", {TypeId::NVarChar, 4000, 0, 0}}};
            sink.columns(columns);
            const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
            while (!cancelled && std::chrono::steady_clock::now() < end) {
                if (text == "trickle")
                    sink.row(std::vector<Value>{scripted::text(std::string(4000, 'x'))});
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
            sink.done({});
        });
    for (const QString& text : {u"trickle"_s, u"silence"_s}) {
        EXPECT_EQ(numberOf([&] { open(text); }), ado::number::TimeOut) << text.toStdString();
        EXPECT_EQ(numberOf([&] { connection.Execute(text); }), ado::number::TimeOut) << text.toStdString();
        EXPECT_EQ(connection.State(), 1);
    }
    server.answer([](ResultSink& sink) { integers(sink, 1); });
    EXPECT_EQ(open().RecordCount(), 1);
}

TEST_F(AdoWire, RecordsetsOutliveTheirConnection)
{
    server.answer([](ResultSink& sink) {
        integers(sink, 2);
        integers(sink, 3);
    });
    Recordset recordset = open();
    Recordset copy = recordset;
    copy.MoveNext();
    connection = ado::Connection();
    EXPECT_EQ(connection.State(), 0);
    EXPECT_EQ(recordset.cellText(1, 0), u"1");
    EXPECT_EQ(copy.Value(0), basic::Variant(1));
    EXPECT_EQ(recordset.Value(0), basic::Variant(0));
    EXPECT_FALSE(recordset.NextRecordset());
    recordset.Close();
    EXPECT_EQ(copy.RecordCount(), 2);
    EXPECT_EQ(numberOf([&] { recordset.Close(); }), basic::error::ObjectClosed);
    EXPECT_EQ(numberOf([&] { static_cast<void>(recordset.Eof()); }), basic::error::ObjectClosed);
    EXPECT_EQ(numberOf([&] { recordset.Open(u"x"_s, connection); }), basic::error::BadConnection);
    EXPECT_EQ(numberOf([&] { connection.Execute(u"x"_s); }), basic::error::BadConnection);
    connection.Open(server.connectionString());
    EXPECT_EQ(numberOf([&] { connection.Open(server.connectionString()); }), basic::error::ObjectOpen);
    EXPECT_EQ(numberOf([&] { copy.Open(u"x"_s, connection); }), basic::error::ObjectOpen);
    connection.Close();
    connection.Close();
    EXPECT_EQ(connection.State(), 0);
}

TEST_F(AdoWire, LogsInWithAnyPassword)
{
    const QString base =
        u"Provider=SQLOLEDB.1;Data Source=127.0.0.1,%1;Initial Catalog=a b;User Id=sa;"_s.arg(
            server.listener.port());
    const std::pair<QString, const char*> cases[] = {
        {u"Password=;"_s, ""},         {u"Password=a}b{c;"_s, "a}b{c"},
        {u"Password={x};"_s, "{x}"},   {u"Password=\"a;b=c\";"_s, "a;b=c"},
        {u"Password=' x ';"_s, " x "}, {u"Password=ñ€😀'\";"_s, "ñ€😀'\""},
        {u"Password=x}}"_s, "x}}"},
    };
    for (const auto& [part, password] : cases) {
        server.engine.password = password;
        ado::Connection other;
        const auto error = errorOf([&, part = part] { other.Open(base + part, u""_s, u""_s, -1); });
        EXPECT_FALSE(error) << password << ": " << (error ? error->what() : "");
        EXPECT_EQ(server.engine.lastLogin.database, "a b");
        EXPECT_EQ(server.engine.lastLogin.application, "Quermo");
    }
    server.engine.password = "other";
    ado::Connection refused;
    const auto error = errorOf([&] { refused.Open(base + u"Password=x;"_s); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number(), 18456);
    EXPECT_EQ(error->description(), u"Login failed for user 'sa'.");
    EXPECT_EQ(refused.State(), 0);
    refused.Open(base, u""_s, u"other"_s);
    EXPECT_EQ(refused.State(), 1);
    EXPECT_EQ(numberOf([] { ado::Connection().Open(u"Data Source=x;User Id=;"_s); }), 18456);
}

} // namespace
