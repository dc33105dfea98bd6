#include "engine/definition/ddl_files.h"

#include "engine/catalog/database_files.h"
#include "engine/catalog/pending_files.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <filesystem>

namespace practice {
namespace {

constexpr std::int64_t pagesPerExtent = 8;
constexpr std::int64_t smallestFile = 64; ///< 512 KB
constexpr std::int64_t defaultSize = 128;
constexpr std::int64_t defaultGrowth = 10; ///< percent
constexpr int readOnlyGroup = 8;
constexpr int defaultGroup = 16;
constexpr int percentGrowth = 0x100000;

struct StoredFile
{
    int id = 0;
    int groupId = 0;
    std::int64_t size = 0;
    std::int64_t maxSize = 0;
    std::string path;
};

std::optional<StoredFile> findFile(SessionContext& session, int databaseId, const std::string& name)
{
    Statement row(session.connection(), "SELECT fileid, groupid, size, maxsize, filename FROM cat_file "
                                        "WHERE dbid = ? AND fold = ?");
    if (!row.bind(1, databaseId).bind(2, foldName(name)).step())
        return std::nullopt;
    return StoredFile{row.number(0), row.number(1), row.integer(2), row.integer(3), row.string(4)};
}

struct StoredGroup
{
    int id = 0;
    int status = 0;
};

StoredGroup requireGroup(SessionContext& session, int databaseId, const std::string& name)
{
    Statement row(session.connection(),
                  "SELECT groupid, status FROM cat_filegroup WHERE dbid = ? AND fold = ?");
    if (!row.bind(1, databaseId).bind(2, foldName(name)).step())
        raise(5043, {"filegroup", name, "sysfilegroups"});
    return {row.number(0), row.number(1)};
}

std::int64_t count(SessionContext& session, const char* sql, int databaseId, int id)
{
    Statement row(session.connection(), sql);
    row.bind(1, databaseId).bind(2, id).step();
    return row.integer(0);
}

std::int64_t filesInGroup(SessionContext& session, int databaseId, int groupId)
{
    return count(session, "SELECT count(*) FROM cat_file WHERE dbid = ? AND groupid = ?", databaseId,
                 groupId);
}

bool groupHoldsData(SessionContext& session, int databaseId, int groupId)
{
    return count(
               session,
               "SELECT (SELECT count(*) FROM cat_object WHERE dbid = ?1 AND groupid = ?2 AND xtype = 'U') + "
               "(SELECT count(*) FROM cat_index WHERE dbid = ?1 AND groupid = ?2)",
               databaseId, groupId) > 0;
}

void setGrowth(NewFile& file, const ast::FileSize& growth)
{
    file.percent = growth.unit == ast::SizeUnit::Percent;
    file.growth = file.percent ? growth.number : pagesOf(growth);
}

std::string filePath(SessionContext& session, const ast::FileSpec& spec, const char* extension)
{
    if (!spec.fileName)
        return defaultFileFolder(session.dataDirectory()) + '\\' + spec.name + extension;
    std::string path = *spec.fileName;
    path.erase(0, path.find_first_not_of(' '));
    path.erase(path.find_last_not_of(' ') + 1);
    if (!isAbsolutePath(path) || path.ends_with('\\'))
        raise(5105, {path});
    return path;
}

void requireFolder(const std::string& path)
{
    std::error_code ignored;
    if (!std::filesystem::is_directory(nativePath(path).parent_path(), ignored))
        raise(5133, {path, "2(The system cannot find the file specified.)"});
}

int nextFileId(SessionContext& session, int databaseId)
{
    Statement row(session.connection(), "SELECT coalesce(max(fileid), 0) + 1 FROM cat_file WHERE dbid = ?");
    row.bind(1, databaseId).step();
    return row.number(0);
}

void updateFile(SessionContext& session, int databaseId, int fileId, const char* column, std::int64_t value)
{
    Statement row(session.connection(),
                  std::string("UPDATE cat_file SET ") + column + " = ? WHERE dbid = ? AND fileid = ?");
    row.bind(1, value).bind(2, databaseId).bind(3, fileId).run();
}

void renameFile(SessionContext& session, int databaseId, int fileId, const std::string& name)
{
    if (findFile(session, databaseId, name))
        raise(1828, {name});
    Statement row(session.connection(),
                  "UPDATE cat_file SET name = ?, fold = ? WHERE dbid = ? AND fileid = ?");
    row.bind(1, name).bind(2, foldName(name)).bind(3, databaseId).bind(4, fileId).run();
}

void growFile(SessionContext& session, int databaseId, const StoredFile& file, std::int64_t pages,
              std::int64_t maxSize)
{
    if (pages <= file.size)
        raise(5039);
    if (maxSize >= 0 && pages > maxSize)
        raise(5040);
    followTransaction(session.store(), session.dataDirectory(), file.path);
    resizeDatabaseFile(file.path, pages);
    updateFile(session, databaseId, file.id, "size", pages);
}

void changeGrowth(SessionContext& session, int databaseId, int fileId, const ast::FileSize& growth)
{
    NewFile file;
    setGrowth(file, growth);
    Statement row(session.connection(), "UPDATE cat_file SET growth = ?, status = (status & ~?2) | ?3 "
                                        "WHERE dbid = ?4 AND fileid = ?5");
    row.bind(1, file.growth).bind(2, percentGrowth).bind(3, file.percent ? percentGrowth : 0);
    row.bind(4, databaseId).bind(5, fileId).run();
}

void setGroupStatus(SessionContext& session, int databaseId, int groupId, int cleared, int set)
{
    Statement row(session.connection(), "UPDATE cat_filegroup SET status = (status & ~?1) | ?2 "
                                        "WHERE dbid = ?3 AND groupid = ?4");
    row.bind(1, cleared).bind(2, set).bind(3, databaseId).bind(4, groupId).run();
}

} // namespace

std::int64_t pagesOf(const ast::FileSize& size)
{
    constexpr std::int64_t most = 2147483647;
    std::int64_t kilobytes = 1024;
    if (size.unit == ast::SizeUnit::KB)
        kilobytes = 1;
    else if (size.unit == ast::SizeUnit::GB)
        kilobytes = 1024LL * 1024;
    else if (size.unit == ast::SizeUnit::TB)
        kilobytes = 1024LL * 1024 * 1024;
    constexpr std::int64_t kilobytesPerPage = pageSize / 1024;
    if (size.number < 0 || size.number > most * kilobytesPerPage / kilobytes)
        raise(1842);
    const std::int64_t pages = (size.number * kilobytes + kilobytesPerPage - 1) / kilobytesPerPage;
    return (pages + pagesPerExtent - 1) / pagesPerExtent * pagesPerExtent;
}

NewFile defineFile(SessionContext& session, const ast::FileSpec& spec, bool log, const char* extension)
{
    NewFile file;
    file.groupId = log ? 0 : 1;
    file.name = spec.name;
    file.path = filePath(session, spec, extension);
    file.size = spec.size ? pagesOf(*spec.size) : defaultSize;
    file.growth = defaultGrowth;
    file.percent = true;
    if (spec.growth)
        setGrowth(file, *spec.growth);
    if (spec.maxSize)
        file.maxSize = pagesOf(*spec.maxSize);
    if (file.size < smallestFile)
        raise(5174);
    if (file.maxSize >= 0 && file.maxSize < file.size)
        raise(5103, {file.name});
    requireUnusedPath(session, file.path);
    requireFolder(file.path);
    return file;
}

void requireUnusedPath(SessionContext& session, const std::string& path)
{
    const std::string wanted = nativePath(path).string();
    Statement rows(session.connection(), "SELECT filename FROM cat_file");
    while (rows.step()) {
        if (nativePath(rows.string(0)).string() == wanted)
            raise(5104, {path});
    }
}

void createFile(SessionContext& session, const NewFile& file)
{
    requireNoFile(file.path);
    followTransaction(session.store(), session.dataDirectory(), file.path);
    createDatabaseFile(file.path, file.size);
}

void addFiles(SessionContext& session, const Database& database, const ast::AlterDatabaseStatement& statement)
{
    const bool log = statement.action == ast::AlterDatabaseAction::AddLogFile;
    StoredGroup group{1, 0};
    if (!log && !statement.fileGroup.empty())
        group = requireGroup(session, database.id, statement.fileGroup);
    else if (!log)
        group.id = filegroupOf(session, database.id, "");
    if ((group.status & readOnlyGroup) != 0)
        raise(5048, {statement.fileGroup});
    for (const ast::FileSpec& spec : statement.files) {
        if (findFile(session, database.id, spec.name))
            raise(1828, {spec.name});
        NewFile file = defineFile(session, spec, log, log ? ".ldf" : ".ndf");
        file.id = nextFileId(session, database.id);
        file.groupId = log ? 0 : group.id;
        createFile(session, file);
        insertFile(session.connection(), database.id, file);
    }
}

void removeFile(SessionContext& session, const Database& database, const std::string& name)
{
    const auto file = findFile(session, database.id, name);
    if (!file)
        raise(5009);
    const bool firstOfKind =
        file->id == 1 || (file->groupId == 0 && filesInGroup(session, database.id, 0) == 1);
    if (firstOfKind)
        raise(5020);
    const bool onlyOne = filesInGroup(session, database.id, file->groupId) == 1;
    if (onlyOne && groupHoldsData(session, database.id, file->groupId))
        raise(5042, {"file", name});
    Statement row(session.connection(), "DELETE FROM cat_file WHERE dbid = ? AND fileid = ?");
    row.bind(1, database.id).bind(2, file->id).run();
    followTransaction(session.store(), session.dataDirectory(), file->path);
}

void modifyFile(SessionContext& session, const Database& database, const ast::FileSpec& spec)
{
    if (spec.name.empty())
        raise(5036);
    const auto file = findFile(session, database.id, spec.name);
    if (!file)
        raise(5041, {spec.name});
    if (spec.fileName)
        raise(5037);
    if (!spec.size && !spec.maxSize && !spec.unlimited && !spec.growth && spec.newName.empty())
        raise(5038, {spec.name});
    std::int64_t maxSize = file->maxSize;
    if (spec.maxSize || spec.unlimited) {
        maxSize = spec.unlimited ? -1 : pagesOf(*spec.maxSize);
        if (maxSize >= 0 && maxSize < file->size)
            raise(5040);
        updateFile(session, database.id, file->id, "maxsize", maxSize);
    }
    if (spec.growth)
        changeGrowth(session, database.id, file->id, *spec.growth);
    if (!spec.newName.empty())
        renameFile(session, database.id, file->id, spec.newName);
    if (spec.size) // last: what happens on the disk is not undone
        growFile(session, database.id, *file, pagesOf(*spec.size), maxSize);
}

int insertFilegroup(SessionContext& session, int databaseId, const std::string& name)
{
    Statement taken(session.connection(), "SELECT 1 FROM cat_filegroup WHERE dbid = ? AND fold = ?");
    if (taken.bind(1, databaseId).bind(2, foldName(name)).step())
        raise(5035, {name});
    Statement last(session.connection(), "SELECT max(groupid) + 1 FROM cat_filegroup WHERE dbid = ?");
    last.bind(1, databaseId).step();
    const int id = last.number(0);
    Statement row(session.connection(), "INSERT INTO cat_filegroup(dbid, groupid, name, fold, status) "
                                        "VALUES(?, ?, ?, ?, 0)");
    row.bind(1, databaseId).bind(2, id).bind(3, name).bind(4, foldName(name)).run();
    return id;
}

void addFilegroup(SessionContext& session, const Database& database, const std::string& name)
{
    if (database.id <= tempdbId)
        raise(1826, {database.name});
    insertFilegroup(session, database.id, name);
}

void removeFilegroup(SessionContext& session, const Database& database, const std::string& name)
{
    const StoredGroup group = requireGroup(session, database.id, name);
    if (group.id == 1 || filesInGroup(session, database.id, group.id) > 0 ||
        groupHoldsData(session, database.id, group.id))
        raise(5042, {"filegroup", name});
    if ((group.status & defaultGroup) != 0)
        raise(5031, {name});
    Statement row(session.connection(), "DELETE FROM cat_filegroup WHERE dbid = ? AND groupid = ?");
    row.bind(1, database.id).bind(2, group.id).run();
}

void modifyFilegroup(SessionContext& session, const Database& database, const std::string& name,
                     const std::string& property)
{
    const StoredGroup group = requireGroup(session, database.id, name);
    if (filesInGroup(session, database.id, group.id) == 0)
        raise(5050, {name});
    if (property == "DEFAULT") {
        Statement others(session.connection(),
                         "UPDATE cat_filegroup SET status = status & ~?1 WHERE dbid = ?2");
        others.bind(1, defaultGroup).bind(2, database.id).run();
        setGroupStatus(session, database.id, group.id, 0, defaultGroup);
        return;
    }
    const bool readOnly = property == "READONLY" || property == "READ_ONLY";
    if (group.id == 1)
        raise(5047, {property});
    setGroupStatus(session, database.id, group.id, readOnlyGroup, readOnly ? readOnlyGroup : 0);
}

void renameFilegroup(SessionContext& session, const Database& database, const std::string& name,
                     const std::string& newName)
{
    const StoredGroup group = requireGroup(session, database.id, name);
    if (group.id == 1)
        raise(5012);
    Statement taken(session.connection(), "SELECT 1 FROM cat_filegroup WHERE dbid = ? AND fold = ?");
    if (taken.bind(1, database.id).bind(2, foldName(newName)).step())
        raise(5035, {newName});
    Statement row(session.connection(),
                  "UPDATE cat_filegroup SET name = ?, fold = ? WHERE dbid = ? AND groupid = ?");
    row.bind(1, newName).bind(2, foldName(newName)).bind(3, database.id).bind(4, group.id).run();
}

} // namespace practice
