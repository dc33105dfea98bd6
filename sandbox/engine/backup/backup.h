// BACKUP and RESTORE.
#pragma once

#include "engine/backup/backup_options.h"

namespace practice {

/// No transaction is open; other sessions go on while it runs.
void executeBackup(SessionContext& session, const ast::BackupStatement& statement, const TextOf& textOf);
/// The same. Of VERIFYONLY, HEADERONLY and their like, too.
void executeRestore(SessionContext& session, const ast::RestoreStatement& statement, const TextOf& textOf);

} // namespace practice
