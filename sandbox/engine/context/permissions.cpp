#include "engine/context/permissions.h"

#include "engine/context/object_rights.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace practice {

namespace {

struct StatementAction
{
    std::string_view name;
    int number;                            ///< as sysprotects shows it; 0 for what can't be granted here
    std::array<std::string_view, 2> roles; ///< whose members may without a grant, besides db_owner
};

constexpr std::array statementActions = {
    StatementAction{"CREATE TABLE", 198, {"db_ddladmin"}},
    StatementAction{"CREATE VIEW", 207, {"db_ddladmin"}},
    StatementAction{"CREATE PROCEDURE", 222, {"db_ddladmin"}},
    StatementAction{"CREATE FUNCTION", 178, {"db_ddladmin"}},
    StatementAction{"CREATE DEFAULT", 233, {"db_ddladmin"}},
    StatementAction{"CREATE RULE", 236, {"db_ddladmin"}},
    StatementAction{"CREATE DATABASE", 203, {}},
    StatementAction{"BACKUP DATABASE", 228, {"db_backupoperator"}},
    StatementAction{"BACKUP LOG", 235, {"db_backupoperator"}},
    StatementAction{"CHECKPOINT", 0, {"db_backupoperator", "db_ddladmin"}},
};

bool hasRoleFor(const Standing& standing, const StatementAction& action)
{
    return standing.inFixedRole("db_owner") ||
           std::ranges::any_of(action.roles, [&standing](std::string_view role) {
               return !role.empty() && standing.inFixedRole(role);
           });
}

/// 1 granted, -1 denied, 0 nothing said.
int verdict(SessionContext& session, const Standing& standing, int databaseId, int action)
{
    Statement entries(session.connection(), "SELECT max(protecttype) FROM cat_permission WHERE dbid = ?1 AND "
                                            "id = 0 AND action = ?2 AND uid IN (" +
                                                standing.principals() + ")");
    entries.bind(1, databaseId).bind(2, action).step();
    if (entries.isNull(0))
        return 0;
    return entries.number(0) == protection::denied ? -1 : 1;
}

/// For as long as the call lasts.
ObjectPtr borrowed(const Object& object)
{
    return {ObjectPtr(), &object};
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

bool mayRun(SessionContext& session, const Database& database, const char* statement)
{
    const Standing standing(session, database);
    if (standing.isDbo())
        return true;
    const auto* const action =
        std::ranges::find(statementActions, std::string_view(statement), &StatementAction::name);
    if (action == statementActions.end())
        return false;
    const int said = verdict(session, standing, database.id, action->number);
    return said > 0 || (said == 0 && hasRoleFor(standing, *action));
}

void requireStatementPermission(SessionContext& session, const Database& database, const char* statement)
{
    if (!mayRun(session, database, statement))
        raise(262, {statement, database.name});
}

bool mayChange(SessionContext& session, const Object& object)
{
    return hasRight(session, {borrowed(object), Right::Alter, {}});
}

bool mayDrop(SessionContext& session, const Object& object)
{
    return hasRight(session, {borrowed(object), Right::Control, {}});
}

bool mayCreateFor(SessionContext& session, const Database& database, int ownerId)
{
    const Standing standing(session, database);
    return standing.isDbo() || standing.belongsTo(ownerId) || standing.inFixedRole("db_owner") ||
           standing.inFixedRole("db_ddladmin");
}

bool isDatabaseOwner(SessionContext& session, int databaseId)
{
    const auto user = userIn(session, databaseId);
    return user && (user->id == dboId || session.catalog().isMember(databaseId, "db_owner", user->id));
}

bool hasServerRole(SessionContext& session, unsigned roles)
{
    return (session.login().serverRoles & (roles | SysAdmin)) != 0;
}

} // namespace practice
