#include "engine/procedures/system_procedures_driver.h"
#include "engine/messages/errors.h"
#include "engine/procedures/system_procedures.h"
#include "engine/store/storage.h"

namespace practice {
namespace {

/// A qualifier other than the current database is refused.
void requireCurrentDatabase(const ProcedureCall& call, std::size_t place)
{
    const auto& qualifier = call.text(place);
    if (qualifier && !qualifier->empty() && !sameName(*qualifier, call.session().database()->name))
        raise(15250);
}

std::string equals(const std::string& fold, const std::optional<std::string>& name)
{
    return name ? " AND " + fold + " = " + quotedText(foldName(*name)) : "";
}

int databases(const ProcedureCall& call)
{
    call.sendRows(R"(
DATABASE_NAME  sysname       d.name
DATABASE_SIZE  int?          (SELECT 8 * sum(f.size) FROM cat_file f WHERE f.dbid = d.dbid)
REMARKS        varchar(254)? NULL
)",
                  "FROM cat_database d WHERE s_has_dbaccess(d.name) ORDER BY d.fold");
    return 0;
}

constexpr const char* tableColumns = R"(
TABLE_QUALIFIER  sysname?      v.column1
TABLE_OWNER      sysname?      v.column2
TABLE_NAME       sysname?      v.column3
TABLE_TYPE       varchar(32)?  v.column4
REMARKS          varchar(254)? NULL
)";

/// The forms in which ODBC asks for all catalogs, owners or types: '%' alone among empty names.
bool sendEnumeration(const ProcedureCall& call)
{
    const bool name = call.text(0) && call.text(0)->empty();
    const bool owner = call.text(1) && call.text(1)->empty();
    const bool qualifier = call.text(2) && call.text(2)->empty();
    std::string source;
    if (call.textOr(2, "") == "%" && name && owner)
        source =
            "(SELECT name AS column1, NULL AS column2, NULL AS column3, NULL AS column4 FROM cat_database)";
    else if (call.textOr(1, "") == "%" && name && qualifier)
        source = "(SELECT NULL AS column1, name AS column2, NULL AS column3, NULL AS column4 FROM cat_user "
                 "WHERE dbid = :db AND NOT aliased)";
    else if (call.textOr(3, "") == "%" && name && owner && qualifier)
        source = "(VALUES (NULL, NULL, NULL, 'SYSTEM TABLE'), (NULL, NULL, NULL, 'TABLE'), (NULL, NULL, "
                 "NULL, 'VIEW'))";
    else
        return false;
    call.sendRows(tableColumns, "FROM " + source + " v ORDER BY v.column1, v.column2, v.column4");
    return true;
}

/// "'TABLE','VIEW'" as SQLite's list of kinds.
std::string kindsOf(const std::optional<std::string>& types)
{
    if (!types || types->empty())
        return "'U', 'V', 'S'";
    const std::string folded = foldName(*types);
    std::string kinds;
    const auto add = [&](const char* wanted, const char* kind) {
        if (folded.find(wanted) != std::string::npos)
            kinds += std::string(kinds.empty() ? "" : ", ") + kind;
    };
    add("'table'", "'U'");
    add("'view'", "'V'");
    add("'system table'", "'S'");
    return kinds.empty() ? "''" : kinds;
}

int tables(const ProcedureCall& call)
{
    if (sendEnumeration(call))
        return 0;
    requireCurrentDatabase(call, 2);
    call.sendRows(tableColumns, "FROM (SELECT d.name AS column1, u.name AS column2, o.name AS column3, "
                                "CASE WHEN o.xtype = 'U' THEN 'TABLE' WHEN o.xtype = 'S' THEN 'SYSTEM TABLE' "
                                "ELSE 'VIEW' END AS column4 "
                                "FROM cat_object o JOIN cat_database d ON d.dbid = :db JOIN cat_user u ON "
                                "u.dbid = :db AND u.uid = o.uid "
                                "WHERE o.dbid IN (0, :db) AND o.xtype IN (" +
                                    kindsOf(call.text(3)) + ") AND " + likePattern("o.name", call.text(0)) +
                                    " AND " + likePattern("u.name", call.text(1)) +
                                    ") v ORDER BY v.column4, v.column1, v.column2, v.column3");
    return 0;
}

