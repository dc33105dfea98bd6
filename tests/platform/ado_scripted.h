// A server in this process that answers as each test tells it, over the practice server's wire.
#pragma once

#include "../sandbox/scripted_server.h"
#include "platform/ado/Connection.h"
#include "platform/basic/RuntimeError.h"
#include "tds/server.h"

#include <QString>
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace scripted {

using practice::ColumnInfo;
using practice::Completion;
using practice::Message;
using practice::ResultSink;
using practice::SqlType;
using practice::TypeId;
using practice::Value;

/// What a test's server does with a batch; `cancelled` becomes true when the client takes it back.
using Script =
    std::function<void(std::string_view text, ResultSink& sink, const std::atomic<bool>& cancelled)>;

inline SqlType integer()
{
    return {TypeId::Int, 4, 0, 0};
}

inline Value number(std::int64_t value)
{
    return {value, {}};
}

inline Value text(std::string value)
{
    return {std::move(value), {}};
}

inline void counted(ResultSink& sink, std::uint64_t rows)
{
    sink.done({Completion::Kind::Statement, rows, 0xC3});
}

inline void message(ResultSink& sink, int number, int severity, std::string what)
{
    Message said;
    said.number = number;
    said.severity = severity;
    said.text = std::move(what);
    sink.message(said);
}

inline void failed(ResultSink& sink, int number, std::string what)
{
    message(sink, number, 16, std::move(what));
    sink.done({Completion::Kind::Statement, {}, 0xC1, true});
}

/// A result of one int column "n" with `rows` rows, from 0.
inline void integers(ResultSink& sink, std::int64_t rows)
{
    const std::vector<ColumnInfo> columns{{"n", integer()}};
    sink.columns(columns);
    for (std::int64_t row = 0; row < rows; ++row)
        sink.row(std::vector<Value>{number(row)});
    sink.done({Completion::Kind::Statement, static_cast<std::uint64_t>(rows), 0xC1});
}

/// What the sessions of a server share with the test; a session may still run an old script while the
/// test sets the next.
class Dialogue
{
public:
    void setScript(Script script)
    {
        const std::lock_guard lock(m_mutex);
        m_script = std::move(script);
    }
    /// The script for a text that has come.
    Script hear(std::string text)
    {
        const std::lock_guard lock(m_mutex);
        m_heard.push_back(std::move(text));
        return m_script;
    }
    [[nodiscard]] std::vector<std::string> heard() const
    {
        const std::lock_guard lock(m_mutex);
        return m_heard;
    }

private:
    mutable std::mutex m_mutex;
    Script m_script = [](std::string_view, ResultSink& sink, const std::atomic<bool>&) { sink.done({}); };
    std::vector<std::string> m_heard;
};

class Session final : public practice::Session
{
public:
    explicit Session(Dialogue& dialogue) : m_dialogue(dialogue) {}

    void executeBatch(std::string_view batch, ResultSink& sink) override
    {
        m_cancelled = false;
        m_dialogue.hear(std::string(batch))(batch, sink, m_cancelled);
    }
    void executeProcedure(std::string_view, std::vector<practice::Parameter>, ResultSink& sink) override
    {
        m_dialogue.hear("a procedure call");
        sink.done({Completion::Kind::Procedure, {}, 0xE0});
    }
    void beginTransaction(const std::string&, ResultSink&) override {}
    void commitTransaction(ResultSink&) override {}
    void rollbackTransaction(const std::string&, ResultSink&) override {}
    void reset(ResultSink&) override {}
    void cancel() noexcept override { m_cancelled = true; }
    [[nodiscard]] const std::string& database() const override { return m_database; }
    [[nodiscard]] int id() const override { return 51; }
    [[nodiscard]] int textSize() const override { return -1; }

private:
    Dialogue& m_dialogue;
    std::atomic<bool> m_cancelled = false;
    std::string m_database = "master";
};

/// Lets anyone in whose password is `password`.
class Engine final : public practice::Server
{
public:
    [[nodiscard]] std::unique_ptr<practice::Session> login(const practice::LoginRequest& request,
                                                           ResultSink& sink) override
    {
        lastLogin = request;
        if (request.password != password) {
            Message why;
            why.number = 18456;
            why.severity = 14;
            why.text = "Login failed for user '" + request.user + "'.";
            throw practice::LoginRefused(why);
        }
        sink.environment(practice::EnvironmentChange::Database, "master", "master");
        message(sink, 5701, 0, "Changed database context to 'master'.");
        return std::make_unique<Session>(dialogue);
    }
    [[nodiscard]] const std::string& name() const override { return m_name; }

    std::string password = "contraseña";
    practice::LoginRequest lastLogin;
    Dialogue dialogue;

private:
    std::string m_name = "SCRIPTED";
};

/// An engine and its listener, and a connection's string for it.
struct Server
{
    Engine engine;
    practice::tds::TdsServer listener{engine, [] {
                                          practice::tds::ListenOptions options;
                                          options.port = 0;
                                          return options;
                                      }()};

    [[nodiscard]] static QString connectionString(int port)
    {
        return QStringLiteral(
                   "Provider=SQLOLEDB.1;Data Source=127.0.0.1,%1;Initial Catalog=master;User Id=sa;"
                   "Password=contraseña;")
            .arg(port);
    }
    [[nodiscard]] QString connectionString() const { return connectionString(listener.port()); }

    /// Gives every batch the answer that `script` writes, whatever its text.
    void answer(std::function<void(practice::ResultSink&)> script)
    {
        engine.dialogue.setScript([script = std::move(script)](std::string_view, practice::ResultSink& sink,
                                                               const std::atomic<bool>&) { script(sink); });
    }
};

/// The error that a call raises; none when it does not.
template <class Call>
std::optional<basic::RuntimeError> errorOf(Call call)
{
    try {
        call();
    } catch (const basic::RuntimeError& error) {
        return error;
    }
    return std::nullopt;
}

template <class Call>
int numberOf(Call call)
{
    const auto error = errorOf(call);
    return error ? error->number() : 0;
}

} // namespace scripted
