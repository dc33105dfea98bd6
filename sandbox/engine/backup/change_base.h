// What the store remembers of a database's backups, so that the next one finds what has changed.
//
// For each chunk of rows it keeps the checksum that the chunk had at two bases: the last full set,
// for differential sets, and the last log set, for log sets. A chunk that was something else at any
// backup since then has no checksum any more and goes into every set until its base is made anew:
// so a set is right on top of each one before it, not only on its base.
#pragma once

#include "engine/backup/set_header.h"
#include "engine/store/store.h"

#include <optional>

namespace practice {

/// Makes the tables, unless they are there. What belongs to a database goes with it.
void defineBackupTables(sqlite3* connection);

enum class ChangeBase : std::uint8_t
{
    Full = 0,
    Log = 1
};

struct BackupHistory
{
    Digest fork{};
    std::uint64_t lsn = 0;     ///< of the last set
    std::uint64_t fullLsn = 0; ///< of the last full one
    Digest fullId{};
    std::optional<std::uint64_t> logLsn; ///< where the next log set begins; none without a chain of logs
};

/// None before the first full set.
[[nodiscard]] std::optional<BackupHistory> backupHistory(sqlite3* connection, int databaseId);

/// Notes on disk that a backup has begun. When the last one never told of its end, its set may be in a
/// file without being known here: then nothing is held to be unchanged.
void beginBackup(Store& store, int databaseId);

/// One that began came to nothing, and its file knows nothing of it.
void endBackup(Store& store, int databaseId);

/// The checksums of the present moment, collected in a temporary table of the connection.
class PresentChunks
{
public:
    explicit PresentChunks(sqlite3* connection);
    void add(int tableId, std::int64_t chunk, const Digest& digest);

    /// Makes them and the set known, in one transaction.
    void record(Store& store, int databaseId, const SetHeader& set, bool keepsLog);

private:
    void replaceBase(int databaseId, ChangeBase base);
    void markChanged(int databaseId, ChangeBase base);

    sqlite3* connection_;
    Statement insert_;
};

/// The checksums of one table at a base, in ascending order of the chunks.
class BaseChunks
{
public:
    BaseChunks(sqlite3* connection, int databaseId, ChangeBase base, int tableId);

    /// Steps past the chunks before this one, and tells each to `gone`.
    /// @return true when the chunk is what it was
    template <typename Gone>
    bool matches(std::int64_t chunk, const Digest& digest, Gone gone)
    {
        while (here_ && rows_.integer(0) < chunk)
            step(gone);
        const bool same =
            here_ && rows_.integer(0) == chunk && !rows_.isNull(1) &&
            rows_.blob(1) == std::string_view(reinterpret_cast<const char*>(digest.data()), digest.size());
        if (here_ && rows_.integer(0) == chunk)
            here_ = rows_.step();
        return same;
    }
    template <typename Gone>
    void finish(Gone gone)
    {
        while (here_)
            step(gone);
    }

private:
    template <typename Gone>
    void step(Gone gone)
    {
        gone(rows_.integer(0));
        here_ = rows_.step();
    }

    Statement rows_;
    bool here_ = false;
};

/// A database between two RESTORE statements.
struct RestoringState
{
    Digest fork{};
    std::uint64_t lsn = 0;
    std::uint64_t fullLsn = 0;
};
[[nodiscard]] std::optional<RestoringState> restoringState(sqlite3* connection, int databaseId);
void setRestoring(sqlite3* connection, int databaseId, const RestoringState& state);
void clearRestoring(sqlite3* connection, int databaseId);

} // namespace practice
