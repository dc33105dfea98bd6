// The views of the schema sys.
#include "engine/catalog/system_tables/system_tables.h"

namespace practice {
namespace {

constexpr const char* objectColumns = R"(
name                 sysname        o.name
object_id            int            o.id
principal_id         int?           NULL
schema_id            int            o.uid
parent_object_id     int            o.parent
type                 char(2)?       o.xtype
type_desc            nvarchar(60)?  CASE o.xtype WHEN 'U' THEN 'USER_TABLE' WHEN 'S' THEN 'SYSTEM_TABLE' WHEN 'V' THEN 'VIEW' WHEN 'P' THEN 'SQL_STORED_PROCEDURE' WHEN 'PK' THEN 'PRIMARY_KEY_CONSTRAINT' WHEN 'UQ' THEN 'UNIQUE_CONSTRAINT' WHEN 'F' THEN 'FOREIGN_KEY_CONSTRAINT' WHEN 'C' THEN 'CHECK_CONSTRAINT' WHEN 'D' THEN 'DEFAULT_CONSTRAINT' WHEN 'TR' THEN 'SQL_TRIGGER' WHEN 'FN' THEN 'SQL_SCALAR_FUNCTION' WHEN 'IF' THEN 'SQL_INLINE_TABLE_VALUED_FUNCTION' WHEN 'TF' THEN 'SQL_TABLE_VALUED_FUNCTION' ELSE 'EXTENDED_STORED_PROCEDURE' END
create_date          datetime       o.created
modify_date          datetime       o.created
is_ms_shipped        bit            o.shipped
is_published         bit            0
is_schema_published  bit            0
)";

constexpr const char* columnColumns = R"(
object_id               int             k.id
name                    sysname?        k.name
column_id               int             k.colid
system_type_id          tinyint         k.xtype
user_type_id            int             k.xusertype
max_length              smallint        CASE WHEN k.bytes > 32767 THEN -1 ELSE k.bytes END
precision               tinyint         CASE WHEN k.xtype IN (34, 35, 36, 99, 165, 167, 173, 175, 189, 231, 239, 241) THEN 0 ELSE k.fullprec END
scale                   tinyint         coalesce(k.fullscale, 0)
collation_name          sysname?        CASE WHEN k.collation <> '' THEN k.collation END
is_nullable             bit?            k.nullable
is_ansi_padded          bit             k.padded
is_rowguidcol           bit             k.rowguid
is_identity             bit             k.seed IS NOT NULL
is_computed             bit             k.computed IS NOT NULL
is_filestream           bit             0
is_replicated           bit?            0
is_sparse               bit?            0
default_object_id       int             k.defaultid
rule_object_id          int             0
)";

constexpr const char* moduleColumns = R"(
object_id               int             o.id
definition              nvarchar(max)?  CASE WHEN t.encrypted THEN NULL ELSE t.text END
uses_ansi_nulls         bit?            o.ansinulls
uses_quoted_identifier  bit?            o.quoted
is_schema_bound         bit?            0
)";

