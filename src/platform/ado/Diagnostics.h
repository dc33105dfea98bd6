// What driver and server report beside results, and the errors that it becomes.
#pragma once

#include "platform/ado/DriverLibrary.h"
#include "platform/ado/Odbc.h"
#include "platform/basic/RuntimeError.h"
#include <QString>
#include <QStringList>
#include <vector>

namespace ado {

/// One record of a handle's diagnostics, its text without the groups of driver manager and driver.
struct Diagnostic
{
    QString state; ///< five characters
    int native = 0;
    QString text;

    /// A message of the server beside errors: PRINT, severities up to 10.
    [[nodiscard]] bool isInformation() const;
    /// An error that the server reported, with its own number.
    [[nodiscard]] bool isServerError() const;
    /// The limit of a call or of connecting has passed.
    [[nodiscard]] bool isTimeOut() const;
    /// The connection is not usable any more.
    [[nodiscard]] bool isLost() const;
};

/// All records of a handle, in order. To be read before any other call on the handle.
std::vector<Diagnostic> readDiagnostics(SQLSMALLINT kind, SQLHANDLE handle);
/// The same of a statement, whose records can be many: from the driver itself, since the driver manager takes
/// time that grows with the square of their number; from the driver manager when the driver has none to tell.
std::vector<Diagnostic> readDiagnostics(SQLHSTMT statement, const DriverLibrary& library);

/// `text` without the groups that name the driver manager, the driver and its data source; a group that
/// belongs to the message itself stays.
QString withoutOriginGroups(const QString& text);

/// The messages among the records, without the notices of a changed database or language.
QStringList messages(const std::vector<Diagnostic>& records);

/// The error of a failed statement: the first that the server reported, else the client's own.
basic::RuntimeError statementError(const std::vector<Diagnostic>& records);

/// The error of a failed connect; `server` says where, as a message puts it.
basic::RuntimeError connectError(const std::vector<Diagnostic>& records, const QString& server);

/// The error of rows that came, but not all of them.
basic::RuntimeError damagedAnswer();

/// The errors of passed limits.
basic::RuntimeError statementTimeOut();
basic::RuntimeError connectTimeOut(const QString& server);

} // namespace ado
