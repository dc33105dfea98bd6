// Where the files of a restored database go.
#pragma once

#include "engine/backup/backup_options.h"
#include "engine/backup/set_header.h"

namespace practice {

/// @param standing the present places by file id; empty for a database that is not there
/// @throws SqlError 3234; 1834, 5133 and 3156, 3176, with 3119 behind them
[[nodiscard]] std::map<int, std::string> placeFiles(SessionContext& session, sqlite3* connection,
                                                    int databaseId, const SetHeader& set,
                                                    const BackupOptions& options,
                                                    const std::map<int, std::string>& standing);

[[nodiscard]] std::map<int, std::string> standingFiles(sqlite3* connection, int databaseId);

/// Makes those that are not there. Whatever becomes of the transaction, the files follow it.
void makeFiles(SessionContext& session, Store& store, const SetHeader& set,
               const std::map<int, std::string>& standing, const std::map<int, std::string>& places);

} // namespace practice
