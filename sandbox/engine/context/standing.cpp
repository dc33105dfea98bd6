#include "engine/context/standing.h"

#include "engine/messages/errors.h"

#include <algorithm>

namespace practice {

namespace {

/// Owners in two databases are one when they are one login.
bool sameOwner(SessionContext& session, const ModuleOwner& module, const Object& object)
{
    const auto left = session.catalog().principal(module.databaseId, module.ownerId);
    const auto right = session.catalog().principal(object.databaseId, object.ownerId);
    return left && right && !left->sid.empty() && left->sid == right->sid;
}

bool isOpenToChains(SessionContext& session, int databaseId)
{
    const DatabasePtr database = session.catalog().database(databaseId);
    return database && (database->options & DatabaseChaining) != 0;
}

} // namespace

std::optional<Principal> userIn(SessionContext& session, int databaseId)
{
    return session.catalog().userOf(databaseId, session.login());
}

void requireAccess(SessionContext& session, const Database& database)
{
    if (!userIn(session, database.id))
        raise(916, {session.login().name, database.name});
}

Standing::Standing(SessionContext& session, const Database& database)
{
    const auto user = userIn(session, database.id);
    if (!user)
        raise(916, {session.login().name, database.name});
    user_ = user->id;
    Statement rows(
        session.connection(),
        "WITH RECURSIVE groups(uid) AS (SELECT ?1 UNION SELECT ?2 UNION SELECT m.groupuid FROM groups g "
        "JOIN cat_member m ON m.dbid = ?3 AND m.memberuid = g.uid) "
        "SELECT g.uid, u.name FROM groups g JOIN cat_user u ON u.dbid = ?3 AND u.uid = g.uid");
    rows.bind(1, user_).bind(2, publicId).bind(3, database.id);
    while (rows.step()) {
        const int id = rows.number(0);
        all_.push_back(id);
        principals_ += (principals_.empty() ? "" : ",") + std::to_string(id);
        if (isFixedRoleId(id))
            fixedRoles_.push_back(rows.string(1));
    }
}

bool Standing::inFixedRole(std::string_view role) const
{
    return std::find(fixedRoles_.begin(), fixedRoles_.end(), role) != fixedRoles_.end();
}

bool Standing::belongsTo(int principalId) const
{
    return std::find(all_.begin(), all_.end(), principalId) != all_.end();
}

bool lends(SessionContext& session, const std::optional<ModuleOwner>& module, const Object& object)
{
    if (!module)
        return false;
    if (module->databaseId == object.databaseId)
        return module->ownerId == object.ownerId;
    return isOpenToChains(session, module->databaseId) && isOpenToChains(session, object.databaseId) &&
           sameOwner(session, *module, object);
}

} // namespace practice
