// The table that an INSERT, UPDATE, DELETE or TRUNCATE works on.
#pragma once

#include "engine/session/session_state.h"

namespace practice {

/// @throws SqlError 208, 259 (system tables), 4405 and its kin (views), 229 (not permitted)
[[nodiscard]] ObjectPtr changeTarget(SessionState& session, Translator& translator,
                                     const ast::TableSource& target, const char* action);

/// True when SET IDENTITY_INSERT is on for the table.
[[nodiscard]] bool acceptsIdentity(SessionState& session, const Object& table);
/// The form in which SessionOptions::identityInsert keeps a table.
[[nodiscard]] std::string identityInsertKey(const Object& table);

} // namespace practice
