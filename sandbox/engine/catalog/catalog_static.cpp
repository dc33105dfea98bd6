#include "engine/catalog/catalog_static.h"

#include "engine/catalog/catalog.h"
#include "engine/catalog/catalog_writer.h"
#include "engine/store/storage.h"
#include "engine/store/store.h"

#include <array>

namespace practice {
namespace {

// xtype, xusertype, name, type, type where NULL is allowed, usertype, length, precision, scale,
// variable, collated: the numbers that clients know from systypes.
constexpr const char* types = R"sql(
INSERT INTO sys_type VALUES
    (34, 34, 'image', 34, 34, 20, 16, 2147483647, NULL, 0, 0),
    (35, 35, 'text', 35, 35, 19, 16, 2147483647, NULL, 0, 1),
    (36, 36, 'uniqueidentifier', 37, 37, 0, 16, 16, NULL, 0, 0),
    (40, 40, 'date', 40, 40, 0, 3, 10, 0, 0, 0),
    (41, 41, 'time', 41, 41, 0, 5, 16, 7, 0, 0),
    (42, 42, 'datetime2', 42, 42, 0, 8, 27, 7, 0, 0),
    (43, 43, 'datetimeoffset', 43, 43, 0, 10, 34, 7, 0, 0),
    (48, 48, 'tinyint', 48, 38, 5, 1, 3, 0, 0, 0),
    (52, 52, 'smallint', 52, 38, 6, 2, 5, 0, 0, 0),
    (56, 56, 'int', 56, 38, 7, 4, 10, 0, 0, 0),
    (58, 58, 'smalldatetime', 58, 111, 22, 4, 16, 0, 0, 0),
    (59, 59, 'real', 59, 109, 23, 4, 24, NULL, 0, 0),
    (60, 60, 'money', 60, 110, 11, 8, 19, 4, 0, 0),
    (61, 61, 'datetime', 61, 111, 12, 8, 23, 3, 0, 0),
    (62, 62, 'float', 62, 109, 8, 8, 53, NULL, 0, 0),
    (98, 98, 'sql_variant', 39, 39, 0, 8016, 0, NULL, 1, 0),
    (99, 99, 'ntext', 35, 35, 0, 16, 1073741823, NULL, 0, 1),
    (104, 104, 'bit', 50, 50, 16, 1, 1, 0, 0, 0),
    (106, 106, 'decimal', 55, 106, 24, 17, 38, 38, 0, 0),
    (108, 108, 'numeric', 63, 108, 10, 17, 38, 38, 0, 0),
    (122, 122, 'smallmoney', 122, 110, 21, 4, 10, 4, 0, 0),
    (127, 127, 'bigint', 63, 38, 0, 8, 19, 0, 0, 0),
    (165, 165, 'varbinary', 37, 37, 4, 8000, 8000, NULL, 1, 0),
    (167, 167, 'varchar', 39, 39, 2, 8000, 8000, NULL, 1, 1),
    (173, 173, 'binary', 45, 45, 3, 8000, 8000, NULL, 0, 0),
    (175, 175, 'char', 47, 47, 1, 8000, 8000, NULL, 0, 1),
    (189, 189, 'timestamp', 45, 45, 80, 8, 8, NULL, 0, 0),
    (231, 231, 'nvarchar', 39, 39, 0, 8000, 4000, NULL, 1, 1),
    (231, 256, 'sysname', 39, 39, 18, 256, 128, NULL, 1, 1),
    (239, 239, 'nchar', 47, 47, 0, 8000, 4000, NULL, 0, 1),
    (241, 241, 'xml', 0, 0, 0, -1, -1, NULL, 1, 0);
)sql";

// Type letters: E machine, T permissions, D database options, SRV server roles, O9T and V kinds of
// object, I index properties, C server configuration (low is the default, high the maximum).
constexpr const char* values = R"sql(
INSERT INTO sys_value(name, number, type, low, high, status) VALUES
    ('WINDOWS/NT', 1, 'E', 8192, NULL, 0),
    ('References', 26, 'T', NULL, NULL, 0), ('Create Function', 178, 'T', NULL, NULL, 0),
    ('Select', 193, 'T', NULL, NULL, 0), ('Insert', 195, 'T', NULL, NULL, 0),
    ('Delete', 196, 'T', NULL, NULL, 0), ('Update', 197, 'T', NULL, NULL, 0),
    ('Create Table', 198, 'T', NULL, NULL, 0), ('Create Database', 203, 'T', NULL, NULL, 0),
    ('Grant_WGO', 204, 'T', NULL, NULL, 0), ('Grant', 205, 'T', NULL, NULL, 0),
    ('Deny', 206, 'T', NULL, NULL, 0), ('Create View', 207, 'T', NULL, NULL, 0),
    ('Create Procedure', 222, 'T', NULL, NULL, 0), ('Execute', 224, 'T', NULL, NULL, 0),
    ('Backup Database', 228, 'T', NULL, NULL, 0), ('Create Default', 233, 'T', NULL, NULL, 0),
    ('Backup Transaction', 235, 'T', NULL, NULL, 0), ('Create Rule', 236, 'T', NULL, NULL, 0),
    ('autoclose', 1, 'D', NULL, NULL, 0), ('select into/bulkcopy', 4, 'D', NULL, NULL, 0),
    ('trunc. log on chkpt.', 8, 'D', NULL, NULL, 0), ('torn page detection', 16, 'D', NULL, NULL, 0),
    ('loading', 32, 'D', NULL, NULL, 0), ('pre recovery', 64, 'D', NULL, NULL, 0),
    ('recovering', 128, 'D', NULL, NULL, 0), ('not recovered', 256, 'D', NULL, NULL, 0),
    ('offline', 512, 'D', NULL, NULL, 0), ('read only', 1024, 'D', NULL, NULL, 0),
    ('dbo use only', 2048, 'D', NULL, NULL, 0), ('single user', 4096, 'D', NULL, NULL, 0),
    ('autoshrink', 4194304, 'D', NULL, NULL, 0),
    ('ANSI null default', 16384, 'D2', NULL, NULL, 0), ('concat null yields null', 65536, 'D2', NULL, NULL, 0),
    ('recursive triggers', 131072, 'D2', NULL, NULL, 0), ('default to local cursor', 1048576, 'D2', NULL, NULL, 0),
    ('quoted identifier', 8388608, 'D2', NULL, NULL, 0), ('cursor close on commit', 33554432, 'D2', NULL, NULL, 0),
    ('ANSI nulls', 67108864, 'D2', NULL, NULL, 0), ('ANSI warnings', 268435456, 'D2', NULL, NULL, 0),
    ('System Administrators', 16, 'SRV', NULL, NULL, 0), ('sysadmin', 16, 'SRV', NULL, NULL, 0),
    ('Security Administrators', 32, 'SRV', NULL, NULL, 0), ('securityadmin', 32, 'SRV', NULL, NULL, 0),
    ('Server Administrators', 64, 'SRV', NULL, NULL, 0), ('serveradmin', 64, 'SRV', NULL, NULL, 0),
    ('Setup Administrators', 128, 'SRV', NULL, NULL, 0), ('setupadmin', 128, 'SRV', NULL, NULL, 0),
    ('Process Administrators', 256, 'SRV', NULL, NULL, 0), ('processadmin', 256, 'SRV', NULL, NULL, 0),
    ('Disk Administrators', 512, 'SRV', NULL, NULL, 0), ('diskadmin', 512, 'SRV', NULL, NULL, 0),
    ('Database Creators', 1024, 'SRV', NULL, NULL, 0), ('dbcreator', 1024, 'SRV', NULL, NULL, 0),
    ('Bulk Insert Administrators', 4096, 'SRV', NULL, NULL, 0), ('bulkadmin', 4096, 'SRV', NULL, NULL, 0),
    ('U : user table', 0, 'O9T', 0, NULL, 0), ('S : system table', 0, 'O9T', 0, NULL, 0),
    ('V : view', 0, 'O9T', 0, NULL, 0), ('P : stored procedure', 0, 'O9T', 0, NULL, 0),
    ('C : check cns', 0, 'O9T', 0, NULL, 0), ('D : default (maybe cns)', 0, 'O9T', 0, NULL, 0),
    ('F : foreign key cns', 0, 'O9T', 0, NULL, 0), ('PK: primary key cns', 0, 'O9T', 0, NULL, 0),
    ('UQ: unique key cns', 0, 'O9T', 0, NULL, 0), ('TR: trigger', 0, 'O9T', 0, NULL, 0),
    ('FN: scalar function', 0, 'O9T', 0, NULL, 0), ('IF: inline function', 0, 'O9T', 0, NULL, 0),
    ('TF: table function', 0, 'O9T', 0, NULL, 0), ('R : rule', 0, 'O9T', 0, NULL, 0),
    ('X : extended stored proc', 0, 'O9T', 0, NULL, 0),
    ('nonclustered', 0, 'I', NULL, NULL, 0), ('ignore duplicate keys', 1, 'I', NULL, NULL, 0),
    ('unique', 2, 'I', NULL, NULL, 0), ('ignore duplicate rows', 4, 'I', NULL, NULL, 0),
    ('clustered', 16, 'I', NULL, NULL, 0), ('hypothetical', 32, 'I', NULL, NULL, 0),
    ('statistics', 64, 'I', NULL, NULL, 0), ('primary key', 2048, 'I', NULL, NULL, 0),
    ('unique key', 4096, 'I', NULL, NULL, 0), ('stats no recompute', 16777216, 'I', NULL, NULL, 0),
    ('recovery interval (min)', 101, 'C', 0, 32767, 3), ('allow updates', 102, 'C', 0, 1, 1),
    ('user connections', 103, 'C', 0, 32767, 2), ('locks', 106, 'C', 0, 2147483647, 2),
    ('open objects', 107, 'C', 0, 2147483647, 2), ('fill factor (%)', 109, 'C', 0, 100, 2),
    ('nested triggers', 115, 'C', 1, 1, 1), ('remote access', 117, 'C', 1, 1, 0),
    ('default language', 124, 'C', 0, 9999, 1), ('max worker threads', 503, 'C', 255, 32767, 3),
    ('network packet size (B)', 505, 'C', 4096, 32767, 3), ('show advanced options', 518, 'C', 0, 1, 1),
    ('remote proc trans', 542, 'C', 0, 1, 1), ('default full-text language', 1126, 'C', 1033, 2147483647, 3),
    ('two digit year cutoff', 1127, 'C', 2049, 9999, 3), ('cursor threshold', 1531, 'C', -1, 2147483647, 3),
    ('user options', 1534, 'C', 0, 32767, 1), ('query governor cost limit', 1538, 'C', 0, 2147483647, 3),
    ('max degree of parallelism', 1539, 'C', 0, 32, 3), ('min server memory (MB)', 1543, 'C', 0, 2147483647, 3),
    ('max server memory (MB)', 1544, 'C', 2147483647, 2147483647, 3);
)sql";

