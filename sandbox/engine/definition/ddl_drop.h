// Drops a table with all that hangs on it.
#pragma once

#include "engine/context/session_context.h"

namespace practice {

/// @throws SqlError 3726 while another table refers to it
void dropTable(SessionContext& session, const Object& table);

} // namespace practice
