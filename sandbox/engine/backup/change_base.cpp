#include "engine/backup/change_base.h"

#include <algorithm>

namespace practice {
namespace {

Digest idOf(std::string_view blob)
{
    Digest id{};
    std::copy_n(blob.begin(), std::min(blob.size(), id.size()), id.begin());
    return id;
}

void bindId(Statement& statement, int parameter, const Digest& id)
{
    statement.bindBlob(parameter, id.data(), id.size());
}

void forget(sqlite3* connection, const char* sql, int databaseId)
{
    Statement(connection, sql).bind(1, databaseId).run();
}

} // namespace

void defineBackupTables(sqlite3* connection)
{
    execute(connection, R"sql(
CREATE TABLE IF NOT EXISTS backup_history(
    dbid INTEGER PRIMARY KEY, fork BLOB NOT NULL, lsn INTEGER NOT NULL, fulllsn INTEGER NOT NULL, fullid BLOB NOT NULL,
    loglsn INTEGER);
CREATE TABLE IF NOT EXISTS backup_chunk(
    dbid INTEGER NOT NULL, base INTEGER NOT NULL, id INTEGER NOT NULL, chunk INTEGER NOT NULL, digest BLOB,
    PRIMARY KEY(dbid, base, id, chunk)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS backup_running(dbid INTEGER PRIMARY KEY);
CREATE TABLE IF NOT EXISTS backup_restoring(
    dbid INTEGER PRIMARY KEY, fork BLOB NOT NULL, lsn INTEGER NOT NULL, fulllsn INTEGER NOT NULL);
CREATE TRIGGER IF NOT EXISTS backup_database_gone AFTER DELETE ON cat_database BEGIN
    DELETE FROM backup_history WHERE dbid = OLD.dbid;
    DELETE FROM backup_chunk WHERE dbid = OLD.dbid;
    DELETE FROM backup_running WHERE dbid = OLD.dbid;
    DELETE FROM backup_restoring WHERE dbid = OLD.dbid;
END;
CREATE TRIGGER IF NOT EXISTS backup_log_gone AFTER UPDATE OF recovery ON cat_database WHEN NEW.recovery = 0 BEGIN
    UPDATE backup_history SET loglsn = NULL WHERE dbid = NEW.dbid;
    DELETE FROM backup_chunk WHERE dbid = NEW.dbid AND base = 1;
END;
)sql");
}

std::optional<BackupHistory> backupHistory(sqlite3* connection, int databaseId)
{
    Statement row(connection, "SELECT fork, lsn, fulllsn, fullid, loglsn FROM backup_history WHERE dbid = ?");
    if (!row.bind(1, databaseId).step())
        return std::nullopt;
    BackupHistory history;
    history.fork = idOf(row.blob(0));
    history.lsn = static_cast<std::uint64_t>(row.integer(1));
    history.fullLsn = static_cast<std::uint64_t>(row.integer(2));
    history.fullId = idOf(row.blob(3));
    if (!row.isNull(4))
        history.logLsn = static_cast<std::uint64_t>(row.integer(4));
    return history;
}

void beginBackup(Store& store, int databaseId)
{
    store.beginWrite();
    Statement running(store.connection(), "SELECT 1 FROM backup_running WHERE dbid = ?");
    const bool unsure = running.bind(1, databaseId).step();
    running.reset();
    if (unsure) {
        forget(store.connection(), "UPDATE backup_chunk SET digest = NULL WHERE dbid = ?", databaseId);
        // Its moment is taken.
        forget(store.connection(), "UPDATE backup_history SET lsn = lsn + 1 WHERE dbid = ?", databaseId);
    } else {
        forget(store.connection(), "INSERT INTO backup_running VALUES(?)", databaseId);
    }
    store.commit();
}

void endBackup(Store& store, int databaseId)
{
    forget(store.connection(), "DELETE FROM backup_running WHERE dbid = ?", databaseId);
}

PresentChunks::PresentChunks(sqlite3* connection) : connection_(connection)
{
    execute(connection, "CREATE TEMP TABLE IF NOT EXISTS present(id INTEGER, chunk INTEGER, digest BLOB, "
                        "PRIMARY KEY(id, chunk)) WITHOUT ROWID; DELETE FROM temp.present");
    insert_ = Statement(connection, "INSERT INTO temp.present VALUES(?, ?, ?)", true);
}

void PresentChunks::add(int tableId, std::int64_t chunk, const Digest& digest)
{
    insert_.bind(1, tableId).bind(2, chunk);
    bindId(insert_, 3, digest);
    insert_.run();
}

void PresentChunks::replaceBase(int databaseId, ChangeBase base)
{
    Statement(connection_, "DELETE FROM backup_chunk WHERE dbid = ? AND base = ?")
        .bind(1, databaseId)
        .bind(2, static_cast<int>(base))
        .run();
    Statement(connection_, "INSERT INTO backup_chunk SELECT ?, ?, id, chunk, digest FROM temp.present")
        .bind(1, databaseId)
        .bind(2, static_cast<int>(base))
        .run();
}

/// Takes the checksum from each chunk that is no longer what it was at the base.
void PresentChunks::markChanged(int databaseId, ChangeBase base)
{
    Statement(connection_,
              "UPDATE backup_chunk SET digest = NULL WHERE dbid = ? AND base = ? AND digest IS NOT "
              "(SELECT p.digest FROM temp.present p WHERE p.id = backup_chunk.id AND "
              "p.chunk = backup_chunk.chunk)")
        .bind(1, databaseId)
        .bind(2, static_cast<int>(base))
        .run();
    Statement(connection_,
              "INSERT OR IGNORE INTO backup_chunk SELECT ?, ?, id, chunk, NULL FROM temp.present")
        .bind(1, databaseId)
        .bind(2, static_cast<int>(base))
        .run();
}

void PresentChunks::record(Store& store, int databaseId, const SetHeader& set, bool keepsLog)
{
    insert_.reset();
    store.beginWrite();
    const auto before = backupHistory(connection_, databaseId);
    BackupHistory now = before.value_or(BackupHistory{});
    now.fork = set.fork;
    now.lsn = set.lastLsn;
    if (set.kind == SetKind::Full && !set.copyOnly) {
        now.fullLsn = set.lastLsn;
        now.fullId = set.id;
        replaceBase(databaseId, ChangeBase::Full);
    } else {
        markChanged(databaseId, ChangeBase::Full);
    }
    const bool beginsChain = keepsLog && set.kind == SetKind::Full && !set.copyOnly && !now.logLsn;
    if ((set.kind == SetKind::Log && !set.copyOnly) || beginsChain) {
        now.logLsn = set.lastLsn;
        replaceBase(databaseId, ChangeBase::Log);
    } else if (now.logLsn) {
        markChanged(databaseId, ChangeBase::Log);
    }
    Statement row(connection_, "INSERT OR REPLACE INTO backup_history VALUES(?, ?, ?, ?, ?, ?)");
    row.bind(1, databaseId);
    bindId(row, 2, now.fork);
    row.bind(3, static_cast<std::int64_t>(now.lsn)).bind(4, static_cast<std::int64_t>(now.fullLsn));
    bindId(row, 5, now.fullId);
    if (now.logLsn)
        row.bind(6, static_cast<std::int64_t>(*now.logLsn));
    row.run();
    forget(connection_, "DELETE FROM backup_running WHERE dbid = ?", databaseId);
    store.commit();
}

BaseChunks::BaseChunks(sqlite3* connection, int databaseId, ChangeBase base, int tableId)
    : rows_(connection, "SELECT chunk, digest FROM backup_chunk WHERE dbid = ? AND base = ? AND id = ? "
                        "ORDER BY chunk")
{
    rows_.bind(1, databaseId).bind(2, static_cast<int>(base)).bind(3, tableId);
    here_ = rows_.step();
}

std::optional<RestoringState> restoringState(sqlite3* connection, int databaseId)
{
    Statement row(connection, "SELECT fork, lsn, fulllsn FROM backup_restoring WHERE dbid = ?");
    if (!row.bind(1, databaseId).step())
        return std::nullopt;
    return RestoringState{idOf(row.blob(0)), static_cast<std::uint64_t>(row.integer(1)),
                          static_cast<std::uint64_t>(row.integer(2))};
}

void setRestoring(sqlite3* connection, int databaseId, const RestoringState& state)
{
    Statement row(connection, "INSERT OR REPLACE INTO backup_restoring VALUES(?, ?, ?, ?)");
    row.bind(1, databaseId);
    bindId(row, 2, state.fork);
    row.bind(3, static_cast<std::int64_t>(state.lsn)).bind(4, static_cast<std::int64_t>(state.fullLsn)).run();
}

void clearRestoring(sqlite3* connection, int databaseId)
{
    forget(connection, "DELETE FROM backup_restoring WHERE dbid = ?", databaseId);
}

} // namespace practice
