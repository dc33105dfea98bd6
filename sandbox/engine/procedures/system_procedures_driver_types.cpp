// The types of the server, as drivers ask for them.
#include "engine/procedures/system_procedures.h"
#include "engine/procedures/system_procedures_driver.h"

namespace practice {
namespace {

/// @param newer false for a client that takes the types of 2008 for texts
int sendDatatypes(const ProcedureCall& call, bool newer)
{
    const int wanted = call.numberOr(0, 0);
    const bool third = call.numberOr(1, 2) >= 3;
    const auto shown = [newer](const std::string& column) {
        return newer ? column : "CASE WHEN v.column1 BETWEEN 40 AND 43 THEN -9 ELSE " + column + " END";
    };
    const std::string type = shown(third ? "v.column2" : "v.column3");
    // Types with a length report their longest, decimals their largest precision.
    const std::string columns = R"(
TYPE_NAME           sysname        t.name || s.suffix
DATA_TYPE           smallint       )" +
                                type +
                                R"(
PRECISION           int?           coalesce(v.column4, t.prec)
LITERAL_PREFIX      varchar(32)?   v.column10
LITERAL_SUFFIX      varchar(32)?   v.column11
CREATE_PARAMS       varchar(32)?   v.column12
NULLABLE            smallint       t.xusertype <> 189 AND s.suffix = ''
CASE_SENSITIVE      smallint       0
SEARCHABLE          smallint       v.column13
UNSIGNED_ATTRIBUTE  smallint?      v.column14
MONEY               smallint       v.column15
AUTO_INCREMENT      smallint?      CASE WHEN s.suffix <> '' THEN 1 ELSE v.column16 END
LOCAL_TYPE_NAME     sysname?       t.name || s.suffix
MINIMUM_SCALE       smallint?      v.column17
MAXIMUM_SCALE       smallint?      v.column18
SQL_DATA_TYPE       smallint       )" +
                                shown("v.column8") +
                                R"(
SQL_DATETIME_SUB    smallint?      v.column9
NUM_PREC_RADIX      int?           v.column7
INTERVAL_PRECISION  smallint?      NULL
USERTYPE            smallint       t.usertype
)";
    std::string source =
        std::string("FROM ") + driverTypes() +
        " v JOIN sys_type t ON t.xtype = v.column1 "
        "JOIN (SELECT '' AS suffix UNION ALL SELECT ' identity') s "
        "ON s.suffix = '' OR (v.column16 = 0 AND v.column15 = 0 AND t.xtype NOT IN (59, 62)) WHERE 1";
    if (wanted != 0)
        source += " AND " + type + " = " + std::to_string(wanted);
    call.sendRows(columns.c_str(), source + " ORDER BY 2, 12, 11, 1");
    return 0;
}

int datatypeInfo(const ProcedureCall& call)
{
    return sendDatatypes(call, true);
}
int olderDatatypeInfo(const ProcedureCall& call)
{
    return sendDatatypes(call, false);
}

int serverInfo(const ProcedureCall& call)
{
    std::string source =
        "FROM (VALUES (1, 'DBMS_NAME', 'Microsoft SQL Server'), (2, 'DBMS_VER', 'Microsoft SQL Server 2000 - "
        "8.00.2039'), "
        "(10, 'OWNER_TERM', 'owner'), (11, 'TABLE_TERM', 'table'), (12, 'MAX_OWNER_NAME_LENGTH', '128'), "
        "(13, 'TABLE_LENGTH', '128'), (14, 'MAX_QUAL_LENGTH', '128'), (15, 'COLUMN_LENGTH', '128'), "
        "(16, 'IDENTIFIER_CASE', 'MIXED'), (17, 'TX_ISOLATION', '2'), "
        "(18, 'COLLATION_SEQ', 'charset=iso_1 sort_order=nocase_iso charset_num=1 sort_order_num=52'), "
        "(19, 'SAVEPOINT_SUPPORT', 'Y'), (20, 'MULTI_RESULT_SETS', 'Y'), (22, 'ACCESSIBLE_TABLES', 'Y'), "
        "(100, 'USERID_LENGTH', '128'), (101, 'QUALIFIER_TERM', 'database'), (102, 'NAMED_TRANSACTIONS', "
        "'Y'), "
        "(103, 'SPROC_AS_LANGUAGE', 'Y'), (104, 'ACCESSIBLE_SPROC', 'Y'), (105, 'MAX_INDEX_COLS', '16'), "
        "(106, 'RENAME_TABLE', 'Y'), (107, 'RENAME_COLUMN', 'Y'), (108, 'DROP_COLUMN', 'Y'), "
        "(109, 'INCREASE_COLUMN_LENGTH', 'Y'), (110, 'DDL_IN_TRANSACTION', 'Y'), (111, 'DESCENDING_INDEXES', "
        "'Y'), "
        "(112, 'SP_RENAME', 'Y'), (113, 'REMOTE_SPROC', 'Y'), (500, 'SYS_SPROC_VERSION', '8.00.2039')) v";
    if (call.text(0))
        source += " WHERE v.column1 = " + std::to_string(call.numberOr(0, 0));
    call.sendRows(R"(
attribute_id     int            v.column1
attribute_name   varchar(60)?   v.column2
attribute_value  varchar(255)?  v.column3
)",
                  source + " ORDER BY v.column1");
    return 0;
}

