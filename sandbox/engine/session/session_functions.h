// How functions that ask a session are defined; one family of them a file.
#pragma once

#include "engine/functions/sql_functions.h"
#include "engine/session/session_state.h"

namespace practice {

using SessionBody = void (*)(SessionState&, const Call&);

/// Most answer NULL to NULL.
void defineSessionFunction(SessionState& session, const char* name, int arguments, SessionBody body,
                           Nulls nulls = Nulls::Propagate, Purity purity = Purity::Deterministic);

inline void null(const Call& call)
{
    sqlite3_result_null(call.context());
}

void registerObjectFunctions(SessionState& session);    ///< object_id, col_name, columnproperty ...
void registerDatabaseFunctions(SessionState& session);  ///< db_name, databasepropertyex, file_name ...
void registerPrincipalFunctions(SessionState& session); ///< user_name, is_member ...

} // namespace practice
