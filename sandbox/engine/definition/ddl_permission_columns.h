// What GRANT, DENY and REVOKE record for single columns.
#pragma once

#include "engine/context/session_context.h"
#include "tsql/ast.h"

#include <set>

namespace practice {

/// A right that a principal is given, denied or rid of.
struct PermissionRecord
{
    int database;
    int object; ///< 0 for a statement
    int grantee;
    int grantor;
    int action; ///< as sysprotects shows it
};

/// The columns that the statement names for one of its permissions, by their ids; none for the whole object.
/// @throws SqlError 1020 for a permission that columns can't have, 4615
[[nodiscard]] std::set<int> columnsOf(const ast::PermissionStatement& statement,
                                      const ast::PermissionItem& item, int action, const Object* object);

/// Changes what is recorded for the columns; what is recorded for the object stays.
void changeColumns(SessionContext& session, const ast::PermissionStatement& statement,
                   const PermissionRecord& record, const std::set<int>& columns);

/// What is said of the whole object takes the place of what was said of its columns.
void eraseColumns(SessionContext& session, const PermissionRecord& record);

} // namespace practice
