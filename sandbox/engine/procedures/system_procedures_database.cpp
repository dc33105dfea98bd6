// Databases, their options, files and backup devices.
#include "engine/catalog/catalog_writer.h"
#include "engine/catalog/database_files.h"
#include "engine/catalog/database_options.h"
#include "engine/context/permissions.h"
#include "engine/context/security_principals.h"
#include "engine/context/standing.h"
#include "engine/definition/ddl_database.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/procedures/system_procedures.h"
#include "engine/store/storage.h"
#include "tsql/parser.h"
#include "types/conversion.h"

#include <algorithm>

namespace practice {
namespace {

DatabasePtr requireDatabase(const ProcedureCall& call, const std::string& name)
{
    DatabasePtr database = call.session().catalog().database(name);
    if (!database)
        raise(15010, {name});
    return database;
}

std::string dateText(std::int64_t stored)
{
    constexpr std::size_t dateLength = 11; // "Nov 22 2026"
    return toText(Value{fromDatetimeStorage(stored), {}}, {TypeId::DateTime, 8, 0, 0}).substr(0, dateLength);
}

/// "Status=ONLINE, Updateability=READ_WRITE, ..., IsAutoShrink": what is on, by name.
std::string statusText(const Database& database)
{
    std::string text;
    for (const char* name :
         {"Status", "Updateability", "UserAccess", "Recovery", "Version", "Collation", "SQLSortOrder"}) {
        const auto property = databaseProperty(database, name);
        text += (text.empty() ? "" : ", ") + std::string(name) + '=' +
                (property->isText ? property->text : std::to_string(property->number));
    }
    for (const DatabaseOptionName& option : databaseOptionNames()) {
        if (*option.property != 0 && (database.options & option.option) != 0)
            text += std::string(", ") + option.property;
    }
    return text;
}

constexpr const char* fileColumns = R"(
name       sysname        f.name
fileid     smallint       f.fileid
filename   nchar(260)     f.filename
filegroup  sysname?       (SELECT g.name FROM cat_filegroup g WHERE g.dbid = f.dbid AND g.groupid = f.groupid)
size       nvarchar(18)?  (f.size * 8) || ' KB'
maxsize    nvarchar(18)?  CASE WHEN f.maxsize < 0 THEN 'Unlimited' ELSE (f.maxsize * 8) || ' KB' END
growth     nvarchar(18)?  CASE WHEN f.status & 1048576 THEN f.growth || '%' ELSE (f.growth * 8) || ' KB' END
usage      varchar(9)?    CASE WHEN f.status & 64 THEN 'log only' ELSE 'data only' END
)";

int helpDatabase(const ProcedureCall& call)
{
    std::vector<DatabasePtr> databases;
    if (call.text(0))
        databases.push_back(requireDatabase(call, *call.text(0)));
    else
        databases = call.session().catalog().databases();
    std::string rows;
    std::erase_if(databases, [&call](const DatabasePtr& database) {
        const bool closed = !userIn(call.session(), database->id);
        if (closed)
            call.session().inform(15622, {database->name});
        return closed;
    });
    if (databases.empty())
        return 1;
    for (const DatabasePtr& database : databases)
        rows += (rows.empty() ? "(" : ", (") + std::to_string(database->id) + ", " +
                quotedText(dateText(database->created)) + ", " + quotedText(statusText(*database)) + ")";
    call.sendRows(R"(
name                sysname        d.name
db_size             nvarchar(13)?  printf('%10.2f MB', (SELECT sum(f.size) FROM cat_file f WHERE f.dbid = d.dbid) / 128.0)
owner               sysname?       (SELECT l.name FROM cat_login l WHERE l.sid = d.sid)
dbid                smallint?      d.dbid
created             nvarchar(11)?  v.column2
status              nvarchar(600)? v.column3
compatibility_level tinyint?       d.level
)",
                  "FROM (VALUES " + rows + ") v JOIN cat_database d ON d.dbid = v.column1 ORDER BY d.fold");
    if (call.text(0))
        call.sendRows(fileColumns, "FROM cat_file f WHERE f.dbid = " + std::to_string(databases.front()->id) +
                                       " ORDER BY f.fileid");
    return 0;
}

int helpFile(const ProcedureCall& call)
{
    const auto& name = call.text(0);
    Statement known(call.session().connection(), "SELECT 1 FROM cat_file WHERE dbid = ? AND fold = ?");
    if (name && !known.bind(1, call.database()).bind(2, foldName(*name)).step())
        raise(15325, {"file", *name});
    call.sendRows(fileColumns, "FROM cat_file f WHERE f.dbid = :db" +
                                   (name ? " AND f.fold = " + quotedText(foldName(*name)) : "") +
                                   " ORDER BY f.fileid");
    return 0;
}

