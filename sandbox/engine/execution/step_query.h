// Steps a planned query and hands its rows over, decoded.
#pragma once

#include "engine/session/session_state.h"

#include <vector>

namespace practice {

/// Makes a statement ready for its next run however the present one ends.
class ResetGuard
{
public:
    explicit ResetGuard(Statement& statement) : statement_(statement) {}
    ~ResetGuard() { statement_.reset(); }
    ResetGuard(const ResetGuard&) = delete;
    ResetGuard& operator=(const ResetGuard&) = delete;

private:
    Statement& statement_;
};

/// @param take called with the values of each row
/// @return the number of rows
template <typename Take>
std::uint64_t stepQuery(SessionState& session, QueryPlan& plan, Take take)
{
    sqlite3_stmt* handle = plan.statement.handle();
    session.bindSlots(handle, plan.slots);
    const ResetGuard guard(plan.statement);
    const auto limit = static_cast<std::uint64_t>(session.options().rowCount);
    std::vector<Value> values(plan.columns.size());
    std::uint64_t rows = 0;
    while ((limit == 0 || rows < limit) && plan.statement.step()) {
        for (std::size_t i = 0; i < values.size(); ++i)
            decodeColumn(handle, static_cast<int>(i), plan.columns[i].type, values[i]);
        take(values);
        ++rows;
    }
    return rows;
}

} // namespace practice
