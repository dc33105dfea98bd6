// The views of INFORMATION_SCHEMA.
#include "engine/catalog/system_tables/system_tables.h"

namespace practice {
namespace {

constexpr SystemTableDefinition informationDefinitions[] = {
    {"INFORMATION_SCHEMA", "SCHEMATA", false,
     R"(
CATALOG_NAME                  sysname?  d.name
SCHEMA_NAME                   sysname   u.name
SCHEMA_OWNER                  sysname   u.name
DEFAULT_CHARACTER_SET_CATALOG sysname?  NULL
DEFAULT_CHARACTER_SET_SCHEMA  sysname?  NULL
DEFAULT_CHARACTER_SET_NAME    sysname   'iso_1'
)",
     "FROM cat_user u JOIN cat_database d ON d.dbid = u.dbid WHERE u.dbid = :db AND NOT u.aliased"},

    {"INFORMATION_SCHEMA", "TABLES", false,
     R"(
TABLE_CATALOG sysname?     d.name
TABLE_SCHEMA  sysname?     u.name
TABLE_NAME    sysname      o.name
TABLE_TYPE    varchar(10)? CASE o.xtype WHEN 'U' THEN 'BASE TABLE' ELSE 'VIEW' END
)",
     "FROM cat_object o JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid "
     "= o.uid "
     "WHERE o.dbid = :db AND o.xtype IN ('U', 'V') AND NOT o.shipped"},

