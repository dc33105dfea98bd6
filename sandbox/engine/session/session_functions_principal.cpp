// Functions that tell of logins, users and roles.
#include "engine/context/object_rights.h"
#include "engine/context/permissions.h"
#include "engine/context/security_principals.h"
#include "engine/messages/errors.h"
#include "engine/session/session_functions.h"

#include <array>

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

struct StatementBit
{
    const char* statement;
    std::int64_t bit;
};

constexpr std::array statementBits = {
    StatementBit{"CREATE DATABASE", 0x1},  StatementBit{"CREATE TABLE", 0x2},
    StatementBit{"CREATE PROCEDURE", 0x4}, StatementBit{"CREATE VIEW", 0x8},
    StatementBit{"CREATE RULE", 0x10},     StatementBit{"CREATE DEFAULT", 0x20},
    StatementBit{"BACKUP DATABASE", 0x40}, StatementBit{"BACKUP LOG", 0x80},
};

struct RightBits
{
    Right right;
    std::int64_t all; ///< had on the whole object, or on the column that was asked about
    std::int64_t any; ///< had on some column
};

constexpr std::array rightBits = {
    RightBits{Right::Select, 0x1, 0x1000},     RightBits{Right::Update, 0x2, 0x2000},
    RightBits{Right::References, 0x4, 0x4000}, RightBits{Right::Insert, 0x8, 0},
    RightBits{Right::Delete, 0x10, 0},         RightBits{Right::Execute, 0x20, 0},
};

std::int64_t statementPermissions(SessionState& session)
{
    const DatabasePtr database = session.database();
    std::int64_t bits = 0;
    for (const StatementBit& known : statementBits) {
        const bool ofMaster = known.bit == 0x1 && database->id != masterId;
        if (!ofMaster && mayRun(session, *database, known.statement))
            bits |= known.bit;
    }
    return bits;
}

/// @param column of the object; nullptr for all of them
std::int64_t objectPermissions(SessionState& session, const ObjectPtr& object, const Column* column)
{
    const bool procedure = object->kind == ObjectKind::Procedure;
    std::int64_t bits = 0;
    for (const RightBits& known : rightBits) {
        const bool fits = procedure == (known.right == Right::Execute) &&
                          (column == nullptr || appliesToColumns(known.right));
        if (!fits)
            continue;
        RightNeed need{object, known.right, {}};
        if (column == nullptr && known.any != 0 && hasRight(session, need))
            bits |= known.any;
        for (const Column& each : object->columns) {
            if (appliesToColumns(known.right) && (column == nullptr || column->id == each.id))
                need.columns.insert(each.id);
        }
        if (hasRight(session, need))
            bits |= known.all;
    }
    return bits;
}

// permissions(id, column)
void permissions(SessionState& session, const Call& call)
{
    if (call.count() == 0)
        return call.result(statementPermissions(session));
    const ObjectPtr object =
        session.catalog().object(session.database()->id, static_cast<int>(call.integer(0)));
    const Column* column = object && call.count() > 1 ? object->column(std::string(call.text(1))) : nullptr;
    if (!object || (call.count() > 1 && column == nullptr))
        return null(call);
    call.result(objectPermissions(session, object, column));
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
