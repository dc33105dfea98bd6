#include "platform/ado/Batch.h"

#include "platform/ado/Fetch.h"
#include "platform/ado/Session.h"
#include "platform/ado/StatementText.h"
#include <optional>

using namespace Qt::StringLiterals;

namespace ado {

Batch::Batch(Session& session) : m_session(&session), m_statement(session.newStatement()) {}

std::shared_ptr<const Result> Batch::open(const QString& text)
{
    m_text = textForDriver(text, m_session->family());
    const auto limit = m_session->limit(m_statement);
    try {
        return readNext(true);
    } catch (const basic::RuntimeError&) {
        runToEnd();
        throw;
    }
}

Result Batch::execute(const QString& text)
{
    m_text = textForDriver(text, m_session->family());
    const auto limit = m_session->limit(m_statement);
    Result outcome;
    std::optional<basic::RuntimeError> firstError;
    while (m_stage != Stage::Ended && m_stage != Stage::Refused) {
        try {
            const auto result = readNext(false);
            if (result && result->affected >= 0)
                outcome.affected = result->affected;
        } catch (const basic::RuntimeError& error) {
            if (!firstError)
                firstError = error;
        }
    }
    runToEnd();
    if (firstError)
        throw *firstError;
    outcome.messages = m_messages;
    return outcome;
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
    const auto limit = m_session->limit(m_statement);
    return readNext(true);
}

void Batch::finish(bool keep)
{
    if (m_stage == Stage::Ended)
        return;
    const auto limit = m_session->limit(m_statement);
    if (!keep) {
        runToEnd();
        return;
    }
    while (m_stage != Stage::Ended) {
        try {
            if (auto result = readNext(true))
                m_kept.emplace_back(std::move(result));
        } catch (const basic::RuntimeError& error) {
            m_kept.emplace_back(error);
        }
    }
}

void Batch::detach()
{
    m_statement.reset();
    m_stage = Stage::Ended;
    m_session = nullptr;
}

/// To the end of the batch without its rows and errors.
void Batch::runToEnd()
{
    while (m_stage != Stage::Ended) {
        SQLRETURN outcome = SQL_ERROR;
        {
            const Watchdog::Call call(m_session->watchdog());
            outcome = m_stage == Stage::Refused ? m_session->driverMoreResults(m_statement)
                                                : SQLMoreResults(m_statement.get());
        }
        const bool isLast = outcome == SQL_NO_DATA || m_session->watchdog().expired() ||
                            (!SQL_SUCCEEDED(outcome) && !m_session->isAlive());
        if (isLast)
            end();
    }
}

/// Releases the statement. A statement that is not at its end is cancelled by that.
void Batch::end()
{
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
    const SQLRETURN outcome =
        SQLExecDirectW(m_statement.get(), odbc::wide(m_text), static_cast<SQLINTEGER>(m_text.size()));
    // For the driver manager a statement that begins with an error has not been executed, and it would
    // not ask the driver for the results behind.
    if (!SQL_SUCCEEDED(outcome) && outcome != SQL_NO_DATA)
        m_stage = Stage::Refused;
    return outcome;
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
            const auto records = readDiagnostics(SQL_HANDLE_STMT, m_statement.get());
            m_messages += messages(records);
            if (!SQL_SUCCEEDED(outcome) && outcome != SQL_NO_DATA)
                fail(records);
        }
        if (outcome == SQL_NO_DATA && !isFirst) {
            end();
            return nullptr;
        }
        if (auto result = describe(withRows))
            return result;
    }
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
    auto result = std::make_shared<Result>();
    if (columns == 0) {
        SQLRowCount(m_statement.get(), &count);
        if (count < 0)
            return nullptr;
        result->affected = count;
    } else if (withRows) {
        try {
            result->table = fetchTable(m_statement.get(), columns, m_session->family(), m_session->watchdog(),
                                       m_messages);
        } catch (const basic::RuntimeError&) {
            if (m_session->watchdog().expired() || !m_session->isAlive())
                end();
            throw;
        }
        checkComplete(result->table);
        result->affected = result->table.rowCount();
    }
    result->messages = m_messages;
    return result;
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
    if (!m_session->isAlive())
        end();
    throw damagedAnswer();
}

} // namespace ado
