// Who is there, how the server is configured, and which languages it knows.
#include "engine/catalog/system_tables/system_tables.h"
#include "engine/context/security_principals.h"
#include "engine/messages/errors.h"
#include "engine/procedures/system_procedures.h"
#include "engine/store/storage.h"
#include "types/language.h"

namespace practice {
namespace {

/// "active", a number, a login's name, or nothing for all.
std::string sessionFilter(const std::optional<std::string>& wanted)
{
    if (!wanted)
        return "1";
    if (sameName(*wanted, "active"))
        return "j.value ->> 'status' <> 'sleeping'";
    return "(j.value ->> 'spid' = " + quotedText(*wanted) +
           " OR CAST(j.value ->> 'spid' AS TEXT) = " + quotedText(*wanted) +
           " OR j.value ->> 'login' = " + quotedText(*wanted) + ")";
}

constexpr const char* sessions =
    "FROM json_each(practice_sessions()) j LEFT JOIN cat_database d ON d.dbid = j.value ->> 'dbid' WHERE ";

int who(const ProcedureCall& call)
{
    call.sendRows(R"(
spid      smallint    j.value ->> 'spid'
ecid      smallint    0
status    nchar(30)   j.value ->> 'status'
loginame  sysname?    j.value ->> 'login'
hostname  nchar(128)  j.value ->> 'host'
blk       char(5)     '0'
dbname    sysname?    d.name
cmd       nchar(16)   j.value ->> 'command'
)",
                  sessions + sessionFilter(call.text(0)) + " ORDER BY j.value ->> 'spid'");
    return 0;
}

int who2(const ProcedureCall& call)
{
    call.sendRows(R"(
SPID         char(5)        j.value ->> 'spid'
Status       nvarchar(30)   upper(j.value ->> 'status')
Login        sysname        j.value ->> 'login'
HostName     nvarchar(128)  CASE WHEN j.value ->> 'host' = '' THEN '  .' ELSE j.value ->> 'host' END
BlkBy        char(5)        '  .'
DBName       sysname?       d.name
Command      nvarchar(16)   j.value ->> 'command'
CPUTime      varchar(30)    '0'
DiskIO       varchar(30)    '0'
LastBatch    datetime       j.value ->> 'last_batch'
ProgramName  nvarchar(128)  j.value ->> 'program'
SPID         char(5)        j.value ->> 'spid'
)",
                  sessions + sessionFilter(call.text(0)) + " ORDER BY j.value ->> 'spid'");
    return 0;
}

int configure(const ProcedureCall& call)
{
    const auto& name = call.text(0);
    Statement known(call.session().connection(), "SELECT v.number, v.name, v.high, "
                                                 "coalesce(c.value, v.low) FROM sys_value v "
                                                 "LEFT JOIN cat_configuration c ON c.config = v.number "
                                                 "WHERE v.type = 'C' AND v.name LIKE ?1 || '%'");
    if (name && !known.bind(1, *name).step())
        raise(15123, {*name});
    if (!call.text(1)) {
        call.sendRows(
            R"(
name          nvarchar(35)  v.name
minimum       int           CASE WHEN v.low < 0 THEN v.low ELSE 0 END
maximum       int           v.high
config_value  int           coalesce(c.value, v.low)
run_value     int           coalesce(c.value, v.low)
)",
            "FROM sys_value v LEFT JOIN cat_configuration c ON c.config = v.number WHERE v.type = 'C'" +
                (name ? " AND v.name = " + quotedText(known.string(1)) : "") + " ORDER BY v.name");
        return 0;
    }
    requireServerRole(call.session(), ServerAdmin);
    const int number = known.number(0);
    const int highest = known.number(2);
    const int value = call.numberOr(1, 0);
    const int before = known.number(3);
    known.reset();
    if (value > highest)
        raise(15129, {*call.text(1), *name});
    call.session().beginWrite();
    Statement row(call.session().connection(),
                  "INSERT OR REPLACE INTO cat_configuration(config, value) VALUES(?, ?)");
    row.bind(1, number).bind(2, value).run();
    call.session().inform(15457, {*name, std::to_string(before), std::to_string(value)});
    return 0;
}

int version(const ProcedureCall& call)
{
    call.sendRows(R"(
Index            int            v.column1
Name             nvarchar(256)  v.column2
Internal_Value   int?           v.column3
Character_Value  nvarchar(256)? v.column4
)",
                  "FROM (VALUES (1, 'ProductName', NULL, 'Microsoft SQL Server'), (2, 'ProductVersion', "
                  "524288, '8.00.2039'), "
                  "(3, 'Language', 1033, 'English (United States)'), (4, 'Platform', NULL, 'NT INTEL X86'), "
                  "(16, 'ProcessorCount', 2, '2'), (19, 'PhysicalMemory', 2048, '2048')) v" +
                      (call.text(0) ? " WHERE v.column2 = " + quotedText(*call.text(0)) : "") +
                      " ORDER BY v.column1");
    return 0;
}

int helpSort(const ProcedureCall& call)
{
    call.sendRows("Server&default&collation nvarchar(128)? v.column1",
                  "FROM (VALUES ('Latin1-General, case-insensitive, accent-sensitive, kanatype-insensitive, "
                  "width-insensitive for Unicode Data, SQL Server Sort Order 52 on Code Page 1252 for "
                  "non-Unicode Data')) v");
    return 0;
}

int helpLanguage(const ProcedureCall& call)
{
    std::string filter;
    if (const auto& wanted = call.text(0)) {
        const Language* language = findLanguage(*wanted);
        if (language == nullptr)
            raise(15033, {*wanted});
        filter = " WHERE l.column1 = " + std::to_string(language->id);
    }
    call.sendRows(languageColumns(), languageRows() + (" l" + filter) + " ORDER BY l.column1");
    return 0;
}

constexpr SystemProcedure serverTable[] = {
    {"sp_who", "@loginame=", who},
    {"sp_who2", "@loginame=", who2},
    {"sp_configure", "@configname= @configvalue=", configure},
    {"sp_helplanguage", "@language=", helpLanguage},
    {"sp_helpsort", "", helpSort},
    {"xp_msver", "@optname=", version},
};

} // namespace

std::span<const SystemProcedure> serverProcedures()
{
    return serverTable;
}

} // namespace practice
