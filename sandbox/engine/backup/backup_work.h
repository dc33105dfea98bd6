// What BACKUP and RESTORE do alike: their failures as the server's messages, their progress, their end.
#pragma once

#include "engine/backup/backup_options.h"
#include "engine/backup/set_reader.h"

#include <chrono>
#include <memory>

namespace practice {

/// Runs a statement's work; what ends it is told with the server's messages, and then that it ended.
/// @param what "BACKUP DATABASE", "RESTORE HEADERONLY" ...
void runBackupWork(SessionContext& session, const std::string& what, DeviceFile& device,
                   const std::function<void()>& work);

/// Whoever backs a database up or restores it does so alone.
class DatabaseLock
{
public:
    /// @throws SqlError 3023
    DatabaseLock(SessionContext& session, int databaseId);

private:
    std::unique_ptr<FileHandle> file_;
};

/// A connection of the work's own: other requests of its session's do not meet it.
[[nodiscard]] std::unique_ptr<Store> openWorkStore(SessionContext& session);

/// Tells each step of STATS, and lets a cancel end the work.
[[nodiscard]] Progress progressOf(SessionContext& session, std::optional<int> stats);

/// The messages of success: pages of each file, and the rate.
/// @param log true for a log set, which holds pages of the log alone
void tellSuccess(SessionContext& session, const std::string& what, const std::string& database,
                 const std::vector<BackedUpFile>& files, bool log, std::uint64_t bytes, int set,
                 std::optional<int> stats, std::chrono::steady_clock::time_point start);

/// @throws SqlError 3021
void requireNoOpenTransaction(SessionContext& session);
/// @throws SqlError 262 unless the login may create databases
void requireMayCreateDatabases(SessionContext& session);

} // namespace practice