std::string columnSource()
{
    return std::string("FROM cat_column_type k JOIN cat_object o ON o.dbid = k.dbid AND o.id = k.id "
                       "JOIN cat_database d ON d.dbid = :db JOIN cat_user u ON u.dbid = :db AND u.uid = "
                       "o.uid JOIN ") +
           driverTypes() + " v ON v.column1 = k.xtype WHERE k.dbid IN (0, :db)";
}

/// `third` for ODBC 3, where dates have other numbers.
std::string typeColumn(bool third)
{
    return third ? "v.column2" : "v.column3";
}

int columns(const ProcedureCall& call)
{
    requireCurrentDatabase(call, 2);
    const std::string type = typeColumn(call.numberOr(4, 2) >= 3);
    const std::string list = R"(
TABLE_QUALIFIER    sysname?        d.name
TABLE_OWNER        sysname?        u.name
TABLE_NAME         sysname         o.name
COLUMN_NAME        sysname         k.name
DATA_TYPE          smallint        )" +
                             type + R"(
TYPE_NAME          sysname         k.typename || CASE WHEN k.seed IS NULL THEN '' ELSE ' identity' END
PRECISION          int?            coalesce(v.column4, k.fullprec)
LENGTH             int?            coalesce(v.column5, CASE WHEN k.xtype IN (106, 108) THEN k.prec + 2 ELSE k.bytes END)
SCALE              smallint?       coalesce(v.column6, CASE WHEN k.xtype IN (106, 108) THEN k.scale END)
RADIX              smallint?       v.column7
NULLABLE           smallint        k.nullable
REMARKS            varchar(254)?   NULL
COLUMN_DEF         nvarchar(4000)? (SELECT t.text FROM cat_comment t WHERE t.dbid = k.dbid AND t.id = k.defaultid)
SQL_DATA_TYPE      smallint        v.column8
SQL_DATETIME_SUB   smallint?       v.column9
CHAR_OCTET_LENGTH  int?            CASE WHEN k.xtype IN (34, 35, 99) THEN v.column5 WHEN k.xtype IN (165, 167, 173, 175, 231, 239) THEN k.bytes END
ORDINAL_POSITION   int             (SELECT count(*) FROM cat_column p WHERE p.dbid = k.dbid AND p.id = k.id AND p.colid <= k.colid)
IS_NULLABLE        varchar(254)?   CASE WHEN k.nullable THEN 'YES' ELSE 'NO' END
SS_DATA_TYPE       tinyint         k.oldtype
)";
    call.sendRows(list.c_str(), columnSource() + " AND o.xtype IN ('U', 'V', 'S') AND " +
                                    likePattern("o.name", call.text(0)) + " AND " +
                                    likePattern("u.name", call.text(1)) + " AND " +
                                    likePattern("k.name", call.text(3)) +
                                    " ORDER BY d.fold, u.fold, o.fold, k.colid");
    return 0;
}

int primaryKeys(const ProcedureCall& call)
{
    requireCurrentDatabase(call, 2);
    call.sendRows(
        R"(
TABLE_QUALIFIER  sysname?   d.name
TABLE_OWNER      sysname?   u.name
TABLE_NAME       sysname    o.name
COLUMN_NAME      sysname    k.name
KEY_SEQ          smallint   x.keyno
PK_NAME          sysname?   i.name
)",
        "FROM cat_index i JOIN cat_index_key x ON x.dbid = i.dbid AND x.id = i.id AND x.indid = i.indid "
        "JOIN cat_object o ON o.dbid = i.dbid AND o.id = i.id "
        "JOIN cat_column k ON k.dbid = i.dbid AND k.id = i.id AND k.colid = x.colid "
        "JOIN cat_database d ON d.dbid = i.dbid JOIN cat_user u ON u.dbid = o.dbid AND u.uid = o.uid "
        "WHERE i.dbid = :db AND i.kind = 'P'" +
            equals("o.fold", call.text(0)) + equals("u.fold", call.text(1)) +
            " ORDER BY d.fold, u.fold, o.fold, x.keyno");
    return 0;
}

