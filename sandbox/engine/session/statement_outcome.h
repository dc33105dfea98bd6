// What the global variables tell of the statements that ran, and what the running one gives out.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

namespace practice {

/// The identity values that the running statement gives out.
struct IdentityCounter
{
    std::int64_t next = 1;
    std::int64_t increment = 1;
    std::optional<std::int64_t> last; ///< given out by this statement

    std::int64_t take()
    {
        last = next;
        next += increment;
        return *last;
    }
};

struct StatementOutcome
{
    int lastError = 0;
    std::int64_t lastRowCount = 0;
    std::optional<std::int64_t> lastIdentity;
    std::optional<std::int64_t> scopeIdentity;
    int fetchStatus = 0;
    int cursorRows = 0;

    int statementError = 0; ///< number of an error that the running statement told without failing
    IdentityCounter identityCounter;

    /// What @@ERROR is to tell of a statement that ended well: the number of its RAISERROR.
    int errorOfStatement() { return std::exchange(statementError, 0); }
    void setIdentity(std::int64_t given) { lastIdentity = scopeIdentity = given; }
};

} // namespace practice
