// RESTORE.
#include "engine/backup/backup.h"
#include "engine/backup/backup_work.h"
#include "engine/backup/replay.h"
#include "engine/backup/restore_files.h"
#include "engine/backup/restore_listing.h"
#include "engine/catalog/catalog_writer.h"
#include "engine/context/permissions.h"
#include "engine/context/standing.h"
#include "engine/definition/ddl_database.h"
#include "engine/messages/errors.h"

#include <algorithm>

namespace practice {
namespace {

struct RestoreTask
{
    SessionContext& session;
    bool log;
    BackupOptions options;
    std::string name;
    std::string what;
    DatabasePtr database; ///< none when it is not there
    std::string device;
};

const FoundSet& requireSet(const std::vector<FoundSet>& sets, int number, const std::string& device)
{
    if (static_cast<std::size_t>(number) > sets.size())
        raise(3287, {std::to_string(number), device});
    return sets[static_cast<std::size_t>(number) - 1];
}

void requireMayRestore(SessionContext& session, const Database* database)
{
    if (database == nullptr)
        return requireMayCreateDatabases(session);
    // A role in the database does not count: the server may not be able to look into it.
    const auto user = userIn(session, database->id);
    if (!(user && user->id == dboId) && !hasServerRole(session, DbCreator))
        raise(3110, {database->name});
}

void requireFree(SessionContext& session, const Database& database)
{
    if (database.id == tempdbId)
        raise(3147);
    if (session.database()->id == database.id)
        raise(3102, {"RESTORE", database.name});
    if (database.id == masterId)
        raise(3108);
    if (isInUseByOthers(session, database.id))
        raise(3101);
}

const char* makerOf(SetKind kind)
{
    return kind == SetKind::Log            ? "BACKUP LOG"
           : kind == SetKind::Differential ? "BACKUP DATABASE WITH DIFFERENTIAL"
                                           : "BACKUP DATABASE";
}

/// A full set over a database of another name would be an accident.
void requireSameDatabase(const RestoreTask& task, const SetHeader& set)
{
    if (task.database && !task.options.replace && !sameName(task.database->name, set.database))
        raise(3154, {task.database->name});
}

void requireLogFits(const RestoringState& state, const SetHeader& set)
{
    if (set.fork != state.fork)
        raise(4330);
    if (set.lastLsn <= state.lsn)
        raise(4326, {std::to_string(set.lastLsn), std::to_string(state.lsn + 1)});
    if (set.firstLsn > state.lsn)
        raise(4305, {std::to_string(set.firstLsn), std::to_string(state.lsn)});
}

void requireChainFits(const RestoreTask& task, sqlite3* connection, const SetHeader& set)
{
    if (task.log != (set.kind == SetKind::Log))
        raise(3135, {task.device, makerOf(set.kind)});
    if (set.kind == SetKind::Full)
        return requireSameDatabase(task, set);
    if (!task.database)
        raise(3118, {task.name});
    const auto state = restoringState(connection, task.database->id);
    if (!state)
        raise(3117);
    if (set.kind == SetKind::Log)
        return requireLogFits(*state, set);
    if (set.fork != state->fork || set.fullLsn != state->fullLsn || set.lastLsn <= state->lsn)
        raise(3136);
}

ReplayTarget targetOf(const RestoreTask& task, Store& store)
{
    ReplayTarget target;
    target.name = task.database ? task.database->name : task.name;
    target.databaseId = task.database ? task.database->id : freeDatabaseId(task.session);
    target.restoring = task.options.noRecovery;
    target.ownerSid = task.session.login().sid;
    Statement owner(store.connection(), "SELECT sid FROM cat_database WHERE dbid = ?");
    if (owner.bind(1, target.databaseId).step())
        target.ownerSid = owner.blob(0);
    return target;
}

/// What the next set of the chain will ask for.
RestoringState stateAfter(sqlite3* connection, int databaseId, const SetHeader& set)
{
    RestoringState state{set.fork, set.lastLsn, set.lastLsn};
    if (set.kind != SetKind::Full)
        state.fullLsn = restoringState(connection, databaseId)->fullLsn;
    return state;
}

void raiseStamp(sqlite3* connection, std::int64_t stamp)
{
    Statement row(connection, "UPDATE engine_timestamp SET value = max(value, ?)");
    row.bind(1, stamp).run();
}

void replaySet(const RestoreTask& task, BackupReader& file, const FoundSet& set, Store& store)
{
    sqlite3* connection = store.connection();
    ReplayTarget target = targetOf(task, store);
    const int id = target.databaseId;
    const DatabaseLock alone(task.session, id);
    requireChainFits(task, connection, set.header);
    const std::map<int, std::string> standing = standingFiles(connection, id);
    target.paths = placeFiles(task.session, connection, id, set.header, task.options, standing);
    makeFiles(task.session, store, set.header, standing, target.paths);
    const RestoringState after = stateAfter(connection, id, set.header);
    file.seek(set.contents, static_cast<std::uint32_t>(task.options.file), 1);
    RecordReader records(file);
    const Progress progress = progressOf(task.session, task.options.stats);
    Replay replay(store, std::move(target));
    const std::uint64_t rows = replay.run(records, set.header.kind, [&] {
        progress(records.position() - set.contents, set.end - set.contents);
    });
    if (records.trailer().rows != rows)
        throw DamagedBackup{records.position()};
    if (task.options.noRecovery)
        setRestoring(connection, id, after);
    raiseStamp(connection, set.header.stamp);
}

/// Until its transaction is committed the database is what it was.
void restoreSet(RestoreTask& task, const DeviceFile& device)
{
    const auto start = std::chrono::steady_clock::now();
    BackupReader file(device.path);
    const std::vector<FoundSet> sets = readSets(file, true, progressOf(task.session, {}));
    const FoundSet& set = requireSet(sets, task.options.file, device.shown);
    const std::unique_ptr<Store> store = openWorkStore(task.session);
    store->beginWrite();
    task.session.catalog().version();
    task.database = task.session.catalog().database(task.name);
    try {
        replaySet(task, file, set, *store);
        const CancelShield shield(task.session.store());
        store->commit();
    } catch (...) {
        store->rollback();
        throw;
    }
    task.session.catalog().version();
    tellSuccess(task.session, task.what, task.name, set.header.files, task.log, set.trailer.bytes,
                task.options.file, task.options.stats, start);
}

/// RESTORE DATABASE x WITH RECOVERY: nothing more is to follow.
void recoverDatabase(const RestoreTask& task)
{
    const auto start = std::chrono::steady_clock::now();
    if (!task.database)
        raise(3118, {task.name});
    if ((task.database->options & Restoring) == 0)
        raise(3153);
    if (task.options.noRecovery)
        return;
    sqlite3* connection = task.session.connection();
    task.session.store().beginWrite();
    try {
        Statement row(connection, "UPDATE cat_database SET options = options & ~?1 WHERE dbid = ?2");
        row.bind(1, std::int64_t{Restoring}).bind(2, task.database->id).run();
        clearRestoring(connection, task.database->id);
        bumpCatalogVersion(connection);
        task.session.store().commit();
    } catch (...) {
        task.session.store().rollback();
        throw;
    }
    tellSuccess(task.session, task.what, task.name, {}, false, 0, 1, {}, start);
}

void restoreDatabase(SessionContext& session, const ast::RestoreStatement& statement, const TextOf& textOf)
{
    const bool log = statement.restoreKind == ast::RestoreKind::Log;
    const std::string what = log ? "RESTORE LOG" : "RESTORE DATABASE";
    const BackupOptions options = readOptions(statement.options, "RESTORE", textOf);
    if (!statement.files.empty())
        raise(40510, {"RESTORE of single files"});
    DeviceFile device;
    runBackupWork(session, what, device, [&] {
        requireNoOpenTransaction(session);
        session.catalog().version();
        RestoreTask task{session, log, options, textOf(*statement.database), what, nullptr, ""};
        task.database = session.catalog().database(task.name);
        requireMayRestore(session, task.database.get());
        if (task.database)
            requireFree(session, *task.database);
        if (statement.devices.empty())
            return recoverDatabase(task);
        device = deviceFile(session, statement.devices, textOf);
        task.device = device.shown;
        restoreSet(task, device);
    });
}

const char* listingName(ast::RestoreKind kind)
{
    switch (kind) {
    case ast::RestoreKind::HeaderOnly:
        return "RESTORE HEADERONLY";
    case ast::RestoreKind::FileListOnly:
        return "RESTORE FILELIST";
    case ast::RestoreKind::LabelOnly:
        return "RESTORE LABELONLY";
    default:
        return "VERIFY DATABASE";
    }
}

void verify(SessionContext& session, BackupReader& file, const BackupOptions& options,
            const DeviceFile& device)
{
    const std::vector<FoundSet> sets = readSets(file, true, progressOf(session, options.stats));
    (void)requireSet(sets, options.file, device.shown);
    if (options.stats)
        session.inform(3211, {"100"});
    session.inform(3262, {std::to_string(options.file)});
}

void list(SessionContext& session, ast::RestoreKind kind, const BackupOptions& options,
          const DeviceFile& device)
{
    BackupReader file(device.path);
    if (kind == ast::RestoreKind::VerifyOnly)
        return verify(session, file, options, device);
    const std::vector<FoundSet> sets = readSets(file, false, progressOf(session, {}));
    if (kind == ast::RestoreKind::HeaderOnly)
        return sendHeaders(session, sets);
    if (kind == ast::RestoreKind::FileListOnly)
        return sendFileList(session, requireSet(sets, options.file, device.shown));
    sendLabel(session, file.media());
}

} // namespace

void executeRestore(SessionContext& session, const ast::RestoreStatement& statement, const TextOf& textOf)
{
    using enum ast::RestoreKind;
    const ast::RestoreKind kind = statement.restoreKind;
    if (kind == Database || kind == Log)
        return restoreDatabase(session, statement, textOf);
    if (kind == RewindOnly)
        raise(40510, {"RESTORE REWINDONLY"});
    const BackupOptions options = readOptions(statement.options, "RESTORE", textOf);
    DeviceFile device;
    runBackupWork(session, listingName(kind), device, [&] {
        requireMayCreateDatabases(session);
        device = deviceFile(session, statement.devices, textOf);
        list(session, kind, options, device);
    });
}

} // namespace practice
