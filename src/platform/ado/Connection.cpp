#include "platform/ado/Connection.h"

#include "platform/ado/Batch.h"
#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/Session.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"
#include <utility>

using namespace Qt::StringLiterals;

namespace ado {

Connection::Connection() = default;
Connection::~Connection()
{
    Close();
}

Connection::Connection(Connection&&) noexcept = default;

Connection& Connection::operator=(Connection&& other) noexcept
{
    if (this == &other)
        return *this;
    Close();
    m_session = std::move(other.m_session);
    m_batch = std::move(other.m_batch);
    m_messages = std::move(other.m_messages);
    m_commandTimeout = other.m_commandTimeout;
    m_connectionTimeout = other.m_connectionTimeout;
    return *this;
}

void Connection::setCommandTimeout(int seconds)
{
    if (seconds < 0)
        basic::raise(basic::error::InvalidCall);
    m_commandTimeout = seconds;
}

int Connection::CommandTimeout() const
{
    return m_commandTimeout;
}

void Connection::setConnectionTimeout(int seconds)
{
    if (seconds < 0)
        basic::raise(basic::error::InvalidCall);
    m_connectionTimeout = seconds;
}

int Connection::ConnectionTimeout() const
{
    return m_connectionTimeout;
}

void Connection::Open(const QString& text, const QString& user, const QString& password, int)
{
    if (State() != 0)
        basic::raise(basic::error::ObjectOpen);
    ConnectionRequest request = parseConnectionString(text);
    if (!user.isEmpty())
        request.user = user;
    if (!password.isEmpty())
        request.password = password;
    // Without a user the drivers try other ways to log in, and fail without saying why.
    if (request.user.isEmpty())
        basic::raise(number::LoginFailed,
                     basic::uiText("Error de inicio de sesión del usuario ''.", "Login failed for user ''."));
    Close();
    m_session = std::make_unique<Session>(
        request, std::chrono::seconds(request.timeout.value_or(m_connectionTimeout)));
}

int Connection::State() const
{
    return m_session && m_session->isAlive() ? 1 : 0;
}

void Connection::Close()
{
    if (m_batch && m_session) {
        m_batch->detach();
    }
    m_batch.reset();
    m_session.reset();
}

void Connection::requireSession() const
{
    if (State() == 0)
        basic::raise(m_session ? number::DriverFailure : basic::error::BadConnection,
                     m_session ? basic::uiText("Se ha perdido la conexión con el servidor. Conecte de nuevo.",
                                               "The connection with the server was lost. Connect again.")
                               : basic::standardDescription(basic::error::BadConnection));
}

std::shared_ptr<Batch> Connection::newBatch()
{
    requireSession();
    if (m_batch)
        m_batch->finish(m_batch.use_count() > 1);
    m_messages.clear();
    m_session->setStatementTimeout(std::chrono::seconds(m_commandTimeout));
    m_batch = std::make_shared<Batch>(*m_session);
    return m_batch;
}

void Connection::keepMessages(Batch& batch)
{
    m_messages = batch.takeMessages();
}

void Connection::Execute(const QString& text, qint64* affected, int)
{
    const auto batch = newBatch();
    try {
        const auto outcome = batch->execute(text);
        m_messages = outcome->messages;
        if (affected != nullptr)
            *affected = outcome->affected;
    } catch (const basic::RuntimeError&) {
        keepMessages(*batch);
        throw;
    }
}

void Connection::BeginTrans()
{
    Execute(u"BEGIN TRANSACTION"_s);
}

void Connection::CommitTrans()
{
    Execute(u"COMMIT TRANSACTION"_s);
}

void Connection::RollbackTrans()
{
    Execute(u"ROLLBACK TRANSACTION"_s);
}

QStringList Connection::Messages() const
{
    return m_messages;
}

} // namespace ado