constexpr SystemProcedure driverTypesTable[] = {
    {"sp_datatype_info", "@data_type= @ODBCVer=", datatypeInfo},
    {"sp_datatype_info_90", "@data_type= @ODBCVer=", olderDatatypeInfo},
    {"sp_datatype_info_100", "@data_type= @ODBCVer=", datatypeInfo},
    {"sp_server_info", "@attribute_id=", serverInfo},
};

} // namespace

const char* driverTypes()
{
    return "(VALUES "
           "(34, -4, -4, 2147483647, 2147483647, NULL, NULL, -4, NULL, '0x', NULL, NULL, 0, NULL, 0, NULL, "
           "NULL, NULL), "
           "(35, -1, -1, 2147483647, 2147483647, NULL, NULL, -1, NULL, '''', '''', NULL, 1, NULL, 0, NULL, "
           "NULL, NULL), "
           "(36, -11, -11, 36, 16, NULL, NULL, -11, NULL, '''', '''', NULL, 2, NULL, 0, NULL, NULL, NULL), "
           "(40, 91, 9, 10, 6, 0, NULL, 9, 1, '''', '''', NULL, 3, NULL, 0, NULL, 0, 0), "
           "(41, -154, -9, 16, 12, 7, NULL, 9, 2, '''', '''', 'scale', 3, NULL, 0, NULL, 0, 7), "
           "(42, 93, 11, 27, 16, 7, NULL, 9, 3, '''', '''', 'scale', 3, NULL, 0, NULL, 0, 7), "
           "(43, -155, -9, 34, 20, 7, NULL, -155, NULL, '''', '''', 'scale', 3, NULL, 0, NULL, 0, 7), "
           "(48, -6, -6, 3, 1, 0, 10, -6, NULL, NULL, NULL, NULL, 2, 1, 0, 0, 0, 0), "
           "(52, 5, 5, 5, 2, 0, 10, 5, NULL, NULL, NULL, NULL, 2, 0, 0, 0, 0, 0), "
           "(56, 4, 4, 10, 4, 0, 10, 4, NULL, NULL, NULL, NULL, 2, 0, 0, 0, 0, 0), "
           "(58, 93, 11, 16, 16, 0, NULL, 9, 3, '''', '''', NULL, 3, NULL, 0, NULL, 0, 0), "
           "(59, 7, 7, 24, 4, NULL, 2, 7, NULL, NULL, NULL, NULL, 2, 0, 0, 0, NULL, NULL), "
           "(60, 3, 3, 19, 21, 4, 10, 3, NULL, '$', NULL, NULL, 2, 0, 1, 0, 4, 4), "
           "(61, 93, 11, 23, 16, 3, NULL, 9, 3, '''', '''', NULL, 3, NULL, 0, NULL, 3, 3), "
           "(62, 6, 6, 53, 8, NULL, 2, 6, NULL, NULL, NULL, NULL, 2, 0, 0, 0, NULL, NULL), "
           "(98, -150, -150, 8000, 8000, NULL, 10, -150, NULL, NULL, NULL, NULL, 2, NULL, 0, NULL, 0, 0), "
           "(99, -10, -1, 1073741823, 2147483646, NULL, NULL, -10, NULL, 'N''', '''', NULL, 1, NULL, 0, "
           "NULL, NULL, NULL), "
           "(104, -7, -7, 1, 1, NULL, NULL, -7, NULL, NULL, NULL, NULL, 2, NULL, 0, NULL, 0, 0), "
           "(106, 3, 3, NULL, NULL, NULL, 10, 3, NULL, NULL, NULL, 'precision,scale', 2, 0, 0, 0, 0, 38), "
           "(108, 2, 2, NULL, NULL, NULL, 10, 2, NULL, NULL, NULL, 'precision,scale', 2, 0, 0, 0, 0, 38), "
           "(122, 3, 3, 10, 12, 4, 10, 3, NULL, '$', NULL, NULL, 2, 0, 1, 0, 4, 4), "
           "(127, -5, -5, 19, 8, 0, 10, -5, NULL, NULL, NULL, NULL, 2, 0, 0, 0, 0, 0), "
           "(165, -3, -3, NULL, NULL, NULL, NULL, -3, NULL, '0x', NULL, 'max length', 2, NULL, 0, NULL, "
           "NULL, NULL), "
           "(167, 12, 12, NULL, NULL, NULL, NULL, 12, NULL, '''', '''', 'max length', 3, NULL, 0, NULL, "
           "NULL, NULL), "
           "(173, -2, -2, NULL, NULL, NULL, NULL, -2, NULL, '0x', NULL, 'length', 2, NULL, 0, NULL, NULL, "
           "NULL), "
           "(175, 1, 1, NULL, NULL, NULL, NULL, 1, NULL, '''', '''', 'length', 3, NULL, 0, NULL, NULL, "
           "NULL), "
           "(189, -2, -2, 8, 8, NULL, NULL, -2, NULL, '0x', NULL, NULL, 2, NULL, 0, NULL, NULL, NULL), "
           "(231, -9, 12, NULL, NULL, NULL, NULL, -9, NULL, 'N''', '''', 'max length', 3, NULL, 0, NULL, "
           "NULL, NULL), "
           "(239, -8, 1, NULL, NULL, NULL, NULL, -8, NULL, 'N''', '''', 'length', 3, NULL, 0, NULL, NULL, "
           "NULL), "
           "(241, -152, -10, 0, 0, NULL, NULL, -152, NULL, 'N''', '''', NULL, 1, NULL, 0, NULL, NULL, NULL))";
}

std::span<const SystemProcedure> driverTypeProcedures()
{
    return driverTypesTable;
}

} // namespace practice
