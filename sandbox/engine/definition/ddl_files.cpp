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
constexpr std::int64_t defaultDataGrowth = 128;
constexpr std::int64_t defaultLogGrowth = 10; ///< percent
constexpr std::int64_t unlimited = -1;
constexpr std::int64_t unlimitedLog = 268435456; ///< 2 TB
constexpr int percentGrowth = 0x100000;
constexpr int primaryFileId = 1;
constexpr int firstLogId = 2;
constexpr int firstFreeId = 3;
constexpr int firstFileFault = 5100; ///< numbers from here on tell why a file can't be as it is described

struct StoredFile
{
    int id = 0;
    int groupId = 0;
    std::int64_t size = 0;
    std::int64_t maxSize = 0;
    std::int64_t growth = 0;
    bool percent = false;
    std::string path;

    [[nodiscard]] bool isLog() const { return groupId == 0; }
};

std::optional<StoredFile> findFile(SessionContext& session, int databaseId, const std::string& name)
{
    Statement row(session.connection(), "SELECT fileid, groupid, size, maxsize, growth, status, filename "
                                        "FROM cat_file WHERE dbid = ? AND fold = ?");
    if (!row.bind(1, databaseId).bind(2, foldName(name)).step())
        return std::nullopt;
    return StoredFile{row.number(0),  row.number(1),  row.integer(2),
                      row.integer(3), row.integer(4), (row.number(5) & percentGrowth) != 0,
                      row.string(6)};
}

void setGrowth(NewFile& file, const ast::FileSize& growth)
{
    file.percent = growth.unit == ast::SizeUnit::Percent;
    file.growth = file.percent ? growth.number : pagesOf(growth);
}

[[noreturn]] void raiseFileFault(int number, int state, const std::string& file)
{
    Message message = makeMessage(number, {file});
    message.state = state;
    throw SqlError{std::move(message)};
}

/// A growth in percent has no bound.
void requireGrowthWithin(const std::string& name, const NewFile& file, int state)
{
    if (file.maxSize >= 0 && !file.percent && file.growth > file.maxSize)
        raiseFileFault(5169, state, name);
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
    const std::filesystem::path folder = nativePath(path).parent_path();
    if (std::filesystem::is_directory(folder, ignored))
        return;
    const bool onlyItself = std::filesystem::is_directory(folder.parent_path(), ignored);
    raise(5133, {path, onlyItself ? "2(The system cannot find the file specified.)"
                                  : "3(The system cannot find the path specified.)"});
}

/// Ids of files that have gone are given again.
int freeFileId(SessionContext& session, int databaseId)
{
    Statement rows(session.connection(), "SELECT fileid FROM cat_file WHERE dbid = ? AND fileid >= ? "
                                         "ORDER BY fileid");
    rows.bind(1, databaseId).bind(2, firstFreeId);
    int id = firstFreeId;
    while (rows.step() && rows.number(0) == id)
        ++id;
    return id;
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
    session.inform(5021, {"file", name});
}

void growFile(SessionContext& session, int databaseId, const StoredFile& file, std::int64_t pages,
              std::int64_t maxSize)
{
    if (pages < file.size)
        raise(5039);
    if (maxSize >= 0 && pages > maxSize)
        raise(5040);
    followTransaction(session.store(), session.dataDirectory(), file.path);
    resizeDatabaseFile(file.path, pages);
    updateFile(session, databaseId, file.id, "size", pages);
}

void changeLimit(SessionContext& session, int databaseId, const StoredFile& file, const std::string& name,
                 std::int64_t maxSize)
{
    if (maxSize >= 0 && maxSize < file.size)
        raise(5040);
    constexpr int settingTheLimit = 3;
    NewFile changed;
    changed.maxSize = maxSize;
    changed.growth = file.growth;
    changed.percent = file.percent;
    requireGrowthWithin(name, changed, settingTheLimit);
    updateFile(session, databaseId, file.id, "maxsize", maxSize);
}

