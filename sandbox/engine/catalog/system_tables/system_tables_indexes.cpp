// Indexes and their keys.
#include "engine/catalog/system_tables/system_tables.h"

namespace practice {
namespace {

constexpr SystemTableDefinition indexesDefinitions[] = {
    {"dbo", "sysindexes", false,
     R"(
id           int        i.id
status       int        i.ignoredup + 2 * i.uniq + 16 * (i.indid = 1) + 256 * i.padded + 2048 * (i.kind = 'P') + 4096 * (i.kind = 'U') + 16777216 * i.norecompute
first        binary(6)? x'000000000000'
indid        smallint   i.indid
root         binary(6)? x'000000000000'
minlen       smallint   4 + w.fixed
keycnt       smallint   (SELECT count(*) FROM cat_index_key x WHERE x.dbid = i.dbid AND x.id = i.id AND x.indid = i.indid AND NOT x.included)
groupid      smallint   i.groupid
dpages       int        CASE WHEN i.indid = 255 THEN 0 ELSE (practice_rows(i.dbid, i.id) * (w.wide + 9) + 8059) / 8060 END
reserved     int        CASE WHEN i.indid = 255 THEN 0 ELSE 8 * (((practice_rows(i.dbid, i.id) * (w.wide + 9) + 8059) / 8060 + 8) / 8) * (practice_rows(i.dbid, i.id) > 0) END
used         int        CASE WHEN i.indid = 255 THEN 0 ELSE ((practice_rows(i.dbid, i.id) * (w.wide + 9) + 8059) / 8060 + 1) * (practice_rows(i.dbid, i.id) > 0) END
rowcnt       bigint     CASE WHEN i.indid = 255 THEN 0 ELSE practice_rows(i.dbid, i.id) END
rowmodctr    int        0
reserved3    tinyint    0
reserved4    tinyint    0
xmaxlen      smallint   8000
maxirow      smallint   0
OrigFillFactor tinyint  i.fillfactor
StatVersion  tinyint    0
reserved2    int        0
FirstIAM     binary(6)? x'000000000000'
impid        smallint   0
lockflags    smallint   0
pgmodctr     int        0
keys         varbinary(1088)? CASE WHEN i.indid BETWEEN 1 AND 254 THEN (SELECT practice_utf16(group_concat(char(x.colid), '')) FROM cat_index_key x WHERE x.dbid = i.dbid AND x.id = i.id AND x.indid = i.indid) END
name         sysname?   i.name
statblob     image?     NULL
maxlen       int        8000
rows         int        CASE WHEN i.indid = 255 THEN 0 ELSE practice_rows(i.dbid, i.id) END
)",
     "FROM (SELECT dbid, id, indid, name, uniq, kind, ignoredup, padded, norecompute, fillfactor, groupid "
     "FROM cat_index "
     "UNION ALL SELECT o.dbid, o.id, 0, o.name, 0, 'I', 0, 0, 0, 0, o.groupid FROM cat_object o WHERE "
     "o.xtype IN ('U', 'S') "
     "AND NOT EXISTS (SELECT 1 FROM cat_index c WHERE c.dbid = o.dbid AND c.id = o.id AND c.indid = 1) "
     "UNION ALL SELECT o.dbid, o.id, 255, 't' || o.name, 0, 'I', 0, 0, 0, 0, o.groupid FROM cat_object o "
     "WHERE o.xtype = 'U' "
     "AND EXISTS (SELECT 1 FROM cat_column k WHERE k.dbid = o.dbid AND k.id = o.id AND k.xtype IN (34, 35, "
     "99))) i "
     "JOIN (SELECT k.dbid, k.id, sum(CASE WHEN k.variable THEN 0 ELSE k.bytes END) AS fixed, "
     "sum(CASE WHEN k.variable THEN k.bytes / 2 ELSE k.bytes END) AS wide FROM cat_column_type k GROUP BY "
     "k.dbid, k.id) w "
     "ON w.dbid = i.dbid AND w.id = i.id WHERE i.dbid IN (0, :db)"},

    {"dbo", "sysindexkeys", false,
     R"(
id     int       x.id
indid  smallint  x.indid
colid  smallint  x.colid
keyno  smallint  x.keyno
)",
     "FROM cat_index_key x WHERE x.dbid = :db AND NOT x.included"},