    {"INFORMATION_SCHEMA", "COLUMNS", false,
     R"(
TABLE_CATALOG            sysname?        d.name
TABLE_SCHEMA             sysname?        u.name
TABLE_NAME               sysname         o.name
COLUMN_NAME              sysname?        k.name
ORDINAL_POSITION         int?            (SELECT count(*) FROM cat_column p WHERE p.dbid = k.dbid AND p.id = k.id AND p.colid <= k.colid)
COLUMN_DEFAULT           nvarchar(4000)? (SELECT t.text FROM cat_comment t WHERE t.dbid = k.dbid AND t.id = k.defaultid)
IS_NULLABLE              varchar(3)?     CASE WHEN k.nullable THEN 'YES' ELSE 'No ' END
DATA_TYPE                nvarchar(128)?  CASE k.typename WHEN 'sysname' THEN 'nvarchar' ELSE k.typename END
CHARACTER_MAXIMUM_LENGTH int?            CASE WHEN k.xtype IN (34, 35) THEN 2147483647 WHEN k.xtype = 99 THEN 1073741823 WHEN k.xtype IN (165, 167, 173, 175, 231, 239, 241) THEN k.length END
CHARACTER_OCTET_LENGTH   int?            CASE WHEN k.xtype IN (34, 35) THEN 2147483647 WHEN k.xtype = 99 THEN 2147483646 WHEN k.xtype IN (165, 167, 173, 175, 231, 239, 241) THEN k.bytes END
NUMERIC_PRECISION        tinyint?        CASE WHEN k.xtype IN (48, 52, 56, 59, 60, 62, 106, 108, 122, 127) THEN k.fullprec END
NUMERIC_PRECISION_RADIX  smallint?       CASE WHEN k.xtype IN (59, 62) THEN 2 WHEN k.xtype IN (48, 52, 56, 60, 106, 108, 122, 127) THEN 10 END
NUMERIC_SCALE            int?            CASE WHEN k.xtype IN (48, 52, 56, 60, 106, 108, 122, 127) THEN k.fullscale END
DATETIME_PRECISION       smallint?       CASE k.xtype WHEN 61 THEN 3 WHEN 58 THEN 0 WHEN 40 THEN 0 WHEN 41 THEN k.scale WHEN 42 THEN k.scale WHEN 43 THEN k.scale END
CHARACTER_SET_CATALOG    sysname?        NULL
CHARACTER_SET_SCHEMA     sysname?        NULL
CHARACTER_SET_NAME       sysname?        CASE WHEN k.xtype IN (35, 167, 175) THEN 'iso_1' WHEN k.xtype IN (99, 231, 239) THEN 'UNICODE' END
COLLATION_CATALOG        sysname?        NULL
COLLATION_SCHEMA         sysname?        NULL
COLLATION_NAME           sysname?        CASE WHEN k.collation <> '' THEN k.collation END
DOMAIN_CATALOG           sysname?        CASE k.usertype WHEN 'sysname' THEN d.name END
DOMAIN_SCHEMA            sysname?        CASE k.usertype WHEN 'sysname' THEN 'dbo' END
DOMAIN_NAME              sysname?        CASE k.usertype WHEN 'sysname' THEN 'sysname' END
)",
     "FROM cat_column_type k JOIN cat_object o ON o.dbid = k.dbid AND o.id = k.id "
     "JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid = o.uid "
     "WHERE k.dbid = :db AND o.xtype IN ('U', 'V') AND NOT o.shipped"},

    {"INFORMATION_SCHEMA", "VIEWS", false,
     R"(
TABLE_CATALOG   sysname?        d.name
TABLE_SCHEMA    sysname?        u.name
TABLE_NAME      sysname         o.name
VIEW_DEFINITION nvarchar(4000)? CASE WHEN t.encrypted OR length(t.text) > 4000 THEN NULL ELSE t.text END
CHECK_OPTION    varchar(7)?     CASE WHEN upper(t.text) LIKE '%WITH CHECK OPTION%' THEN 'CASCADE' ELSE 'NONE' END
IS_UPDATABLE    varchar(2)      'NO'
)",
     "FROM cat_object o JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid "
     "= o.uid "
     "LEFT JOIN cat_comment t ON t.dbid = o.dbid AND t.id = o.id WHERE o.dbid = :db AND o.xtype = 'V' AND "
     "NOT o.shipped"},

    {"INFORMATION_SCHEMA", "ROUTINES", false,
     R"(
SPECIFIC_CATALOG   sysname?        d.name
SPECIFIC_SCHEMA    sysname?        u.name
SPECIFIC_NAME      sysname         o.name
ROUTINE_CATALOG    sysname?        d.name
ROUTINE_SCHEMA     sysname?        u.name
ROUTINE_NAME       sysname         o.name
ROUTINE_TYPE       nvarchar(20)?   CASE o.xtype WHEN 'P' THEN 'PROCEDURE' ELSE 'FUNCTION' END
DATA_TYPE          nvarchar(128)?  NULL
ROUTINE_BODY       nvarchar(30)?   'SQL'
ROUTINE_DEFINITION nvarchar(4000)? CASE WHEN t.encrypted THEN NULL ELSE substr(t.text, 1, 4000) END
SQL_DATA_ACCESS    nvarchar(30)?   CASE o.xtype WHEN 'P' THEN 'MODIFIES' ELSE 'READS' END
CREATED            datetime?       o.created
LAST_ALTERED       datetime?       o.created
)",
     "FROM cat_object o JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid "
     "= o.uid "
     "LEFT JOIN cat_comment t ON t.dbid = o.dbid AND t.id = o.id "
     "WHERE o.dbid = :db AND o.xtype IN ('P', 'FN', 'IF', 'TF') AND NOT o.shipped"},

    {"INFORMATION_SCHEMA", "PARAMETERS", false,
     R"(
SPECIFIC_CATALOG         sysname?       d.name
SPECIFIC_SCHEMA          sysname?       u.name
SPECIFIC_NAME            sysname        o.name
ORDINAL_POSITION         int            k.colid
PARAMETER_MODE           nvarchar(10)?  CASE WHEN k.output THEN 'INOUT' ELSE 'IN' END
IS_RESULT                nvarchar(10)?  'NO'
PARAMETER_NAME           sysname?       k.name
DATA_TYPE                nvarchar(128)? k.typename
CHARACTER_MAXIMUM_LENGTH int?           CASE WHEN k.xtype IN (165, 167, 173, 175, 231, 239) THEN k.length END
NUMERIC_PRECISION        tinyint?       CASE WHEN k.xtype IN (48, 52, 56, 59, 60, 62, 106, 108, 122, 127) THEN k.fullprec END
NUMERIC_SCALE            int?           CASE WHEN k.xtype IN (48, 52, 56, 60, 106, 108, 122, 127) THEN k.fullscale END
)",
     "FROM cat_column_type k JOIN cat_object o ON o.dbid = k.dbid AND o.id = k.id "
     "JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid = o.uid "
     "WHERE k.dbid = :db AND o.xtype = 'P' AND NOT o.shipped"},

    {"INFORMATION_SCHEMA", "CHECK_CONSTRAINTS", false,
     R"(
CONSTRAINT_CATALOG sysname?        d.name
CONSTRAINT_SCHEMA  sysname?        u.name
CONSTRAINT_NAME    sysname         o.name
CHECK_CLAUSE       nvarchar(4000)? t.text
)",
     "FROM cat_object o JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid "
     "= o.uid "
     "JOIN cat_comment t ON t.dbid = o.dbid AND t.id = o.id WHERE o.dbid = :db AND o.xtype = 'C'"},

    {"INFORMATION_SCHEMA", "REFERENTIAL_CONSTRAINTS", false,
     R"(
CONSTRAINT_CATALOG        sysname?    d.name
CONSTRAINT_SCHEMA         sysname?    u.name
CONSTRAINT_NAME           sysname     o.name
UNIQUE_CONSTRAINT_CATALOG sysname?    d.name
UNIQUE_CONSTRAINT_SCHEMA  sysname?    u.name
UNIQUE_CONSTRAINT_NAME    sysname?    (SELECT i.name FROM cat_index i WHERE i.dbid = r.dbid AND i.id = r.rkeyid AND i.indid = r.rkeyindid)
MATCH_OPTION              varchar(7)? 'SIMPLE'
UPDATE_RULE               varchar(11)? CASE r.onupdate WHEN 1 THEN 'CASCADE' WHEN 2 THEN 'SET NULL' WHEN 3 THEN 'SET DEFAULT' ELSE 'NO ACTION' END
DELETE_RULE               varchar(11)? CASE r.ondelete WHEN 1 THEN 'CASCADE' WHEN 2 THEN 'SET NULL' WHEN 3 THEN 'SET DEFAULT' ELSE 'NO ACTION' END
)",
     "FROM cat_reference r JOIN cat_object o ON o.dbid = r.dbid AND o.id = r.constid "
     "JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid = o.uid WHERE "
     "r.dbid = :db"},

    {"INFORMATION_SCHEMA", "TABLE_CONSTRAINTS", false,
     R"(
CONSTRAINT_CATALOG sysname?     d.name
CONSTRAINT_SCHEMA  sysname?     u.name
CONSTRAINT_NAME    sysname      o.name
TABLE_CATALOG      sysname?     d.name
TABLE_SCHEMA       sysname?     u.name
TABLE_NAME         sysname?     p.name
CONSTRAINT_TYPE    varchar(11)? CASE o.xtype WHEN 'PK' THEN 'PRIMARY KEY' WHEN 'UQ' THEN 'UNIQUE' WHEN 'F' THEN 'FOREIGN KEY' ELSE 'CHECK' END
IS_DEFERRABLE      varchar(2)   'NO'
INITIALLY_DEFERRED varchar(2)   'NO'
)",
     "FROM cat_object o JOIN cat_object p ON p.dbid = o.dbid AND p.id = o.parent "
     "JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid = o.uid "
     "WHERE o.dbid = :db AND o.xtype IN ('PK', 'UQ', 'F', 'C')"},

    {"INFORMATION_SCHEMA", "KEY_COLUMN_USAGE", false,
     R"(
CONSTRAINT_CATALOG sysname?  d.name
CONSTRAINT_SCHEMA  sysname?  u.name
CONSTRAINT_NAME    sysname   o.name
TABLE_CATALOG      sysname?  d.name
TABLE_SCHEMA       sysname?  u.name
TABLE_NAME         sysname?  p.name
COLUMN_NAME        sysname?  k.name
ORDINAL_POSITION   int       x.keyno
)",
     "FROM (SELECT i.dbid, i.constid, i.id, c.colid, c.keyno FROM cat_index i JOIN cat_index_key c "
     "ON c.dbid = i.dbid AND c.id = i.id AND c.indid = i.indid WHERE i.kind <> 'I' AND NOT c.included "
     "UNION ALL SELECT r.dbid, r.constid, r.fkeyid, c.fcolid, c.keyno FROM cat_reference r "
     "JOIN cat_reference_column c ON c.dbid = r.dbid AND c.constid = r.constid) x "
     "JOIN cat_object o ON o.dbid = x.dbid AND o.id = x.constid JOIN cat_object p ON p.dbid = x.dbid AND "
     "p.id = x.id "
     "JOIN cat_column k ON k.dbid = x.dbid AND k.id = x.id AND k.colid = x.colid "
     "JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid = o.uid WHERE "
     "x.dbid = :db"},

    {"INFORMATION_SCHEMA", "CONSTRAINT_COLUMN_USAGE", false,
     R"(
TABLE_CATALOG      sysname?  d.name
TABLE_SCHEMA       sysname?  u.name
TABLE_NAME         sysname?  p.name
COLUMN_NAME        sysname?  k.name
CONSTRAINT_CATALOG sysname?  d.name
CONSTRAINT_SCHEMA  sysname?  u.name
CONSTRAINT_NAME    sysname   o.name
)",
     "FROM (SELECT i.dbid, i.constid, i.id, c.colid FROM cat_index i JOIN cat_index_key c "
     "ON c.dbid = i.dbid AND c.id = i.id AND c.indid = i.indid WHERE i.kind <> 'I' AND NOT c.included "
     "UNION ALL SELECT r.dbid, r.constid, r.fkeyid, c.fcolid FROM cat_reference r "
     "JOIN cat_reference_column c ON c.dbid = r.dbid AND c.constid = r.constid "
     "UNION ALL SELECT dbid, constid, id, colid FROM cat_check WHERE colid > 0) x "
     "JOIN cat_object o ON o.dbid = x.dbid AND o.id = x.constid JOIN cat_object p ON p.dbid = x.dbid AND "
     "p.id = x.id "
     "JOIN cat_column k ON k.dbid = x.dbid AND k.id = x.id AND k.colid = x.colid "
     "JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid = o.uid WHERE "
     "x.dbid = :db"},

    {"INFORMATION_SCHEMA", "CONSTRAINT_TABLE_USAGE", false,
     R"(
TABLE_CATALOG      sysname?  d.name
TABLE_SCHEMA       sysname?  u.name
TABLE_NAME         sysname?  p.name
CONSTRAINT_CATALOG sysname?  d.name
CONSTRAINT_SCHEMA  sysname?  u.name
CONSTRAINT_NAME    sysname   o.name
)",
     "FROM cat_object o JOIN cat_object p ON p.dbid = o.dbid AND p.id = o.parent "
     "JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid = o.uid "
     "WHERE o.dbid = :db AND o.xtype IN ('PK', 'UQ', 'F', 'C')"},
};

} // namespace

std::span<const SystemTableDefinition> informationSchemaViews()
{
    return informationDefinitions;
}

} // namespace practice
