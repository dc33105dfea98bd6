// One connection with a server.
#pragma once

#include "platform/ado/ConnectionString.h"
#include "platform/ado/Driver.h"
#include "platform/ado/DriverLibrary.h"
#include "platform/ado/DriverThread.h"
#include "platform/ado/Odbc.h"
#include "platform/ado/Sockets.h"
#include "platform/ado/Watchdog.h"
#include <chrono>
#include <memory>

namespace ado {

/// One connection with a server, for as long as it lives.
class Session
{
public:
    /// Connects. Raises what Connection::Open documents.
    Session(const ConnectionRequest& request, std::chrono::seconds timeout);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// False once the server has gone.
    [[nodiscard]] bool isAlive() const;

    /// The time that each statement gets; 0 for any.
    void setStatementTimeout(std::chrono::seconds timeout) { m_statementTimeout = timeout; }

    // For batches.
    [[nodiscard]] odbc::Statement newStatement() const;
    [[nodiscard]] Driver::Family family() const { return m_driver.family; }
    [[nodiscard]] const DriverLibrary& library() const { return m_library; }
    /// Whether stand-ins in a text are restored on its way to the wire.
    [[nodiscard]] bool restoresStandIns() const { return m_restoresStandIns; }
    [[nodiscard]] std::chrono::milliseconds statementTimeout() const { return m_statementTimeout; }
    [[nodiscard]] Watchdog& watchdog() { return m_watchdog; }
    /// Where calls that may take their time are made.
    [[nodiscard]] DriverThread& thread() { return m_thread; }
    /// Limits what is done on the statement from now on; 0 is no limit.
    [[nodiscard]] Watchdog::Limit limit(const odbc::Statement& statement, std::chrono::milliseconds duration);
    /// Limits what ends a statement or the session.
    [[nodiscard]] Watchdog::Limit closingLimit();

private:
    void connect(const QString& text, const QString& server, std::chrono::seconds timeout);

    std::shared_ptr<odbc::Environment> m_environment;
    Driver m_driver;
    odbc::Dbc m_dbc;
    SocketTracker m_sockets;
    DriverThread m_thread;
    Watchdog m_watchdog;
    DriverLibrary m_library;
    bool m_restoresStandIns = false;
    std::chrono::seconds m_statementTimeout{0};
};

} // namespace ado
