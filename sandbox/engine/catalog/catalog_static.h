// The rows of the catalog that are the same on every server: types, the values of spt_values, and
// the system tables' own entries.
#pragma once

#include <string>
#include <vector>

struct sqlite3;

namespace practice {

/// Replaces what an earlier revision of the program wrote.
/// @param procedures names of the system procedures
void insertStaticRows(sqlite3* connection, const std::vector<std::string>& procedures);

} // namespace practice
