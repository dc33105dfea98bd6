// Functions that the catalog's SELECTs use inside SQLite.
#pragma once

#include <string>
#include <string_view>

struct sqlite3;

namespace practice {

/// - practice_rows(dbid, id): rows of a user table, 0 for anything else;
/// - practice_utf16(text): its bytes in UTF-16LE;
/// - practice_messages(): the catalogue of messages, a JSON array of [number, severity, text];
/// - practice_sessions(): the sessions of the server, a JSON array of objects with spid, dbid, login,
///   host, program, status, command, login_time, last_batch (datetime in storage form) and
///   transactions. Empty until the server registers its own function of that name.
void registerCatalogFunctions(sqlite3* connection);

/// In double quotes, as JSON writes a string.
[[nodiscard]] std::string jsonText(std::string_view text);

} // namespace practice