    {"dbo", "sysreferences", false,
     R"(
constid    int       r.constid
fkeyid     int       r.fkeyid
rkeyid     int       r.rkeyid
rkeyindid  smallint  r.rkeyindid
keycnt     smallint  (SELECT count(*) FROM cat_reference_column c WHERE c.dbid = r.dbid AND c.constid = r.constid)
forkeys    varbinary(32)? (SELECT practice_utf16(group_concat(char(c.fcolid), '')) FROM cat_reference_column c WHERE c.dbid = r.dbid AND c.constid = r.constid)
refkeys    varbinary(32)? (SELECT practice_utf16(group_concat(char(c.rcolid), '')) FROM cat_reference_column c WHERE c.dbid = r.dbid AND c.constid = r.constid)
fkeydbid   smallint? 0
rkeydbid   smallint? 0
fkey1      smallint? max(CASE c.keyno WHEN 1 THEN c.fcolid ELSE 0 END)
fkey2      smallint? max(CASE c.keyno WHEN 2 THEN c.fcolid ELSE 0 END)
fkey3      smallint? max(CASE c.keyno WHEN 3 THEN c.fcolid ELSE 0 END)
fkey4      smallint? max(CASE c.keyno WHEN 4 THEN c.fcolid ELSE 0 END)
fkey5      smallint? max(CASE c.keyno WHEN 5 THEN c.fcolid ELSE 0 END)
fkey6      smallint? max(CASE c.keyno WHEN 6 THEN c.fcolid ELSE 0 END)
fkey7      smallint? max(CASE c.keyno WHEN 7 THEN c.fcolid ELSE 0 END)
fkey8      smallint? max(CASE c.keyno WHEN 8 THEN c.fcolid ELSE 0 END)
fkey9      smallint? max(CASE c.keyno WHEN 9 THEN c.fcolid ELSE 0 END)
fkey10     smallint? max(CASE c.keyno WHEN 10 THEN c.fcolid ELSE 0 END)
fkey11     smallint? max(CASE c.keyno WHEN 11 THEN c.fcolid ELSE 0 END)
fkey12     smallint? max(CASE c.keyno WHEN 12 THEN c.fcolid ELSE 0 END)
fkey13     smallint? max(CASE c.keyno WHEN 13 THEN c.fcolid ELSE 0 END)
fkey14     smallint? max(CASE c.keyno WHEN 14 THEN c.fcolid ELSE 0 END)
fkey15     smallint? max(CASE c.keyno WHEN 15 THEN c.fcolid ELSE 0 END)
fkey16     smallint? max(CASE c.keyno WHEN 16 THEN c.fcolid ELSE 0 END)
rkey1      smallint? max(CASE c.keyno WHEN 1 THEN c.rcolid ELSE 0 END)
rkey2      smallint? max(CASE c.keyno WHEN 2 THEN c.rcolid ELSE 0 END)
rkey3      smallint? max(CASE c.keyno WHEN 3 THEN c.rcolid ELSE 0 END)
rkey4      smallint? max(CASE c.keyno WHEN 4 THEN c.rcolid ELSE 0 END)
rkey5      smallint? max(CASE c.keyno WHEN 5 THEN c.rcolid ELSE 0 END)
rkey6      smallint? max(CASE c.keyno WHEN 6 THEN c.rcolid ELSE 0 END)
rkey7      smallint? max(CASE c.keyno WHEN 7 THEN c.rcolid ELSE 0 END)
rkey8      smallint? max(CASE c.keyno WHEN 8 THEN c.rcolid ELSE 0 END)
rkey9      smallint? max(CASE c.keyno WHEN 9 THEN c.rcolid ELSE 0 END)
rkey10     smallint? max(CASE c.keyno WHEN 10 THEN c.rcolid ELSE 0 END)
rkey11     smallint? max(CASE c.keyno WHEN 11 THEN c.rcolid ELSE 0 END)
rkey12     smallint? max(CASE c.keyno WHEN 12 THEN c.rcolid ELSE 0 END)
rkey13     smallint? max(CASE c.keyno WHEN 13 THEN c.rcolid ELSE 0 END)
rkey14     smallint? max(CASE c.keyno WHEN 14 THEN c.rcolid ELSE 0 END)
rkey15     smallint? max(CASE c.keyno WHEN 15 THEN c.rcolid ELSE 0 END)
rkey16     smallint? max(CASE c.keyno WHEN 16 THEN c.rcolid ELSE 0 END)
)",
     "FROM cat_reference r JOIN cat_reference_column c ON c.dbid = r.dbid AND c.constid = r.constid "
     "WHERE r.dbid = :db GROUP BY r.constid"},

    {"dbo", "sysforeignkeys", false,
     R"(
constid  int       r.constid
fkeyid   int       r.fkeyid
rkeyid   int       r.rkeyid
fkey     smallint  c.fcolid
rkey     smallint  c.rcolid
keyno    smallint  c.keyno
)",
     "FROM cat_reference r JOIN cat_reference_column c ON c.dbid = r.dbid AND c.constid = r.constid "
     "WHERE r.dbid = :db"},
};

} // namespace

std::span<const SystemTableDefinition> indexSystemTables()
{
    return indexesDefinitions;
}

} // namespace practice
