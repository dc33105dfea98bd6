// Logins, users, roles, members and rights.
#include "engine/catalog/system_tables/system_tables.h"

namespace practice {
namespace {

constexpr SystemTableDefinition securityDefinitions[] = {
    {"dbo", "sysusers", false,
     R"(
uid          smallint        u.uid
status       smallint        CASE WHEN u.role THEN 0 WHEN u.aliased THEN 16 WHEN u.access THEN 2 ELSE 0 END + 32 * u.approle
name         sysname         CASE WHEN u.aliased THEN '\' ELSE '' END || u.name
sid          varbinary(85)?  u.sid
roles        varbinary(2048)? NULL
createdate   datetime        u.created
updatedate   datetime        u.updated
altuid       smallint        u.altuid
password     varbinary(256)? NULL
gid          smallint        CASE WHEN u.role THEN u.uid ELSE 0 END
environ      varchar(255)?   NULL
hasdbaccess  int?            u.access
islogin      int?            NOT u.role
isntname     int?            0
isntgroup    int?            0
isntuser     int?            0
issqluser    int?            NOT u.role
isaliased    int?            u.aliased
issqlrole    int?            u.role AND NOT u.approle
isapprole    int?            u.approle
)",
     "FROM cat_user u WHERE u.dbid = :db"},

    {"dbo", "sysmembers", false,
     R"(
memberuid  smallint  m.memberuid
groupuid   smallint  m.groupuid
)",
     "FROM cat_member m WHERE m.dbid = :db"},

