// Databases, their files and filegroups.
#include "engine/catalog/system_tables/system_tables.h"

namespace practice {
namespace {

// Bits of sysdatabases.status and status2 from DatabaseOption, RecoveryModel and UserAccess.
constexpr const char* databaseColumns = R"(
name       sysname        d.name
dbid       smallint       d.dbid
sid        varbinary(85)? d.sid
mode       smallint       0
status     int            (d.options & 1) + 4 * (d.recovery = 1) + 8 * (d.recovery = 0) + 16 * (d.options >> 15 & 1) + 512 * (d.options >> 17 & 1) + 1024 * (d.options >> 16 & 1) + 2048 * (d.access = 1) + 4096 * (d.access = 2) + 4194304 * (d.options >> 1 & 1) + 16777216 * (d.options >> 2 & 1) + 1073741824
status2    int            16384 * (d.options >> 4 & 1) + 65536 * (d.options >> 9 & 1) + 131072 * (d.options >> 12 & 1) + 1048576 * (d.options >> 14 & 1) + 8388608 * (d.options >> 11 & 1) + 33554432 * (d.options >> 13 & 1) + 67108864 * (d.options >> 5 & 1) + 268435456 * (d.options >> 7 & 1) + 536870912
crdate     datetime       d.created
reserved   datetime?      0
category   int?           0
cmptlevel  tinyint        d.level
filename   nvarchar(260)? (SELECT f.filename FROM cat_file f WHERE f.dbid = d.dbid AND f.fileid = 1)
version    smallint?      539
)";

constexpr const char* fileColumns = R"(
fileid    smallint    f.fileid
groupid   smallint    f.groupid
size      int         f.size
maxsize   int         f.maxsize
growth    int         f.growth
status    int         f.status
perf      int         0
name      nchar(128)  f.name
filename  nchar(260)  f.filename
)";

constexpr SystemTableDefinition filesDefinitions[] = {
    {"dbo", "sysdatabases", true, databaseColumns, "FROM cat_database d"},
    {"dbo", "sysfiles", false, fileColumns, "FROM cat_file f WHERE f.dbid = :db"},
    {"dbo", "sysfiles1", false,
     R"(
status    int         f.status
fileid    smallint    f.fileid
name      nchar(128)  f.name
filename  nchar(260)  f.filename
)",
     "FROM cat_file f WHERE f.dbid = :db"},
    {"dbo", "sysaltfiles", true,
     R"(
fileid    smallint    f.fileid
groupid   smallint    f.groupid
size      int         f.size
maxsize   int         f.maxsize
growth    int         f.growth
status    int         f.status
perf      int         0
dbid      smallint    f.dbid
name      nchar(128)  f.name
filename  nchar(260)  f.filename
)",
     "FROM cat_file f"},
    {"dbo", "sysfilegroups", false,
     R"(
groupid      smallint  g.groupid
allocpolicy  smallint  0
status       int       g.status
groupname    sysname   g.name
)",
     "FROM cat_filegroup g WHERE g.dbid = :db"},
    {"dbo", "sysdevices", true,
     R"(
name       sysname        d.name
size       int            CASE WHEN d.status = 16 THEN 0 ELSE 1536 END
low        int            0
high       int            CASE WHEN d.status = 16 THEN 0 ELSE 1535 END
status     smallint       d.status
cntrltype  smallint       d.cntrltype
phyname    nvarchar(260)? d.phyname
)",
     "FROM cat_device d"},
};

} // namespace

std::span<const SystemTableDefinition> fileSystemTables()
{
    return filesDefinitions;
}

} // namespace practice
