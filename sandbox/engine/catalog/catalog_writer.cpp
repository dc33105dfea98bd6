#include "engine/catalog/catalog_writer.h"

#include "engine/catalog/catalog.h"
#include "engine/catalog/catalog_load.h"
#include "engine/catalog/security.h"
#include "engine/store/storage.h"
#include "engine/store/store.h"
#include "types/date_time.h"

#include <array>

namespace practice {
namespace {

std::string paddedXtype(ObjectKind kind)
{
    std::string xtype = xtypeOf(kind);
    xtype.resize(2, ' ');
    return xtype;
}

void runFor(sqlite3* connection, const char* sql, int databaseId)
{
    Statement(connection, sql).bind(1, databaseId).run();
}

void runFor(sqlite3* connection, const char* sql, int databaseId, int id)
{
    Statement(connection, sql).bind(1, databaseId).bind(2, id).run();
}

struct ColumnPlace
{
    int databaseId;
    int objectId;
    int columnId;
};

void deleteColumnRow(sqlite3* connection, const std::string& table, const ColumnPlace& place)
{
    Statement row(connection, "DELETE FROM " + table + " WHERE dbid = ? AND id = ? AND colid = ?");
    row.bind(1, place.databaseId).bind(2, place.objectId).bind(3, place.columnId).run();
}

void insertFixedUsers(sqlite3* connection, const NewDatabase& database)
{
    struct Fixed
    {
        int id;
        const char* name;
        bool role;
    };
    static constexpr std::array<Fixed, 13> fixed{{{0, "public", true},
                                                  {1, "dbo", false},
                                                  {2, "guest", false},
                                                  {3, "INFORMATION_SCHEMA", false},
                                                  {16384, "db_owner", true},
                                                  {16385, "db_accessadmin", true},
                                                  {16386, "db_securityadmin", true},
                                                  {16387, "db_ddladmin", true},
                                                  {16389, "db_backupoperator", true},
                                                  {16390, "db_datareader", true},
                                                  {16391, "db_datawriter", true},
                                                  {16392, "db_denydatareader", true},
                                                  {16393, "db_denydatawriter", true}}};
    for (const Fixed& user : fixed) {
        NewUser row;
        row.id = user.id;
        row.name = user.name;
        row.role = user.role;
        row.alternateId = user.role ? 1 : 0;
        row.access = user.id == 1 || (user.id == 2 && database.guest);
        if (user.id == 1)
            row.sid = database.ownerSid;
        if (user.id == 2)
            row.sid = std::string(1, '\0');
        insertUser(connection, database.id, row);
    }
    runFor(connection, "INSERT INTO cat_member(dbid, groupuid, memberuid) VALUES(?, 16384, 1)", database.id);
}

} // namespace

std::int64_t storedNow()
{
    return datetimeStorage(currentLocalTime());
}

void insertDatabase(sqlite3* connection, const NewDatabase& database)
{
    Statement row(connection,
                  "INSERT INTO cat_database(dbid, name, fold, sid, created, level, collation, options, "
                  "recovery, access) VALUES(?, ?, ?, ?, ?, 80, ?, ?, ?, 0)");
    row.bind(1, database.id).bind(2, database.name).bind(3, foldName(database.name));
    row.bindBlob(4, database.ownerSid.data(), database.ownerSid.size()).bind(5, storedNow());
    row.bind(6, database.collation).bind(7, std::int64_t{database.options});
    row.bind(8, int(database.recovery)).run();
    Statement group(connection, "INSERT INTO cat_filegroup(dbid, groupid, name, fold, status) "
                                "VALUES(?, 1, 'PRIMARY', 'primary', 16)");
    group.bind(1, database.id).run();
    insertFixedUsers(connection, database);
    bumpCatalogVersion(connection);
}

void deleteDatabase(sqlite3* connection, int databaseId)
{
    std::vector<std::string> tables;
    {
        Statement rows(connection,
                       "SELECT id FROM cat_object WHERE dbid = ? AND xtype = 'U' AND NOT shipped");
        rows.bind(1, databaseId);
        while (rows.step())
            tables.push_back(storageTable(databaseId, rows.number(0)));
    }
    for (const std::string& table : tables)
        execute(connection, "DROP TABLE IF EXISTS " + table);
    for (const char* table :
         {"cat_database", "cat_object", "cat_column", "cat_identity", "cat_comment", "cat_index",
          "cat_index_key", "cat_check", "cat_reference", "cat_reference_column", "cat_filegroup", "cat_file",
          "cat_user", "cat_member", "cat_permission", "cat_column_permission"})
        runFor(connection, ("DELETE FROM " + std::string(table) + " WHERE dbid = ?").c_str(), databaseId);
    bumpCatalogVersion(connection);
}

void insertFile(sqlite3* connection, int databaseId, const NewFile& file)
{
    constexpr int diskFile = 0x2;
    constexpr int logFile = 0x40;
    constexpr int percentGrowth = 0x100000;
    Statement row(connection,
                  "INSERT INTO cat_file(dbid, fileid, groupid, size, maxsize, growth, status, name, fold, "
                  "filename) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    row.bind(1, databaseId).bind(2, file.id).bind(3, file.groupId).bind(4, file.size).bind(5, file.maxSize);
    row.bind(6, file.growth);
    row.bind(7, diskFile + (file.groupId == 0 ? logFile : 0) + (file.percent ? percentGrowth : 0));
    row.bind(8, file.name).bind(9, foldName(file.name)).bind(10, file.path).run();
    bumpCatalogVersion(connection);
}

/// Object ids walk through the positive integers in big steps, as on any server of this kind.
int nextObjectId(sqlite3* connection, int databaseId)
{
    constexpr std::int64_t step = 16'000'057;
    constexpr std::int64_t ceiling = 1LL << 31;
    Statement last(connection, "SELECT lastid FROM cat_database WHERE dbid = ?");
    last.bind(1, databaseId).step();
    std::int64_t id = last.integer(0);
    Statement taken(connection, "SELECT 1 FROM cat_object WHERE dbid = ? AND id = ?");
    for (bool free = false; !free;) {
        id = (id + step) % ceiling;
        free = id > 1000 && !taken.bind(1, databaseId).bind(2, id).step();
        taken.reset();
    }
    Statement keep(connection, "UPDATE cat_database SET lastid = ? WHERE dbid = ?");
    keep.bind(1, id).bind(2, databaseId).run();
    return int(id);
}

int insertObject(sqlite3* connection, int databaseId, const NewObject& object)
{
    const int id = object.id != 0 ? object.id : nextObjectId(connection, databaseId);
    Statement row(connection,
                  "INSERT INTO cat_object(dbid, id, name, fold, uid, xtype, parent, created, groupid, "
                  "quoted, ansinulls, shipped) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    row.bind(1, databaseId).bind(2, id).bind(3, object.name).bind(4, foldName(object.name));
    row.bind(5, object.ownerId)
        .bind(6, paddedXtype(object.kind))
        .bind(7, object.parentId)
        .bind(8, storedNow());
    row.bind(9, object.filegroupId).bind(10, int(object.quotedIdentifier)).bind(11, int(object.ansiNulls));
    row.bind(12, int(object.shipped)).run();
    bumpCatalogVersion(connection);
    return id;
}

void deleteObject(sqlite3* connection, int databaseId, int objectId)
{
    for (const char* table : {"cat_object", "cat_column", "cat_identity", "cat_comment"})
        runFor(connection, ("DELETE FROM " + std::string(table) + " WHERE dbid = ? AND id = ?").c_str(),
               databaseId, objectId);
    deletePermissions(connection, databaseId, objectId);
    bumpCatalogVersion(connection);
}

void deletePermissions(sqlite3* connection, int databaseId, int objectId)
{
    runFor(connection, "DELETE FROM cat_permission WHERE dbid = ? AND id = ?", databaseId, objectId);
    runFor(connection, "DELETE FROM cat_column_permission WHERE dbid = ? AND id = ?", databaseId, objectId);
}

void renameObject(sqlite3* connection, int databaseId, int objectId, const std::string& name)
{
    Statement row(connection, "UPDATE cat_object SET name = ?, fold = ? WHERE dbid = ? AND id = ?");
    row.bind(1, name).bind(2, foldName(name)).bind(3, databaseId).bind(4, objectId).run();
    bumpCatalogVersion(connection);
}

void touchObject(sqlite3* connection, int databaseId, int objectId)
{
    runFor(connection, "UPDATE cat_object SET schemaver = schemaver + 1 WHERE dbid = ? AND id = ?",
           databaseId, objectId);
    bumpCatalogVersion(connection);
}

void writeText(sqlite3* connection, int databaseId, int objectId, const std::string& text, bool encrypted)
{
    Statement row(connection,
                  "INSERT OR REPLACE INTO cat_comment(dbid, id, text, encrypted) VALUES(?, ?, ?, ?)");
    row.bind(1, databaseId).bind(2, objectId).bind(3, text).bind(4, int(encrypted)).run();
    bumpCatalogVersion(connection);
}

void insertColumn(sqlite3* connection, int databaseId, int objectId, const Column& column)
{
    Statement row(
        connection,
        "INSERT INTO cat_column(dbid, id, colid, name, fold, xtype, length, prec, scale, nullable, rowguid, "
        "padded, collation, usertype, seed, increment, notrepl, defaultid, computed) "
        "VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    row.bind(1, databaseId).bind(2, objectId).bind(3, column.id).bind(4, column.name);
    row.bind(5, foldName(column.name)).bind(6, xtypeNumber(column.type.id)).bind(7, column.type.length);
    row.bind(8, int(column.type.precision)).bind(9, int(column.type.scale)).bind(10, int(column.nullable));
    row.bind(11, int(column.rowGuid)).bind(12, int(column.ansiPadded)).bind(13, column.collation);
    row.bind(14, column.userType).bind(18, column.defaultId);
    if (column.identity) {
        row.bind(15, column.identity->seed).bind(16, column.identity->increment);
        row.bind(17, int(column.identity->notForReplication));
    } else {
        row.bindNull(15).bindNull(16).bind(17, 0);
    }
    if (column.computed)
        row.bind(19, *column.computed);
    row.run();
    bumpCatalogVersion(connection);
}

void insertParameter(sqlite3* connection, int databaseId, int objectId, int number,
                     const ProcedureParameter& parameter)
{
    Statement row(connection,
                  "INSERT INTO cat_column(dbid, id, colid, name, fold, xtype, length, prec, scale, "
                  "nullable, output) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, 1, ?)");
    row.bind(1, databaseId).bind(2, objectId).bind(3, number).bind(4, parameter.name);
    row.bind(5, foldName(parameter.name))
        .bind(6, xtypeNumber(parameter.type.id))
        .bind(7, parameter.type.length);
    row.bind(8, int(parameter.type.precision)).bind(9, int(parameter.type.scale));
    row.bind(10, int(parameter.output)).run();
}

void replaceColumn(sqlite3* connection, int databaseId, int objectId, const Column& column)
{
    deleteColumnRow(connection, "cat_column", {databaseId, objectId, column.id});
    insertColumn(connection, databaseId, objectId, column);
}

void deleteColumn(sqlite3* connection, int databaseId, int objectId, int columnId)
{
    for (const char* table : {"cat_column", "cat_column_permission"})
        deleteColumnRow(connection, table, {databaseId, objectId, columnId});
    bumpCatalogVersion(connection);
}

void insertIndex(sqlite3* connection, int databaseId, int objectId, const Index& index)
{
    Statement row(connection,
                  "INSERT INTO cat_index(dbid, id, indid, name, fold, uniq, kind, ignoredup, padded, "
                  "norecompute, enabled, fillfactor, groupid, constid) "
                  "VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    row.bind(1, databaseId)
        .bind(2, objectId)
        .bind(3, index.id)
        .bind(4, index.name)
        .bind(5, foldName(index.name));
    row.bind(6, int(index.unique)).bind(7, index.primaryKey ? "P" : index.uniqueConstraint ? "U" : "I");
    row.bind(8, int(index.ignoreDuplicates)).bind(9, int(index.padded)).bind(10, int(index.noRecompute));
    row.bind(11, int(index.enabled)).bind(12, index.fillFactor).bind(13, index.filegroupId);
    row.bind(14, index.constraintId).run();
    Statement key(connection,
                  "INSERT INTO cat_index_key(dbid, id, indid, keyno, colid, descending, included) "
                  "VALUES(?, ?, ?, ?, ?, ?, ?)");
    int number = 0;
    const auto add = [&](int columnId, bool descending, bool included) {
        key.bind(1, databaseId).bind(2, objectId).bind(3, index.id).bind(4, ++number).bind(5, columnId);
        key.bind(6, int(descending)).bind(7, int(included)).run();
    };
    for (const IndexKey& part : index.keys)
        add(part.columnId, part.descending, false);
    for (const int columnId : index.included)
        add(columnId, false, true);
    bumpCatalogVersion(connection);
}

void deleteIndex(sqlite3* connection, int databaseId, int objectId, int indexId)
{
    for (const char* table : {"cat_index", "cat_index_key"}) {
        Statement row(connection,
                      "DELETE FROM " + std::string(table) + " WHERE dbid = ? AND id = ? AND indid = ?");
        row.bind(1, databaseId).bind(2, objectId).bind(3, indexId).run();
    }
    bumpCatalogVersion(connection);
}

void insertCheck(sqlite3* connection, int databaseId, int tableId, const CheckConstraint& check, bool trusted)
{
    Statement row(connection, "INSERT INTO cat_check(dbid, constid, id, colid, enabled, trusted, notrepl) "
                              "VALUES(?, ?, ?, ?, ?, ?, ?)");
    row.bind(1, databaseId).bind(2, check.id).bind(3, tableId).bind(4, check.columnId);
    row.bind(5, int(check.enabled)).bind(6, int(trusted)).bind(7, int(check.notForReplication)).run();
    writeText(connection, databaseId, check.id, check.text);
}

void insertForeignKey(sqlite3* connection, int databaseId, const ForeignKey& key)
{
    Statement row(connection,
                  "INSERT INTO cat_reference(dbid, constid, fkeyid, rkeyid, rkeyindid, ondelete, onupdate, "
                  "enabled, trusted, notrepl) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    row.bind(1, databaseId).bind(2, key.id).bind(3, key.tableId).bind(4, key.referencedId);
    row.bind(5, key.referencedIndexId).bind(6, int(key.onDelete)).bind(7, int(key.onUpdate));
    row.bind(8, int(key.enabled)).bind(9, int(key.trusted)).bind(10, int(key.notForReplication)).run();
    Statement part(connection, "INSERT INTO cat_reference_column(dbid, constid, keyno, fcolid, rcolid) "
                               "VALUES(?, ?, ?, ?, ?)");
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        part.bind(1, databaseId).bind(2, key.id).bind(3, int(i) + 1).bind(4, key.columns[i]);
        part.bind(5, key.referencedColumns[i]).run();
    }
    bumpCatalogVersion(connection);
}

void deleteConstraintRows(sqlite3* connection, int databaseId, int constraintId)
{
    for (const char* table : {"cat_check", "cat_reference", "cat_reference_column"})
        runFor(connection, ("DELETE FROM " + std::string(table) + " WHERE dbid = ? AND constid = ?").c_str(),
               databaseId, constraintId);
    bumpCatalogVersion(connection);
}

void insertUser(sqlite3* connection, int databaseId, const NewUser& user)
{
    Statement row(connection,
                  "INSERT INTO cat_user(dbid, uid, name, fold, sid, role, approle, access, altuid, "
                  "aliased, created, updated) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?11)");
    row.bind(1, databaseId).bind(2, user.id).bind(3, user.name);
    row.bind(4, (user.aliased ? "\\" : "") + foldName(user.name));
    if (user.sid.empty())
        row.bindNull(5);
    else
        row.bindBlob(5, user.sid.data(), user.sid.size());
    row.bind(6, int(user.role || user.applicationRole)).bind(7, int(user.applicationRole));
    row.bind(8, int(user.access && !user.role && !user.aliased)).bind(9, user.alternateId);
    row.bind(10, int(user.aliased)).bind(11, storedNow()).run();
    bumpCatalogVersion(connection);
}

void insertLogin(sqlite3* connection, const NewLogin& login)
{
    Statement row(connection,
                  "INSERT INTO cat_login(sid, name, fold, hash, salt, dbname, language, created, updated, "
                  "roles) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?8, ?9)");
    row.bindBlob(1, login.sid.data(), login.sid.size()).bind(2, login.name).bind(3, foldName(login.name));
    if (login.hasPassword) {
        const PasswordHash made = hashPassword(login.password);
        row.bindBlob(4, made.hash.data(), made.hash.size()).bindBlob(5, made.salt.data(), made.salt.size());
    }
    row.bind(6, login.database).bind(7, login.language).bind(8, storedNow());
    row.bind(9, std::int64_t{login.serverRoles}).run();
    bumpCatalogVersion(connection);
}

} // namespace practice
