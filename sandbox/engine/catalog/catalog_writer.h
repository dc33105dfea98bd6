// Writes rows of the catalog. Nothing here checks what SQL Server would refuse: that is the DDL's
// business. Every call that changes an object of a database bumps the catalog's version.
#pragma once

#include "engine/catalog/catalog_types.h"

#include <cstdint>
#include <string>
#include <vector>

struct sqlite3;

namespace practice {

/// Now in local time, as datetime lies in the store.
[[nodiscard]] std::int64_t storedNow();

struct NewDatabase
{
    int id = 0;
    std::string name;
    std::string ownerSid;
    std::string collation;
    DatabaseOptions options = AutoCreateStatistics | AutoUpdateStatistics | TornPageDetection;
    RecoveryModel recovery = RecoveryModel::Full;
    bool guest = false; ///< whether guest may enter
};

/// The database with its fixed users, roles and the filegroup PRIMARY; no files.
void insertDatabase(sqlite3* connection, const NewDatabase& database);
/// Everything that belongs to it, its tables' rows included.
void deleteDatabase(sqlite3* connection, int databaseId);

struct NewFile
{
    int id = 0;
    int groupId = 1;           ///< 0 for a log file
    std::int64_t size = 0;     ///< pages
    std::int64_t maxSize = -1; ///< pages; -1 for no limit
    std::int64_t growth = 0;   ///< pages or percent
    bool percent = false;
    std::string name;
    std::string path;
};

void insertFile(sqlite3* connection, int databaseId, const NewFile& file);

struct NewObject
{
    int id = 0; ///< 0 for the next free one
    std::string name;
    int ownerId = 1;
    ObjectKind kind = ObjectKind::UserTable;
    int parentId = 0;
    int filegroupId = 1;
    bool quotedIdentifier = true;
    bool ansiNulls = true;
    bool shipped = false;
};

/// An id that no object has, for a name that is made from it.
[[nodiscard]] int nextObjectId(sqlite3* connection, int databaseId);
/// @return the object's id
int insertObject(sqlite3* connection, int databaseId, const NewObject& object);
/// The object alone, with its text, parameters or columns, and the permissions on it.
void deleteObject(sqlite3* connection, int databaseId, int objectId);
/// All that was granted and denied on an object and its columns.
void deletePermissions(sqlite3* connection, int databaseId, int objectId);
void renameObject(sqlite3* connection, int databaseId, int objectId, const std::string& name);
/// Marks it as altered (sysobjects.schema_ver).
void touchObject(sqlite3* connection, int databaseId, int objectId);
void writeText(sqlite3* connection, int databaseId, int objectId, const std::string& text,
               bool encrypted = false);

void insertColumn(sqlite3* connection, int databaseId, int objectId, const Column& column);
void insertParameter(sqlite3* connection, int databaseId, int objectId, int number,
                     const ProcedureParameter& parameter);
/// Writes all of a column anew, under its id.
void replaceColumn(sqlite3* connection, int databaseId, int objectId, const Column& column);
void deleteColumn(sqlite3* connection, int databaseId, int objectId, int columnId);

void insertIndex(sqlite3* connection, int databaseId, int objectId, const Index& index);
void deleteIndex(sqlite3* connection, int databaseId, int objectId, int indexId);
void insertCheck(sqlite3* connection, int databaseId, int tableId, const CheckConstraint& check,
                 bool trusted);
void insertForeignKey(sqlite3* connection, int databaseId, const ForeignKey& key);
/// The row of a CHECK or FOREIGN KEY constraint behind its object.
void deleteConstraintRows(sqlite3* connection, int databaseId, int constraintId);

struct NewUser
{
    int id = 0;
    std::string name;
    std::string sid; ///< "" for none
    bool role = false;
    bool applicationRole = false;
    bool access = true;
    bool aliased = false;
    int alternateId = 0; ///< owner of a role, or whom an alias stands for
};

void insertUser(sqlite3* connection, int databaseId, const NewUser& user);

struct NewLogin
{
    std::string name;
    std::string sid;
    std::string password;
    std::string database = "master";
    std::string language = "us_english";
    unsigned serverRoles = 0;
    bool hasPassword = true; ///< false for one that nobody can log in as
};

void insertLogin(sqlite3* connection, const NewLogin& login);

} // namespace practice
