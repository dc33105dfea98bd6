// The observer of all texts that are sent.
#pragma once

#include <QString>
#include <functional>

namespace ado {

using StatementObserver = std::function<void(const QString&)>;

/// Installs an observer that is told every text just before it is sent, exactly as it is sent, by
/// Connection::Execute, Recordset::Open or Command::Execute; a refused or failing statement is told too.
/// BeginTrans, CommitTrans and RollbackTrans tell "BEGIN TRANSACTION", "COMMIT TRANSACTION" and
/// "ROLLBACK TRANSACTION". One observer for the process, called in the thread that sends; an empty
/// function removes it. Returns the one that was installed before.
StatementObserver setStatementObserver(StatementObserver observer);

} // namespace ado
