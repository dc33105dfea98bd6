#include "platform/ado/Batch.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/Fetch.h"
#include "platform/ado/Observer.h"
#include "platform/ado/Session.h"
#include "platform/ado/StatementText.h"
#include <optional>

using namespace Qt::StringLiterals;

namespace ado {

namespace {

// What a result holds beside its rows.
constexpr std::size_t bytesOfResult = 1024;
constexpr std::size_t bytesOfColumn = 512;

} // namespace

/// The time that is left runs while this lives.
class Batch::Turn
{
public:
    explicit Turn(Batch& batch)
        : m_batch(batch), m_begin(Clock::now()),
          m_limit(batch.m_session->limit(batch.m_statement, batch.m_left))
    {}
    ~Turn()
    {
        if (m_batch.m_isLimited)
            m_batch.m_left -= std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_begin);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    Batch& m_batch;
    Clock::time_point m_begin;
    Watchdog::Limit m_limit;
};

Batch::Batch(Session& session)
    : m_session(&session), m_statement(session.newStatement()),
      m_isLimited(session.statementTimeout().count() > 0), m_left(session.statementTimeout())
{}

void Batch::prepare(const QString& text)
{
    m_text = textForDriver(text, m_session->family(), m_session->restoresStandIns());
    observe(m_text.standIns.empty() ? m_text.text : text);
}

std::shared_ptr<const Result> Batch::open(const QString& text)
{
    prepare(text);
    return m_session->thread().run([this] {
        const Turn turn(*this);
        try {
            return readNext(true);
        } catch (const basic::RuntimeError&) {
            runToEnd();
            throw;
        }
    });
}

std::shared_ptr<const Result> Batch::execute(const QString& text)
{
    prepare(text);
    return m_session->thread().run([this] { return executeAll(); });
}

std::shared_ptr<const Result> Batch::executeAll()
{
    const Turn turn(*this);
    auto outcome = std::make_shared<Result>();
    MessageList said;
    std::optional<basic::RuntimeError> firstError;
    while (m_stage != Stage::Ended && m_stage != Stage::Refused) {
        try {
            const auto result = readNext(false);
            if (!result)
                break;
            if (result->affected >= 0)
                outcome->affected = result->affected;
            said.add(result->messages);
        } catch (const basic::RuntimeError& error) {
            if (!firstError)
                firstError = error;
            if (error.number() == number::ResultsTooLarge)
                end();
        }
    }
    runToEnd();
    outcome->messages = said.take() + m_messages.take();
    if (!firstError)
        return outcome;
    m_messages.putBack(outcome->messages);
    throw *firstError;
}

std::shared_ptr<const Result> Batch::next()
{
    if (!m_kept.empty()) {
        const Item item = std::move(m_kept.front());
        m_kept.pop_front();
        if (const auto* const error = std::get_if<basic::RuntimeError>(&item))
            throw *error;
        return std::get<std::shared_ptr<const Result>>(item);
    }
    if (m_stage == Stage::Ended)
        return nullptr;
    requireTime();
    return m_session->thread().run([this] {
        const Turn turn(*this);
        try {
            return readNext(true);
        } catch (const basic::RuntimeError& error) {
            if (m_messages.isEmpty())
                throw;
            m_kept.emplace_front(error);
            return messagesAlone();
        }
    });
}

void Batch::finish(bool keep)
{
    if (m_stage == Stage::Ended)
        return;
    if (m_isLimited && m_left.count() <= 0)
        return end();
    m_session->thread().run([this, keep] { readAll(keep); });
}

void Batch::readAll(bool keep)
{
    const Turn turn(*this);
    if (!keep) {
        runToEnd();
        return;
    }
    while (m_stage != Stage::Ended) {
        try {
            if (auto result = readNext(true))
                m_kept.emplace_back(std::move(result));
        } catch (const basic::RuntimeError& error) {
            if (!m_messages.isEmpty())
                m_kept.emplace_back(messagesAlone());
            m_kept.emplace_back(error);
        }
    }
}

void Batch::detach()
{
    m_session->thread().run([this] {
        const Watchdog::Limit closing = m_session->closingLimit();
        end();
    });
    m_session = nullptr;
}

/// To the end of the batch without its rows and errors; its messages are kept as long as there is room.
void Batch::runToEnd()
{
    bool keeps = true;
    while (m_stage != Stage::Ended) {
        SQLRETURN outcome = SQL_ERROR;
        {
            const Watchdog::Call call(m_session->watchdog());
            outcome = m_stage == Stage::Refused ? m_session->library().moreResults(m_statement.get())
                                                : SQLMoreResults(m_statement.get());
        }
        try {
            if (keeps && outcome != SQL_SUCCESS)
                m_messages.add(messages(diagnostics()));
        } catch (const basic::RuntimeError&) {
            keeps = false;
        }
        const bool isLast = outcome == SQL_NO_DATA || m_session->watchdog().expired() ||
                            (!SQL_SUCCEEDED(outcome) && !m_session->isAlive());
        if (isLast)
            end();
    }
}

/// Raises the time-out of a batch whose time has gone between its results.
void Batch::requireTime()
{
    if (!m_isLimited || m_left.count() > 0)
        return;
    end();
    throw statementTimeOut();
}

/// Releases the statement. A statement that is not at its end is cancelled by that.
void Batch::end()
{
    if (m_stage == Stage::Ended)
        return;
    const Watchdog::Call call(m_session->watchdog());
    m_statement.reset();
    m_stage = Stage::Ended;
}

SQLRETURN Batch::advance()
{
    const Watchdog::Call call(m_session->watchdog());
    if (m_stage != Stage::Unsent)
        return SQLMoreResults(m_statement.get());
    m_stage = Stage::Sent;
    const StandInsRestored restored(m_text.standIns);
    const SQLRETURN outcome = SQLExecDirectW(m_statement.get(), odbc::wide(m_text.text),
                                             static_cast<SQLINTEGER>(m_text.text.size()));
    // For the driver manager a statement that begins with an error has not been executed, and it would
    // not ask the driver for the results behind.
    if (!SQL_SUCCEEDED(outcome) && outcome != SQL_NO_DATA)
        m_stage = Stage::Refused;
    return outcome;
}

std::vector<Diagnostic> Batch::diagnostics() const
{
    return readDiagnostics(m_statement.get(), m_session->library());
}

std::shared_ptr<const Result> Batch::readNext(bool withRows)
{
    for (;;) {
        const bool isFirst = m_stage == Stage::Unsent;
        const SQLRETURN outcome = advance();
        if (m_session->watchdog().expired()) {
            end();
            throw statementTimeOut();
        }
        if (outcome != SQL_SUCCESS) {
            const auto records = diagnostics();
            try {
                m_messages.add(messages(records));
            } catch (const basic::RuntimeError&) {
                end();
                throw;
            }
            if (!SQL_SUCCEEDED(outcome) && outcome != SQL_NO_DATA)
                fail(records);
        }
        if (outcome == SQL_NO_DATA && !isFirst) {
            end();
            return m_messages.isEmpty() ? nullptr : messagesAlone();
        }
        if (auto result = describe(withRows))
            return result;
    }
}

std::shared_ptr<const Result> Batch::messagesAlone()
{
    auto result = std::make_shared<Result>();
    result->messages = m_messages.take();
    return result;
}

void Batch::fail(const std::vector<Diagnostic>& records)
{
    if (!m_session->isAlive())
        end();
    throw statementError(records);
}

/// The result that the statement stands on; null when it has neither columns nor a count, which is no
/// result to anyone.
std::shared_ptr<const Result> Batch::describe(bool withRows)
{
    SQLSMALLINT columns = 0;
    SQLLEN count = -1;
    SQLNumResultCols(m_statement.get(), &columns);
    if (columns == 0) {
        SQLRowCount(m_statement.get(), &count);
        if (count < 0)
            return nullptr;
    }
    auto result = std::make_shared<Result>();
    result->affected = count;
    try {
        result->share.grow(bytesOfResult);
        result->messages = m_messages.take(result->share);
        if (columns > 0 && withRows)
            fill(*result, columns);
    } catch (const basic::RuntimeError& error) {
        m_messages.putBack(result->messages);
        if (error.number() == number::ResultsTooLarge || m_session->watchdog().expired() ||
            !m_session->isAlive())
            end();
        throw;
    }
    return result;
}

void Batch::fill(Result& result, int columns)
{
    result.share.grow(static_cast<std::size_t>(columns) * bytesOfColumn);
    result.table = fetchTable(
        m_statement.get(), columns,
        {m_session->family(), m_session->library(), m_session->watchdog(), m_messages, result.share});
    checkComplete(result.table);
    result.affected = result.table.rowCount();
}

/// An answer that breaks off or is damaged can look to the driver like a shorter one. Unless the server
/// was told not to count, it says behind the rows how many there were.
void Batch::checkComplete(const Table& table)
{
    // FOR XML and FOR JSON: the rows that the server counts are those which it made the document of.
    constexpr auto documentName = "_F52E2B61-18A1-11d1-B105-00805F49916B"_L1;
    SQLLEN count = -1;
    SQLRowCount(m_statement.get(), &count);
    const bool isComplete = count < 0 ? m_session->isAlive() : table.rowCount() >= count;
    if (isComplete || table.columns().front().name.endsWith(documentName))
        return;
    throw damagedAnswer();
}

} // namespace ado
