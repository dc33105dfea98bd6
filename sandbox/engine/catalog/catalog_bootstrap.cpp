// What a fresh store begins with, and what each start does anew.
#include "engine/catalog/catalog.h"

#include "engine/catalog/catalog_functions.h"
#include "engine/catalog/catalog_schema.h"
#include "engine/catalog/catalog_static.h"
#include "engine/catalog/catalog_writer.h"
#include "engine/catalog/database_files.h"
#include "engine/store/storage.h"
#include "engine/store/store.h"

#include <array>
#include <filesystem>

namespace practice {
namespace {

/// Changes whenever the rows that insertStaticRows writes change; an older store gets them anew.
constexpr int staticRevision = 2;

constexpr std::int64_t pagesPerMegabyte = 128;
constexpr std::int64_t smallestLog = 64; ///< 512 KB

struct SystemDatabase
{
    int id;
    const char* name;
    RecoveryModel recovery;
    bool guest;
    const char* dataName;
    const char* dataFile;
    const char* logName;
    const char* logFile;
    std::int64_t dataPages;
    std::int64_t dataGrowth; ///< pages; 0 for ten percent
};

constexpr std::array<SystemDatabase, 4> systemDatabases{
    {{1, "master", RecoveryModel::Simple, true, "master", "master.mdf", "mastlog", "mastlog.ldf",
      12 * pagesPerMegabyte, 0},
     {tempdbId, "tempdb", RecoveryModel::Simple, true, "tempdev", "tempdb.mdf", "templog", "templog.ldf",
      8 * pagesPerMegabyte, 0},
     {3, "model", RecoveryModel::Full, false, "modeldev", "model.mdf", "modellog", "modellog.ldf", 160,
      pagesPerMegabyte},
     {4, "msdb", RecoveryModel::Simple, true, "MSDBData", "msdbdata.mdf", "MSDBLog", "msdblog.ldf",
      12 * pagesPerMegabyte, 0}}};

void insertDevice(sqlite3* connection, const std::string& name, const std::string& path)
{
    constexpr int disk = 2;
    Statement row(connection,
                  "INSERT INTO cat_device(name, fold, status, cntrltype, phyname) VALUES(?, ?, ?, 0, ?)");
    row.bind(1, name).bind(2, foldName(name)).bind(3, disk).bind(4, path).run();
}

void createSystemFile(sqlite3* connection, int databaseId, NewFile file)
{
    file.percent = file.growth == 0;
    if (file.percent)
        file.growth = 10;
    removeDatabaseFile(file.path); // what an interrupted first start left
    createDatabaseFile(file.path, file.size);
    insertFile(connection, databaseId, file);
}

void createSystemDatabase(sqlite3* connection, const SystemDatabase& system, const std::string& folder)
{
    NewDatabase database;
    database.id = system.id;
    database.name = system.name;
    database.ownerSid = std::string(1, '\x01');
    database.collation = defaultCollation;
    database.recovery = system.recovery;
    database.guest = system.guest;
    insertDatabase(connection, database);
    const std::string dataPath = folder + '\\' + system.dataFile;
    const std::string logPath = folder + '\\' + system.logFile;
    NewFile data;
    data.id = 1;
    data.size = system.dataPages;
    data.growth = system.dataGrowth;
    data.name = system.dataName;
    data.path = dataPath;
    createSystemFile(connection, system.id, data);
    NewFile log;
    log.id = 2;
    log.groupId = 0;
    log.size = smallestLog;
    log.name = system.logName;
    log.path = logPath;
    createSystemFile(connection, system.id, log);
    if (system.id < 4) {
        insertDevice(connection, system.dataName, dataPath);
        insertDevice(connection, system.logName, logPath);
    }
}

void createCatalog(sqlite3* connection, const std::string& dataDirectory, const std::string& saPassword)
{
    execute(connection, catalogSchema());
    const std::string folder = defaultFileFolder(dataDirectory);
    std::filesystem::create_directories(nativePath(folder));
    NewLogin sa;
    sa.name = "sa";
    sa.sid = std::string(1, '\x01');
    sa.password = saPassword;
    sa.serverRoles = SysAdmin;
    insertLogin(connection, sa);
    for (const SystemDatabase& system : systemDatabases)
        createSystemDatabase(connection, system, folder);
}

/// tempdb begins empty at each start.
void emptyTempdb(sqlite3* connection)
{
    std::vector<int> left;
    Statement rows(connection, "SELECT id, xtype FROM cat_object WHERE dbid = ? AND NOT shipped");
    rows.bind(1, tempdbId);
    while (rows.step())
        left.push_back(rows.number(0));
    rows.reset();
    for (const int id : left) {
        execute(connection, "DROP TABLE IF EXISTS " + storageTable(tempdbId, id));
        deleteObject(connection, tempdbId, id);
    }
    for (const char* table :
         {"cat_index", "cat_index_key", "cat_check", "cat_reference", "cat_reference_column"})
        Statement(connection, "DELETE FROM " + std::string(table) + " WHERE dbid = ?")
            .bind(1, tempdbId)
            .run();
}

bool exists(sqlite3* connection)
{
    Statement row(connection, "SELECT 1 FROM sqlite_master WHERE name = 'cat_version'");
    return row.step();
}

int storedRevision(sqlite3* connection)
{
    Statement row(connection, "PRAGMA user_version");
    row.step();
    return row.number(0);
}

void prepare(sqlite3* connection, const BootstrapOptions& options)
{
    if (!exists(connection))
        createCatalog(connection, options.dataDirectory, options.saPassword);
    execute(connection, columnPermissionSchema()); // a store of an earlier revision has it not
    if (storedRevision(connection) != staticRevision) {
        insertStaticRows(connection, options.systemProcedures);
        execute(connection, "PRAGMA user_version = " + std::to_string(staticRevision));
    }
    emptyTempdb(connection);
    Statement name(connection, "INSERT OR REPLACE INTO cat_server(one, name) VALUES(1, ?)");
    name.bind(1, options.serverName).run();
    bumpCatalogVersion(connection);
}

} // namespace

void bootstrapCatalog(sqlite3* connection, const BootstrapOptions& options)
{
    registerCatalogFunctions(connection);
    execute(connection, "BEGIN IMMEDIATE");
    try {
        prepare(connection, options);
        execute(connection, "COMMIT");
    } catch (...) {
        sqlite3_exec(connection, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

} // namespace practice