int helpFilegroup(const ProcedureCall& call)
{
    const auto& name = call.text(0);
    const std::string which = name ? " AND g.fold = " + quotedText(foldName(*name)) : "";
    Statement known(call.session().connection(), "SELECT 1 FROM cat_filegroup WHERE dbid = ? AND fold = ?");
    if (name && !known.bind(1, call.database()).bind(2, foldName(*name)).step())
        raise(15325, {"file group", *name});
    call.sendRows(R"(
groupname  sysname   g.name
groupid    smallint  g.groupid
filecount  int       (SELECT count(*) FROM cat_file f WHERE f.dbid = g.dbid AND f.groupid = g.groupid)
)",
                  "FROM cat_filegroup g WHERE g.dbid = :db" + which + " ORDER BY g.groupid");
    if (name)
        call.sendRows(R"(
file_in_group  sysname       f.name
fileid         smallint      f.fileid
filename       nchar(260)    f.filename
size           nvarchar(18)? (f.size * 8) || ' KB'
maxsize        nvarchar(18)? CASE WHEN f.maxsize < 0 THEN 'Unlimited' ELSE (f.maxsize * 8) || ' KB' END
growth         nvarchar(18)? CASE WHEN f.status & 1048576 THEN f.growth || '%' ELSE (f.growth * 8) || ' KB' END
)",
                      "FROM cat_file f JOIN cat_filegroup g ON g.dbid = f.dbid AND g.groupid = f.groupid "
                      "WHERE f.dbid = :db" +
                          which + " ORDER BY f.fileid");
    return 0;
}

int spaceOfDatabase(const ProcedureCall& call)
{
    // Pages as sysindexes reckons them; the log counts towards the size and never as free.
    const std::string indexes = "(" + findSystemTable("", "sysindexes")->select(call.database()) + ")";
    call.sendRows(R"(
database_name      sysname      d.name
database_size      varchar(18)? printf('%.2f MB', (SELECT sum(f.size) FROM cat_file f WHERE f.dbid = d.dbid) / 128.0)
unallocated&space  varchar(18)? printf('%.2f MB', max(0, (SELECT sum(f.size) FROM cat_file f WHERE f.dbid = d.dbid AND f.groupid > 0) - s.reserved) / 128.0)
)",
                  "FROM cat_database d, (SELECT coalesce(sum(reserved), 0) AS reserved FROM " + indexes +
                      ") s WHERE d.dbid = :db");
    call.sendRows(R"(
reserved    varchar(18)? (8 * s.reserved) || ' KB'
data        varchar(18)? (8 * s.data) || ' KB'
index_size  varchar(18)? (8 * s.indexes) || ' KB'
unused      varchar(18)? (8 * (s.reserved - s.data - s.indexes)) || ' KB'
)",
                  "FROM (SELECT coalesce(sum(reserved), 0) AS reserved, "
                  "coalesce(sum(CASE WHEN indid < 2 THEN dpages ELSE 0 END), 0) AS data, "
                  "coalesce(sum(CASE WHEN indid < 2 THEN used - dpages ELSE used END), 0) AS indexes FROM " +
                      indexes + ") s");
    return 0;
}

int spaceUsed(const ProcedureCall& call)
{
    if (!call.text(0))
        return spaceOfDatabase(call);
    const ObjectPtr object = findNamed(call.session(), parseObjectName(*call.text(0)));
    if (!object || object->kind != ObjectKind::UserTable)
        raise(15009, {*call.text(0), call.session().database()->name});
    const std::string indexes = "(" + findSystemTable("", "sysindexes")->select(object->databaseId) + ")";
    call.sendRows(R"(
name        sysname       (SELECT o.name FROM cat_object o WHERE o.dbid = :db AND o.id = s.id)
rows        char(11)?     s.rows
reserved    varchar(18)?  (8 * s.reserved) || ' KB'
data        varchar(18)?  (8 * s.data) || ' KB'
index_size  varchar(18)?  (8 * s.indexes) || ' KB'
unused      varchar(18)?  (8 * (s.reserved - s.data - s.indexes)) || ' KB'
)",
                  "FROM (SELECT id, max(rows) AS rows, sum(reserved) AS reserved, "
                  "sum(CASE WHEN indid < 2 THEN dpages ELSE 0 END) AS data, "
                  "sum(CASE WHEN indid < 2 THEN used - dpages ELSE used END) AS indexes FROM " +
                      indexes + " WHERE id = " + std::to_string(object->id) + ") s");
    return 0;
}

