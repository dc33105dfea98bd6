// ALTER TABLE's work on single columns.
#pragma once

#include "engine/definition/ddl_constraints.h"

#include <string>
#include <vector>

namespace practice {

enum class DependentKind : std::uint8_t
{
    Key, ///< a primary key
    Unique,
    Index,
    Check,
    ForeignKey,
    Default,
    Computed
};

/// What uses a column and so holds it as it is.
struct Dependent
{
    DependentKind kind = DependentKind::Index;
    std::string name;
};

[[nodiscard]] std::vector<Dependent> dependentsOf(SessionContext& session, const Object& table,
                                                  const Column& column);

/// @param action "DROP COLUMN" or "ALTER COLUMN"
/// @throws SqlError 4922, after a 5074 for each dependent, when there are any
void requireNoDependents(SessionContext& session, const Column& column, const char* action,
                         const std::vector<Dependent>& dependents);

void alterColumn(const TableChange& change, const ast::AlterTableStatement& statement);

} // namespace practice
