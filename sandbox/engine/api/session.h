// The engine's front door: one server over one data directory, one session a connection.
#pragma once

#include "engine/api/result_sink.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

struct LoginRequest
{
    std::string user;
    std::string password;
    std::string database; ///< "" for the login's default database
    std::string application;
    std::string host;
    std::string language;          ///< "" for the login's own
    bool languageRequired = false; ///< there is no session without that language
    bool odbc = true;              ///< the client is an ODBC driver or its like
    int textSize = 2147483647;     ///< what TEXTSIZE is at first
    /// Asked by the program itself and not over the wire: no password is wanted.
    bool trusted = false;
};

struct Parameter
{
    std::string name; ///< with its @, or "" when positional
    SqlType type;
    Value value;
    bool output = false;
    bool isDefault = false; ///< sent as "use the default"
};

/// One client's session. One thread runs requests; `cancel` may come from any other.
class Session
{
public:
    virtual ~Session() = default;

    /// Runs the statements of a batch. Errors go to the sink; it never throws for bad Transact-SQL.
    virtual void executeBatch(std::string_view text, ResultSink& sink) = 0;

    /// Runs a procedure by name with parameters: system ones (sp_executesql, sp_prepare,
    /// sp_prepexec, sp_execute, sp_unprepare, sp_cursoropen ...) and users' own alike.
    virtual void executeProcedure(std::string_view name, std::vector<Parameter> parameters,
                                  ResultSink& sink) = 0;

    /// Transaction-manager requests of the wire.
    virtual void beginTransaction(const std::string& name, ResultSink& sink) = 0;
    virtual void commitTransaction(ResultSink& sink) = 0;
    virtual void rollbackTransaction(const std::string& name, ResultSink& sink) = 0;

    /// Back to the state right after login (the wire's reset-connection flag).
    virtual void reset(ResultSink& sink) = 0;

    /// Makes the running request stop at its next step. The request ends without a message; the
    /// wire answers the attention. Harmless when nothing runs.
    virtual void cancel() noexcept = 0;

    [[nodiscard]] virtual const std::string& database() const = 0;
    [[nodiscard]] virtual int id() const = 0; ///< @@SPID
    /// The most bytes of a text, image or (max) value that its client wants; -1 for all.
    [[nodiscard]] virtual int textSize() const = 0;
};

/// Why a login was refused: 18456 and its kin, sent to the client before the connection closes.
struct LoginRefused : std::runtime_error
{
    explicit LoginRefused(Message why) : std::runtime_error(why.text), message(std::move(why)) {}
    Message message;
};

class Server
{
public:
    virtual ~Server() = default;

    /// Opens a session; the environment changes and messages 5701 and 5703 of the login go to the
    /// sink.
    /// @throws LoginRefused
    [[nodiscard]] virtual std::unique_ptr<Session> login(const LoginRequest& request, ResultSink& sink) = 0;

    [[nodiscard]] virtual const std::string& name() const = 0; ///< @@SERVERNAME
};

struct ServerOptions
{
    std::filesystem::path dataDirectory;
    std::string serverName = "PRACTICE";
    /// Password of sa for a fresh data directory; an existing one keeps what it has.
    std::string saPassword;
};

/// Opens the store, creating the system databases in a fresh directory.
/// @throws std::runtime_error when the directory can't be used.
[[nodiscard]] std::unique_ptr<Server> openServer(const ServerOptions& options);

} // namespace practice
