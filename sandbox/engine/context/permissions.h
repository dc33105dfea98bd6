// What the session's user may do: with statements, with what others own, with the server.
#pragma once

#include "engine/context/session_context.h"

namespace practice {

/// @throws SqlError 927, 942 for a database that is being restored or is offline
void requireOnline(const Database& database);
/// @throws SqlError 3906 besides, for one that is read-only
void requireWritable(const Database& database);

[[nodiscard]] bool mayRun(SessionContext& session, const Database& database, const char* statement);
/// @param statement "CREATE TABLE", "BACKUP LOG" ...
/// @throws SqlError 262; 916 where the login has no user
void requireStatementPermission(SessionContext& session, const Database& database, const char* statement);

/// True when the session's user may alter the object: its owner, db_owner, db_ddladmin, and who has ALTER
/// or CONTROL on it.
[[nodiscard]] bool mayChange(SessionContext& session, const Object& object);
/// The same for dropping it, for which ALTER is not enough.
[[nodiscard]] bool mayDrop(SessionContext& session, const Object& object);
/// True when he may make objects that will be the principal's.
[[nodiscard]] bool mayCreateFor(SessionContext& session, const Database& database, int ownerId);
/// db_owner of that database, or sysadmin.
[[nodiscard]] bool isDatabaseOwner(SessionContext& session, int databaseId);
[[nodiscard]] bool hasServerRole(SessionContext& session, unsigned roles);

} // namespace practice
