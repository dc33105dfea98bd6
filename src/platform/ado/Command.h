// A text that is run by bare name, as a stored procedure is.
#pragma once

#include "platform/ado/Recordset.h"
#include <QString>

namespace ado {

class Connection;

/// A text to run on a connection, sent as it is; a procedure's bare name runs the procedure.
class Command
{
public:
    /// The connection must outlive the command's use.
    void setActiveConnection(Connection& connection) { m_connection = &connection; }
    [[nodiscard]] Connection* ActiveConnection() const { return m_connection; }
    void setCommandText(const QString& text) { m_text = text; }
    [[nodiscard]] QString CommandText() const { return m_text; }

    /// The first result, as Recordset::Open gives it. Raises 3709 without a connection.
    [[nodiscard]] Recordset Execute() const;

private:
    Connection* m_connection = nullptr;
    QString m_text;
};

} // namespace ado
