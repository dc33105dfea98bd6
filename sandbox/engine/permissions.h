// What a user may do with an object's rows or with a procedure.
#pragma once

#include "engine/session_context.h"

namespace practice {

/// @param action "SELECT", "INSERT", "UPDATE", "DELETE", "EXECUTE"
/// @throws SqlError 229
void requirePermission(SessionContext& session, const Object& object, const char* action);

} // namespace practice
