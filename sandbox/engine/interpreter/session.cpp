// The server and its sessions, as the wire sees them.
#include "engine/api/session.h"

#include "engine/backup/change_base.h"
#include "engine/catalog/catalog_sessions.h"
#include "engine/catalog/pending_files.h"
#include "engine/interpreter/interpreter.h"
#include "engine/messages/errors.h"
#include "engine/procedures/system_procedures.h"
#include "engine/session/session_state.h"
#include "engine/session/temporary_objects.h"
#include "tsql/parser.h"

#include <atomic>
#include <mutex>

namespace practice {

namespace {

constexpr int firstSpid = 51;

class EngineSession : public Session
{
public:
    EngineSession(const ServerOptions& options, SessionRegistry& registry, int spid,
                  const LoginRequest& request, const Login& login, TemporaryLeftovers& leftovers)
        : state_(options.dataDirectory, options.serverName, spid, request, login, leftovers),
          registry_(registry), leftovers_(leftovers)
    {
        state_.setNestedRunner([this](const std::string& text) { Interpreter(state_).runNested(text); });
        registerSessionList(state_.connection(), registry);
        registry.add(spid, {login.name, request.host, request.application});
        state_.transactions().changed = [this](int count) {
            registry_.setTransactions(state_.spid(), count);
        };
    }
    ~EngineSession() override { registry_.remove(state_.spid()); }

    void open(const std::string& database, ResultSink& sink)
    {
        state_.setSink(sink);
        state_.useDatabase(database);
        initialDatabase_ = database;
        registry_.end(id(), state_.database()->id, 0);
        state_.useLanguage(firstLanguage(), "");
        state_.rememberOptions();
    }

    void executeBatch(std::string_view text, ResultSink& sink) override
    {
        request(sink, [this, text] { Interpreter(state_).runBatch(std::string(text)); });
    }

    void executeProcedure(std::string_view name, std::vector<Parameter> parameters, ResultSink& sink) override
    {
        request(
            sink,
            [this, name, &parameters, &sink] {
                const bool ended = Interpreter(state_).runProcedureRequest(parseObjectName(name),
                                                                           std::string(name), parameters);
                for (const Parameter& parameter : parameters) {
                    if (ended && parameter.output)
                        sink.outputParameter(parameter.name, parameter.type, parameter.value);
                }
                state_.done(std::nullopt, commands::execute);
            },
            commands::execute);
    }

    void beginTransaction(const std::string& name, ResultSink& sink) override
    {
        request(sink, [this, &name] {
            state_.transactions().begin(name);
            state_.done(std::nullopt, commands::other);
        });
    }

    void commitTransaction(ResultSink& sink) override
    {
        request(sink, [this] {
            state_.transactions().commit();
            state_.done(std::nullopt, commands::other);
        });
    }

    void rollbackTransaction(const std::string& name, ResultSink& sink) override
    {
        request(sink, [this, &name] {
            state_.transactions().rollback(name);
            state_.done(std::nullopt, commands::other);
        });
    }

    void reset(ResultSink& sink) override
    {
        request(sink, [this, &sink] {
            state_.reset();
            sink.environment(EnvironmentChange::ResetConnection, "", "");
            if (state_.database()->name != initialDatabase_)
                state_.useDatabase(initialDatabase_);
        });
    }

    void cancel() noexcept override { state_.store().cancel(); }

    [[nodiscard]] const std::string& database() const override { return state_.databaseName(); }
    [[nodiscard]] int id() const override { return state_.spid(); }
    [[nodiscard]] int textSize() const override { return state_.options().textSize; }

private:
    [[nodiscard]] const Language& firstLanguage()
    {
        const Language* asked = findLanguage(state_.client().language);
        const Language* own = findLanguage(state_.login().language);
        return asked != nullptr ? *asked : own != nullptr ? *own : usEnglish();
    }

    /// What is common to all requests: a cancel ends one without a word, a fault with its message.
    template <typename Work>
    void request(ResultSink& sink, Work work, std::uint16_t command = commands::other)
    {
        state_.setSink(sink);
        state_.store().clearCancel();
        registry_.begin(id());
        try {
            work();
        } catch (const Cancelled&) {
            state_.abandon();
        } catch (const SqlError& error) {
            sink.message(error.message);
            state_.outcome().lastError = error.message.number;
            state_.done(std::nullopt, command, true);
        } catch (const StoreError& failure) {
            Message message = makeMessage(8630);
            message.text += " " + failure.text;
            sink.message(message);
            state_.abandon();
            state_.done(std::nullopt, command, true);
        }
        const CancelShield shield(state_.store());
        registry_.end(id(), state_.database()->id, state_.transactionCount());
        leftovers_.sweep(state_.store());
    }

    SessionState state_;
    SessionRegistry& registry_;
    TemporaryLeftovers& leftovers_;
    std::string initialDatabase_;
};

Message refusal(const std::string& user)
{
    return makeMessage(18456, {user});
}

class EngineServer : public Server
{
public:
    explicit EngineServer(ServerOptions options)
        : options_(std::move(options)), store_(options_.dataDirectory / "store.db")
    {
        bootstrapCatalog(store_.connection(), {options_.dataDirectory.string(), options_.saPassword,
                                               options_.serverName, systemProcedureNames()});
        defineBackupTables(store_.connection());
        settlePendingFiles(store_, options_.dataDirectory);
        execute(store_.connection(), "CREATE TABLE IF NOT EXISTS engine_timestamp(value INTEGER NOT NULL);"
                                     "INSERT INTO engine_timestamp SELECT 2000 WHERE NOT EXISTS "
                                     "(SELECT 1 FROM engine_timestamp)");
    }

    [[nodiscard]] std::unique_ptr<Session> login(const LoginRequest& request, ResultSink& sink) override
    {
        const Login login = accepted(request);
        if (request.languageRequired && !request.language.empty() &&
            findLanguage(request.language) == nullptr)
            throw LoginRefused(makeMessage(4019, {request.language}));
        auto session =
            std::make_unique<EngineSession>(options_, registry_, nextSpid_++, request, login, leftovers_);
        try {
            session->open(request.database.empty() ? login.defaultDatabase : request.database, sink);
        } catch (const SqlError&) {
            if (request.database.empty())
                throw LoginRefused(makeMessage(4064));
            throw LoginRefused(makeMessage(4060, {request.database}));
        }
        return session;
    }

    [[nodiscard]] const std::string& name() const override { return options_.serverName; }

private:
    Login accepted(const LoginRequest& request)
    {
        const std::lock_guard lock(mutex_);
        Catalog catalog(store_.connection());
        const auto login = catalog.login(request.user);
        if (!login || login->denied || login->windows ||
            !(request.trusted || checkPassword(store_.connection(), request.user, request.password)))
            throw LoginRefused(refusal(request.user));
        return *login;
    }

    ServerOptions options_;
    Store store_;
    std::mutex mutex_;
    SessionRegistry registry_;
    TemporaryLeftovers leftovers_;
    std::atomic<int> nextSpid_ = firstSpid;
};

} // namespace

std::unique_ptr<Server> openServer(const ServerOptions& options)
{
    try {
        std::filesystem::create_directories(options.dataDirectory);
        return std::make_unique<EngineServer>(options);
    } catch (const StoreError& failure) {
        throw std::runtime_error("cannot open the store in " + options.dataDirectory.string() + ": " +
                                 failure.text);
    } catch (const SqlError& error) {
        throw std::runtime_error("cannot set up the store in " + options.dataDirectory.string() + ": " +
                                 error.message.text);
    }
}

} // namespace practice