struct SystemObject
{
    int database; ///< 0 in all, 1 in master
    int id;
    ObjectKind kind;
    const char* schema;
    const char* name;
};

constexpr ObjectKind table = ObjectKind::SystemTable;
constexpr ObjectKind view = ObjectKind::View;

constexpr std::array systemObjects{
    SystemObject{0, 1, table, "dbo", "sysobjects"},
    SystemObject{0, 2, table, "dbo", "sysindexes"},
    SystemObject{0, 3, table, "dbo", "syscolumns"},
    SystemObject{0, 4, table, "dbo", "systypes"},
    SystemObject{0, 6, table, "dbo", "syscomments"},
    SystemObject{0, 8, table, "dbo", "sysfiles1"},
    SystemObject{0, 9, table, "dbo", "syspermissions"},
    SystemObject{0, 10, table, "dbo", "sysusers"},
    SystemObject{0, 11, table, "dbo", "sysproperties"},
    SystemObject{0, 12, table, "dbo", "sysdepends"},
    SystemObject{0, 14, table, "dbo", "sysreferences"},
    SystemObject{0, 19, table, "dbo", "sysfulltextcatalogs"},
    SystemObject{0, 20, table, "dbo", "sysindexkeys"},
    SystemObject{0, 21, table, "dbo", "sysforeignkeys"},
    SystemObject{0, 22, table, "dbo", "sysmembers"},
    SystemObject{0, 23, table, "dbo", "sysprotects"},
    SystemObject{0, 24, table, "dbo", "sysfulltextnotify"},
    SystemObject{0, 95, table, "dbo", "sysfiles"},
    SystemObject{0, 96, table, "dbo", "sysfilegroups"},
    SystemObject{0, 1977058079, view, "dbo", "syssegments"},
    SystemObject{0, 1993058136, view, "dbo", "sysconstraints"},
    SystemObject{1, 30, table, "dbo", "sysdatabases"},
    SystemObject{1, 31, table, "dbo", "sysxlogins"},
    SystemObject{1, 32, table, "dbo", "sysdevices"},
    SystemObject{1, 33, table, "dbo", "sysmessages"},
    SystemObject{1, 34, table, "dbo", "sysconfigures"},
    SystemObject{1, 35, table, "dbo", "sysservers"},
    SystemObject{1, 36, table, "dbo", "syslanguages"},
    SystemObject{1, 37, table, "dbo", "syscharsets"},
    SystemObject{1, 40, table, "dbo", "sysaltfiles"},
    SystemObject{1, 50, table, "dbo", "syscurconfigs"},
    SystemObject{1, 51, table, "dbo", "sysprocesses"},
    SystemObject{1, 52, table, "dbo", "spt_values"},
    SystemObject{1, 53, view, "dbo", "syslogins"},
};

