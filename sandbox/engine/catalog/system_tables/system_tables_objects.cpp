// Objects, columns, types and texts.
#include "engine/catalog/system_tables/system_tables.h"

namespace practice {
namespace {

constexpr SystemTableDefinition objectsDefinitions[] = {
    {"dbo", "sysobjects", false,
     R"(
name            sysname   o.name
id              int       o.id
xtype           char(2)   o.xtype
uid             smallint  o.uid
info            smallint  (SELECT count(*) FROM cat_column k WHERE k.dbid = o.dbid AND k.id = o.id)
status          int       CASE WHEN o.shipped THEN -536870912 WHEN o.xtype IN ('U', 'V', 'P') THEN 1610612736 ELSE 16 END
base_schema_ver int       16 * o.schemaver
replinfo        int       0
parent_obj      int       o.parent
crdate          datetime  o.created
ftcatid         smallint  0
schema_ver      int       16 * o.schemaver
stats_schema_ver int      0
type            char(2)   CASE WHEN o.xtype IN ('PK', 'UQ') THEN 'K ' ELSE o.xtype END
userstat        smallint  o.xtype IN ('U', 'S')
sysstat         smallint  CASE o.xtype WHEN 'U' THEN 99 WHEN 'S' THEN 113 WHEN 'V' THEN 2 WHEN 'P' THEN 4 WHEN 'D' THEN 6 WHEN 'C' THEN 7 WHEN 'R' THEN 7 WHEN 'TR' THEN 8 WHEN 'PK' THEN 9 WHEN 'UQ' THEN 9 WHEN 'F' THEN 11 ELSE 0 END
indexdel        smallint  0
refdate         datetime  o.created
version         int       0
deltrig         int       0
instrig         int       0
updtrig         int       0
seltrig         int       0
category        int       CASE WHEN o.shipped THEN 2 ELSE 0 END
cache           smallint  0
)",
     "FROM cat_object o WHERE o.dbid IN (0, :db)"},

    {"dbo", "syscolumns", false,
     R"(
name          sysname        k.name
id            int            k.id
xtype         tinyint        k.xtype
typestat      tinyint        CASE WHEN k.variable THEN 2 WHEN k.xtype = 189 THEN 3 ELSE 0 END + (NOT k.nullable)
xusertype     smallint       k.xusertype
length        smallint       k.bytes
xprec         tinyint        CASE WHEN k.xtype IN (106, 108) THEN k.prec ELSE CASE WHEN k.fullprec > 255 OR k.scale IS NULL OR k.xtype IN (165, 167, 173, 175, 231, 239) THEN 0 ELSE k.fullprec END END
xscale        tinyint        coalesce(k.fullscale, 0)
colid         smallint       k.colid
xoffset       smallint       CASE WHEN k.variable THEN -(SELECT count(*) FROM cat_column_type p WHERE p.dbid = k.dbid AND p.id = k.id AND p.colid <= k.colid AND p.variable) ELSE 4 + (SELECT coalesce(sum(p.bytes), 0) FROM cat_column_type p WHERE p.dbid = k.dbid AND p.id = k.id AND p.colid < k.colid AND NOT p.variable) END
bitpos        tinyint        0
reserved      tinyint        0
colstat       smallint       (k.seed IS NOT NULL) + 2 * k.rowguid + 4 * (k.computed IS NOT NULL) + 8 * k.notrepl
cdefault      int            k.defaultid
domain        int            coalesce((SELECT c.constid FROM cat_check c WHERE c.dbid = k.dbid AND c.id = k.id AND c.colid = k.colid), 0)
number        smallint       k.name LIKE '@%'
colorder      smallint       k.colid
autoval       varbinary(8000)? CASE WHEN k.seed IS NOT NULL THEN x'00' END
offset        smallint       CASE WHEN k.variable THEN -(SELECT count(*) FROM cat_column_type p WHERE p.dbid = k.dbid AND p.id = k.id AND p.colid <= k.colid AND p.variable) ELSE 4 + (SELECT coalesce(sum(p.bytes), 0) FROM cat_column_type p WHERE p.dbid = k.dbid AND p.id = k.id AND p.colid < k.colid AND NOT p.variable) END
collationid   int?           CASE WHEN k.collation <> '' THEN 872468488 END
language      int?           0
status        tinyint?       8 * k.nullable + 32 * k.padded + 64 * k.output + 128 * (k.seed IS NOT NULL)
type          tinyint        k.oldtype
usertype      smallint?      k.usertypeno
printfmt      varchar(255)?  NULL
prec          smallint?      CASE WHEN k.fullprec > 32767 THEN NULL ELSE k.fullprec END
scale         int?           k.fullscale
iscomputed    int?           k.computed IS NOT NULL
isoutparam    int?           k.output
isnullable    int?           k.nullable
collation     sysname?       CASE WHEN k.collation <> '' THEN k.collation END
tdscollation  binary(5)?     CASE WHEN k.collation <> '' THEN x'0904D00034' END
)",
     "FROM cat_column_type k WHERE k.dbid IN (0, :db)"},

