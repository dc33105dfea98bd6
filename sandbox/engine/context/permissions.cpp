#include "engine/context/permissions.h"

#include "engine/messages/errors.h"

#include <array>
#include <string_view>

namespace practice {

namespace {

constexpr int denied = 206;

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

/// 1 granted, -1 denied, 0 nothing said: by the user's own entries and those of its roles.
int verdict(SessionContext& session, const Object& object, int user, int action)
{
    Statement entries(
        session.connection(),
        "SELECT protecttype FROM cat_permission WHERE dbid = ?1 AND id = ?2 AND action = ?3 AND (uid IN "
        "(?4, ?5) OR uid IN (SELECT groupuid FROM cat_member WHERE dbid = ?1 AND memberuid = ?4))");
    entries.bind(1, object.databaseId).bind(2, object.id).bind(3, action).bind(4, user).bind(5, publicId);
    int result = 0;
    while (entries.step()) {
        if (entries.number(0) == denied)
            return -1;
        result = 1;
    }
    return result;
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
    if ((database.options & Offline) != 0)
        raise(942, {database.name});
}

void requirePermission(SessionContext& session, const Object& object, const char* action)
{
    if ((session.login().serverRoles & SysAdmin) != 0 || object.databaseId == tempdbId)
        return;
    const auto user = session.catalog().userOf(object.databaseId, session.login());
    if (user && (user->id == dboId || user->id == object.ownerId))
        return;
    if (user && !hasDenyingRole(session, object, user->id, action)) {
        const int said = verdict(session, object, user->id, numberOf(action));
        if (said > 0 || (said == 0 && hasFixedRole(session, object, user->id, action)))
            return;
    }
    const DatabasePtr database = session.catalog().database(object.databaseId);
    Message message = makeMessage(229);
    message.text = std::string("The ") + action + " permission was denied on the object '" + object.name +
                   "', database '" + (database ? database->name : "") + "', schema '" + object.owner + "'.";
    throw SqlError{std::move(message)};
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
