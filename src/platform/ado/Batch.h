// A text that has been sent, and its results one after the other.
#pragma once

#include "platform/ado/Diagnostics.h"
#include "platform/ado/DriverEncoding.h"
#include "platform/ado/MessageList.h"
#include "platform/ado/Odbc.h"
#include "platform/ado/Table.h"
#include <QStringList>
#include <chrono>
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
    QStringList messages; ///< since the result before
    ResultShare share;
};

/// The session that it was sent on may end before; what was read or kept until then stays. The session's
/// limit holds for the sending and for the reading of all results together, not for what happens in between.
class Batch
{
public:
    explicit Batch(Session& session);

    /// Sends the text and reads its first result; null when it has none. Raises the error that stands
    /// before or in it; then the rest of the batch has run to its end, unread.
    std::shared_ptr<const Result> open(const QString& text);

    /// Sends the text and runs it to its end, without its rows. Raises the first error of its results.
    /// The result holds what the last counting statement counted, and all messages.
    std::shared_ptr<const Result> execute(const QString& text);

    /// The next result; null after the last. Raises the error that stands before or in it. Messages that
    /// stand before an error or behind the last result come as a result of their own.
    std::shared_ptr<const Result> next();

    /// Reads on to the end, keeping the results for next() or not, so that the session is free.
    void finish(bool keep);

    /// The session ends: what has not been read is lost.
    void detach();

    /// What the server said and no result took along: all of a batch that an error ended.
    QStringList takeMessages() { return m_messages.take(); }

private:
    class Turn;
    using Clock = std::chrono::steady_clock;
    using Item = std::variant<std::shared_ptr<const Result>, basic::RuntimeError>;
    enum class Stage
    {
        Unsent,
        Sent,
        Refused,
        Ended
    }; ///< Refused: sending itself returned an error

    void prepare(const QString& text);
    std::shared_ptr<const Result> executeAll();
    void readAll(bool keep);
    std::shared_ptr<const Result> readNext(bool withRows);
    std::shared_ptr<const Result> describe(bool withRows);
    void fill(Result& result, int columns);
    std::shared_ptr<const Result> messagesAlone();
    void checkComplete(const Table& table);
    SQLRETURN advance();
    [[nodiscard]] std::vector<Diagnostic> diagnostics() const;
    [[noreturn]] void fail(const std::vector<Diagnostic>& records);
    void requireTime();
    void runToEnd();
    void end();

    Session* m_session;
    odbc::Statement m_statement;
    EncodedText m_text;
    Stage m_stage = Stage::Unsent;
    bool m_isLimited;
    std::chrono::milliseconds m_left; ///< of the limit
    std::deque<Item> m_kept;
    MessageList m_messages;
};

} // namespace ado
