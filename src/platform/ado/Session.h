#pragma once

#include "platform/ado/ConnectionString.h"
#include "platform/ado/Driver.h"
#include "platform/ado/Odbc.h"
#include "platform/ado/Sockets.h"
#include "platform/ado/Watchdog.h"
#include <chrono>
#include <memory>

namespace ado {

class Batch;

/// One connection with a server, for as long as it lives. One batch at a time has results to read; a new
/// one first brings the old to its end.
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

    /// A new batch, after an earlier one has come to its end.
    std::shared_ptr<Batch> newBatch();

    /// The time that each statement gets; 0 for any.
    void setStatementTimeout(std::chrono::seconds timeout) { m_statementTimeout = timeout; }

    // For batches.
    [[nodiscard]] odbc::Statement newStatement() const;
    [[nodiscard]] Driver::Family family() const { return m_driver.family; }
    [[nodiscard]] Watchdog& watchdog() { return m_watchdog; }
    /// Limits what is done on the statement from now on.
    [[nodiscard]] Watchdog::Limit limit(const odbc::Statement& statement);
    /// The driver's own SQLMoreResults on the statement, past the driver manager.
    SQLRETURN driverMoreResults(const odbc::Statement& statement) const;

private:
    using MoreResults = SQLRETURN (*)(SQLHSTMT);

    void connect(const QString& text, const QString& server, std::chrono::seconds timeout);
    [[nodiscard]] MoreResults findMoreResults() const;

    std::shared_ptr<odbc::Environment> m_environment;
    Driver m_driver;
    odbc::Dbc m_dbc;
    SocketTracker m_sockets;
    Watchdog m_watchdog;
    MoreResults m_moreResults = nullptr;
    std::chrono::seconds m_statementTimeout{0};
    std::shared_ptr<Batch> m_current;
};

} // namespace ado