int foreignKeys(const ProcedureCall& call)
{
    if (!call.text(0) && !call.text(3))
        raise(15252);
    requireCurrentDatabase(call, 2);
    requireCurrentDatabase(call, 5);
    const std::string order = call.text(0) ? "fu.fold, ft.fold, c.keyno" : "pu.fold, pt.fold, c.keyno";
    call.sendRows(
        R"(
PKTABLE_QUALIFIER  sysname?   d.name
PKTABLE_OWNER      sysname?   pu.name
PKTABLE_NAME       sysname    pt.name
PKCOLUMN_NAME      sysname    pc.name
FKTABLE_QUALIFIER  sysname?   d.name
FKTABLE_OWNER      sysname?   fu.name
FKTABLE_NAME       sysname    ft.name
FKCOLUMN_NAME      sysname    fc.name
KEY_SEQ            smallint   c.keyno
UPDATE_RULE        smallint?  CASE r.onupdate WHEN 1 THEN 0 WHEN 0 THEN 1 ELSE r.onupdate END
DELETE_RULE        smallint?  CASE r.ondelete WHEN 1 THEN 0 WHEN 0 THEN 1 ELSE r.ondelete END
FK_NAME            sysname?   o.name
PK_NAME            sysname?   (SELECT i.name FROM cat_index i WHERE i.dbid = r.dbid AND i.id = r.rkeyid AND i.indid = r.rkeyindid)
DEFERRABILITY      smallint   7
)",
        "FROM cat_reference r JOIN cat_reference_column c ON c.dbid = r.dbid AND c.constid = r.constid "
        "JOIN cat_object o ON o.dbid = r.dbid AND o.id = r.constid JOIN cat_database d ON d.dbid = r.dbid "
        "JOIN cat_object pt ON pt.dbid = r.dbid AND pt.id = r.rkeyid "
        "JOIN cat_object ft ON ft.dbid = r.dbid AND ft.id = r.fkeyid "
        "JOIN cat_user pu ON pu.dbid = r.dbid AND pu.uid = pt.uid "
        "JOIN cat_user fu ON fu.dbid = r.dbid AND fu.uid = ft.uid "
        "JOIN cat_column pc ON pc.dbid = r.dbid AND pc.id = r.rkeyid AND pc.colid = c.rcolid "
        "JOIN cat_column fc ON fc.dbid = r.dbid AND fc.id = r.fkeyid AND fc.colid = c.fcolid "
        "WHERE r.dbid = :db" +
            equals("pt.fold", call.text(0)) + equals("pu.fold", call.text(1)) +
            equals("ft.fold", call.text(3)) + equals("fu.fold", call.text(4)) + " ORDER BY " + order);
    return 0;
}

