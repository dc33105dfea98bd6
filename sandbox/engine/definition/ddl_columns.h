// Columns as CREATE TABLE and ALTER TABLE define them.
#pragma once

#include "engine/context/session_context.h"
#include "tsql/ast.h"

#include <string>
#include <vector>

namespace practice {

/// Of the table that a column is meant for, as far as a column's definition depends on it.
struct ColumnSetting
{
    SessionContext& session;
    const Database& database;
    std::string table; ///< as messages call it
};

/// The column without its constraints. `id` also is its ordinal in messages. A key column is NOT NULL
/// unless it says otherwise.
/// @throws SqlError 2715 and other faults of types, 2749, 8147, 2761, 448, 447
[[nodiscard]] Column defineColumn(const ColumnSetting& setting, const ast::ColumnDefinition& definition,
                                  int id, bool inPrimaryKey);

/// A computed column over the table as it stands.
/// @throws SqlError 207, 1759 ...
[[nodiscard]] Column defineComputedColumn(const ColumnSetting& setting, const Object& table,
                                          const ast::ColumnDefinition& definition, int id);

/// Refuses what columns can't be together: 2705, 2744, 2738, 8196, 1702, 1701.
void requireCompatible(const std::string& table, const std::vector<Column>& columns);

/// The table as it would be without a column, and without the computed columns that need it. What can't
/// be bound against that names the column.
[[nodiscard]] Object tableWithout(SessionContext& session, const Object& table, int columnId);

/// Whether a column that does not say so allows NULL.
[[nodiscard]] bool nullableByDefault(SessionContext& session, const Database& database);

} // namespace practice
