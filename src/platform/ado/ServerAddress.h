// Server addresses as people type them.
#pragma once

#include <QString>

namespace ado {

/// Where a server listens: by port, or by the name of its instance, which the server's machine resolves.
struct ServerAddress
{
    static constexpr int defaultPort = 1433;

    QString host;
    QString instance; ///< empty when a port is given or the default instance is meant
    int port = 0;     ///< 0 when not given

    /// For messages: "host, port 1433" or "host\instance".
    [[nodiscard]] QString description() const;

    bool operator==(const ServerAddress&) const = default;
};

/// Splits what a `Data Source` holds: `host`, `host\instance`, `host,port`, with `tcp:` before it or not;
/// an IPv6 address may stand in brackets; nothing, `.` and `(local)` are this machine. A port has
/// precedence over an instance. Raises 17 when the port is no port.
ServerAddress parseServerAddress(const QString& dataSource);

} // namespace ado
