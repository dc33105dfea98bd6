// What the practice server adds to the store below it. Each benchmark runs the same work both ways in
// one go and prints the ratio, so that the machine's speed cancels out.
#include "engine/api/session.h"
#include "engine/store/store.h"
#include "tds/byte_reader.h"
#include "tds/server.h"

#include "sandbox/raw_client.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace practice;

/// Counts rows and fails on errors.
class Counter final : public ResultSink
{
public:
    void columns(std::span<const ColumnInfo>) override {}
    void row(std::span<const Value>) override { ++rows; }
    void message(const Message& message) override
    {
        if (message.severity > 10)
            throw std::runtime_error(message.text);
    }
    void done(const Completion&) override {}
    void environment(EnvironmentChange, const std::string&, const std::string&) override {}
    void returnStatus(int) override {}
    void outputParameter(const std::string&, const SqlType&, const Value&) override {}

    std::int64_t rows = 0;
};

class Bench
{
public:
    Bench()
    {
        std::filesystem::create_directories(path);
        server =
            openServer({.dataDirectory = path / "store", .serverName = "BENCH", .saPassword = "Practice1!"});
        session = login();
    }
    ~Bench()
    {
        session.reset();
        server.reset();
        std::filesystem::remove_all(path);
    }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    [[nodiscard]] std::unique_ptr<Session> login() const
    {
        Counter ignored;
        LoginRequest request;
        request.user = "sa";
        request.database = "tempdb";
        request.trusted = true;
        return server->login(request, ignored);
    }
    std::int64_t run(const std::string& text) const { return run(*session, text); }
    static std::int64_t run(Session& session, const std::string& text)
    {
        Counter sink;
        session.executeBatch(text, sink);
        return sink.rows;
    }
    /// With @id and @t as a driver sends them.
    static void call(Session& session, const std::string& text, std::int64_t id)
    {
        const SqlType nvarchar{TypeId::NVarChar, 4000, 0, 0};
        Counter sink;
        session.executeProcedure("sp_executesql",
                                 {{"", nvarchar, Value{text, {}}},
                                  {"", nvarchar, Value{std::string("@id int, @t nvarchar(60)"), {}}},
                                  {"@id", {TypeId::Int, 4, 0, 0}, Value{id, {}}},
                                  {"@t", nvarchar, Value{std::string(sample), {}}}},
                                 sink);
    }

    static constexpr const char* sample = "a text of some length that a row may have";
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("bench-practice-" + std::to_string(getpid()));
    std::unique_ptr<Server> server;
    std::unique_ptr<Session> session;
};

