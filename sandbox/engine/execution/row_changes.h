// Changes single rows of a stored table with all that hangs on them: constraints, and the foreign
// keys that point at the table.
#pragma once

#include "engine/execution/table_constraints.h"

#include <memory>
#include <string>
#include <vector>

#include <sqlite3.h>

namespace practice {

struct FreeValue
{
    void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
};
using HeldValue = std::unique_ptr<sqlite3_value, FreeValue>;

/// A row that is to change: its place and the new values of the changed columns.
struct RowChange
{
    std::int64_t row = 0;
    std::vector<HeldValue> values;
};

/// Deletes rows. What refers to them is refused, deleted or emptied as its constraint says.
/// @throws SqlError 547
void deleteRows(SessionState& session, const ObjectPtr& table, const std::vector<std::int64_t>& rows);

/// Sets `columns` in each row; uniqueness is judged after all of them.
/// @param statement as messages name it
/// @throws SqlError 547, 2601, 2627
void updateRows(SessionState& session, const ObjectPtr& table, const std::vector<int>& columns,
                const std::vector<RowChange>& changes, const std::string& statement);

} // namespace practice
