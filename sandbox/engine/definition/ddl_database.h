// What statements on whole databases share with the procedures for them.
#pragma once

#include "engine/context/session_context.h"

#include <string>

namespace practice {

/// @throws SqlError 226
void requireNoTransaction(SessionContext& session, const char* statement);

/// The least id that no database has.
[[nodiscard]] int freeDatabaseId(SessionContext& session);

/// True while any session works in the database.
[[nodiscard]] bool isInUse(SessionContext& session, int databaseId);
[[nodiscard]] bool isInUseByOthers(SessionContext& session, int databaseId);

/// @throws SqlError 5030 while others use it, 1801, 5016
void renameDatabase(SessionContext& session, const Database& database, const std::string& name);

void setDatabaseOption(SessionContext& session, const Database& database, DatabaseOption option, bool on);
void setRecovery(SessionContext& session, const Database& database, RecoveryModel model);
/// @throws SqlError 5070 when others are in the way
void setUserAccess(SessionContext& session, const Database& database, UserAccess access, bool othersMayGo);

} // namespace practice
