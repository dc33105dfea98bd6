// Functions that tell of logins, users and roles.
#include "engine/context/security_principals.h"
#include "engine/messages/errors.h"
#include "engine/session/session_functions.h"

namespace practice {

namespace {

void userName(SessionState& session, const Call& call)
{
    const auto found = session.catalog().principal(session.database()->id, static_cast<int>(call.integer(0)));
    return found ? call.result(std::string_view(found->name)) : null(call);
}

void userId(SessionState& session, const Call& call)
{
    const auto found = session.catalog().principal(session.database()->id, std::string(call.text(0)));
    return found ? call.result(found->id) : null(call);
}

/// SUSER_SNAME of a sid.
void loginName(SessionState& session, const Call& call)
{
    Statement query(session.connection(), "SELECT name FROM cat_login WHERE sid = ?1");
    const std::string_view sid = call.blob(0);
    query.bindBlob(1, sid.data(), sid.size());
    return query.step() ? call.result(query.text(0)) : null(call);
}

void loginSid(SessionState& session, const Call& call)
{
    const auto found = session.catalog().login(std::string(call.text(0)));
    return found ? call.resultBlob(found->sid) : null(call);
}

void loginId(SessionState& session, const Call& call)
{
    Statement query(session.connection(),
                    "SELECT rank FROM (SELECT fold, row_number() OVER (ORDER BY created, sid) AS "
                    "rank FROM cat_login) WHERE fold = ?1");
    query.bind(1, foldName(std::string(call.text(0))));
    return query.step() ? call.result(query.integer(0)) : null(call);
}

void isMember(SessionState& session, const Call& call)
{
    const std::string role(call.text(0));
    const int databaseId = session.database()->id;
    const auto principal = session.catalog().principal(databaseId, role);
    if (!principal || !principal->role)
        return null(call);
    const bool everyone = sameName(role, "public");
    call.result(everyone || session.catalog().isMember(databaseId, role, session.user().id) ? 1 : 0);
}

void isServerRole(SessionState& session, const Call& call)
{
    const unsigned role = serverRoleByName(std::string(call.text(0)));
    const auto login = call.count() > 1 ? session.catalog().login(std::string(call.text(1)))
                                        : std::optional(session.login());
    if (role == 0 || !login)
        return null(call);
    call.result((login->serverRoles & role) != 0 ? 1 : 0);
}

void hasAccess(SessionState& session, const Call& call)
{
    const DatabasePtr found = session.catalog().database(std::string(call.text(0)));
    if (!found)
        return null(call);
    call.result(session.catalog().userOf(found->id, session.login()) ? 1 : 0);
}

void schemaName(SessionState& session, const Call& call)
{
    userName(session, call);
}
void schemaId(SessionState& session, const Call& call)
{
    userId(session, call);
}

/// The statement permissions of the current user, or those on an object: all for an owner.
void permissions(SessionState& session, const Call& call)
{
    constexpr int allStatements = 0x1FE;
    constexpr int allOnObject = 0x1F;
    const bool owner = session.user().id == 1;
    call.result(owner ? (call.count() == 0 ? allStatements : allOnObject) : 0);
}

} // namespace

void registerPrincipalFunctions(SessionState& session)
{
    defineSessionFunction(session, "s_user_name", 1, userName);
    defineSessionFunction(session, "s_user_id", 1, userId);
    defineSessionFunction(session, "s_suser_name", 1, loginName);
    defineSessionFunction(session, "s_suser_sid", -1, loginSid);
    defineSessionFunction(session, "s_suser_id", 1, loginId);
    defineSessionFunction(session, "s_is_member", 1, isMember);
    defineSessionFunction(session, "s_is_srvrolemember", -1, isServerRole);
    defineSessionFunction(session, "s_has_dbaccess", 1, hasAccess);
    defineSessionFunction(session, "s_schema_name", 1, schemaName);
    defineSessionFunction(session, "s_schema_id", 1, schemaId);
    defineSessionFunction(session, "s_permissions", -1, permissions, Nulls::Handle);
}

} // namespace practice
