// What the session's user may do: with rows and procedures, with what others own, with the server.
#pragma once

#include "engine/context/session_context.h"

namespace practice {

/// @throws SqlError 927, 942 for a database that is being restored or is offline
void requireOnline(const Database& database);
/// @throws SqlError 3906 besides, for one that is read-only
void requireWritable(const Database& database);

/// @param action "SELECT", "INSERT", "UPDATE", "DELETE", "EXECUTE"
/// @throws SqlError 229
void requirePermission(SessionContext& session, const Object& object, const char* action);

/// @param statement "CREATE TABLE", "BACKUP LOG" ...
/// @throws SqlError 262
void requireStatementPermission(SessionContext& session, const Database& database, const char* statement);

/// True when the session's user may change what belongs to `ownerId` in the database.
[[nodiscard]] bool mayChange(SessionContext& session, int databaseId, int ownerId);
/// db_owner of that database, or sysadmin.
[[nodiscard]] bool isDatabaseOwner(SessionContext& session, int databaseId);
[[nodiscard]] bool hasServerRole(SessionContext& session, unsigned roles);

} // namespace practice
