// The server itself: processes, configuration, languages, messages.
#include "engine/catalog/system_tables/system_tables.h"
#include "engine/store/storage.h"
#include "types/language.h"

namespace practice {

const char* languageColumns()
{
    return R"(
langid       smallint        column1
dateformat   nchar(3)        column2
datefirst    tinyint         column3
upgrade      int?            0
name         sysname         column4
alias        sysname?        column5
months       nvarchar(372)?  column6
shortmonths  nvarchar(132)?  column7
days         nvarchar(217)?  column8
lcid         int             column9
msglangid    smallint        column10
)";
}

const char* languageRows()
{
    static const std::string rows = [] {
        std::string text;
        for (const Language& language : languages()) {
            text += (text.empty() ? "FROM (VALUES (" : ", (") + std::to_string(language.id);
            text += ", " + quotedText(std::string(language.dateFormat)) + ", " +
                    std::to_string(language.dateFirst);
            for (const std::string_view list :
                 {language.name, language.alias, language.months, language.shortMonths, language.days})
                text += ", " + quotedText(std::string(list));
            text +=
                ", " + std::to_string(language.lcid) + ", " + std::to_string(language.messageLanguage) + ')';
        }
        return text + ')';
    }();
    return rows.c_str();
}

namespace {

constexpr const char* processSource =
    "FROM json_each(practice_sessions()) j LEFT JOIN cat_login l ON l.name = j.value ->> 'login'";

const SystemTableDefinition serverDefinitions[] = {
    {"dbo", "spt_values", true,
     R"(
name    nvarchar(35)? v.name
number  int           v.number
type    nchar(3)      v.type
low     int?          v.low
high    int?          v.high
status  int?          v.status
)",
     "FROM sys_value v"},

    {"dbo", "sysprocesses", true,
     R"(
spid         smallint      j.value ->> 'spid'
kpid         smallint      j.value ->> 'spid'
blocked      smallint      0
waittype     binary(2)     x'0000'
waittime     int           0
lastwaittype nchar(32)     'MISCELLANEOUS'
waitresource nchar(256)    ''
dbid         smallint      j.value ->> 'dbid'
uid          smallint      1
cpu          int           0
physical_io  bigint        0
memusage     int           0
login_time   datetime      j.value ->> 'login_time'
last_batch   datetime      j.value ->> 'last_batch'
ecid         smallint      0
open_tran    smallint      j.value ->> 'transactions'
status       nchar(30)     j.value ->> 'status'
sid          binary(86)    coalesce(l.sid, x'01')
hostname     nchar(128)    j.value ->> 'host'
program_name nchar(128)    j.value ->> 'program'
hostprocess  nchar(8)      ''
cmd          nchar(16)     j.value ->> 'command'
nt_domain    nchar(128)    ''
nt_username  nchar(128)    ''
net_address  nchar(12)     ''
net_library  nchar(12)     'TCP/IP'
loginame     nchar(128)    j.value ->> 'login'
context_info binary(128)   zeroblob(128)
)",
     processSource},

    {"dbo", "sysservers", true,
     R"(
srvid            smallint        0
srvstatus        smallint        1089
srvname          sysname         s.name
srvproduct       nvarchar(128)   'SQL Server'
providername     nvarchar(128)   'SQLOLEDB'
datasource       nvarchar(4000)? s.name
location         nvarchar(4000)? NULL
providerstring   nvarchar(4000)? NULL
schemadate       datetime        0
topologyx        int             0
topologyy        int             0
catalog          sysname?        NULL
srvcollation     sysname?        NULL
connecttimeout   int             0
querytimeout     int             0
srvnetname       char(30)?       s.name
isremote         bit             0
rpc              bit             1
pub              bit             0
sub              bit             0
dist             bit             0
dpub             bit             0
rpcout           bit             1
dataaccess       bit             0
collationcompatible bit          0
system           bit             0
useremotecollation bit           1
lazyschemavalidation bit         0
collation        sysname?        NULL
)",
     "FROM cat_server s"},

    {"dbo", "syslanguages", true, languageColumns(), languageRows()},

    {"dbo", "syscharsets", true,
     R"(
type         smallint       column1
id           tinyint        column2
csid         tinyint        column3
status       smallint?      column4
name         sysname        column5
description  nvarchar(255)? column6
binarydefinition varbinary(6000)? NULL
definition   image?         NULL
)",
     "FROM (VALUES (1001, 1, 0, 0, 'iso_1', 'Code Page 1252'), "
     "(2001, 52, 1, 0, 'nocase_iso', 'Case-insensitive dictionary sort order for Western European data'))"},

    {"dbo", "sysconfigures", true,
     R"(
value    int            coalesce(c.value, v.low)
config   smallint       v.number
comment  nvarchar(255)  v.name
status   smallint       coalesce(v.status, 0)
)",
     "FROM sys_value v LEFT JOIN cat_configuration c ON c.config = v.number WHERE v.type = 'C'"},

    {"dbo", "syscurconfigs", true,
     R"(
value    int            coalesce(c.value, v.low)
config   smallint       v.number
comment  nvarchar(255)  v.name
status   smallint       coalesce(v.status, 0)
)",
     "FROM sys_value v LEFT JOIN cat_configuration c ON c.config = v.number WHERE v.type = 'C'"},

    {"dbo", "sysmessages", true,
     R"(
error       int             j.value ->> 0
severity    tinyint         j.value ->> 1
dlevel      smallint        0
description nvarchar(255)   substr(j.value ->> 2, 1, 255)
msglangid   smallint        1033
)",
     "FROM json_each(practice_messages()) j"},

    {"sys", "messages", true,
     R"(
message_id      int             j.value ->> 0
language_id     smallint        1033
severity        tinyint         j.value ->> 1
is_event_logged bit             0
text            nvarchar(2048)  j.value ->> 2
)",
     "FROM json_each(practice_messages()) j"},

    {"sys", "configurations", true,
     R"(
configuration_id int            v.number
name             nvarchar(35)   v.name
value            int            coalesce(c.value, v.low)
minimum          int?           0
maximum          int?           v.high
value_in_use     int            coalesce(c.value, v.low)
description      nvarchar(255)  v.name
is_dynamic       bit            1
is_advanced      bit            0
)",
     "FROM sys_value v LEFT JOIN cat_configuration c ON c.config = v.number WHERE v.type = 'C'"},

    {"sys", "dm_exec_sessions", true,
     R"(
session_id             smallint       j.value ->> 'spid'
login_time             datetime       j.value ->> 'login_time'
host_name              nvarchar(128)? j.value ->> 'host'
program_name           nvarchar(128)? j.value ->> 'program'
login_name             nvarchar(128)  j.value ->> 'login'
status                 nvarchar(30)   j.value ->> 'status'
database_id            smallint       j.value ->> 'dbid'
open_transaction_count int            j.value ->> 'transactions'
is_user_process        bit            1
)",
     processSource},
};

} // namespace

std::span<const SystemTableDefinition> serverSystemTables()
{
    return serverDefinitions;
}

} // namespace practice
