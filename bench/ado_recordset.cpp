// How fast a recordset is filled, read and shown, and what it weighs. The server runs in this process
// and sends the same rows again and again, so that little but the client's work is measured.
#include "platform/ado/Connection.h"
#include "platform/ado/Recordset.h"
#include "platform/ado/Table.h"
#include "rows_server.h"

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

/// A connection with such a server.
struct Link
{
    Link() { connection.Open(u"Data Source=127.0.0.1,%1;User Id=sa;Password=x;"_s.arg(server.port())); }

    ado::Recordset open(std::int64_t rows)
    {
        ado::Recordset recordset;
        recordset.Open(QString::number(rows), connection);
        return recordset;
    }

    bench::RowsServer server;
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
