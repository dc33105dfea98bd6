// The rows of the catalog that are the same on every server: types, the values of spt_values, and
// the system tables' own entries.
#pragma once

struct sqlite3;

namespace practice {

/// Replaces what an earlier revision of the program wrote.
void insertStaticRows(sqlite3* connection);

} // namespace practice
