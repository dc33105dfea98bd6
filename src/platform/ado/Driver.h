// The choice of the ODBC driver, and its connection string.
#pragma once

#include "platform/ado/ConnectionString.h"
#include "platform/ado/ServerAddress.h"
#include <QString>
#include <functional>
#include <vector>

namespace ado {

/// The ODBC driver that serves a connection.
struct Driver
{
    enum class Family
    {
        FreeTds,
        Microsoft
    };

    QString name; ///< as registered, or the path of the driver's library
    Family family = Family::FreeTds;
};

/// A driver that the driver manager knows; `library` may be empty or a name without a folder.
struct RegisteredDriver
{
    QString name;
    QString library;
};

/// Microsoft's newest driver when registered, else FreeTDS, registered or lying where distributions put
/// it. Registered drivers whose library is a path without a file do not count. `exists` tells whether a
/// file exists. Raises -2147467259, naming the package to install, when there is none.
Driver chooseDriver(const std::vector<RegisteredDriver>& registered,
                    const std::function<bool(const QString&)>& exists);

/// ODBC's connection string for the request.
QString odbcConnectionString(const Driver& driver, const ServerAddress& address,
                             const ConnectionRequest& request);

} // namespace ado