const DatabaseOptionName* optionByPrefix(const std::string& name)
{
    const DatabaseOptionName* found = nullptr;
    for (const DatabaseOptionName& option : databaseOptionNames()) {
        const std::string known = foldName(option.procedureName);
        if (known == foldName(name))
            return &option;
        if (!known.starts_with(foldName(name)))
            continue;
        if (found != nullptr)
            raise(15242, {name});
        found = &option;
    }
    return found;
}

/// The options of sp_dboption that are values of a database of their own.
bool setSpecialOption(const ProcedureCall& call, const Database& database, const std::string& name, bool on)
{
    SessionContext& session = call.session();
    if (sameName(name, "single user"))
        setUserAccess(session, database, on ? UserAccess::Single : UserAccess::Multi, false);
    else if (sameName(name, "dbo use only"))
        setUserAccess(session, database, on ? UserAccess::Restricted : UserAccess::Multi, false);
    else if (sameName(name, "trunc. log on chkpt."))
        setRecovery(session, database, on ? RecoveryModel::Simple : RecoveryModel::Full);
    else if (sameName(name, "select into/bulkcopy"))
        setRecovery(session, database, on ? RecoveryModel::BulkLogged : RecoveryModel::Full);
    else
        return false;
    return true;
}

std::string optionNames(const Database* database)
{
    std::string rows;
    const auto add = [&rows](const char* name) {
        rows += (rows.empty() ? "(" : ", (") + quotedText(name) + ")";
    };
    for (const DatabaseOptionName& option : databaseOptionNames()) {
        if (database == nullptr || (database->options & option.option) != 0)
            add(option.procedureName);
    }
    if (database == nullptr || database->access == UserAccess::Single)
        add("single user");
    if (database == nullptr || database->access == UserAccess::Restricted)
        add("dbo use only");
    if (database == nullptr || database->recovery == RecoveryModel::Simple)
        add("trunc. log on chkpt.");
    if (database == nullptr || database->recovery == RecoveryModel::BulkLogged)
        add("select into/bulkcopy");
    return rows.empty() ? "(SELECT NULL AS column1 WHERE 0)" : "(VALUES " + rows + ")";
}

bool isKnownOption(const std::string& name)
{
    for (const char* special :
         {"single user", "dbo use only", "trunc. log on chkpt.", "select into/bulkcopy"}) {
        if (sameName(name, special))
            return true;
    }
    return optionByPrefix(name) != nullptr;
}

int showOption(const ProcedureCall& call, const Database& database, const std::string& name)
{
    const DatabaseOptionName* option = optionByPrefix(name);
    const std::string shown = option == nullptr ? foldName(name) : option->procedureName;
    call.sendRows(R"(
OptionName      nvarchar(35)  v.column1
CurrentSetting  char(3)       CASE WHEN s.column1 IS NULL THEN 'OFF' ELSE 'ON' END
)",
                  "FROM (VALUES (" + quotedText(shown) + ")) v LEFT JOIN " + optionNames(&database) +
                      " s ON s.column1 = v.column1");
    return 0;
}

int databaseOption(const ProcedureCall& call)
{
    if (!call.text(0)) {
        call.sendRows("Settable&database&options: nvarchar(35) v.column1",
                      "FROM " + optionNames(nullptr) + " v ORDER BY v.column1");
        return 0;
    }
    const DatabasePtr database = requireDatabase(call, *call.text(0));
    if (!call.text(1)) {
        call.sendRows("The&following&options&are&set: nvarchar(35) v.column1",
                      "FROM " + optionNames(database.get()) + " v ORDER BY v.column1");
        return 0;
    }
    const std::string name = *call.text(1);
    if (!isKnownOption(name))
        raise(15241, {name});
    if (!call.text(2))
        return showOption(call, *database, name);
    const std::string value = foldName(*call.text(2));
    const bool on = value == "true" || value == "on";
    if (!on && value != "false" && value != "off")
        raise(15241, {*call.text(2)});
    requireNoTransaction(call.session(), "ALTER DATABASE");
    if (!isDatabaseOwner(call.session(), database->id))
        raise(15247);
    call.session().beginWrite();
    if (!setSpecialOption(call, *database, name, on))
        setDatabaseOption(call.session(), *database, optionByPrefix(name)->option, on);
    return 0;
}

int renameDatabaseProcedure(const ProcedureCall& call)
{
    if (call.session().transactionCount() > 0)
        raise(15002, {call.name()});
    requireServerRole(call.session(), DbCreator);
    const std::string name = call.textOr(0, "");
    const std::string newName = call.textOr(1, "");
    call.session().beginWrite();
    const DatabasePtr database = requireDatabase(call, name);
    const DatabasePtr taken = call.session().catalog().database(newName);
    if (taken && taken->id != database->id)
        raise(15032, {newName});
    if (newName.empty())
        raise(15004);
    renameDatabase(call.session(), *database, newName);
    return 0;
}

