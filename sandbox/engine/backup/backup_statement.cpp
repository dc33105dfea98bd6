// BACKUP DATABASE and BACKUP LOG.
#include "engine/backup/backup.h"
#include "engine/backup/backup_work.h"
#include "engine/catalog/catalog_writer.h"
#include "engine/context/permissions.h"
#include "engine/messages/errors.h"

namespace practice {
namespace {

struct BackupTask
{
    SessionContext& session;
    SetKind kind;
    BackupOptions options;
    DatabasePtr database;
    std::string what; ///< as messages call the statement
};

void requireKindFits(const BackupTask& task)
{
    const Database& database = *task.database;
    if (database.id == tempdbId)
        raise(3147);
    if (database.id == masterId && task.kind == SetKind::Log)
        raise(4212);
    if (database.id == masterId && task.kind == SetKind::Differential)
        raise(3024);
    if (task.kind == SetKind::Log && database.recovery == RecoveryModel::Simple)
        raise(4208, {"BACKUP LOG"});
}

std::vector<BackedUpFile> filesOf(sqlite3* connection, int databaseId)
{
    std::vector<BackedUpFile> files;
    Statement rows(connection, "SELECT f.fileid, f.groupid, coalesce(g.name, ''), f.size, f.maxsize, f.name, "
                               "f.filename, coalesce(g.status & 8, 0) FROM cat_file f "
                               "LEFT JOIN cat_filegroup g ON g.dbid = f.dbid AND g.groupid = f.groupid "
                               "WHERE f.dbid = ? ORDER BY f.groupid = 0, f.fileid");
    rows.bind(1, databaseId);
    while (rows.step())
        files.push_back({rows.number(0), rows.number(1), rows.string(2), rows.integer(3), rows.integer(4),
                         rows.string(5), rows.string(6), rows.number(7) != 0});
    return files;
}

std::int64_t lastStamp(sqlite3* connection)
{
    Statement row(connection, "SELECT max(value) FROM engine_timestamp");
    row.step();
    return row.integer(0);
}

/// What hangs on the sets before this one.
void placeInChain(SetHeader& header, const BackupTask& task, sqlite3* connection)
{
    const auto history = backupHistory(connection, task.database->id);
    const bool hasFull = history && history->fullLsn > 0;
    if (header.kind == SetKind::Differential && !hasFull)
        raise(3035, {task.database->name});
    if (header.kind == SetKind::Log && !(history && history->logLsn))
        raise(4214);
    header.fork = history ? history->fork : randomId();
    header.lastLsn = history ? history->lsn + 1 : 1;
    header.firstLsn = header.kind == SetKind::Log ? *history->logLsn : header.lastLsn;
    header.fullLsn = history ? history->fullLsn : 0;
    if (header.kind == SetKind::Differential)
        header.baseId = history->fullId;
}

SetHeader describeSet(const BackupTask& task, sqlite3* connection, const std::string& user)
{
    SetHeader header;
    header.kind = task.kind;
    header.copyOnly = task.options.copyOnly && task.kind != SetKind::Differential;
    header.id = randomId();
    placeInChain(header, task, connection);
    header.name = task.options.name;
    header.description = task.options.description;
    header.user = user;
    header.server = task.session.serverName();
    const Database& database = *task.database;
    header.database = database.name;
    header.created = database.created;
    header.started = storedNow();
    header.stamp = lastStamp(connection);
    header.level = database.compatibilityLevel;
    header.recovery = static_cast<int>(database.recovery);
    header.access = static_cast<int>(database.access);
    header.readOnly = (database.options & ReadOnly) != 0;
    header.collation = database.collation;
    header.files = filesOf(connection, database.id);
    return header;
}

/// INIT drops sets, and nothing that never was one.
void requireMayReplace(const BackupOptions& options, const DeviceFile& device)
{
    std::error_code none;
    if (!options.init || options.format || std::filesystem::file_size(device.path, none) == 0 || none)
        return;
    try {
        const BackupReader standing(device.path);
    } catch (const DamagedBackup&) {
        return;
    }
}

std::optional<ChangeBase> baseOf(SetKind kind)
{
    switch (kind) {
    case SetKind::Log:
        return ChangeBase::Log;
    case SetKind::Differential:
        return ChangeBase::Full;
    case SetKind::Full:
        break;
    }
    return std::nullopt;
}

/// All blocks of the set, as of one moment.
SetHeader writeContents(const BackupTask& task, Store& store, BackupAppender& file, PresentChunks& present)
{
    execute(store.connection(), "BEGIN");
    SetHeader header = describeSet(task, store.connection(), task.session.login().name);
    file.add(BlockKind::Header, encodeHeader(header));
    RecordWriter records(file);
    Snapshot snapshot(store, task.database->id, records, present);
    const std::uint64_t rows =
        snapshot.write(baseOf(task.kind), progressOf(task.session, task.options.stats));
    store.commit();
    file.add(BlockKind::Trailer, encodeTrailer({storedNow(), file.bytes(), rows}));
    return header;
}

void writeSet(const BackupTask& task, const DeviceFile& device)
{
    const auto start = std::chrono::steady_clock::now();
    const DatabaseLock alone(task.session, task.database->id);
    const std::unique_ptr<Store> store = openWorkStore(task.session);
    // Its refusals come before anything is written down.
    (void)describeSet(task, store->connection(), "");
    requireMayReplace(task.options, device);
    BackupAppender file(device.path, task.options.init, storedNow());
    beginBackup(*store, task.database->id);
    PresentChunks present(store->connection());
    SetHeader header;
    try {
        header = writeContents(task, *store, file, present);
    } catch (...) {
        store->rollback();
        endBackup(*store, task.database->id);
        throw;
    }
    const std::uint64_t bytes = file.bytes();
    const auto set = static_cast<int>(file.set());
    const CancelShield shield(task.session.store());
    file.commit();
    present.record(*store, task.database->id, header, task.database->recovery != RecoveryModel::Simple);
    tellSuccess(task.session, task.what, task.database->name, header.files, task.kind == SetKind::Log, bytes,
                set, task.options.stats, start);
}

} // namespace

void executeBackup(SessionContext& session, const ast::BackupStatement& statement, const TextOf& textOf)
{
    const bool log = statement.backupKind == ast::BackupKind::Log;
    const char* what = log ? "BACKUP LOG" : "BACKUP DATABASE";
    const BackupOptions options = readOptions(statement.options, "BACKUP", textOf);
    if (!statement.files.empty())
        raise(40510, {"BACKUP of single files"});
    DeviceFile device;
    runBackupWork(session, what, device, [&] {
        requireNoOpenTransaction(session);
        session.catalog().version();
        const std::string name = textOf(*statement.database);
        const DatabasePtr database = session.catalog().database(name);
        if (!database)
            raise(911, {name});
        requireStatementPermission(session, *database, what);
        requireOnline(*database);
        const SetKind kind = log                    ? SetKind::Log
                             : options.differential ? SetKind::Differential
                                                    : SetKind::Full;
        const BackupTask task{session, kind, options, database,
                              options.differential ? std::string(what) + " WITH DIFFERENTIAL" : what};
        requireKindFits(task);
        device = deviceFile(session, statement.devices, textOf);
        writeSet(task, device);
    });
}

} // namespace practice
