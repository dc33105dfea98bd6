// Logins, users and roles: what CREATE LOGIN and sp_addlogin, CREATE USER and sp_grantdbaccess, and
// their like do alike. Each checks that the session may, and raises what the procedures say.
#pragma once

#include "engine/context/session_context.h"

#include <optional>
#include <string>

namespace practice {

struct LoginDefinition
{
    std::string name;
    std::string password;
    std::string database = "master";
    std::string language = "us_english";
    std::string sid; ///< "" for a new one
};

/// @throws SqlError 15247, 15006, 15025, 15010, 15433
void addLogin(SessionContext& session, const LoginDefinition& login);
/// @throws SqlError 15247, 15007, 15405, 15174, 15175, 15434
void dropLogin(SessionContext& session, const std::string& name);
/// Changes a password. Whoever may change those of others needs no old one.
/// @throws SqlError 15247, 15007, 15211
void setPassword(SessionContext& session, const std::optional<std::string>& old, const std::string& password,
                 const std::string& login);
/// @throws SqlError 15247, 15007, 15010
void setDefaultDatabase(SessionContext& session, const std::string& login, const std::string& database);
void setDefaultLanguage(SessionContext& session, const std::string& login, const std::string& language);
void setLoginDenied(SessionContext& session, const std::string& login, bool denied);
/// @throws SqlError 15247, 15402, 15007, 15405
void setServerRole(SessionContext& session, const std::string& role, const std::string& login, bool member);

/// A user of the current database for a login; "guest" is switched on.
/// @throws SqlError 15247, 15007, 15023, 15063
void addUser(SessionContext& session, const std::string& login, const std::string& name);
/// A user that belongs to no login.
void addLooseUser(SessionContext& session, const std::string& name);
/// @throws SqlError 15247, 15008, 15181, 15182, 15183
void dropUser(SessionContext& session, const std::string& name);
/// @throws SqlError 15247, 15008, 15023
void renameUser(SessionContext& session, const std::string& name, const std::string& newName);

/// @throws SqlError 15247, 15023, 15410
void addRole(SessionContext& session, const std::string& name, const std::string& owner);
/// @throws SqlError 15247, 15014, 15405, 15144, 15183
void dropRole(SessionContext& session, const std::string& name);
/// @throws SqlError 15247, 15014, 15081, 15410, 15405, 15413
void addRoleMember(SessionContext& session, const std::string& role, const std::string& member);
void dropRoleMember(SessionContext& session, const std::string& role, const std::string& member);

/// The bit of a fixed server role, 0 for no such name.
[[nodiscard]] unsigned serverRoleByName(const std::string& name);

/// @throws SqlError 15007
Login requireLogin(SessionContext& session, const std::string& name);
/// @throws SqlError 15247 unless the session's login has one of the roles
void requireServerRole(SessionContext& session, unsigned roles);
/// @throws SqlError 15247 unless the user is db_owner of the current database or in `role`
void requireDatabaseRole(SessionContext& session, const char* role);

} // namespace practice