int changeOwner(const ProcedureCall& call)
{
    call.session().beginWrite();
    requireServerRole(call.session(), SysAdmin);
    const Login login = requireLogin(call.session(), call.textOr(0, ""));
    const DatabasePtr database = call.session().database();
    if (database->isSystem())
        raise(15109);
    Statement mapped(call.session().connection(),
                     "SELECT 1 FROM cat_user WHERE dbid = ? AND sid = ? AND uid <> 1");
    if (mapped.bind(1, database->id).bindBlob(2, login.sid.data(), login.sid.size()).step())
        raise(15110);
    for (const char* sql : {"UPDATE cat_database SET sid = ?1 WHERE dbid = ?2",
                            "UPDATE cat_user SET sid = ?1 WHERE dbid = ?2 AND uid = 1"}) {
        Statement row(call.session().connection(), sql);
        row.bindBlob(1, login.sid.data(), login.sid.size()).bind(2, database->id).run();
    }
    bumpCatalogVersion(call.session().connection());
    return 0;
}

int addDevice(const ProcedureCall& call)
{
    constexpr int backupDevice = 16;
    constexpr int disk = 2;
    constexpr int tape = 5;
    const std::string type = foldName(call.textOr(0, ""));
    if (type != "disk" && type != "tape" && type != "pipe")
        raise(15044, {type});
    requireServerRole(call.session(), DiskAdmin);
    call.session().beginWrite();
    const std::string name = call.textOr(1, "");
    const std::string path = call.textOr(2, "");
    Statement taken(call.session().connection(), "SELECT 1 FROM cat_device WHERE fold = ?");
    if (taken.bind(1, foldName(name)).step())
        raise(15026, {name});
    if (name.empty() || path.empty())
        raise(15045);
    Statement row(call.session().connection(),
                  "INSERT INTO cat_device(name, fold, status, cntrltype, phyname) "
                  "VALUES(?, ?, ?, ?, ?)");
    row.bind(1, name).bind(2, foldName(name)).bind(3, backupDevice).bind(4, type == "tape" ? tape : disk);
    row.bind(5, path).run();
    call.session().inform(15521);
    return 0;
}

int dropDevice(const ProcedureCall& call)
{
    requireServerRole(call.session(), DiskAdmin);
    call.session().beginWrite();
    const std::string name = call.textOr(0, "");
    Statement known(call.session().connection(), "SELECT status, phyname FROM cat_device WHERE fold = ?");
    if (!known.bind(1, foldName(name)).step())
        raise(15012, {name});
    constexpr int backupDevice = 16;
    if (known.number(0) != backupDevice)
        raise(15105, {name});
    const std::string path = known.string(1);
    known.reset();
    Statement row(call.session().connection(), "DELETE FROM cat_device WHERE fold = ?");
    row.bind(1, foldName(name)).run();
    if (sameName(call.textOr(1, ""), "delfile"))
        removeDatabaseFile(path);
    call.session().inform(15522);
    return 0;
}

int helpDevice(const ProcedureCall& call)
{
    const auto& name = call.text(0);
    Statement known(call.session().connection(), "SELECT 1 FROM cat_device WHERE fold = ?");
    if (name && !known.bind(1, foldName(*name)).step())
        raise(15012, {*name});
    call.sendRows(R"(
device_name    sysname        d.name
physical_name  nvarchar(260)? d.phyname
description    nvarchar(255)? CASE WHEN d.status = 16 THEN 'disk, backup device' ELSE 'special, physical disk' END
status         int            d.status
cntrltype      smallint       d.cntrltype
size           int            0
)",
                  "FROM cat_device d" + (name ? " WHERE d.fold = " + quotedText(foldName(*name)) : "") +
                      " ORDER BY d.fold");
    return 0;
}

constexpr SystemProcedure databaseTable[] = {
    {"sp_helpdb", "@dbname=", helpDatabase},
    {"sp_helpfile", "@filename=", helpFile},
    {"sp_helpfilegroup", "@filegroupname=", helpFilegroup},
    {"sp_spaceused", "@objname= @updateusage=", spaceUsed},
    {"sp_dboption", "@dbname= @optname= @optvalue=", databaseOption},
    {"sp_renamedb", "@dbname @newname", renameDatabaseProcedure},
    {"sp_changedbowner", "@loginame @map=", changeOwner},
    {"sp_addumpdevice", "@devtype @logicalname @physicalname @cntrltype= @devstatus=", addDevice},
    {"sp_dropdevice", "@logicalname @delfile=", dropDevice},
    {"sp_helpdevice", "@devname=", helpDevice},
};

} // namespace

std::span<const SystemProcedure> databaseProcedures()
{
    return databaseTable;
}

} // namespace practice
