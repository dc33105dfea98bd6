#include "engine/definition/ddl_database.h"
#include "engine/catalog/database_files.h"
#include "engine/catalog/pending_files.h"
#include "engine/context/permissions.h"
#include "engine/definition/ddl.h"
#include "engine/definition/ddl_files.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/store/collation.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace practice {
namespace {

void requireMayCreate(SessionContext& session)
{
    if (!hasServerRole(session, DbCreator))
        requireStatementPermission(session, *session.catalog().database(masterId), "CREATE DATABASE");
}

std::int64_t modelSize(SessionContext& session)
{
    Statement row(session.connection(), "SELECT size FROM cat_file WHERE dbid = ? AND fileid = 1");
    row.bind(1, modelId).step();
    return row.integer(0);
}

ast::FileSize sizeOf(std::int64_t pages)
{
    return {pages * (pageSize / 1024), ast::SizeUnit::KB};
}

/// Takes the files of one CREATE DATABASE as they come and numbers them: the primary file 1, the log
/// 2, what follows from 3 on.
class FileList
{
public:
    FileList(SessionContext& session, int databaseId) : session_(session), databaseId_(databaseId) {}

    void add(const ast::FileSpec& spec, int groupId, const char* extension)
    {
        NewFile file = defineFile(session_, spec, groupId == 0, extension);
        file.groupId = groupId;
        if (!names_.insert(foldName(file.name)).second)
            raise(1828, {file.name});
        if (!paths_.insert(nativePath(file.path).string()).second)
            raise(5104, {file.path});
        files_.push_back(std::move(file));
    }

    /// Of the data files so far.
    [[nodiscard]] std::int64_t dataSize() const
    {
        std::int64_t pages = 0;
        for (const NewFile& file : files_)
            pages += file.groupId == 0 ? 0 : file.size;
        return pages;
    }

    /// Makes them all.
    void create()
    {
        int next = 3;
        bool primary = false;
        bool log = false;
        for (NewFile& file : files_) {
            bool& first = file.groupId == 0 ? log : primary;
            const int reserved = file.groupId == 0 ? 2 : 1;
            file.id = first ? next++ : reserved;
            first = true;
            createFile(session_, file);
            insertFile(session_.connection(), databaseId_, file);
        }
    }

    [[nodiscard]] bool hasData() const { return has(false); }
    [[nodiscard]] bool hasLog() const { return has(true); }

private:
    [[nodiscard]] bool has(bool log) const
    {
        for (const NewFile& file : files_) {
            if ((file.groupId == 0) == log)
                return true;
        }
        return false;
    }

    SessionContext& session_;
    int databaseId_;
    std::vector<NewFile> files_;
    std::set<std::string> names_;
    std::set<std::string> paths_;
};

void addDataFiles(SessionContext& session, FileList& files, int databaseId,
                  const ast::CreateDatabaseStatement& statement)
{
    const char* extension = ".mdf";
    for (const ast::FileGroupSpec& group : statement.groups) {
        const int id = group.name.empty() ? 1 : insertFilegroup(session, databaseId, group.name);
        if (group.isDefault)
            setDefaultFilegroup(session, databaseId, id);
        for (const ast::FileSpec& spec : group.files) {
            ast::FileSpec sized = spec;
            if (!files.hasData() && !spec.size)
                sized.size = sizeOf(modelSize(session));
            files.add(sized, id, extension);
            extension = ".ndf";
        }
    }
}

/// What the statement leaves out: a primary file as large as the model's, a log of a quarter of the data.
void addDefaultFiles(SessionContext& session, FileList& files, const std::string& database)
{
    if (!files.hasData()) {
        ast::FileSpec data;
        data.name = database;
        data.size = sizeOf(modelSize(session));
        files.add(data, 1, ".mdf");
    }
    if (!files.hasLog()) {
        ast::FileSpec log;
        constexpr std::int64_t smallestLog = 64; // 512 KB
        log.name = database + "_log";
        log.size = sizeOf(std::max(smallestLog, files.dataSize() / 4));
        files.add(log, 0, ".LDF");
    }
}

void requirePrimarySize(SessionContext& session, const ast::CreateDatabaseStatement& statement)
{
    constexpr std::int64_t pagesPerMegabyte = 128;
    if (statement.groups.empty() || statement.groups.front().files.empty())
        return;
    const ast::FileSpec& primary = statement.groups.front().files.front();
    const std::int64_t least = modelSize(session);
    if (primary.size && pagesOf(*primary.size) < least)
        raise(1803, {std::to_string((least + pagesPerMegabyte - 1) / pagesPerMegabyte)});
}

NewDatabase defineDatabase(SessionContext& session, const ast::CreateDatabaseStatement& statement)
{
    const DatabasePtr model = session.catalog().database(modelId);
    NewDatabase database;
    database.id = freeDatabaseId(session);
    database.name = statement.name;
    database.ownerSid = session.login().sid;
    database.collation = model->collation;
    if (!statement.collation.empty()) {
        if (!isCollation(statement.collation))
            raise(448, {statement.collation});
        database.collation = statement.collation;
    }
    database.options = model->options;
    database.recovery = model->recovery;
    return database;
}

void createFiles(SessionContext& session, int databaseId, const ast::CreateDatabaseStatement& statement)
{
    std::filesystem::create_directories(nativePath(defaultFileFolder(session.dataDirectory())));
    try {
        FileList files(session, databaseId);
        addDataFiles(session, files, databaseId, statement);
        for (const ast::FileSpec& spec : statement.logFiles)
            files.add(spec, 0, ".ldf");
        addDefaultFiles(session, files, statement.name);
        files.create();
    } catch (const SqlError& error) {
        constexpr int firstFileFault = 5100;
        if (error.message.number < firstFileFault)
            throw;
        session.sendMessage(error.message);
        Message failed = makeMessage(1802);
        if (error.message.number == 5133)
            failed.state = 1; // nothing was begun
        throw SqlError{failed, error.message.number};
    }
}

} // namespace

