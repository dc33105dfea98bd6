#include "engine/context/permissions.h"

#include "engine/messages/errors.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace practice {

namespace {

constexpr int denied = 206; // 204 and 205 grant

struct Action
{
    std::string_view name;
    int number;
};

// The numbers that sysprotects shows.
constexpr std::array actions = {Action{"SELECT", 193}, Action{"INSERT", 195}, Action{"DELETE", 196},
                                Action{"UPDATE", 197}, Action{"EXECUTE", 224}};

int numberOf(std::string_view name)
{
    for (const Action& action : actions) {
        if (action.name == name)
            return action.number;
    }
    return 0;
}

struct StatementAction
{
    std::string_view name;
    int number;
    const char* role; ///< whose members may without a grant
};

constexpr std::array statementActions = {
    StatementAction{"CREATE TABLE", 198, "db_ddladmin"},
    StatementAction{"CREATE VIEW", 207, "db_ddladmin"},
    StatementAction{"CREATE PROCEDURE", 222, "db_ddladmin"},
    StatementAction{"CREATE FUNCTION", 178, "db_ddladmin"},
    StatementAction{"CREATE DEFAULT", 233, "db_ddladmin"},
    StatementAction{"CREATE RULE", 236, "db_ddladmin"},
    StatementAction{"CREATE DATABASE", 203, "db_owner"},
    StatementAction{"BACKUP DATABASE", 228, "db_backupoperator"},
    StatementAction{"BACKUP LOG", 235, "db_backupoperator"},
};

/// 1 granted, -1 denied, 0 nothing said: by the user's own entries, those of its roles and of theirs.
/// @param object 0 for a statement
int verdict(SessionContext& session, int database, int object, int user, int action)
{
    Statement entries(
        session.connection(),
        "WITH RECURSIVE groups(uid) AS (SELECT ?1 UNION SELECT ?2 UNION SELECT m.groupuid FROM groups g "
        "JOIN cat_member m ON m.dbid = ?3 AND m.memberuid = g.uid) "
        "SELECT max(protecttype) FROM cat_permission "
        "WHERE dbid = ?3 AND id = ?4 AND action = ?5 AND uid IN (SELECT uid FROM groups)");
    entries.bind(1, user).bind(2, publicId).bind(3, database).bind(4, object).bind(5, action).step();
    if (entries.isNull(0))
        return 0;
    return entries.number(0) == denied ? -1 : 1;
}

bool hasFixedRole(SessionContext& session, const Object& object, int user, std::string_view action)
{
    const auto member = [&session, &object, user](const char* role) {
        return session.catalog().isMember(object.databaseId, role, user);
    };
    if (member("db_owner"))
        return true;
    if (action == "SELECT")
        return member("db_datareader");
    return action != "EXECUTE" && member("db_datawriter");
}

bool hasDenyingRole(SessionContext& session, const Object& object, int user, std::string_view action)
{
    const char* role = action == "SELECT" ? "db_denydatareader" : "db_denydatawriter";
    return action != "EXECUTE" && session.catalog().isMember(object.databaseId, role, user);
}

} // namespace

void requireOnline(const Database& database)
{
    if ((database.options & Restoring) != 0)
        raise(927, {database.name});
    if ((database.options & Offline) != 0)
        raise(942, {database.name});
}

void requireWritable(const Database& database)
{
    requireOnline(database);
    if ((database.options & ReadOnly) != 0)
        raise(3906, {database.name});
}

void requirePermission(SessionContext& session, const Object& object, const char* action)
{
    if ((session.login().serverRoles & SysAdmin) != 0 || object.databaseId == tempdbId)
        return;
    const auto user = session.catalog().userOf(object.databaseId, session.login());
    if (user && (user->id == dboId || user->id == object.ownerId))
        return;
    if (user && !hasDenyingRole(session, object, user->id, action)) {
        const int said = verdict(session, object.databaseId, object.id, user->id, numberOf(action));
        if (said > 0 || (said == 0 && hasFixedRole(session, object, user->id, action)))
            return;
    }
    const DatabasePtr database = session.catalog().database(object.databaseId);
    Message message = makeMessage(229);
    message.text = std::string("The ") + action + " permission was denied on the object '" + object.name +
                   "', database '" + (database ? database->name : "") + "', schema '" + object.owner + "'.";
    throw SqlError{std::move(message)};
}

void requireStatementPermission(SessionContext& session, const Database& database, const char* statement)
{
    const auto user = session.catalog().userOf(database.id, session.login());
    if (database.id == tempdbId || (user && user->id == dboId))
        return;
    const auto* const action =
        std::find_if(statementActions.begin(), statementActions.end(),
                     [statement](const StatementAction& known) { return known.name == statement; });
    if (user && action != statementActions.end()) {
        const int said = verdict(session, database.id, 0, user->id, action->number);
        const bool byRole = session.catalog().isMember(database.id, "db_owner", user->id) ||
                            session.catalog().isMember(database.id, action->role, user->id);
        if (said > 0 || (said == 0 && byRole))
            return;
    }
    raise(262, {statement, database.name});
}

bool mayChange(SessionContext& session, int databaseId, int ownerId)
{
    if (isDatabaseOwner(session, databaseId))
        return true;
    const auto user = session.catalog().userOf(databaseId, session.login());
    return user && (user->id == ownerId || session.catalog().isMember(databaseId, "db_ddladmin", user->id) ||
                    databaseId == tempdbId);
}

bool isDatabaseOwner(SessionContext& session, int databaseId)
{
    const auto user = session.catalog().userOf(databaseId, session.login());
    return user && (user->id == 1 || session.catalog().isMember(databaseId, "db_owner", user->id));
}

bool hasServerRole(SessionContext& session, unsigned roles)
{
    return (session.login().serverRoles & (roles | SysAdmin)) != 0;
}

} // namespace practice