    {"dbo", "systypes", false,
     R"(
name         sysname    t.name
xtype        tinyint    t.xtype
status       tinyint    CASE WHEN t.variable THEN 2 ELSE 0 END
xusertype    smallint   t.xusertype
length       smallint   t.length
xprec        tinyint    CASE WHEN t.scale IS NULL THEN 0 ELSE t.prec END
xscale       tinyint    coalesce(t.scale, 0)
tdefault     int        0
domain       int        0
uid          smallint   1
reserved     smallint   0
collationid  int?       CASE WHEN t.collated THEN 872468488 END
usertype     smallint?  t.usertype
variable     bit        t.variable
allownulls   bit?       t.xusertype NOT IN (189, 256)
type         tinyint    t.type
printfmt     varchar(255)? NULL
prec         smallint?  CASE WHEN t.prec > 32767 THEN NULL ELSE t.prec END
scale        tinyint?   t.scale
collation    sysname?   CASE WHEN t.collated THEN (SELECT d.collation FROM cat_database d WHERE d.dbid = :db) END
)",
     "FROM sys_type t"},

    {"dbo", "syscomments", false,
     R"(
id          int              t.id
number      smallint         CASE WHEN o.xtype = 'P' THEN 1 ELSE 0 END
colid       smallint         p.n
status      smallint         CASE WHEN t.encrypted THEN 1 WHEN o.xtype IN ('C', 'D') THEN 2 ELSE 0 END
ctext       varbinary(8000)? CASE WHEN t.encrypted THEN NULL ELSE practice_utf16(substr(t.text, 4000 * (p.n - 1) + 1, 4000)) END
texttype    smallint         CASE WHEN t.encrypted THEN 6 ELSE 2 END
language    smallint         0
encrypted   bit              t.encrypted
compressed  bit              0
text        nvarchar(4000)?  CASE WHEN t.encrypted THEN NULL ELSE substr(t.text, 4000 * (p.n - 1) + 1, 4000) END
)",
     "FROM cat_comment t JOIN cat_object o ON o.dbid = t.dbid AND o.id = t.id "
     "JOIN sys_number p ON p.n BETWEEN 1 AND (length(t.text) + 3999) / 4000 WHERE t.dbid IN (0, :db)"},

    {"dbo", "sysdepends", false,
     R"(
id         int        NULL
depid      int        NULL
number     smallint   NULL
depnumber  smallint   NULL
status     smallint   NULL
deptype    tinyint    NULL
depdbid    smallint?  NULL
depsiteid  smallint?  NULL
selall     bit        NULL
resultobj  bit        NULL
readobj    bit        NULL
)",
     "FROM (SELECT 1) WHERE 0"},

    {"dbo", "sysproperties", false,
     R"(
id      int          NULL
smallid smallint     NULL
type    tinyint      NULL
name    sysname      NULL
value   nvarchar(4000)? NULL
)",
     "FROM (SELECT 1) WHERE 0"},

    {"dbo", "sysfulltextcatalogs", false,
     R"(
ftcatid smallint       NULL
name    sysname        NULL
status  smallint       NULL
path    nvarchar(260)? NULL
)",
     "FROM (SELECT 1) WHERE 0"},

    {"dbo", "sysfulltextnotify", false,
     R"(
tableid     int             NULL
rowinfo     smallint        NULL
ftkey       varbinary(896)  NULL
)",
     "FROM (SELECT 1) WHERE 0"},

    {"dbo", "sysconstraints", false,
     R"(
constid  int       o.id
id       int       o.parent
colid    smallint  coalesce(c.colid, k.colid, 0)
spare1   tinyint   0
status   int       CASE o.xtype WHEN 'PK' THEN 1 WHEN 'UQ' THEN 2 WHEN 'F' THEN 3 WHEN 'C' THEN 4 WHEN 'D' THEN 5 END + 16 * (coalesce(c.colid, k.colid, 0) > 0) + 32 * (coalesce(c.colid, k.colid, 0) = 0)
actions  int       4096
error    int       0
)",
     "FROM cat_object o LEFT JOIN cat_check c ON c.dbid = o.dbid AND c.constid = o.id "
     "LEFT JOIN cat_column k ON o.xtype = 'D' AND k.dbid = o.dbid AND k.id = o.parent AND k.defaultid = o.id "
     "WHERE o.dbid = :db AND o.xtype IN ('C', 'D', 'F', 'PK', 'UQ')"},

    {"dbo", "syssegments", false,
     R"(
segment int      column1
name    sysname  column2
status  int      column3
)",
     "FROM (VALUES (0, 'system', 0), (1, 'default', 1), (2, 'logsegment', 0))"},
};

} // namespace

std::span<const SystemTableDefinition> objectSystemTables()
{
    return objectsDefinitions;
}

} // namespace practice
