// OUTPUT of INSERT, UPDATE and DELETE: the rows as they were or became.
#pragma once

#include "engine/session/session_state.h"

namespace practice {

enum class OutputOf : std::uint8_t
{
    Inserted,
    Deleted,
    Updated
};

/// A query over the changed table, run row by row.
struct OutputPlan
{
    std::string sql; ///< SELECT ... FROM the table, without WHERE
    std::string handle;
    std::vector<ParameterSlot> slots;
    std::vector<QueryColumn> columns;
    const ast::OutputClause* clause = nullptr;
    /// Of an UPDATE: the row as it was comes as parameters from `firstOld` on, read by this query.
    std::string oldRowSql;
};

/// A row before an UPDATE, in the order of the table's stored columns.
using OldRow = std::vector<std::shared_ptr<sqlite3_value>>;

[[nodiscard]] OutputPlan bindOutput(SessionState& session, const ast::OutputClause& clause,
                                    const ObjectPtr& table, OutputOf kind);
/// The rows behind a place in the table.
[[nodiscard]] std::vector<std::vector<Value>> insertedOutput(SessionState& session, const OutputPlan& plan,
                                                             std::int64_t firstRow);
[[nodiscard]] OldRow readOldRow(SessionState& session, const OutputPlan& plan, std::int64_t row);
/// One row by its place.
[[nodiscard]] std::vector<Value> rowOutput(SessionState& session, const OutputPlan& plan, std::int64_t row,
                                           const OldRow& old = {});
/// Puts the rows into the table that INTO names; call it within the statement's transaction.
void storeOutput(SessionState& session, const OutputPlan& plan, const std::vector<std::vector<Value>>& rows);
/// Sends the rows to the client unless they went into a table.
void sendOutput(SessionState& session, const OutputPlan& plan, const std::vector<std::vector<Value>>& rows);

} // namespace practice