constexpr SystemTableDefinition sysDefinitions[] = {
    {"sys", "databases", true,
     R"(
name                     sysname        d.name
database_id              int            d.dbid
source_database_id       int?           NULL
owner_sid                varbinary(85)? d.sid
create_date              datetime       d.created
compatibility_level      tinyint        d.level
collation_name           sysname?       d.collation
user_access              tinyint?       CASE d.access WHEN 2 THEN 1 WHEN 1 THEN 2 ELSE 0 END
user_access_desc         nvarchar(60)?  CASE d.access WHEN 2 THEN 'SINGLE_USER' WHEN 1 THEN 'RESTRICTED_USER' ELSE 'MULTI_USER' END
is_read_only             bit?           d.options >> 16 & 1
is_auto_close_on         bit            d.options & 1
is_auto_shrink_on        bit?           d.options >> 1 & 1
state                    tinyint?       6 * (d.options >> 17 & 1)
state_desc               nvarchar(60)?  CASE WHEN d.options >> 17 & 1 THEN 'OFFLINE' ELSE 'ONLINE' END
is_in_standby            bit?           0
recovery_model           tinyint?       CASE d.recovery WHEN 2 THEN 1 WHEN 1 THEN 2 ELSE 3 END
recovery_model_desc      nvarchar(60)?  CASE d.recovery WHEN 2 THEN 'FULL' WHEN 1 THEN 'BULK_LOGGED' ELSE 'SIMPLE' END
page_verify_option       tinyint?       d.options >> 15 & 1
page_verify_option_desc  nvarchar(60)?  CASE WHEN d.options >> 15 & 1 THEN 'TORN_PAGE_DETECTION' ELSE 'NONE' END
is_auto_create_stats_on  bit?           d.options >> 2 & 1
is_auto_update_stats_on  bit?           d.options >> 3 & 1
is_ansi_null_default_on  bit?           d.options >> 4 & 1
is_ansi_nulls_on         bit?           d.options >> 5 & 1
is_ansi_padding_on       bit?           d.options >> 6 & 1
is_ansi_warnings_on      bit?           d.options >> 7 & 1
is_arithabort_on         bit?           d.options >> 8 & 1
is_concat_null_yields_null_on bit?      d.options >> 9 & 1
is_numeric_roundabort_on bit?           d.options >> 10 & 1
is_quoted_identifier_on  bit?           d.options >> 11 & 1
is_recursive_triggers_on bit?           d.options >> 12 & 1
is_cursor_close_on_commit_on bit?       d.options >> 13 & 1
is_local_cursor_default  bit?           d.options >> 14 & 1
is_db_chaining_on        bit?           d.options >> 18 & 1
)",
     "FROM cat_database d"},

    {"sys", "objects", false, objectColumns, "FROM cat_object o WHERE o.dbid = :db AND NOT o.shipped"},
    {"sys", "all_objects", false, objectColumns, "FROM cat_object o WHERE o.dbid IN (0, :db)"},
    {"sys", "tables", false, objectColumns,
     "FROM cat_object o WHERE o.dbid = :db AND o.xtype = 'U' AND NOT o.shipped"},
    {"sys", "views", false, objectColumns,
     "FROM cat_object o WHERE o.dbid = :db AND o.xtype = 'V' AND NOT o.shipped"},
    {"sys", "procedures", false, objectColumns,
     "FROM cat_object o WHERE o.dbid = :db AND o.xtype = 'P' AND NOT o.shipped"},
    {"sys", "triggers", false,
     R"(
name                    sysname        o.name
object_id               int            o.id
parent_class            tinyint        1
parent_class_desc       nvarchar(60)?  'OBJECT_OR_COLUMN'
parent_id               int            o.parent
type                    char(2)        o.xtype
type_desc               nvarchar(60)?  'SQL_TRIGGER'
create_date             datetime       o.created
modify_date             datetime       o.created
is_ms_shipped           bit            0
is_disabled             bit            o.disabled
is_instead_of_trigger   bit            0
)",
     "FROM cat_object o WHERE o.dbid = :db AND o.xtype = 'TR'"},

    {"sys", "columns", false, columnColumns,
     "FROM cat_column_type k JOIN cat_object o ON o.dbid = k.dbid AND o.id = k.id "
     "WHERE k.dbid IN (0, :db) AND o.xtype IN ('U', 'V', 'S', 'TF', 'IF')"},
    {"sys", "all_columns", false, columnColumns,
     "FROM cat_column_type k JOIN cat_object o ON o.dbid = k.dbid AND o.id = k.id "
     "WHERE k.dbid IN (0, :db) AND o.xtype IN ('U', 'V', 'S', 'TF', 'IF')"},

    {"sys", "identity_columns", false,
     R"(
object_id                int        k.id
name                     sysname?   k.name
column_id                int        k.colid
seed_value               bigint?    k.seed
increment_value          bigint?    k.increment
last_value               bigint?    (SELECT v.last FROM cat_identity v WHERE v.dbid = k.dbid AND v.id = k.id)
is_not_for_replication   bit?       k.notrepl
)",
     "FROM cat_column k WHERE k.dbid = :db AND k.seed IS NOT NULL"},

    {"sys", "computed_columns", false,
     R"(
object_id      int             k.id
name           sysname?        k.name
column_id      int             k.colid
definition     nvarchar(max)?  k.computed
is_persisted   bit             0
)",
     "FROM cat_column k WHERE k.dbid = :db AND k.computed IS NOT NULL"},

    {"sys", "types", false,
     R"(
name               sysname    t.name
system_type_id     tinyint    t.xtype
user_type_id       int        t.xusertype
schema_id          int        4
principal_id       int?       NULL
max_length         smallint   t.length
precision          tinyint    CASE WHEN t.scale IS NULL AND t.xtype NOT IN (59, 62) THEN 0 ELSE t.prec END
scale              tinyint    coalesce(t.scale, 0)
collation_name     sysname?   CASE WHEN t.collated THEN (SELECT d.collation FROM cat_database d WHERE d.dbid = :db) END
is_nullable        bit?       t.xusertype <> 256
is_user_defined    bit        0
is_assembly_type   bit        0
default_object_id  int        0
rule_object_id     int        0
is_table_type      bit        0
)",
     "FROM sys_type t"},

    {"sys", "sql_modules", false, moduleColumns,
     "FROM cat_object o JOIN cat_comment t ON t.dbid = o.dbid AND t.id = o.id "
     "WHERE o.dbid = :db AND o.xtype IN ('V', 'P', 'TR', 'FN', 'IF', 'TF') AND NOT o.shipped"},
    {"sys", "all_sql_modules", false, moduleColumns,
     "FROM cat_object o JOIN cat_comment t ON t.dbid = o.dbid AND t.id = o.id "
     "WHERE o.dbid IN (0, :db) AND o.xtype IN ('V', 'P', 'TR', 'FN', 'IF', 'TF')"},

    {"sys", "parameters", false,
     R"(
object_id       int        k.id
name            sysname?   k.name
parameter_id    int        k.colid
system_type_id  tinyint    k.xtype
user_type_id    int        k.xusertype
max_length      smallint   k.bytes
precision       tinyint    CASE WHEN k.xtype IN (34, 35, 36, 99, 165, 167, 173, 175, 189, 231, 239, 241) THEN 0 ELSE k.fullprec END
scale           tinyint    coalesce(k.fullscale, 0)
is_output       bit        k.output
)",
     "FROM cat_column_type k JOIN cat_object o ON o.dbid = k.dbid AND o.id = k.id "
     "WHERE k.dbid = :db AND o.xtype IN ('P', 'FN')"},

    {"sys", "database_files", false,
     R"(
file_id            int            f.fileid
type               tinyint        f.status & 64 <> 0
type_desc          nvarchar(60)?  CASE WHEN f.status & 64 THEN 'LOG' ELSE 'ROWS' END
data_space_id      int            f.groupid
name               sysname        f.name
physical_name      nvarchar(260)  f.filename
state              tinyint?       0
state_desc         nvarchar(60)?  'ONLINE'
size               int            f.size
max_size           int            f.maxsize
growth             int            f.growth
is_read_only       bit            0
is_percent_growth  bit            f.status & 1048576 <> 0
)",
     "FROM cat_file f WHERE f.dbid = :db"},
    {"sys", "master_files", true,
     R"(
database_id        int            f.dbid
file_id            int            f.fileid
type               tinyint        f.status & 64 <> 0
type_desc          nvarchar(60)?  CASE WHEN f.status & 64 THEN 'LOG' ELSE 'ROWS' END
data_space_id      int            f.groupid
name               sysname        f.name
physical_name      nvarchar(260)  f.filename
state              tinyint?       0
state_desc         nvarchar(60)?  'ONLINE'
size               int            f.size
max_size           int            f.maxsize
growth             int            f.growth
is_percent_growth  bit            f.status & 1048576 <> 0
)",
     "FROM cat_file f"},
    {"sys", "filegroups", false,
     R"(
name           sysname        g.name
data_space_id  int            g.groupid
type           char(2)        'FG'
type_desc      nvarchar(60)?  'ROWS_FILEGROUP'
is_default     bit?           g.status & 16 <> 0
is_read_only   bit?           g.status & 8 <> 0
)",
     "FROM cat_filegroup g WHERE g.dbid = :db"},
    {"sys", "data_spaces", false,
     R"(
name           sysname        g.name
data_space_id  int            g.groupid
type           char(2)        'FG'
type_desc      nvarchar(60)?  'ROWS_FILEGROUP'
is_default     bit?           g.status & 16 <> 0
)",
     "FROM cat_filegroup g WHERE g.dbid = :db"},

    {"sys", "extended_properties", false,
     R"(
class       tinyint         NULL
class_desc  nvarchar(60)?   NULL
major_id    int             NULL
minor_id    int             NULL
name        sysname         NULL
value       nvarchar(4000)? NULL
)",
     "FROM (SELECT 1) WHERE 0"},
};

} // namespace

std::span<const SystemTableDefinition> catalogViews()
{
    return sysDefinitions;
}

} // namespace practice
