#include "engine/backup/backup_work.h"

#include "engine/context/permissions.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>

namespace practice {
namespace {

std::string systemError(int code, const std::filesystem::path& path)
{
    std::error_code none;
    switch (code) {
    case ENOENT:
        return std::filesystem::is_directory(path.parent_path(), none)
                   ? "2(The system cannot find the file specified.)"
                   : "3(The system cannot find the path specified.)";
    case ENOTDIR:
        return "3(The system cannot find the path specified.)";
    case EBUSY:
        return "32(The process cannot access the file because it is being used by another process.)";
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
        return "5(Access is denied.)";
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return "112(There is not enough space on the disk.)";
    default:
        return "1117(The request could not be performed because of an I/O device error.)";
    }
}

Message messageOfFile(const BackupFileFailure& failure, const DeviceFile& device)
{
    using Work = BackupFileFailure::Work;
    const int number = failure.work == Work::Open ? 3201 : failure.work == Work::Write ? 3202 : 3203;
    return makeMessage(number, {device.shown, systemError(failure.code, device.path)});
}

Message messageOfDamage(const DamagedBackup& damage, const std::string& database)
{
    constexpr std::uint64_t page = 8192;
    return makeMessage(3183, {"1", std::to_string(damage.offset / page), database});
}

std::string thousandths(std::int64_t value)
{
    constexpr std::int64_t whole = 1000;
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%lld.%03lld", static_cast<long long>(value / whole),
                  static_cast<long long>(value % whole));
    return text.data();
}

constexpr std::uint64_t bytesOfPage = 8192;

} // namespace

void runBackupWork(SessionContext& session, const std::string& what, DeviceFile& device,
                   const std::function<void()>& work)
{
    Message first;
    try {
        return work();
    } catch (const SqlError& error) {
        first = error.message;
    } catch (const BackupFileFailure& failure) {
        first = messageOfFile(failure, device);
    } catch (const NotABackup& other) {
        first = makeMessage(other.empty ? 3254 : 3241, {device.shown});
    } catch (const DamagedBackup& damage) {
        first = messageOfDamage(damage, session.database()->name);
    } catch (const std::filesystem::filesystem_error& failure) {
        first = messageOfFile({BackupFileFailure::Work::Open, failure.code().value()}, device);
    }
    session.sendMessage(first);
    throw SqlError{makeMessage(3013, {what}), first.number};
}

DatabaseLock::DatabaseLock(SessionContext& session, int databaseId)
{
    const std::filesystem::path folder = session.dataDirectory() / "locks";
    std::filesystem::create_directories(folder);
    constexpr mode_t owner = 0600;
    const int handle =
        ::open((folder / std::to_string(databaseId)).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, owner);
    if (handle < 0)
        throw BackupFileFailure{BackupFileFailure::Work::Open, errno};
    file_ = std::make_unique<FileHandle>(handle);
    if (::flock(handle, LOCK_EX | LOCK_NB) != 0)
        raise(3023);
}

std::unique_ptr<Store> openWorkStore(SessionContext& session)
{
    auto store = std::make_unique<Store>(session.dataDirectory() / "store.db");
    store->setLockTimeout(session.store().lockTimeout());
    // What is committed is on the disk: a set that nobody knew of would tear the chain.
    execute(store->connection(), "PRAGMA synchronous=FULL; PRAGMA temp_store=FILE; PRAGMA secure_delete=OFF;"
                                 "PRAGMA cache_size=-65536");
    return store;
}

Progress progressOf(SessionContext& session, std::optional<int> stats)
{
    return [&session, stats, next = stats.value_or(0)](std::uint64_t done, std::uint64_t total) mutable {
        if (session.store().stopping())
            throw Cancelled{};
        constexpr int all = 100;
        if (!stats || total == 0)
            return;
        const auto percent = static_cast<int>(static_cast<double>(done) * all / static_cast<double>(total));
        for (; next <= percent && next < all; next += *stats)
            session.inform(3211, {std::to_string(next)});
    };
}

void tellSuccess(SessionContext& session, const std::string& what, const std::string& database,
                 const std::vector<BackedUpFile>& files, bool log, std::uint64_t bytes, int set,
                 std::optional<int> stats, std::chrono::steady_clock::time_point start)
{
    const std::uint64_t pages = (bytes + bytesOfPage - 1) / bytesOfPage;
    std::uint64_t rest = pages;
    std::uint64_t told = 0;
    for (const BackedUpFile& file : files) {
        if (log && file.groupId != 0)
            continue;
        const std::uint64_t share = file.groupId == 0 && !log ? 1 : std::exchange(rest, 0);
        told += share;
        session.inform(4035, {std::to_string(share), database, file.name, std::to_string(set)});
    }
    if (stats)
        session.inform(3211, {"100"});
    const auto spent =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    const std::int64_t milliseconds = std::max<std::int64_t>(spent.count(), 1);
    constexpr std::int64_t megabyte = 1 << 20;
    constexpr std::int64_t million = 1'000'000;
    const auto rate = static_cast<std::int64_t>(told * bytesOfPage) * million / (megabyte * milliseconds);
    session.inform(3014, {what, std::to_string(told), thousandths(milliseconds), thousandths(rate)});
}

void requireNoOpenTransaction(SessionContext& session)
{
    if (session.transactionCount() > 0)
        raise(3021);
}

void requireMayCreateDatabases(SessionContext& session)
{
    if (!hasServerRole(session, DbCreator))
        raise(262, {"CREATE DATABASE", "master"});
}

} // namespace practice