    {"dbo", "sysprotects", false,
     R"(
id           int              p.id
uid          smallint         p.uid
action       tinyint          p.action
protecttype  tinyint          p.protecttype
columns      varbinary(4000)? p.bits
grantor      smallint         p.grantor
)",
     // Bit 0 stands for all columns but those whose bits are set, too.
     "FROM (SELECT w.dbid, w.id, w.uid, w.action, w.protecttype, w.grantor, CASE WHEN w.action IN (193, 197) "
     "THEN practice_bits('0' || coalesce((SELECT ',' || group_concat(c.colid) FROM cat_column_permission c "
     "WHERE c.dbid = w.dbid AND c.id = w.id AND c.uid = w.uid AND c.action = w.action), '')) END AS bits "
     "FROM cat_permission w UNION ALL SELECT dbid, id, uid, action, protecttype, min(grantor), "
     "practice_bits(group_concat(colid)) FROM cat_column_permission WHERE protecttype > 0 "
     "GROUP BY dbid, id, uid, action, protecttype) p WHERE p.dbid = :db AND p.action > 3"},

    {"dbo", "syspermissions", false,
     R"(
id        int              p.id
grantee   smallint         p.uid
grantor   smallint         p.grantor
actadd    smallint         sum(CASE WHEN p.protecttype < 206 THEN CASE p.action WHEN 193 THEN 1 WHEN 197 THEN 2 WHEN 26 THEN 4 WHEN 195 THEN 8 WHEN 196 THEN 16 WHEN 224 THEN 32 ELSE 0 END ELSE 0 END)
actmod    smallint         sum(CASE WHEN p.protecttype = 206 THEN CASE p.action WHEN 193 THEN 1 WHEN 197 THEN 2 WHEN 26 THEN 4 WHEN 195 THEN 8 WHEN 196 THEN 16 WHEN 224 THEN 32 ELSE 0 END ELSE 0 END)
seladd    varbinary(4000)? NULL
selmod    varbinary(4000)? NULL
updadd    varbinary(4000)? NULL
updmod    varbinary(4000)? NULL
refadd    varbinary(4000)? NULL
refmod    varbinary(4000)? NULL
)",
     "FROM cat_permission p WHERE p.dbid = :db GROUP BY p.id, p.uid, p.grantor"},

    {"dbo", "syslogins", true,
     R"(
sid            varbinary(85)? l.sid
status         smallint       9
createdate     datetime       l.created
updatedate     datetime       l.updated
accdate        datetime       l.created
totcpu         int            0
totio          int            0
spacelimit     int            0
timelimit      int            0
resultlimit    int            0
name           sysname        l.name
dbname         sysname?       l.dbname
password       sysname?       NULL
language       sysname?       l.language
denylogin      int?           l.denied
hasaccess      int?           NOT l.denied
isntname       int?           l.windows
isntgroup      int?           0
isntuser       int?           l.windows
sysadmin       int?           l.roles & 1
securityadmin  int?           l.roles >> 1 & 1
serveradmin    int?           l.roles >> 2 & 1
setupadmin     int?           l.roles >> 3 & 1
processadmin   int?           l.roles >> 4 & 1
diskadmin      int?           l.roles >> 5 & 1
dbcreator      int?           l.roles >> 6 & 1
bulkadmin      int?           l.roles >> 7 & 1
loginname      sysname        l.name
)",
     "FROM cat_login l"},

    {"dbo", "sysxlogins", true,
     R"(
srvid     smallint?       NULL
sid       varbinary(85)?  l.sid
xstatus   smallint        18 + 16 * (l.roles & 1)
xdate1    datetime        l.created
xdate2    datetime        l.updated
name      sysname?        l.name
password  varbinary(256)? NULL
dbid      smallint        coalesce((SELECT d.dbid FROM cat_database d WHERE d.name = l.dbname), 1)
language  sysname?        l.language
)",
     "FROM cat_login l"},

    {"sys", "database_principals", false,
     R"(
name                  sysname        u.name
principal_id          int            u.uid
type                  char(1)        CASE WHEN u.approle THEN 'A' WHEN u.role THEN 'R' ELSE 'S' END
type_desc             nvarchar(60)?  CASE WHEN u.approle THEN 'APPLICATION_ROLE' WHEN u.role THEN 'DATABASE_ROLE' ELSE 'SQL_USER' END
default_schema_name   sysname?       CASE WHEN u.role THEN NULL ELSE 'dbo' END
create_date           datetime       u.created
modify_date           datetime       u.updated
owning_principal_id   int?           u.altuid
sid                   varbinary(85)? u.sid
is_fixed_role         bit            u.uid BETWEEN 16384 AND 16399
)",
     "FROM cat_user u WHERE u.dbid = :db AND NOT u.aliased"},

    {"sys", "database_role_members", false,
     R"(
role_principal_id    int  m.groupuid
member_principal_id  int  m.memberuid
)",
     "FROM cat_member m WHERE m.dbid = :db"},

    {"sys", "database_permissions", false,
     R"(
class                 tinyint       p.id <> 0
class_desc            nvarchar(60)? CASE WHEN p.id = 0 THEN 'DATABASE' ELSE 'OBJECT_OR_COLUMN' END
major_id              int           p.id
minor_id              int           p.colid
grantee_principal_id  int           p.uid
grantor_principal_id  int           p.grantor
permission_name       nvarchar(128)? CASE p.action WHEN 1 THEN 'ALTER' WHEN 2 THEN 'CONTROL' WHEN 3 THEN 'VIEW DEFINITION' ELSE (SELECT upper(v.name) FROM sys_value v WHERE v.type = 'T' AND v.number = p.action) END
state                 char(1)       CASE p.protecttype WHEN 0 THEN 'R' WHEN 204 THEN 'W' WHEN 205 THEN 'G' ELSE 'D' END
state_desc            nvarchar(60)? CASE p.protecttype WHEN 0 THEN 'REVOKE' WHEN 204 THEN 'GRANT_WITH_GRANT_OPTION' WHEN 205 THEN 'GRANT' ELSE 'DENY' END
)",
     "FROM (SELECT dbid, id, 0 AS colid, uid, action, protecttype, grantor FROM cat_permission UNION ALL "
     "SELECT dbid, id, colid, uid, action, protecttype, grantor FROM cat_column_permission) p "
     "WHERE p.dbid = :db"},

    {"sys", "server_principals", true,
     R"(
name                   sysname        l.name
principal_id           int            256 + row_number() OVER (ORDER BY l.created, l.fold)
sid                    varbinary(85)? l.sid
type                   char(1)        CASE WHEN l.windows THEN 'U' ELSE 'S' END
type_desc              nvarchar(60)?  CASE WHEN l.windows THEN 'WINDOWS_LOGIN' ELSE 'SQL_LOGIN' END
is_disabled            bit            l.denied
create_date            datetime       l.created
modify_date            datetime       l.updated
default_database_name  sysname?       l.dbname
default_language_name  sysname?       l.language
)",
     "FROM cat_login l"},

    {"sys", "schemas", false,
     R"(
name          sysname  u.name
schema_id     int      u.uid
principal_id  int      u.uid
)",
     "FROM cat_user u WHERE u.dbid = :db AND NOT u.aliased"},
};

} // namespace

std::span<const SystemTableDefinition> securitySystemTables()
{
    return securityDefinitions;
}

} // namespace practice
