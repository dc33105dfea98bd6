// What lists logins, users, roles, members and rights.
#include "engine/context/security_principals.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/procedures/system_procedures.h"
#include "engine/store/storage.h"

namespace practice {
namespace {

std::string named(const std::string& expression, const std::optional<std::string>& name)
{
    return name ? " AND " + expression + " = " + quotedText(foldName(*name)) : "";
}

int helpLogins(const ProcedureCall& call)
{
    requireServerRole(call.session(), SecurityAdmin);
    const auto& pattern = call.text(0);
    if (pattern)
        (void)requireLogin(call.session(), *pattern);
    call.sendRows(R"(
LoginName  sysname        l.name
SID        varbinary(85)? l.sid
DefDBName  sysname?       l.dbname
DefLangName sysname?      l.language
AUser      char(5)?       CASE WHEN EXISTS (SELECT 1 FROM cat_user u WHERE u.sid = l.sid) THEN 'yes' ELSE 'NO' END
ARemote    char(7)?       'no'
)",
                  "FROM cat_login l WHERE 1" + named("l.fold", pattern) + " ORDER BY l.fold");
    call.sendRows(R"(
LoginName   sysname   l.name
DBName      sysname   d.name
UserName    sysname?  x.name
UserOrAlias char(8)?  x.kind
)",
                  "FROM cat_login l JOIN (SELECT u.dbid, u.sid, coalesce(a.name, u.name) AS name, "
                  "CASE WHEN u.aliased THEN 'Alias' ELSE 'User' END AS kind, 0 AS place FROM cat_user u "
                  "LEFT JOIN cat_user a ON u.aliased AND a.dbid = u.dbid AND a.uid = u.altuid "
                  "UNION ALL SELECT u.dbid, u.sid, g.name, 'MemberOf', 1 FROM cat_user u "
                  "JOIN cat_member m ON m.dbid = u.dbid AND m.memberuid = u.uid "
                  "JOIN cat_user g ON g.dbid = m.dbid AND g.uid = m.groupuid) x ON x.sid = l.sid "
                  "JOIN cat_database d ON d.dbid = x.dbid WHERE 1" +
                      named("l.fold", pattern) + " ORDER BY l.fold, d.fold, x.name, x.place");
    return 0;
}

int helpUser(const ProcedureCall& call)
{
    const auto& name = call.text(0);
    if (name && !call.session().catalog().principal(call.database(), *name))
        raise(15198, {*name});
    call.sendRows(R"(
UserName   sysname        u.name
GroupName  sysname?       coalesce(g.name, 'public')
LoginName  sysname?       l.name
DefDBName  sysname?       l.dbname
UserID     char(10)       u.uid
SID        varbinary(85)? u.sid
)",
                  "FROM cat_user u LEFT JOIN cat_member m ON m.dbid = u.dbid AND m.memberuid = u.uid "
                  "LEFT JOIN cat_user g ON g.dbid = m.dbid AND g.uid = m.groupuid "
                  "LEFT JOIN cat_login l ON l.sid = u.sid "
                  "WHERE u.dbid = :db AND NOT u.role AND NOT u.aliased AND u.access" +
                      named("u.fold", name) + " ORDER BY u.fold");
    return 0;
}

int helpRole(const ProcedureCall& call)
{
    const auto& name = call.text(0);
    const auto role = name ? call.session().catalog().principal(call.database(), *name) : std::nullopt;
    if (name && !(role && role->role))
        raise(15409, {*name});
    call.sendRows(R"(
RoleName   sysname   u.name
RoleId     smallint  u.uid
IsAppRole  int       u.approle
)",
                  "FROM cat_user u WHERE u.dbid = :db AND u.role" + named("u.fold", name) +
                      " ORDER BY u.uid");
    return 0;
}

int helpRoleMember(const ProcedureCall& call)
{
    const auto& name = call.text(0);
    const auto role = name ? call.session().catalog().principal(call.database(), *name) : std::nullopt;
    if (name && !(role && role->role))
        raise(15409, {*name});
    call.sendRows(R"(
DbRole      sysname        g.name
MemberName  sysname        u.name
MemberSID   varbinary(85)? u.sid
)",
                  "FROM cat_member m JOIN cat_user g ON g.dbid = m.dbid AND g.uid = m.groupuid "
                  "JOIN cat_user u ON u.dbid = m.dbid AND u.uid = m.memberuid WHERE m.dbid = :db" +
                      named("g.fold", name) + " ORDER BY g.fold, u.fold");
    return 0;
}

