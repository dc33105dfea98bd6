// GRANT, DENY, REVOKE, and the definition of principals.
#include "engine/catalog/catalog_writer.h"
#include "engine/context/object_rights.h"
#include "engine/context/permissions.h"
#include "engine/context/security_principals.h"
#include "engine/definition/ddl.h"
#include "engine/definition/ddl_names.h"
#include "engine/definition/ddl_permission_columns.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <array>

namespace practice {
namespace {

constexpr int grantWithOption = 204;
constexpr int granted = 205;
constexpr int denied = 206;
constexpr int createDatabaseAction = 203;

enum class GrantScope : std::uint8_t
{
    Table,
    Procedure,
    Object, ///< either of them
    Statement
};

struct Permission
{
    const char* name;
    int action;
    GrantScope scope;
};

constexpr std::array permissions{
    Permission{"SELECT", 193, GrantScope::Table},
    Permission{"INSERT", 195, GrantScope::Table},
    Permission{"DELETE", 196, GrantScope::Table},
    Permission{"UPDATE", 197, GrantScope::Table},
    Permission{"REFERENCES", 26, GrantScope::Table},
    Permission{"EXECUTE", 224, GrantScope::Procedure},
    Permission{"EXEC", 224, GrantScope::Procedure},
    Permission{"ALTER", static_cast<int>(Right::Alter), GrantScope::Object},
    Permission{"CONTROL", static_cast<int>(Right::Control), GrantScope::Object},
    Permission{"VIEW DEFINITION", static_cast<int>(Right::ViewDefinition), GrantScope::Object},
    Permission{"CREATE TABLE", 198, GrantScope::Statement},
    Permission{"CREATE DATABASE", createDatabaseAction, GrantScope::Statement},
    Permission{"CREATE VIEW", 207, GrantScope::Statement},
    Permission{"CREATE PROCEDURE", 222, GrantScope::Statement},
    Permission{"CREATE PROC", 222, GrantScope::Statement},
    Permission{"CREATE FUNCTION", 178, GrantScope::Statement},
    Permission{"CREATE DEFAULT", 233, GrantScope::Statement},
    Permission{"CREATE RULE", 236, GrantScope::Statement},
    Permission{"BACKUP DATABASE", 228, GrantScope::Statement},
    Permission{"BACKUP LOG", 235, GrantScope::Statement},
};

GrantScope scopeOf(const Object* object)
{
    if (object == nullptr)
        return GrantScope::Statement;
    const bool program = object->kind == ObjectKind::Procedure ||
                         object->kind == ObjectKind::ScalarFunction ||
                         object->kind == ObjectKind::ExtendedProcedure;
    return program ? GrantScope::Procedure : GrantScope::Table;
}

/// One of the rights that the statement names.
struct NamedRight
{
    int action = 0;
    std::set<int> columns{}; ///< none for the whole object
};

std::vector<NamedRight> allRights(GrantScope scope, int databaseId)
{
    std::vector<NamedRight> rights;
    for (const Permission& permission : permissions) {
        const bool elsewhere = permission.action == createDatabaseAction && databaseId != masterId;
        if (permission.scope == scope && !elsewhere &&
            std::ranges::find(rights, permission.action, &NamedRight::action) == rights.end())
            rights.push_back({permission.action});
    }
    return rights;
}

std::vector<NamedRight> rightsOf(const ast::PermissionStatement& statement, const Object* object,
                                 int databaseId)
{
    const GrantScope scope = scopeOf(object);
    std::vector<NamedRight> rights;
    for (const ast::PermissionItem& item : statement.permissions) {
        if (item.name == "ALL" || item.name == "ALL PRIVILEGES")
            return allRights(scope, databaseId);
        const auto* known =
            std::find_if(permissions.begin(), permissions.end(),
                         [&](const Permission& permission) { return item.name == permission.name; });
        if (known == permissions.end())
            raise(165, {item.name});
        const bool ofAnyObject = known->scope == GrantScope::Object && object != nullptr;
        if (known->scope != scope && !ofAnyObject)
            raise(4606, {item.name});
        if (known->action == createDatabaseAction && databaseId != masterId)
            raise(4619);
        rights.push_back({known->action, columnsOf(statement, item, known->action, object)});
    }
    return rights;
}

ObjectPtr securableOf(SessionContext& session, const ast::PermissionStatement& statement)
{
    if (statement.securable.empty())
        return nullptr;
    const std::string& database = statement.securable.database;
    if (!database.empty() && !sameName(database, session.database()->name))
        raise(4610);
    ObjectPtr object = findNamed(session, statement.securable);
    if (!object)
        raise(15151, {"find", "object", plainName(statement.securable)});
    return object;
}

Principal granteeOf(SessionContext& session, const std::string& name)
{
    const auto principal = session.catalog().principal(session.database()->id, name);
    if (!principal)
        raise(15151, {"find", "user", name});
    if (isFixedRoleId(principal->id))
        raise(4617);
    if (principal->id == dboId || principal->id == informationSchemaId || principal->id == session.user().id)
        raise(4624);
    return *principal;
}

void requireMayGrant(SessionContext& session, const Object* object)
{
    const int database = session.database()->id;
    const bool owns = object != nullptr && object->ownerId == session.user().id;
    if (!owns && !isDatabaseOwner(session, database) &&
        !session.catalog().isMember(database, "db_securityadmin", session.user().id))
        raise(4613);
}

void erase(SessionContext& session, const PermissionRecord& record)
{
    Statement row(session.connection(),
                  "DELETE FROM cat_permission WHERE dbid = ? AND id = ? AND uid = ? AND action = ?");
    row.bind(1, record.database).bind(2, record.object).bind(3, record.grantee).bind(4, record.action).run();
}

void write(SessionContext& session, const PermissionRecord& record, int protection)
{
    Statement row(session.connection(),
                  "INSERT INTO cat_permission(dbid, id, uid, action, protecttype, grantor) "
                  "VALUES(?, ?, ?, ?, ?, ?)");
    row.bind(1, record.database).bind(2, record.object).bind(3, record.grantee).bind(4, record.action);
    row.bind(5, protection).bind(6, record.grantor).run();
}

void change(SessionContext& session, const ast::PermissionStatement& statement,
            const PermissionRecord& record, const std::set<int>& columns)
{
    if (!columns.empty())
        return changeColumns(session, statement, record, columns);
    erase(session, record);
    eraseColumns(session, record);
    switch (statement.action) {
    case ast::PermissionAction::Grant:
        return write(session, record, statement.withGrantOption ? grantWithOption : granted);
    case ast::PermissionAction::Deny:
        return write(session, record, denied);
    case ast::PermissionAction::Revoke:
        if (statement.grantOptionFor)
            write(session, record, granted);
        return;
    }
}

std::string optionText(const std::vector<ast::NamedOption>& options, const char* name)
{
    for (const ast::NamedOption& option : options) {
        if (option.name != name || option.values.empty())
            continue;
        if (const auto* literal = ast::tryAs<ast::Literal>(option.values.front().get()))
            return literal->text;
    }
    return "";
}

/// The statements say 15151 where the procedures have words of their own.
void requireExisting(bool exists, const char* verb, const char* what, const std::string& name)
{
    if (!exists)
        raise(15151, {verb, what, name});
}

} // namespace

void changePermission(SessionContext& session, const ast::PermissionStatement& statement)
{
    const int database = session.database()->id;
    const ObjectPtr object = securableOf(session, statement);
    const std::vector<NamedRight> rights = rightsOf(statement, object.get(), database);
    requireMayGrant(session, object.get());
    for (const std::string& name : statement.principals) {
        PermissionRecord record{database, object ? object->id : 0, granteeOf(session, name).id,
                                object ? object->ownerId : dboId, 0};
        for (const NamedRight& right : rights) {
            record.action = right.action;
            change(session, statement, record, right.columns);
        }
    }
    bumpCatalogVersion(session.connection());
}

void createLogin(SessionContext& session, const ast::CreateLoginStatement& statement)
{
    if (statement.windows)
        raise(15401, {statement.name});
    LoginDefinition login;
    login.name = statement.name;
    login.password = statement.password;
    if (const std::string database = optionText(statement.options, "DEFAULT_DATABASE"); !database.empty())
        login.database = database;
    if (const std::string language = optionText(statement.options, "DEFAULT_LANGUAGE"); !language.empty())
        login.language = language;
    addLogin(session, login);
}

void alterLogin(SessionContext& session, const ast::AlterLoginStatement& statement)
{
    requireExisting(session.catalog().login(statement.name).has_value(), "alter", "login", statement.name);
    if (statement.hasPassword)
        setPassword(session, statement.oldPassword, statement.password, statement.name);
    if (statement.enable)
        setLoginDenied(session, statement.name, !*statement.enable);
    if (const std::string database = optionText(statement.options, "DEFAULT_DATABASE"); !database.empty())
        setDefaultDatabase(session, statement.name, database);
    if (const std::string language = optionText(statement.options, "DEFAULT_LANGUAGE"); !language.empty())
        setDefaultLanguage(session, statement.name, language);
}

void createUser(SessionContext& session, const ast::CreateUserStatement& statement)
{
    if (statement.withoutLogin)
        return addLooseUser(session, statement.name);
    addUser(session, statement.login.empty() ? statement.name : statement.login, statement.name);
}

void alterUser(SessionContext& session, const ast::AlterUserStatement& statement)
{
    const auto user = session.catalog().principal(session.database()->id, statement.name);
    requireExisting(user.has_value(), "alter", "user", statement.name);
    if (const std::string name = optionText(statement.options, "NAME"); !name.empty())
        renameUser(session, statement.name, name);
}

void createRole(SessionContext& session, const ast::CreateRoleStatement& statement)
{
    addRole(session, statement.name, statement.owner);
}

void alterRole(SessionContext& session, const ast::AlterRoleStatement& statement)
{
    const bool adds = statement.action == ast::AlterRoleAction::AddMember;
    if (statement.server)
        return setServerRole(session, statement.name, statement.operand, adds);
    const auto role = session.catalog().principal(session.database()->id, statement.name);
    requireExisting(role && role->role, "alter", "role", statement.name);
    if (statement.action == ast::AlterRoleAction::Rename)
        return renameUser(session, statement.name, statement.operand);
    if (adds)
        addRoleMember(session, statement.name, statement.operand);
    else
        dropRoleMember(session, statement.name, statement.operand);
}

void dropPrincipal(SessionContext& session, const ast::DropStatement& statement)
{
    Catalog& catalog = session.catalog();
    for (const ast::ObjectName& written : statement.names) {
        const std::string& name = written.object;
        const bool login = statement.dropKind == ast::DropKind::Login;
        const bool role = statement.dropKind == ast::DropKind::Role;
        const auto principal = catalog.principal(session.database()->id, name);
        const bool exists = login ? catalog.login(name).has_value() : principal && principal->role == role;
        if (!exists && statement.ifExists)
            continue;
        requireExisting(exists, "drop", login ? "login" : role ? "role" : "user", name);
        if (login)
            dropLogin(session, name);
        else if (role)
            dropRole(session, name);
        else
            dropUser(session, name);
    }
}

} // namespace practice
