// The table that an INSERT, UPDATE or DELETE works on.
#pragma once

#include "engine/session/session_state.h"

namespace practice {

/// The right to it is left to be noted by the caller, who knows the columns.
/// @throws SqlError 208, 259 (system tables); 4406 and its kin (views), 229 for one that is not permitted
[[nodiscard]] ObjectPtr changeTarget(SessionState& session, Translator& translator,
                                     const ast::TableSource& target, Right right);

/// True when SET IDENTITY_INSERT is on for the table.
[[nodiscard]] bool acceptsIdentity(SessionState& session, const Object& table);
/// The form in which SessionOptions::identityInsert keeps a table.
[[nodiscard]] std::string identityInsertKey(const Object& table);

} // namespace practice