int statistics(const ProcedureCall& call)
{
    requireCurrentDatabase(call, 2);
    const bool uniqueOnly = foldName(call.textOr(4, "N")) == "y";
    call.sendRows(
        R"(
TABLE_QUALIFIER   sysname?      d.name
TABLE_OWNER       sysname?      u.name
TABLE_NAME        sysname       o.name
NON_UNIQUE        smallint?     x.nonunique
INDEX_QUALIFIER   sysname?      CASE WHEN x.kind = 0 THEN NULL ELSE o.name END
INDEX_NAME        sysname?      x.name
TYPE              smallint      x.kind
SEQ_IN_INDEX      smallint?     x.keyno
COLUMN_NAME       sysname?      x.columnname
COLLATION         char(1)?      CASE WHEN x.kind = 0 THEN NULL WHEN x.descending THEN 'D' ELSE 'A' END
CARDINALITY       int?          practice_rows(o.dbid, o.id)
PAGES             int?          1
FILTER_CONDITION  varchar(128)? NULL
)",
        "FROM cat_object o JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = o.dbid AND "
        "u.uid = o.uid "
        "JOIN (SELECT dbid, id, NULL AS nonunique, NULL AS name, 0 AS kind, NULL AS keyno, NULL AS "
        "columnname, "
        "0 AS descending FROM cat_object "
        "UNION ALL SELECT i.dbid, i.id, NOT i.uniq, i.name, CASE WHEN i.indid = 1 THEN 1 ELSE 3 END, "
        "k.keyno, c.name, "
        "k.descending FROM cat_index i JOIN cat_index_key k ON k.dbid = i.dbid AND k.id = i.id AND k.indid = "
        "i.indid "
        "JOIN cat_column c ON c.dbid = i.dbid AND c.id = i.id AND c.colid = k.colid WHERE NOT k.included) x "
        "ON x.dbid = o.dbid AND x.id = o.id WHERE o.dbid = :db AND o.xtype = 'U'" +
            equals("o.fold", call.text(0)) + equals("u.fold", call.text(1)) +
            (uniqueOnly ? " AND (x.kind = 0 OR NOT x.nonunique)" : "") + " AND " +
            likePattern("coalesce(x.name, '')", call.text(3)) +
            " ORDER BY x.nonunique, x.kind, x.name, x.keyno");
    return 0;
}

int storedProcedures(const ProcedureCall& call)
{
    requireCurrentDatabase(call, 2);
    call.sendRows(R"(
PROCEDURE_QUALIFIER  sysname?       d.name
PROCEDURE_OWNER      sysname?       u.name
PROCEDURE_NAME       nvarchar(134)  o.name || CASE WHEN o.xtype = 'P' THEN ';1' ELSE ';0' END
NUM_INPUT_PARAMS     int            -1
NUM_OUTPUT_PARAMS    int            -1
NUM_RESULT_SETS      int            -1
REMARKS              varchar(254)?  NULL
PROCEDURE_TYPE       smallint       CASE WHEN o.xtype = 'P' THEN 1 ELSE 2 END
)",
                  "FROM cat_object o JOIN cat_database d ON d.dbid = o.dbid JOIN cat_user u ON u.dbid = "
                  "o.dbid AND u.uid = o.uid "
                  "WHERE o.dbid = :db AND o.xtype IN ('P', 'FN', 'IF', 'TF') AND " +
                      likePattern("o.name", call.text(0)) + " AND " + likePattern("u.name", call.text(1)) +
                      " ORDER BY d.fold, u.fold, o.fold");
    return 0;
}

int procedureColumns(const ProcedureCall& call)
{
    requireCurrentDatabase(call, 2);
    const std::string type = typeColumn(call.numberOr(4, 2) >= 3);
    const std::string list = R"(
PROCEDURE_QUALIFIER  sysname?       d.name
PROCEDURE_OWNER      sysname?       u.name
PROCEDURE_NAME       nvarchar(134)  o.name || ';1'
COLUMN_NAME          sysname?       k.name
COLUMN_TYPE          smallint       CASE WHEN k.output THEN 2 ELSE 1 END
DATA_TYPE            smallint       )" +
                             type + R"(