constexpr int informationSchemaUser = 3;
constexpr int firstInformationSchemaId = 200;

Column columnOf(const SystemTable::SystemColumn& definition, int id)
{
    Column column;
    column.id = id;
    column.name = definition.name;
    column.type = definition.type;
    column.nullable = definition.nullable;
    const bool text = isCharacter(definition.type.id);
    column.collation = text ? defaultCollation : "";
    if (definition.type.id == TypeId::NVarChar && definition.type.length == 128)
        column.userType = "sysname";
    return column;
}

void insertSystemObject(sqlite3* connection, const SystemTable& table, const SystemObject& system)
{
    NewObject object;
    object.id = system.id;
    object.name = table.name;
    object.ownerId = table.schema == "dbo" ? 1 : informationSchemaUser;
    object.kind = system.kind;
    object.shipped = true;
    insertObject(connection, system.database, object);
    int id = 0;
    for (const auto& column : table.columns)
        insertColumn(connection, system.database, system.id, columnOf(column, ++id));
}

void insertSystemObjects(sqlite3* connection)
{
    for (const SystemObject& system : systemObjects) {
        if (const SystemTable* table = findSystemTable(system.schema, system.name))
            insertSystemObject(connection, *table, system);
    }
    int id = firstInformationSchemaId;
    for (const SystemTable& table : systemTables()) {
        if (table.schema == "INFORMATION_SCHEMA")
            insertSystemObject(connection, table, {1, id++, view, "INFORMATION_SCHEMA", table.name.c_str()});
    }
}