void requireNoTransaction(SessionContext& session, const char* statement)
{
    if (session.transactionCount() > 0)
        raise(226, {statement});
}

int freeDatabaseId(SessionContext& session)
{
    int id = 5;
    while (session.catalog().database(id))
        ++id;
    return id;
}

bool isInUse(SessionContext& session, int databaseId)
{
    return session.database()->id == databaseId || isInUseByOthers(session, databaseId);
}

bool isInUseByOthers(SessionContext& session, int databaseId)
{
    Statement row(session.connection(), "SELECT 1 FROM json_each(practice_sessions()) j "
                                        "WHERE j.value ->> 'dbid' = ? AND j.value ->> 'spid' <> ?");
    return row.bind(1, databaseId).bind(2, session.spid()).step();
}

void createDatabase(SessionContext& session, const ast::CreateDatabaseStatement& statement)
{
    const bool dataFiles = std::any_of(statement.groups.begin(), statement.groups.end(),
                                       [](const ast::FileGroupSpec& group) { return !group.files.empty(); });
    if (!statement.logFiles.empty() && !dataFiles)
        raise(188);
    requireNoTransaction(session, "CREATE DATABASE");
    requireMayCreate(session);
    if (session.catalog().database(statement.name))
        raise(1801, {statement.name});
    if (statement.forAttach || statement.rebuildLog)
        raise(1813, {statement.name});
    requirePrimarySize(session, statement);
    const NewDatabase database = defineDatabase(session, statement);
    insertDatabase(session.connection(), database);
    createFiles(session, database.id, statement);
}

void dropDatabase(SessionContext& session, const std::string& name, bool ifExists)
{
    if (session.transactionCount() > 0)
        raise(574, {"DROP DATABASE"});
    const DatabasePtr database = session.catalog().database(name);
    if (!database && ifExists)
        return;
    if (database && !isDatabaseOwner(session, database->id) && !hasServerRole(session, DbCreator))
        raiseNoRight("drop", "database", name);
    if (!database) {
        Message missing = makeMessage(3701, {"drop", "database", name});
        missing.state = 1;
        throw SqlError{missing};
    }
    if (database->isSystem())
        raise(3708, {"drop", "database", database->name, "database"});
    if (isInUse(session, database->id))
        raise(3702, {database->name});
    Statement files(session.connection(), "SELECT filename FROM cat_file WHERE dbid = ?");
    files.bind(1, database->id);
    while ((database->options & Offline) == 0 && files.step()) // those of an offline database stay
        followTransaction(session.store(), session.dataDirectory(), files.string(0));
    files.reset();
    deleteDatabase(session.connection(), database->id);
}

} // namespace practice
