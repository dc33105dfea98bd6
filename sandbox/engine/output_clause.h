// OUTPUT of INSERT, UPDATE and DELETE: the rows as they were or became.
#pragma once

#include "engine/session_state.h"

namespace practice {

enum class OutputOf : std::uint8_t { Inserted, Deleted, Updated };

/// A query over the changed table, run row by row.
struct OutputPlan
{
    std::string sql; ///< SELECT ... FROM the table, without WHERE
    std::string handle;
    std::vector<ParameterSlot> slots;
    std::vector<QueryColumn> columns;
    const ast::OutputClause* clause = nullptr;
};

[[nodiscard]] OutputPlan bindOutput(SessionState& session, const ast::OutputClause& clause, const ObjectPtr& table,
                                    OutputOf kind);
/// The rows behind a place in the table.
[[nodiscard]] std::vector<std::vector<Value>> insertedOutput(SessionState& session, const OutputPlan& plan,
                                                             std::int64_t firstRow);
/// One row by its place.
[[nodiscard]] std::vector<Value> rowOutput(SessionState& session, const OutputPlan& plan, std::int64_t row);
/// Sends the rows to the client, or into the table that INTO names.
void deliverOutput(SessionState& session, const OutputPlan& plan, const std::vector<std::vector<Value>>& rows);

} // namespace practice
