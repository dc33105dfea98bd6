#pragma once

#include "platform/ado/Driver.h"
#include "platform/ado/Odbc.h"
#include "platform/ado/Table.h"
#include "platform/ado/Watchdog.h"
#include <QStringList>

namespace ado {

/// Reads the rows of the result that a statement stands on, to their end. What the server says in
/// between is appended to `messages`. Raises the server's error when one cuts the rows short; the rows
/// before it are lost then.
Table fetchTable(SQLHSTMT statement, int columns, Driver::Family family, Watchdog& watchdog,
                 QStringList& messages);

} // namespace ado