template <typename Work>
double seconds(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void report(benchmark::State& state, double operations, double server, double sqlite)
{
    state.counters["server_per_s"] = operations / server;
    state.counters["sqlite_per_s"] = operations / sqlite;
    state.counters["ratio"] = sqlite / server;
}

std::string quoted(const char* text)
{
    return std::string("'") + text + "'";
}

constexpr int statements = 4000;

/// INSERT of one row, committed by itself, as text of its own each time or as one text with parameters.
void insertRow(benchmark::State& state)
{
    const bool parameters = state.range(0) != 0;
    const Bench bench;
    bench.run("CREATE TABLE t (id int NOT NULL PRIMARY KEY, t nvarchar(60) NULL)");
    Store sqlite(bench.path / "own.db"); // with the settings of the server's store
    execute(sqlite.connection(), "CREATE TABLE t (id INTEGER NOT NULL PRIMARY KEY, t TEXT)");
    Statement prepared(sqlite.connection(), "INSERT INTO t VALUES (?, ?)", true);
    int id = 0;
    for (auto _ : state) {
        const double server = seconds([&] {
            for (int i = id; i < id + statements; ++i) {
                if (parameters)
                    Bench::call(*bench.session, "INSERT INTO t VALUES (@id, @t)", i);
                else
                    bench.run("INSERT INTO t VALUES (" + std::to_string(i) + ", " + quoted(Bench::sample) +
                              ")");
            }
        });
        const double own = seconds([&] {
            for (int i = id; i < id + statements; ++i) {
                if (parameters)
                    prepared.bind(1, i).bind(2, Bench::sample).run();
                else
                    execute(sqlite.connection(), "INSERT INTO t VALUES (" + std::to_string(i) + ", " +
                                                     quoted(Bench::sample) + ")");
            }
        });
        id += statements;
        report(state, statements, server, own);
    }
}

/// SELECT of one row by its key.
void findRow(benchmark::State& state)
{
    const bool parameters = state.range(0) != 0;
    constexpr int rows = 100'000;
    const Bench bench;
    bench.run("CREATE TABLE t (id int NOT NULL PRIMARY KEY, t nvarchar(60) NULL)");
    bench.run("SET NOCOUNT ON DECLARE @i int SET @i = 0 BEGIN TRANSACTION WHILE @i < " +
              std::to_string(rows) + " BEGIN INSERT t VALUES (@i, " + quoted(Bench::sample) +
              ") SET @i = @i + 1 END COMMIT");
    Store sqlite(bench.path / "own.db");
    execute(sqlite.connection(),
            "CREATE TABLE t (id INTEGER NOT NULL PRIMARY KEY, t TEXT);"
            "WITH RECURSIVE n(i) AS (VALUES (0) UNION ALL SELECT i + 1 FROM n WHERE i < 99999)"
            "INSERT INTO t SELECT i, " +
                quoted(Bench::sample) + " FROM n");
    Statement prepared(sqlite.connection(), "SELECT t FROM t WHERE id = ?", true);
    const auto key = [](int i) { return i * 7919 % rows; };
    for (auto _ : state) {
        const double server = seconds([&] {
            for (int i = 0; i < statements; ++i) {
                if (parameters)
                    Bench::call(*bench.session, "SELECT t FROM t WHERE id = @id", key(i));
                else
                    bench.run("SELECT t FROM t WHERE id = " + std::to_string(key(i)));
            }
        });
        const double own = seconds([&] {
            for (int i = 0; i < statements; ++i) {
                if (parameters)
                    prepared.bind(1, key(i)).run();
                else
                    Statement(sqlite.connection(), "SELECT t FROM t WHERE id = " + std::to_string(key(i)))
                        .run();
            }
        });
        report(state, statements, server, own);
    }
}

/// Steps through a query and takes each value, as whoever reads rows does.
void readAll(Store& store, const std::string& text)
{
    Statement rows(store.connection(), text);
    const int columns = sqlite3_column_count(rows.handle());
    std::size_t sum = 0;
    while (rows.step()) {
        for (int i = 0; i < columns; ++i) {
            switch (sqlite3_column_type(rows.handle(), i)) {
            case SQLITE_INTEGER:
                sum += static_cast<std::size_t>(rows.integer(i));
                break;
            case SQLITE_FLOAT:
                sum += rows.real(i) > 0 ? 1U : 0U;
                break;
            default:
                sum += rows.text(i).size();
            }
        }
    }
    benchmark::DoNotOptimize(sum);
}

/// A table read whole over the wire, against SQLite stepping through the rows where they lie.
void streamTable(benchmark::State& state)
{
    constexpr int rows = 400'000;
    const Bench bench;
    bench.run("CREATE TABLE t (id int NOT NULL PRIMARY KEY, n int NULL, f float NULL, m decimal(12, 2) NULL, "
              "d datetime NULL, t nvarchar(60) NULL)");
    bench.run("SET NOCOUNT ON DECLARE @i int SET @i = 0 BEGIN TRANSACTION WHILE @i < " +
              std::to_string(rows) +
              " BEGIN INSERT t VALUES (@i, @i * 3, @i / 7.0, @i / 100.0, '20240229 12:34:56', " +
              quoted(Bench::sample) + ") SET @i = @i + 1 END COMMIT");
    Store store(bench.path / "store" / "store.db");
    Statement name(store.connection(), "SELECT 'u' || dbid || '_' || id FROM cat_object WHERE name = 't'");
    name.step();
    const std::string table = name.string(0);
    name.reset();
    tds::ListenOptions options;
    options.port = 0;
    tds::TdsServer listener(*bench.server, options);
    test::RawClient client(listener.port());
    (void)client.ask(test::loginPacket({"Practice1!", 32'767, "tempdb"}));
    for (auto _ : state) {
        std::size_t bytes = 0;
        const double server = seconds([&] {
            client.send(test::batchPacket("SELECT * FROM t"));
            bytes = client.drain();
        });
        const double bare = seconds([&] { Statement(store.connection(), "SELECT * FROM " + table).run(); });
        const double own = seconds([&] { readAll(store, "SELECT * FROM " + table); });
        report(state, rows, server, own);
        state.counters["ratio_to_bare_steps"] = bare / server;
        state.counters["MB_per_s"] = double(bytes) / server / 1e6;
    }
}

/// Key look-ups, every tenth statement an INSERT, by 50 sessions at once and by one.
void manySessions(benchmark::State& state)
{
    const auto sessions = static_cast<int>(state.range(0));
    const Bench bench;
    bench.run("CREATE TABLE t (id int NOT NULL PRIMARY KEY, t nvarchar(60) NULL)");
    std::vector<std::unique_ptr<Session>> all;
    for (int i = 0; i < sessions; ++i)
        all.push_back(bench.login());
    int id = 0;
    const auto work = [](Session& session, int from, int count) {
        for (int i = from; i < from + count; ++i)
            Bench::run(session, i % 10 == 0 ? "INSERT INTO t VALUES (" + std::to_string(i) + ", 'x')"
                                            : "SELECT t FROM t WHERE id = " + std::to_string(i / 10 * 10));
    };
    for (auto _ : state) {
        const double one = seconds([&] { work(*bench.session, id, statements); });
        id += statements;
        const double many = seconds([&] {
            std::vector<std::thread> threads;
            for (auto& session : all) {
                threads.emplace_back(work, std::ref(*session), id, statements / 10);
                id += statements / 10;
            }
            for (std::thread& thread : threads)
                thread.join();
        });
        const double rate = statements / 10.0 * sessions / many;
        state.counters["one_per_s"] = statements / one;
        state.counters["all_per_s"] = rate;
        state.counters["ratio"] = rate * one / statements;
    }
}

/// The list of a database's tables, and one table's columns, among 1,000 tables and among 10,000.
void readCatalog(benchmark::State& state)
{
    const Bench bench;
    const auto create = [&bench](int from, int to) {
        bench.run("BEGIN TRANSACTION");
        for (int i = from; i < to; ++i)
            bench.run("CREATE TABLE tabla" + std::to_string(i) +
                      " (id int NOT NULL PRIMARY KEY, nombre nvarchar(40))");
        bench.run("COMMIT");
    };
    const auto time = [&bench](const std::string& text, int count) {
        bench.run(text);
        double best = 1e9;
        for (int i = 0; i < count; ++i)
            best = std::min(best, seconds([&] { bench.run(text); }));
        return best;
    };
    const std::string list = "SELECT name FROM sysobjects WHERE xtype = 'U' ORDER BY name";
    const std::string columns =
        "SELECT c.name, t.name, c.length FROM syscolumns c, systypes t "
        "WHERE c.xusertype = t.xusertype AND c.id = OBJECT_ID('tabla500') ORDER BY c.colid";
    const std::string indexes =
        "SELECT o.name, i.rows FROM sysobjects o, sysindexes i WHERE o.id = i.id AND i.indid < 2 "
        "AND o.xtype = 'U' ORDER BY o.name";
    for (auto _ : state) {
        create(0, 1000);
        const double fewList = time(list, 20);
        const double fewColumns = time(columns, 20);
        const double fewIndexes = time(indexes, 3);
        state.counters["create_s"] = seconds([&] { create(1000, 10'000); });
        const double manyList = time(list, 5);
        state.counters["list_ms"] = manyList * 1e3;
        state.counters["list_ratio"] = manyList / fewList;
        state.counters["columns_ratio"] = time(columns, 20) / fewColumns;
        const double manyIndexes = time(indexes, 1);
        state.counters["rows_ms"] = manyIndexes * 1e3;
        state.counters["rows_ratio"] = manyIndexes / fewIndexes;
    }
}

} // namespace

BENCHMARK(insertRow)->ArgName("parameters")->Arg(0)->Arg(1)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(findRow)->ArgName("parameters")->Arg(0)->Arg(1)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(streamTable)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(manySessions)->ArgName("sessions")->Arg(50)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(readCatalog)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