constexpr const char* serverRoleRows =
    "(VALUES (0, 'sysadmin', 'System Administrators'), (1, 'securityadmin', 'Security Administrators'), "
    "(2, 'serveradmin', 'Server Administrators'), (3, 'setupadmin', 'Setup Administrators'), "
    "(4, 'processadmin', 'Process Administrators'), (5, 'diskadmin', 'Disk Administrators'), "
    "(6, 'dbcreator', 'Database Creators'), (7, 'bulkadmin', 'Bulk Insert Administrators')) r";

void requireServerRoleName(const ProcedureCall& call)
{
    if (call.text(0) && serverRoleByName(*call.text(0)) == 0)
        raise(15412, {*call.text(0)});
}

int helpServerRole(const ProcedureCall& call)
{
    requireServerRoleName(call);
    call.sendRows(R"(
ServerRole   sysname       r.column2
Description  nvarchar(35)  r.column3
)",
                  std::string("FROM ") + serverRoleRows + " WHERE 1" + named("r.column2", call.text(0)) +
                      " ORDER BY r.column1");
    return 0;
}

int helpServerRoleMember(const ProcedureCall& call)
{
    requireServerRoleName(call);
    call.sendRows(R"(
ServerRole  sysname        r.column2
MemberName  sysname        l.name
MemberSID   varbinary(85)? l.sid
)",
                  std::string("FROM ") + serverRoleRows +
                      " JOIN cat_login l ON l.roles >> r.column1 & 1 WHERE 1" +
                      named("r.column2", call.text(0)) + " ORDER BY r.column1, l.fold");
    return 0;
}

int helpRights(const ProcedureCall& call)
{
    const auto& object = call.text(0);
    const auto& grantee = call.text(1);
    const std::uint64_t rows = call.sendRows(
        R"(
Owner       sysname       coalesce(w.name, '.')
Object      sysname       coalesce(o.name, '.')
Grantee     sysname       u.name
Grantor     sysname       g.name
ProtectType char(10)      CASE p.protecttype WHEN 204 THEN 'Grant_WGO' WHEN 205 THEN 'Grant' ELSE 'Deny' END
Action      varchar(60)   v.name
Column      sysname       coalesce(k.name, CASE WHEN p.action IN (193, 197) THEN '(All+New)' ELSE '.' END)
)",
        "FROM (SELECT dbid, id, 0 AS colid, uid, action, protecttype, grantor FROM cat_permission UNION ALL "
        "SELECT dbid, id, colid, uid, action, protecttype, grantor FROM cat_column_permission "
        "WHERE protecttype > 0) p "
        "LEFT JOIN cat_column k ON k.dbid = p.dbid AND k.id = p.id AND k.colid = p.colid JOIN cat_user u ON "
        "u.dbid = p.dbid AND u.uid = p.uid "
        "JOIN cat_user g ON g.dbid = p.dbid AND g.uid = p.grantor "
        "LEFT JOIN cat_object o ON o.dbid IN (0, p.dbid) AND o.id = p.id "
        "LEFT JOIN cat_user w ON w.dbid = p.dbid AND w.uid = o.uid "
        "JOIN sys_value v ON v.type = 'T' AND v.number = p.action "
        "WHERE p.dbid = :db" +
            named("o.fold", object) + named("u.fold", grantee) +
            " ORDER BY w.fold, o.fold, u.fold, v.name, p.colid");
    if (rows == 0)
        raise(15330);
    return 0;
}

constexpr SystemProcedure securityHelpTable[] = {
    {"sp_helplogins", "@LoginNamePattern=", helpLogins},
    {"sp_helpuser", "@name_in_db=", helpUser},
    {"sp_helprole", "@rolename=", helpRole},
    {"sp_helprolemember", "@rolename=", helpRoleMember},
    {"sp_helpsrvrole", "@srvrolename=", helpServerRole},
    {"sp_helpsrvrolemember", "@srvrolename=", helpServerRoleMember},
    {"sp_helprotect", "@name= @username= @grantorname= @permissionarea=", helpRights},
};

} // namespace

std::span<const SystemProcedure> securityHelpProcedures()
{
    return securityHelpTable;
}

} // namespace practice
