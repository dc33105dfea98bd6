// Functions that the catalog's SELECTs use inside SQLite.
#pragma once

struct sqlite3;

namespace practice {

/// - practice_rows(dbid, id): rows of a user table, 0 for anything else;
/// - practice_utf16(text): its bytes in UTF-16LE.
void registerCatalogFunctions(sqlite3* connection);

} // namespace practice