void changeGrowth(SessionContext& session, int databaseId, const StoredFile& file, const ast::FileSpec& spec,
                  std::int64_t maxSize)
{
    constexpr int settingTheGrowth = 1;
    NewFile changed;
    changed.maxSize = maxSize;
    setGrowth(changed, *spec.growth);
    requireGrowthWithin(spec.name, changed, settingTheGrowth);
    Statement row(session.connection(), "UPDATE cat_file SET growth = ?, status = (status & ~?2) | ?3 "
                                        "WHERE dbid = ?4 AND fileid = ?5");
    row.bind(1, changed.growth).bind(2, percentGrowth).bind(3, changed.percent ? percentGrowth : 0);
    row.bind(4, databaseId).bind(5, file.id).run();
}

void addFile(SessionContext& session, const Database& database, const ast::FileSpec& spec, int groupId)
{
    constexpr int namingTheCause = 8;
    constexpr int aheadOfTheCause = 1;
    if (findFile(session, database.id, spec.name))
        raise(1828, {spec.name});
    try {
        const bool log = groupId == 0;
        NewFile file = defineFile(session, spec, log, log ? ".ldf" : ".ndf");
        file.id = freeFileId(session, database.id);
        file.groupId = groupId;
        createFile(session, file);
        insertFile(session.connection(), database.id, file);
    } catch (const SqlError& error) {
        if (error.message.number < firstFileFault)
            throw;
        Message failed = makeMessage(5009);
        const bool exists = error.message.number == 5170;
        failed.state = exists ? aheadOfTheCause : namingTheCause;
        session.sendMessage(exists ? failed : error.message);
        throw SqlError{exists ? error.message : failed, exists ? failed.number : error.message.number};
    }
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
    file.growth = log ? defaultLogGrowth : defaultDataGrowth;
    file.percent = log;
    if (spec.growth)
        setGrowth(file, *spec.growth);
    file.maxSize = spec.maxSize ? pagesOf(*spec.maxSize) : log ? unlimitedLog : unlimited;
    if (file.size < smallestFile)
        raise(5174);
    if (file.maxSize >= 0 && file.maxSize < file.size)
        raise(5103, {file.name});
    constexpr int creating = 2;
    requireGrowthWithin(file.name, file, creating);
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
            raise(5170, {path});
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
    if (database.id == masterId || database.id == modelId)
        raise(5013);
    constexpr int primaryGroup = 1;
    int group = primaryGroup; // whichever is the default
    if (statement.action == ast::AlterDatabaseAction::AddLogFile)
        group = 0;
    else if (!statement.fileGroup.empty())
        group = groupForFiles(session, database.id, statement.fileGroup);
    for (const ast::FileSpec& spec : statement.files)
        addFile(session, database, spec, group);
}

void removeFile(SessionContext& session, const Database& database, const std::string& name)
{
    const auto file = findFile(session, database.id, name);
    if (!file)
        raise(5009);
    if (file->id == primaryFileId || file->id == firstLogId)
        raise(5020);
    if (!file->isLog())
        requireRemovable(session, database.id, file->groupId, name);
    Statement row(session.connection(), "DELETE FROM cat_file WHERE dbid = ? AND fileid = ?");
    row.bind(1, database.id).bind(2, file->id).run();
    bumpCatalogVersion(session.connection());
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
        const std::int64_t none = file->isLog() ? unlimitedLog : unlimited;
        maxSize = spec.maxSize ? pagesOf(*spec.maxSize) : none;
        changeLimit(session, database.id, *file, spec.name, maxSize);
    }
    if (spec.growth)
        changeGrowth(session, database.id, *file, spec, maxSize);
    if (!spec.newName.empty())
        renameFile(session, database.id, file->id, spec.newName);
    if (spec.size) // last: what happens on the disk is not undone
        growFile(session, database.id, *file, pagesOf(*spec.size), maxSize);
}

} // namespace practice
