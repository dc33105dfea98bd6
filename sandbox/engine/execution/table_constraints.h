// The CHECK and FOREIGN KEY constraints of a table as one test in SQLite's dialect, and the wording
// of what breaks a constraint or a unique index.
#pragma once

#include "engine/session/session_state.h"

#include <string>
#include <vector>

namespace practice {

/// A test that tells which constraint a row breaks.
struct TableTest
{
    /// NULL for a sound row, else the place of the broken constraint; over the columns of `handle`.
    std::string sql;
    std::string handle;
    std::vector<ParameterSlot> slots;
    struct Constraint
    {
        const char* kind; ///< "CHECK", "FOREIGN KEY", "FOREIGN KEY SAME TABLE"
        std::string name;
        std::string database;
        std::string table;  ///< "dbo.t"
        std::string column; ///< "" when it is about several
    };
    std::vector<Constraint> constraints;

    [[nodiscard]] bool empty() const { return constraints.empty(); }
};

/// @param changed the columns that an UPDATE sets; nullptr when the whole row is new
[[nodiscard]] TableTest tableTest(SessionState& session, const ObjectPtr& table,
                                  const std::vector<int>* changed);

/// Raises 547.
/// @param statement "INSERT", "UPDATE", "DELETE", "MERGE"
[[noreturn]] void raiseBroken(const std::string& statement, const TableTest::Constraint& constraint);

[[nodiscard]] std::string fullName(SessionState& session, const Object& table);  ///< "db.dbo.t"
[[nodiscard]] std::string ownerName(SessionState& session, const Object& table); ///< "dbo.t"
[[nodiscard]] std::string databaseNameOf(SessionState& session, const Object& table);

/// The index that SQLite's message about a broken UNIQUE means; nullptr for none of the table's.
[[nodiscard]] const Index* violatedIndex(const Object& table, const std::string& storeMessage);
/// Raises 2627 or 2601.
/// @param values of the index's key columns
[[noreturn]] void raiseDuplicate(SessionState& session, const Object& table, const Index& index,
                                 const std::vector<Value>& values);

} // namespace practice
