// The driver's own functions, past the driver manager: it keeps back the results behind an error, and finds a
// diagnostic record by walking to it from the first.
#pragma once

#include "platform/ado/Odbc.h"

namespace ado {

/// Belongs to a connection. Without the functions, which a driver need not offer, it does nothing.
class DriverLibrary
{
public:
    DriverLibrary() = default;
    /// `connection` is connected, and stays so as long as this is used.
    explicit DriverLibrary(SQLHDBC connection);

    /// SQLMoreResults; SQL_NO_DATA without it.
    SQLRETURN moreResults(SQLHSTMT statement) const;
    /// SQLGetDiagRecW of the driver's own handle of a statement; SQL_NO_DATA without it. `length` and the
    /// room that the texts have count UTF-16 units.
    SQLRETURN diagnostic(SQLHSTMT own, SQLSMALLINT index, QString& state, SQLINTEGER& native, QString& text,
                         SQLSMALLINT& length) const;

    /// The driver's handle behind the driver manager's; null when it can't be had.
    [[nodiscard]] SQLHSTMT own(SQLHSTMT statement) const;

private:
    using MoreResults = SQLRETURN (*)(SQLHSTMT);
    using GetDiagRec = SQLRETURN (*)(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLWCHAR*, SQLINTEGER*, SQLWCHAR*,
                                     SQLSMALLINT, SQLSMALLINT*);

    SQLHDBC m_connection = nullptr;
    MoreResults m_moreResults = nullptr;
    GetDiagRec m_getDiagRec = nullptr;
};

} // namespace ado
