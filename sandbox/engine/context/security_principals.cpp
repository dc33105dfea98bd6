#include "engine/context/security_principals.h"

#include "engine/catalog/catalog_writer.h"
#include "engine/catalog/security.h"
#include "engine/context/permissions.h"
#include "engine/messages/errors.h"

#include <array>

namespace practice {
namespace {

constexpr int firstUserId = 5;

struct ServerRoleName
{
    const char* name;
    ServerRole role;
};
constexpr std::array serverRoles{
    ServerRoleName{"sysadmin", SysAdmin},         ServerRoleName{"securityadmin", SecurityAdmin},
    ServerRoleName{"serveradmin", ServerAdmin},   ServerRoleName{"setupadmin", SetupAdmin},
    ServerRoleName{"processadmin", ProcessAdmin}, ServerRoleName{"diskadmin", DiskAdmin},
    ServerRoleName{"dbcreator", DbCreator},       ServerRoleName{"bulkadmin", BulkAdmin},
};

int currentDatabase(SessionContext& session)
{
    return session.database()->id;
}

bool yields(SessionContext& session, const char* sql, const std::string& sid)
{
    Statement row(session.connection(), sql);
    return row.bindBlob(1, sid.data(), sid.size()).step();
}

bool yields(SessionContext& session, const char* sql, int databaseId, int id)
{
    Statement row(session.connection(), sql);
    return row.bind(1, databaseId).bind(2, id).step();
}

void run(SessionContext& session, const char* sql, int databaseId, int id)
{
    Statement(session.connection(), sql).bind(1, databaseId).bind(2, id).run();
}

void updateLogin(SessionContext& session, const std::string& login, const char* column,
                 const std::string& value)
{
    Statement row(session.connection(),
                  std::string("UPDATE cat_login SET ") + column + " = ?, updated = ? WHERE fold = ?");
    row.bind(1, value).bind(2, storedNow()).bind(3, foldName(login)).run();
    bumpCatalogVersion(session.connection());
}

void requireDatabase(SessionContext& session, const std::string& name)
{
    if (!session.catalog().database(name))
        raise(15010, {name});
}

bool isSelf(SessionContext& session, const std::string& login)
{
    return sameName(session.login().name, login);
}

int freeUserId(SessionContext& session, int first)
{
    int id = first;
    while (session.catalog().principal(currentDatabase(session), id))
        ++id;
    return id;
}

bool ownsObjects(SessionContext& session, int uid)
{
    return yields(session, "SELECT 1 FROM cat_object WHERE dbid = ? AND uid = ?", currentDatabase(session),
                  uid);
}

void deletePrincipal(SessionContext& session, int uid)
{
    const int database = currentDatabase(session);
    run(session, "DELETE FROM cat_permission WHERE dbid = ? AND uid = ?", database, uid);
    run(session, "DELETE FROM cat_column_permission WHERE dbid = ? AND uid = ?", database, uid);
    run(session, "DELETE FROM cat_member WHERE dbid = ? AND memberuid = ?", database, uid);
    run(session, "DELETE FROM cat_user WHERE dbid = ? AND aliased AND altuid = ?", database, uid);
    run(session, "DELETE FROM cat_user WHERE dbid = ? AND uid = ?", database, uid);
    bumpCatalogVersion(session.connection());
}

void setGuestAccess(SessionContext& session, bool access)
{
    if (!access && currentDatabase(session) <= tempdbId)
        raise(15182);
    run(session,
        access ? "UPDATE cat_user SET access = 1 WHERE dbid = ? AND uid = ?"
               : "UPDATE cat_user SET access = 0 WHERE dbid = ? AND uid = ?",
        currentDatabase(session), guestId);
    bumpCatalogVersion(session.connection());
}

void requireFreeUserName(SessionContext& session, const std::string& name)
{
    if (session.catalog().principal(currentDatabase(session), name))
        raise(15023, {name});
}

Principal requireRole(SessionContext& session, const std::string& name)
{
    const auto role = session.catalog().principal(currentDatabase(session), name);
    if (!role || !role->role)
        raise(15014, {name});
    return *role;
}

Principal requireMember(SessionContext& session, const std::string& name)
{
    const auto member = session.catalog().principal(currentDatabase(session), name);
    if (!member)
        raise(15410, {name});
    if (member->id == dboId || member->id == informationSchemaId || member->id == 0)
        raise(15405, {name});
    return *member;
}

/// Membership of the role for fixed roles needs db_owner; of others db_securityadmin will do.
Principal roleForChange(SessionContext& session, const std::string& name)
{
    Principal role = requireRole(session, name);
    if (role.id == 0)
        raise(15081);
    requireDatabaseRole(session, role.id < firstUserRoleId ? "db_owner" : "db_securityadmin");
    return role;
}

} // namespace

void addLogin(SessionContext& session, const LoginDefinition& login)
{
    requireServerRole(session, SecurityAdmin);
    if (login.name.empty() || login.name.find('\\') != std::string::npos)
        raise(15006, {login.name});
    if (session.catalog().login(login.name))
        raise(15025, {login.name});
    requireDatabase(session, login.database);
    if (!login.sid.empty() && yields(session, "SELECT 1 FROM cat_login WHERE sid = ?", login.sid))
        raise(15433);
    NewLogin row;
    row.name = login.name;
    row.sid = login.sid.empty() ? newSid() : login.sid;
    row.password = login.password;
    row.database = session.catalog().database(login.database)->name;
    row.language = login.language;
    insertLogin(session.connection(), row);
}

void dropLogin(SessionContext& session, const std::string& name)
{
    requireServerRole(session, SecurityAdmin);
    const Login login = requireLogin(session, name);
    if (sameName(name, "sa"))
        raise(15405, {name});
    if (yields(session, "SELECT 1 FROM cat_database WHERE sid = ?", login.sid))
        raise(15174, {name});
    if (yields(session, "SELECT 1 FROM cat_user WHERE sid = ?", login.sid))
        raise(15175, {name});
    Statement present(session.connection(), "SELECT 1 FROM json_each(practice_sessions()) j "
                                            "WHERE j.value ->> 'login' = ?");
    if (present.bind(1, login.name).step())
        raise(15434, {name});
    Statement row(session.connection(), "DELETE FROM cat_login WHERE sid = ?");
    row.bindBlob(1, login.sid.data(), login.sid.size()).run();
    bumpCatalogVersion(session.connection());
}

void setPassword(SessionContext& session, const std::optional<std::string>& old, const std::string& password,
                 const std::string& login)
{
    const bool self = isSelf(session, login);
    if (!self)
        requireServerRole(session, SecurityAdmin);
    requireLogin(session, login);
    const bool mayOmit = hasServerRole(session, SecurityAdmin) && old.value_or("").empty();
    if (!mayOmit && !checkPassword(session.connection(), login, old.value_or("")))
        raise(15211);
    const PasswordHash made = hashPassword(password);
    Statement row(session.connection(),
                  "UPDATE cat_login SET hash = ?, salt = ?, updated = ? WHERE fold = ?");
    row.bindBlob(1, made.hash.data(), made.hash.size()).bindBlob(2, made.salt.data(), made.salt.size());
    row.bind(3, storedNow()).bind(4, foldName(login)).run();
}

void setDefaultDatabase(SessionContext& session, const std::string& login, const std::string& database)
{
    if (!isSelf(session, login))
        requireServerRole(session, SecurityAdmin);
    requireLogin(session, login);
    requireDatabase(session, database);
    updateLogin(session, login, "dbname", session.catalog().database(database)->name);
}

void setDefaultLanguage(SessionContext& session, const std::string& login, const std::string& language)
{
    if (!isSelf(session, login))
        requireServerRole(session, SecurityAdmin);
    requireLogin(session, login);
    updateLogin(session, login, "language", language);
}

void setLoginDenied(SessionContext& session, const std::string& login, bool denied)
{
    requireServerRole(session, SecurityAdmin);
    requireLogin(session, login);
    updateLogin(session, login, "denied", denied ? "1" : "0");
}

void setServerRole(SessionContext& session, const std::string& role, const std::string& login, bool member)
{
    const unsigned bit = serverRoleByName(role);
    if (bit == 0)
        raise(15402, {role});
    requireServerRole(session, bit);
    const Login found = requireLogin(session, login);
    if (sameName(login, "sa"))
        raise(15405, {login});
    const unsigned roles = member ? found.serverRoles | bit : found.serverRoles & ~bit;
    updateLogin(session, login, "roles", std::to_string(roles));
}

void addUser(SessionContext& session, const std::string& login, const std::string& name)
{
    requireDatabaseRole(session, "db_accessadmin");
    if (sameName(login, "guest"))
        return setGuestAccess(session, true);
    const Login found = requireLogin(session, login);
    requireFreeUserName(session, name);
    const std::string& sid = found.sid;
    Statement taken(session.connection(), "SELECT 1 FROM cat_user WHERE dbid = ? AND sid = ?");
    if (taken.bind(1, currentDatabase(session)).bindBlob(2, sid.data(), sid.size()).step())
        raise(15063);
    NewUser user;
    user.id = freeUserId(session, firstUserId);
    user.name = name;
    user.sid = sid;
    insertUser(session.connection(), currentDatabase(session), user);
}

void addLooseUser(SessionContext& session, const std::string& name)
{
    requireDatabaseRole(session, "db_accessadmin");
    requireFreeUserName(session, name);
    NewUser user;
    user.id = freeUserId(session, firstUserId);
    user.name = name;
    user.sid = newSid();
    insertUser(session.connection(), currentDatabase(session), user);
}

void dropUser(SessionContext& session, const std::string& name)
{
    requireDatabaseRole(session, "db_accessadmin");
    const auto user = session.catalog().principal(currentDatabase(session), name);
    if (!user || user->role)
        raise(15008, {name});
    if (user->id == guestId)
        return setGuestAccess(session, false);
    if (user->id == dboId || user->id == informationSchemaId)
        raise(15181);
    if (ownsObjects(session, user->id))
        raise(15183);
    deletePrincipal(session, user->id);
}

void renameUser(SessionContext& session, const std::string& name, const std::string& newName)
{
    requireDatabaseRole(session, "db_accessadmin");
    const auto user = session.catalog().principal(currentDatabase(session), name);
    if (!user || user->id <= informationSchemaId || isFixedRoleId(user->id))
        raise(15008, {name});
    if (!sameName(name, newName))
        requireFreeUserName(session, newName);
    Statement row(session.connection(), "UPDATE cat_user SET name = ?, fold = ? WHERE dbid = ? AND uid = ?");
    row.bind(1, newName).bind(2, foldName(newName)).bind(3, currentDatabase(session)).bind(4, user->id).run();
    bumpCatalogVersion(session.connection());
}

void addRole(SessionContext& session, const std::string& name, const std::string& owner)
{
    requireDatabaseRole(session, "db_securityadmin");
    requireFreeUserName(session, name);
    NewUser role;
    role.alternateId = dboId;
    if (!owner.empty()) {
        const auto found = session.catalog().principal(currentDatabase(session), owner);
        if (!found)
            raise(15410, {owner});
        role.alternateId = found->id;
    }
    role.id = freeUserId(session, firstUserRoleId);
    role.name = name;
    role.role = true;
    insertUser(session.connection(), currentDatabase(session), role);
}

void dropRole(SessionContext& session, const std::string& name)
{
    requireDatabaseRole(session, "db_securityadmin");
    const Principal role = requireRole(session, name);
    if (role.id < firstUserRoleId)
        raise(15405, {name});
    if (yields(session, "SELECT 1 FROM cat_member WHERE dbid = ? AND groupuid = ?", currentDatabase(session),
               role.id))
        raise(15144);
    if (ownsObjects(session, role.id))
        raise(15183);
    deletePrincipal(session, role.id);
}

void addRoleMember(SessionContext& session, const std::string& role, const std::string& member)
{
    const Principal group = roleForChange(session, role);
    const Principal user = requireMember(session, member);
    if (user.id == group.id || session.catalog().isMember(currentDatabase(session), member, group.id))
        raise(15413);
    Statement row(session.connection(),
                  "INSERT OR IGNORE INTO cat_member(dbid, groupuid, memberuid) VALUES(?, ?, ?)");
    row.bind(1, currentDatabase(session)).bind(2, group.id).bind(3, user.id).run();
    bumpCatalogVersion(session.connection());
}

void dropRoleMember(SessionContext& session, const std::string& role, const std::string& member)
{
    const Principal group = roleForChange(session, role);
    const Principal user = requireMember(session, member);
    Statement row(session.connection(),
                  "DELETE FROM cat_member WHERE dbid = ? AND groupuid = ? AND memberuid = ?");
    row.bind(1, currentDatabase(session)).bind(2, group.id).bind(3, user.id).run();
    bumpCatalogVersion(session.connection());
}

unsigned serverRoleByName(const std::string& name)
{
    for (const ServerRoleName& known : serverRoles) {
        if (sameName(name, known.name))
            return known.role;
    }
    return 0;
}

Login requireLogin(SessionContext& session, const std::string& name)
{
    const auto login = session.catalog().login(name);
    if (!login)
        raise(15007, {name});
    return *login;
}

void requireServerRole(SessionContext& session, unsigned roles)
{
    if (!hasServerRole(session, roles))
        raise(15247);
}

void requireDatabaseRole(SessionContext& session, const char* role)
{
    const int database = currentDatabase(session);
    if (!isDatabaseOwner(session, database) && !session.catalog().isMember(database, role, session.user().id))
        raise(15247);
}

} // namespace practice