TYPE_NAME            sysname        k.typename
PRECISION            int?           coalesce(v.column4, k.fullprec)
LENGTH               int?           coalesce(v.column5, CASE WHEN k.xtype IN (106, 108) THEN k.prec + 2 ELSE k.bytes END)
SCALE                smallint?      coalesce(v.column6, CASE WHEN k.xtype IN (106, 108) THEN k.scale END)
RADIX                smallint?      v.column7
NULLABLE             smallint       1
REMARKS              varchar(254)?  NULL
COLUMN_DEF           nvarchar(4000)? NULL
SQL_DATA_TYPE        smallint       v.column8
SQL_DATETIME_SUB     smallint?      v.column9
CHAR_OCTET_LENGTH    int?           CASE WHEN k.xtype IN (165, 167, 173, 175, 231, 239) THEN k.bytes END
ORDINAL_POSITION     int            k.colid
IS_NULLABLE          varchar(254)?  'YES'
SS_DATA_TYPE         tinyint        k.oldtype
)";
    call.sendRows(list.c_str(), columnSource() + " AND o.xtype = 'P' AND k.name LIKE '@%' AND " +
                                    likePattern("o.name", call.text(0)) + " AND " +
                                    likePattern("u.name", call.text(1)) + " AND " +
                                    likePattern("k.name", call.text(3)) +
                                    " ORDER BY d.fold, u.fold, o.fold, k.colid");
    return 0;
}

int specialColumns(const ProcedureCall& call)
{
    requireCurrentDatabase(call, 2);
    const bool versions = foldName(call.textOr(3, "R")) == "v";
    const std::string type = typeColumn(call.numberOr(6, 2) >= 3);
    const std::string list = R"(
SCOPE          smallint?  )" +
                             std::string(versions ? "NULL" : "1") + R"(
COLUMN_NAME    sysname    k.name
DATA_TYPE      smallint   )" +
                             type + R"(
TYPE_NAME      sysname    k.typename || CASE WHEN k.seed IS NULL THEN '' ELSE ' identity' END
PRECISION      int?       coalesce(v.column4, k.fullprec)
LENGTH         int?       coalesce(v.column5, CASE WHEN k.xtype IN (106, 108) THEN k.prec + 2 ELSE k.bytes END)
SCALE          smallint?  coalesce(v.column6, CASE WHEN k.xtype IN (106, 108) THEN k.scale END)
PSEUDO_COLUMN  smallint?  1
)";
    const std::string best =
        " AND EXISTS (SELECT 1 FROM cat_index_key x WHERE x.dbid = k.dbid AND x.id = k.id AND x.colid = "
        "k.colid "
        "AND x.indid = (SELECT i.indid FROM cat_index i WHERE i.dbid = k.dbid AND i.id = k.id AND i.uniq "
        "ORDER BY i.kind <> 'P', i.indid LIMIT 1))";
    call.sendRows(list.c_str(), columnSource() + (versions ? std::string(" AND k.xtype = 189") : best) +
                                    equals("o.fold", call.text(0)) + equals("u.fold", call.text(1)) +
                                    " ORDER BY k.colid");
    return 0;
}

constexpr SystemProcedure driverTable[] = {
    {"sp_databases", "", databases},
    {"sp_tables", "@table_name= @table_owner= @table_qualifier= @table_type= @fUsePattern=", tables},
    {"sp_columns", "@table_name @table_owner= @table_qualifier= @column_name= @ODBCVer=", columns},
    {"sp_columns_90",
     "@table_name @table_owner= @table_qualifier= @column_name= @ODBCVer= @fUsePattern=", columns},
    {"sp_pkeys", "@table_name @table_owner= @table_qualifier=", primaryKeys},
    {"sp_fkeys",
     "@pktable_name= @pktable_owner= @pktable_qualifier= @fktable_name= @fktable_owner= @fktable_qualifier=",
     foreignKeys},
    {"sp_statistics",
     "@table_name @table_owner= @table_qualifier= @index_name= @is_unique= @accuracy=", statistics},
    {"sp_stored_procedures", "@sp_name= @sp_owner= @sp_qualifier= @fUsePattern=", storedProcedures},
    {"sp_sproc_columns",
     "@procedure_name= @procedure_owner= @procedure_qualifier= @column_name= @ODBCVer= @fUsePattern=",
     procedureColumns},
    {"sp_special_columns",
     "@table_name @table_owner= @qualifier= @col_type= @scope= @nullable= @ODBCVer=", specialColumns},
};

} // namespace

std::span<const SystemProcedure> driverProcedures()
{
    return driverTable;
}

} // namespace practice
