// Keys, references and other constraints.
#include "engine/catalog/system_tables/system_tables.h"

namespace practice {
namespace {

constexpr SystemTableDefinition keysDefinitions[] = {
    {"sys", "indexes", false,
     R"(
object_id             int            i.id
name                  sysname?       i.name
index_id              int            i.indid
type                  tinyint        CASE WHEN i.indid > 1 THEN 2 ELSE i.indid END
type_desc             nvarchar(60)?  CASE i.indid WHEN 0 THEN 'HEAP' WHEN 1 THEN 'CLUSTERED' ELSE 'NONCLUSTERED' END
is_unique             bit?           i.uniq
data_space_id         int            i.groupid
ignore_dup_key        bit?           i.ignoredup
is_primary_key        bit?           i.kind = 'P'
is_unique_constraint  bit?           i.kind = 'U'
fill_factor           tinyint        i.fillfactor
is_padded             bit?           i.padded
is_disabled           bit?           NOT i.enabled
is_hypothetical       bit?           0
allow_row_locks       bit?           1
allow_page_locks      bit?           1
has_filter            bit?           0
filter_definition     nvarchar(max)? NULL
)",
     "FROM (SELECT dbid, id, name, indid, uniq, groupid, ignoredup, kind, fillfactor, padded, enabled FROM "
     "cat_index "
     "UNION ALL SELECT o.dbid, o.id, NULL, 0, 0, o.groupid, 0, 'I', 0, 0, 1 FROM cat_object o WHERE o.xtype "
     "= 'U' "
     "AND NOT o.shipped AND NOT EXISTS (SELECT 1 FROM cat_index c WHERE c.dbid = o.dbid AND c.id = o.id AND "
     "c.indid = 1)) i "
     "WHERE i.dbid = :db"},

    {"sys", "index_columns", false,
     R"(
object_id           int      x.id
index_id            int      x.indid
index_column_id     int      x.keyno
column_id           int      x.colid
key_ordinal         tinyint  CASE WHEN x.included THEN 0 ELSE x.keyno END
partition_ordinal   tinyint  0
is_descending_key   bit?     x.descending
is_included_column  bit?     x.included
)",
     "FROM cat_index_key x WHERE x.dbid = :db"},

    {"sys", "partitions", false,
     R"(
partition_id      bigint  4294967296 * i.id + i.indid
object_id         int     i.id
index_id          int     i.indid
partition_number  int     1
hobt_id           bigint  4294967296 * i.id + i.indid
rows              bigint? practice_rows(i.dbid, i.id)
)",
     "FROM (SELECT dbid, id, indid FROM cat_index UNION ALL SELECT o.dbid, o.id, 0 FROM cat_object o "
     "WHERE o.xtype = 'U' AND NOT o.shipped "
     "AND NOT EXISTS (SELECT 1 FROM cat_index c WHERE c.dbid = o.dbid AND c.id = o.id AND c.indid = 1)) i "
     "WHERE i.dbid = :db"},

    {"sys", "key_constraints", false,
     R"(
name                 sysname        o.name
object_id            int            o.id
schema_id            int            o.uid
parent_object_id     int            o.parent
type                 char(2)?       o.xtype
type_desc            nvarchar(60)?  CASE o.xtype WHEN 'PK' THEN 'PRIMARY_KEY_CONSTRAINT' ELSE 'UNIQUE_CONSTRAINT' END
create_date          datetime       o.created
modify_date          datetime       o.created
unique_index_id      int?           i.indid
is_system_named      bit            0
)",
     "FROM cat_object o JOIN cat_index i ON i.dbid = o.dbid AND i.id = o.parent AND i.constid = o.id "
     "WHERE o.dbid = :db AND o.xtype IN ('PK', 'UQ')"},

    {"sys", "foreign_keys", false,
     R"(
name                            sysname        o.name
object_id                       int            o.id
schema_id                       int            o.uid
parent_object_id                int            r.fkeyid
type                            char(2)?       o.xtype
type_desc                       nvarchar(60)?  'FOREIGN_KEY_CONSTRAINT'
create_date                     datetime       o.created
modify_date                     datetime       o.created
referenced_object_id            int?           r.rkeyid
key_index_id                    int?           r.rkeyindid
is_disabled                     bit            NOT r.enabled
is_not_for_replication          bit            r.notrepl
is_not_trusted                  bit            NOT r.trusted
delete_referential_action       tinyint?       r.ondelete
delete_referential_action_desc  nvarchar(60)?  CASE r.ondelete WHEN 1 THEN 'CASCADE' WHEN 2 THEN 'SET_NULL' WHEN 3 THEN 'SET_DEFAULT' ELSE 'NO_ACTION' END
update_referential_action       tinyint?       r.onupdate
update_referential_action_desc  nvarchar(60)?  CASE r.onupdate WHEN 1 THEN 'CASCADE' WHEN 2 THEN 'SET_NULL' WHEN 3 THEN 'SET_DEFAULT' ELSE 'NO_ACTION' END
is_system_named                 bit            0
)",
     "FROM cat_reference r JOIN cat_object o ON o.dbid = r.dbid AND o.id = r.constid WHERE r.dbid = :db"},

    {"sys", "foreign_key_columns", false,
     R"(
constraint_object_id  int  r.constid
constraint_column_id  int  c.keyno
parent_object_id      int  r.fkeyid
parent_column_id      int  c.fcolid
referenced_object_id  int  r.rkeyid
referenced_column_id  int  c.rcolid
)",
     "FROM cat_reference r JOIN cat_reference_column c ON c.dbid = r.dbid AND c.constid = r.constid "
     "WHERE r.dbid = :db"},

    {"sys", "check_constraints", false,
     R"(
name                    sysname         o.name
object_id               int             o.id
schema_id               int             o.uid
parent_object_id        int             o.parent
type                    char(2)?        o.xtype
type_desc               nvarchar(60)?   'CHECK_CONSTRAINT'
create_date             datetime        o.created
modify_date             datetime        o.created
is_disabled             bit             NOT c.enabled
is_not_for_replication  bit             c.notrepl
is_not_trusted          bit             NOT c.trusted
parent_column_id        int             c.colid
definition              nvarchar(max)?  t.text
is_system_named         bit             0
)",
     "FROM cat_check c JOIN cat_object o ON o.dbid = c.dbid AND o.id = c.constid "
     "JOIN cat_comment t ON t.dbid = c.dbid AND t.id = c.constid WHERE c.dbid = :db"},

    {"sys", "default_constraints", false,
     R"(
name              sysname         o.name
object_id         int             o.id
schema_id         int             o.uid
parent_object_id  int             o.parent
type              char(2)?        o.xtype
type_desc         nvarchar(60)?   'DEFAULT_CONSTRAINT'
create_date       datetime        o.created
modify_date       datetime        o.created
parent_column_id  int             k.colid
definition        nvarchar(max)?  t.text
is_system_named   bit             0
)",
     "FROM cat_object o JOIN cat_column k ON k.dbid = o.dbid AND k.id = o.parent AND k.defaultid = o.id "
     "JOIN cat_comment t ON t.dbid = o.dbid AND t.id = o.id WHERE o.dbid = :db AND o.xtype = 'D'"},
};

} // namespace

std::span<const SystemTableDefinition> constraintCatalogViews()
{
    return keysDefinitions;
}

} // namespace practice
