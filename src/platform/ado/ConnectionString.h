// OLE DB connection strings.
#pragma once

#include <QString>
#include <optional>

namespace ado {

/// What an OLE DB connection string asks for.
struct ConnectionRequest
{
    QString dataSource;
    QString catalog;
    QString user;
    QString password;
    bool encrypt = false;       ///< encrypt everything, not the login alone
    std::optional<int> timeout; ///< seconds for connecting, when the string tells
};

/// Reads a connection string by the rules of OLE DB: `key=value` pairs between semicolons; keys without
/// case and known under several names, the last of which wins; blanks around keys and values dropped;
/// a value that begins with ' or " runs to its closing mate, a doubled one standing for itself; "==" in
/// a key standing for one "=". An unquoted semicolon thus ends a value, also inside a password.
/// Raises -2147217805 when the text has not that form. Unknown keys have no effect.
ConnectionRequest parseConnectionString(const QString& text);

} // namespace ado