void insertProcedures(sqlite3* connection, const std::vector<std::string>& names)
{
    constexpr int firstProcedureId = 300;
    int id = firstProcedureId;
    for (const std::string& name : names) {
        NewObject object;
        object.id = id++;
        object.name = name;
        object.kind = name.starts_with("xp_") ? ObjectKind::ExtendedProcedure : ObjectKind::Procedure;
        object.shipped = true;
        insertObject(connection, masterId, object);
    }
}

} // namespace

void insertStaticRows(sqlite3* connection, const std::vector<std::string>& procedures)
{
    execute(connection,
            "DELETE FROM cat_column WHERE EXISTS (SELECT 1 FROM cat_object o WHERE o.dbid = cat_column.dbid "
            "AND o.id = cat_column.id AND o.shipped)");
    execute(connection, "DELETE FROM cat_object WHERE shipped");
    execute(connection, "DELETE FROM sys_type; DELETE FROM sys_value; DELETE FROM sys_number");
    execute(connection, types);
    execute(connection, values);
    execute(connection,
            "INSERT INTO sys_number WITH RECURSIVE n(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM n "
            "WHERE n < 2048) SELECT n FROM n");
    execute(connection, "INSERT INTO sys_value(name, number, type, low, high, status) "
                        "SELECT NULL, n - 1, 'P', 1 + (n - 1) / 8, 1 << ((n - 1) % 8), 0 FROM sys_number");
    insertSystemObjects(connection);
    insertProcedures(connection, procedures);
}

} // namespace practice
