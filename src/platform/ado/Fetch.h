// Reads the rows of a result, many a call.
#pragma once

#include "platform/ado/Driver.h"
#include "platform/ado/DriverLibrary.h"
#include "platform/ado/MessageList.h"
#include "platform/ado/Odbc.h"
#include "platform/ado/Table.h"
#include "platform/ado/Watchdog.h"

namespace ado {

/// What reading needs of the batch that it belongs to.
struct FetchContext
{
    Driver::Family family;
    const DriverLibrary& library;
    Watchdog& watchdog;
    MessageList& messages; ///< what the server says in between is added
    ResultShare& share;    ///< grows with the rows
};

/// Reads the rows of the result that a statement stands on, to their end. Raises the server's error when one
/// cuts the rows short, and -2147024882 when they grow too many; the rows before it are lost then.
Table fetchTable(SQLHSTMT statement, int columns, const FetchContext& context);

} // namespace ado
