// BACKUP and RESTORE of rows against SQLite's own backup interface over the same store.
//
// bench_backup [MEGABYTES] [FOLDER]: once each way, twice over; the ratios, and the memory at its highest.
#include "engine/api/session.h"
#include "engine/store/store.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace practice;

/// Fails on errors.
class Silent final : public ResultSink
{
public:
    void columns(std::span<const ColumnInfo>) override {}
    void row(std::span<const Value>) override {}
    void message(const Message& message) override
    {
        if (message.severity > 10)
            throw std::runtime_error(message.text);
    }
    void done(const Completion&) override {}
    void environment(EnvironmentChange, const std::string&, const std::string&) override {}
    void returnStatus(int) override {}
    void outputParameter(const std::string&, const SqlType&, const Value&) override {}
};

template <typename Work>
double seconds(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Into a database with the store's settings, on the disk at the end, as a backup is.
void copyWithSqlite(const std::filesystem::path& from, const std::filesystem::path& to)
{
    std::filesystem::remove(to);
    const Store source(from);
    sqlite3* target = nullptr;
    if (sqlite3_open(to.c_str(), &target) != SQLITE_OK)
        throw std::runtime_error("cannot open the copy");
    sqlite3_backup* backup = sqlite3_backup_init(target, "main", source.connection(), "main");
    constexpr int pagesOfStep = 1000;
    while (sqlite3_backup_step(backup, pagesOfStep) == SQLITE_OK) {
    }
    sqlite3_backup_finish(backup);
    sqlite3_close(target);
}

long peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

void fill(Session& session, std::int64_t megabytes)
{
    Silent sink;
    constexpr int bytesOfRow = 250;
    const std::int64_t rows = megabytes * 1'000'000 / bytesOfRow;
    session.executeBatch("CREATE DATABASE Grande", sink);
    session.executeBatch("USE Grande", sink);
    session.executeBatch(
        "CREATE TABLE t (id int IDENTITY PRIMARY KEY, n int NOT NULL, f float NULL, d datetime NULL, "
        "t nvarchar(300) NULL)",
        sink);
    session.executeBatch(
        "INSERT INTO t (n, f, d, t) SELECT TOP " + std::to_string(rows) +
            " a.id % 1000, a.id / 7.0, a.crdate, REPLICATE(a.name + b.name, 7) FROM "
            "master..sysobjects a, master..sysobjects b, master..sysobjects c, master..sysobjects d",
        sink);
    session.executeBatch("USE master", sink);
}

void measure(Session& session, const std::filesystem::path& folder)
{
    Silent sink;
    const std::filesystem::path store = folder / "store" / "store.db";
    const std::string disk = "DISK = 'C:" + (folder / "a.bak").string() + "'";
    execute(Store(store).connection(), "PRAGMA wal_checkpoint(TRUNCATE)");
    const double bytes = static_cast<double>(std::filesystem::file_size(store)) / 1e6;
    const double sqlite = seconds([&] { copyWithSqlite(store, folder / "copy.db"); });
    const double backup =
        seconds([&] { session.executeBatch("BACKUP DATABASE Grande TO " + disk + " WITH INIT", sink); });
    const double verify = seconds([&] { session.executeBatch("RESTORE VERIFYONLY FROM " + disk, sink); });
    const double restore =
        seconds([&] { session.executeBatch("RESTORE DATABASE Grande FROM " + disk, sink); });
    std::printf("store %.0f MB: sqlite %.2f s, backup %.2f s (ratio %.2f), verify %.2f s, restore %.2f s "
                "(ratio %.2f); "
                "at most %ld MB of memory\n",
                bytes, sqlite, backup, sqlite / backup, verify, restore, sqlite / restore, peakMegabytes());
}

} // namespace

int main(int count, char** arguments)
try {
    const std::int64_t megabytes = count > 1 ? std::atoll(arguments[1]) : 1000;
    const std::filesystem::path folder =
        std::filesystem::path(count > 2 ? arguments[2] : std::filesystem::temp_directory_path().c_str()) /
        ("bench-backup-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    {
        const auto server = openServer(
            {.dataDirectory = folder / "store", .serverName = "BENCH", .saPassword = "Practice1!"});
        Silent sink;
        LoginRequest request;
        request.user = "sa";
        request.trusted = true;
        const auto session = server->login(request, sink);
        fill(*session, megabytes);
        std::printf("filled; at most %ld MB of memory\n", peakMegabytes());
        for (int round = 0; round < 2; ++round)
            measure(*session, folder);
    }
    std::filesystem::remove_all(folder);
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
