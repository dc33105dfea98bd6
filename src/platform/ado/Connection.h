// A session with a server.
#pragma once

#include <QString>
#include <QStringList>
#include <memory>

namespace ado {

class Batch;
class Session;

/// A session with a server. Assigning another closes the one that was there. Recordsets stay readable
/// without their connection; results of their batch that had not been read by then are gone.
///
/// Every failure is a basic::RuntimeError: the server's own number and message, or for faults of the
/// client side 17 (no server, name unknown, access refused by the network), -2147217871 (time-out),
/// -2147467259 (connection lost or unusable answer), 3704 to 3709 (closed, open already, no connection).
/// Used from one thread at a time.
class Connection
{
public:
    Connection();
    ~Connection();
    Connection(Connection&&) noexcept;
    Connection& operator=(Connection&&) noexcept;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Seconds that one text may run, counted over its sending and the reading of all its results; 0 is
    /// without limit. 30 at first. Takes effect with the next statement.
    void setCommandTimeout(int seconds);
    [[nodiscard]] int CommandTimeout() const;
    /// Seconds that connecting may take; 15 at first.
    void setConnectionTimeout(int seconds);
    [[nodiscard]] int ConnectionTimeout() const;

    /// Connects by an OLE DB connection string. `user` and `password`, when not empty, replace those of
    /// the string. `options` has no effect.
    void Open(const QString& text, const QString& user = {}, const QString& password = {}, int options = -1);

    /// 0 when closed, also after the server has gone; 1 when open.
    [[nodiscard]] int State() const;

    /// Closes, which undoes what stands in an open transaction. Closing a closed connection is no error.
    void Close();

    /// Runs a text to the end of its last result and drops the rows. The first error among its results
    /// is raised after the last. `affected` receives the rows that the last counting statement changed,
    /// -1 when none counted.
    void Execute(const QString& text, qint64* affected = nullptr, int options = -1);

    /// Transactions nest as the server nests them: a rollback undoes all levels.
    void BeginTrans();
    void CommitTrans();
    void RollbackTrans();

    /// What the server said beside errors (PRINT, low severities) during the last Execute, in order, or
    /// before and behind the error that ended the last statement.
    [[nodiscard]] QStringList Messages() const;

private:
    friend class Recordset;

    /// Raises 3709 without a session, -2147467259 when the server has gone.
    void requireSession() const;
    /// A new batch. One batch at a time has results to read, so an earlier one first comes to its end.
    std::shared_ptr<Batch> newBatch();
    /// After an error of a batch that has just been sent.
    void keepMessages(Batch& batch);

    std::unique_ptr<Session> m_session;
    std::shared_ptr<Batch> m_batch; ///< the last one
    QStringList m_messages;
    int m_commandTimeout = 30;
    int m_connectionTimeout = 15;
};

} // namespace ado
