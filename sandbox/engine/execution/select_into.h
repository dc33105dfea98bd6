// SELECT ... INTO: a table made after a query's columns and filled with its rows.
#pragma once

#include "engine/session/session_state.h"

namespace practice {

void selectInto(SessionState& session, QueryPlan& plan, const ast::ObjectName& target);

} // namespace practice
