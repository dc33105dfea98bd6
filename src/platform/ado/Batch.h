#pragma once

#include "platform/ado/Diagnostics.h"
#include "platform/ado/Odbc.h"
#include "platform/ado/Table.h"
#include <QStringList>
#include <deque>
#include <memory>
#include <variant>

namespace ado {

class Session;

/// One result of a batch.
struct Result
{
    Table table;          ///< without columns when the statement returned none
    qint64 affected = -1; ///< rows changed or returned; -1 when the statement did not count
    QStringList messages; ///< from the beginning of the batch up to this result
};

/// A text that has been sent, and its results one after the other. The session that it was sent on may
/// end before; what was read or kept until then stays.
class Batch
{
public:
    explicit Batch(Session& session);

    /// Sends the text and reads its first result; null when it has none. Raises the error that stands
    /// before or in it; then the rest of the batch has run to its end, unread.
    std::shared_ptr<const Result> open(const QString& text);

    /// Sends the text and runs it to its end, without its rows. Raises the first error of its results.
    /// The result holds what the last counting statement counted, and all messages.
    Result execute(const QString& text);

    /// The next result; null after the last. Raises the error that stands before or in it.
    std::shared_ptr<const Result> next();

    /// Reads on to the end, keeping the results for next() or not, so that the session is free.
    void finish(bool keep);

    /// The session ends: what has not been read is lost.
    void detach();

private:
    using Item = std::variant<std::shared_ptr<const Result>, basic::RuntimeError>;
    enum class Stage
    {
        Unsent,
        Sent,
        Refused,
        Ended
    }; ///< Refused: sending itself returned an error

    std::shared_ptr<const Result> readNext(bool withRows);
    std::shared_ptr<const Result> describe(bool withRows);
    void checkComplete(const Table& table);
    SQLRETURN advance();
    [[noreturn]] void fail(const std::vector<Diagnostic>& records);
    void runToEnd();
    void end();

    Session* m_session;
    odbc::Statement m_statement;
    QString m_text;
    Stage m_stage = Stage::Unsent;
    std::deque<Item> m_kept;
    QStringList m_messages;
};

} // namespace ado
