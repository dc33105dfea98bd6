// How fast a recordset is filled, read and shown, and what it weighs. The server runs in this process
// and sends the same rows again and again, so that little but the client's work is measured.
#include "platform/ado/Connection.h"
#include "platform/ado/Recordset.h"
#include "platform/ado/Table.h"
#include "tds/server.h"

#include <benchmark/benchmark.h>
#include <charconv>

using namespace Qt::StringLiterals;

namespace {

using practice::ColumnInfo;
using practice::TypeId;
using practice::Value;

/// Answers "N" with N rows of six columns.
class Session final : public practice::Session
{
public:
    void executeBatch(std::string_view text, practice::ResultSink& sink) override
    {
        std::int64_t rows = 0;
        std::from_chars(text.data(), text.data() + text.size(), rows);
        const std::vector<ColumnInfo> columns{
            {"id", {TypeId::Int, 4, 0, 0}},         {"total", {TypeId::Decimal, 9, 12, 2}},
            {"share", {TypeId::Float, 8, 0, 0}},    {"changed", {TypeId::DateTime, 8, 0, 0}},
            {"name", {TypeId::NVarChar, 60, 0, 0}}, {"note", {TypeId::VarChar, 200, 0, 0}}};
        std::vector<Value> row{{std::int64_t{0}, {}},
                               {practice::Decimal{12'345'678, 2, false}, {}},
                               {0.125, {}},
                               {practice::DateTimeValue{738'000, 432'000'000'000, 0}, {}},
                               {std::string("José Núñez Ibáñez"), {}},
                               {std::string("a note of some thirty letters."), {}}};
        sink.columns(columns);
        for (std::int64_t index = 0; index < rows; ++index) {
            row[0].data = index;
            sink.row(row);
        }
        sink.done({practice::Completion::Kind::Statement, static_cast<std::uint64_t>(rows), 0xC1});
    }
    void executeProcedure(std::string_view, std::vector<practice::Parameter>, practice::ResultSink&) override
    {}
    void beginTransaction(const std::string&, practice::ResultSink&) override {}
    void commitTransaction(practice::ResultSink&) override {}
    void rollbackTransaction(const std::string&, practice::ResultSink&) override {}
    void reset(practice::ResultSink&) override {}
    void cancel() noexcept override {}
    [[nodiscard]] const std::string& database() const override { return m_database; }
    [[nodiscard]] int id() const override { return 51; }

private:
    std::string m_database = "master";
};

class Engine final : public practice::Server
{
public:
    [[nodiscard]] std::unique_ptr<practice::Session> login(const practice::LoginRequest&,
                                                           practice::ResultSink&) override
    {
        return std::make_unique<Session>();
    }
    [[nodiscard]] const std::string& name() const override { return m_name; }

private:
    std::string m_name = "BENCH";
};

/// A connection with such a server.
struct Link
{
    Link() { connection.Open(u"Data Source=127.0.0.1,%1;User Id=sa;Password=x;"_s.arg(listener.port())); }

    ado::Recordset open(std::int64_t rows)
    {
        ado::Recordset recordset;
        recordset.Open(QString::number(rows), connection);
        return recordset;
    }

    Engine engine;
    practice::tds::TdsServer listener{engine, [] {
                                          practice::tds::ListenOptions options;
                                          options.port = 0;
                                          return options;
                                      }()};
    ado::Connection connection;
};

void fill(benchmark::State& state)
{
    Link link;
    std::size_t bytes = 0;
    for (auto _ : state)
        bytes = link.open(state.range(0)).memoryUsed();
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["bytes/row"] = static_cast<double>(bytes) / static_cast<double>(state.range(0));
}
BENCHMARK(fill)->Arg(1)->Arg(100'000)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The text of every cell, as a grid or a list asks for it.
void show(benchmark::State& state)
{
    Link link;
    const ado::Recordset recordset = link.open(100'000);
    for (auto _ : state)
        for (qint64 row = 0; row < recordset.RecordCount(); ++row)
            for (int column = 0; column < recordset.FieldCount(); ++column)
                benchmark::DoNotOptimize(recordset.cellText(row, column));
    state.SetItemsProcessed(state.iterations() * recordset.RecordCount() * recordset.FieldCount());
}
BENCHMARK(show)->Unit(benchmark::kMillisecond);

/// A statement without rows there and back.
void roundTrip(benchmark::State& state)
{
    Link link;
    for (auto _ : state)
        link.connection.Execute(u"0"_s);
}
BENCHMARK(roundTrip)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
