// All that a session knows: its connection, where it stands, its variables and its transaction.
#pragma once

#include "engine/binder/translator.h"
#include "engine/context/session_context.h"
#include "engine/session/plan.h"
#include "engine/session/temporary_objects.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace practice {

struct Variable
{
    SqlType type;
    Value value;
};

/// The rows of a cursor's query, read when it was opened.
struct Cursor
{
    const ast::Query* query = nullptr;
    CompiledBatchPtr owner; ///< keeps the query's tree alive
    bool open = false;
    bool forwardOnly = true;
    std::vector<QueryColumn> columns;
    std::vector<std::vector<Value>> rows;
    std::int64_t position = -1; ///< index of the row fetched last
};

/// The identity values that the running statement gives out.
struct IdentityCounter
{
    std::int64_t next = 1;
    std::int64_t increment = 1;
    std::optional<std::int64_t> last; ///< given out by this statement

    std::int64_t take()
    {
        last = next;
        next += increment;
        return *last;
    }
};

/// One running batch or module.
struct Frame
{
    CompiledBatchPtr compiled;
    std::unordered_map<std::string, Variable> variables;
    std::unordered_map<std::string, std::string> tableVariables; ///< to their names in tempdb
    std::map<std::string, Cursor> cursors;                       ///< local ones
    std::string procedure;                                       ///< shown in messages; "" in a batch
    int procedureId = 0;
    DatabasePtr database; ///< where a module's names are looked up; none for the session's own
    std::vector<TemporaryObject> temporaries;
    bool ownScope = true;        ///< its temporary objects and theirs alone go when it ends
    std::vector<Message> caught; ///< errors of the CATCH blocks that run, the innermost last
    int tryDepth = 0;
    Completion::Kind completion = Completion::Kind::Statement;
    bool silent = false; ///< the server's own work, whose statements tell no completions
    bool closed = false; ///< the running statement has told its completion
    int line = 1;        ///< of the running statement
};

class SessionState : public SessionContext
{
public:
    SessionState(const std::filesystem::path& dataDirectory, const std::string& serverName, int spid,
                 LoginRequest client, Login login, TemporaryLeftovers& leftovers);
    ~SessionState() override;

    /// How the room above runs a batch inside a running statement; set before the first request.
    void setNestedRunner(std::function<void(const std::string&)> run) { runNested_ = std::move(run); }

    // What SessionContext offers.
    [[nodiscard]] Store& store() override { return store_; }
    [[nodiscard]] Catalog& catalog() override { return *catalog_; }
    [[nodiscard]] int spid() const override { return spid_; }
    [[nodiscard]] const std::string& serverName() const override { return serverName_; }
    [[nodiscard]] const std::filesystem::path& dataDirectory() const override { return dataDirectory_; }
    [[nodiscard]] const LoginRequest& client() const override { return client_; }
    [[nodiscard]] const Login& login() const override { return login_; }
    [[nodiscard]] DatabasePtr database() override;
    [[nodiscard]] const Principal& user() override;
    void useDatabase(const std::string& name) override;
    [[nodiscard]] SessionOptions& options() override { return options_; }
    [[nodiscard]] const SessionOptions& options() const { return options_; }
    [[nodiscard]] int transactionCount() const override { return transactionCount_; }
    [[nodiscard]] ResultSink& sink() override { return *sink_; }
    void sendMessage(Message message) override;
    [[nodiscard]] std::string temporaryName(const std::string& name) const override;
    [[nodiscard]] std::string newTemporaryName(const std::string& name) override;
    void beginWrite() override;
    void attempt(const std::function<void()>& part) override;
    [[nodiscard]] std::string_view batchText() const override { return frames_.back()->compiled->text; }
    void runText(const std::string& text) override;
    [[nodiscard]] std::vector<std::vector<Value>> queryText(const std::string& text) override;
    [[nodiscard]] std::string translateScalar(const Object* table, const std::string& text,
                                              const SqlType& target) override;
    [[nodiscard]] std::string translateCondition(const Object& table, const std::string& text) override;
    [[nodiscard]] SqlType typeOfExpression(const Object* table, const std::string& text) override;
    [[nodiscard]] std::string convertExpression(const std::string& sqlite, const SqlType& from,
                                                const SqlType& to) override;
    [[nodiscard]] std::vector<ColumnInfo> describeQuery(const ast::SelectStatement& query) override;

    /// SET LANGUAGE, with the environment change and message 5703.
    void useLanguage(const Language& language, const std::string& before);
    /// What `reset` goes back to.
    void rememberOptions() { initialOptions_ = options_; }

    // Frames and variables.
    [[nodiscard]] Frame& frame() { return *frames_.back(); }
    [[nodiscard]] bool hasFrame() const { return !frames_.empty(); }
    /// Between two statements of the outermost batch: keeps the plans of a long one from piling up.
    void limitPlans();
    void pushFrame(std::unique_ptr<Frame> frame) { frames_.push_back(std::move(frame)); }
    std::unique_ptr<Frame> popFrame();
    [[nodiscard]] int nestLevel() const { return nestLevel_; }
    void enterModule() { ++nestLevel_; }
    void leaveModule() { --nestLevel_; }
    /// @throws SqlError 137
    [[nodiscard]] Variable& variable(const std::string& name);
    void declare(const std::string& name, const SqlType& type);
    /// Converts as SET does: texts that are too long are cut.
    void assign(const std::string& name, const Value& value, const SqlType& type);

    // Compiling.
    [[nodiscard]] BindContext bindContext();
    [[nodiscard]] CompiledBatchPtr compile(const std::string& text, const std::string& family = {});
    /// The plan of a node, when it still holds.
    template <typename PlanType>
    [[nodiscard]] PlanType* findPlan(const void* node);
    template <typename PlanType>
    PlanType& keepPlan(const void* node, std::unique_ptr<PlanType> plan);
    void bindSlots(sqlite3_stmt* statement, const std::vector<ParameterSlot>& slots);

    // Evaluation.
    [[nodiscard]] Value evaluate(const ast::Expression& expression, const SqlType& target);
    /// With the type that the expression has of itself.
    [[nodiscard]] Variable evaluate(const ast::Expression& expression);
    [[nodiscard]] bool isTrue(const ast::Expression& condition);
    /// A whole number; 0 for NULL.
    [[nodiscard]] int number(const ast::Expression& expression);
    [[nodiscard]] Value globalValue(const std::string& name);

    [[nodiscard]] Variable combined(const Variable& left, ast::AssignmentOperator op, const Variable& right);

    // Errors.
    /// True while a TRY block, or a caller inside the server, waits for errors.
    [[nodiscard]] bool catchesErrors() const;
    /// What @@ERROR is to tell of a statement that ended well: the number of its RAISERROR.
    int errorOfStatement() { return std::exchange(statementError, 0); }
    int statementError = 0;

    // Results.
    void setSink(ResultSink& sink) { sink_ = &sink; }
    ResultSink* exchangeSink(ResultSink* sink) { return std::exchange(sink_, sink); }
    /// Ends the running statement. A call in a client's batch ends as a procedure does.
    void done(std::optional<std::uint64_t> rows, std::uint16_t command, bool error = false);

    // Transactions (transactions.cpp).
    void beginTransaction(const std::string& name);
    void commitTransaction();
    void rollbackTransaction(const std::string& name);
    void rollbackAll();
    void saveTransaction(const std::string& name);
    /// Takes back all that the transaction has written; it stays open, and its savepoints stand.
    void undoFirstWrites();
    /// Runs a piece of work that writes: all of it happens or nothing.
    template <typename Work>
    auto atomically(Work work);
    void startImplicitTransaction();
    /// Told each new count of open transactions.
    std::function<void(int)> transactionsChanged;

    [[nodiscard]] const std::string& databaseName() const { return databaseName_; }
    /// Undoes a USE of an inner batch.
    void returnTo(const DatabasePtr& database);
    /// After a request that broke off: no frames, no half-done statement.
    void abandon();
    /// Back to what a fresh login has.
    void reset();
    /// Drops the table variables of a frame that has ended, and its temporary tables unless they stay
    /// with the session. Temporary procedures always do.
    void endScope(Frame& ended, bool tablesStay) noexcept;
    /// "##name" goes with the session that made it.
    void ownGlobalTemporary(const std::string& name);
    void createTableVariable(const ast::Declaration& declaration);

    IdentityCounter identityCounter;
    /// The next value for a timestamp column, of the whole server.
    [[nodiscard]] std::int64_t nextTimestamp();

    // What the globals tell.
    int lastError = 0;
    std::int64_t lastRowCount = 0;
    std::optional<std::int64_t> lastIdentity;
    std::optional<std::int64_t> scopeIdentity;
    int fetchStatus = 0;
    int cursorRows = 0;
    bool doomed = false; ///< the transaction can only be rolled back
    std::map<std::string, Cursor> globalCursors;
    std::map<int, std::pair<std::string, std::string>> preparedTexts; ///< handle: declarations, text
    int lastHandle = 0;
    /// Set while rows are assigned to variables that the query reads too.
    const Value* liveVariable(const std::string& name, SqlType& type);
    const DateTimeValue& now(bool utc);
    /// The clock stands still within a statement, and so does what others commit to the catalog.
    void beginStatement();
    /// A statement outside any transaction reads one state of the store throughout.
    void endStatement() { snapshot_.reset(); }

private:
    void announceTransaction(EnvironmentChange kind);
    void setTransactionCount(int count);
    [[nodiscard]] Frame* innermostScope() const;
    void dropTemporaries(const std::vector<int>& ids) noexcept;
    /// All temporary objects of the session.
    void dropAllTemporaries() noexcept;
    QueryPlan& scalarPlan(const ast::Expression& expression, bool condition);

    std::filesystem::path dataDirectory_;
    std::string serverName_;
    int spid_;
    LoginRequest client_;
    Login login_;
    Store store_;
    std::unique_ptr<Catalog> catalog_;
    Statement snapshot_; ///< while it stands on a row, the store's read transaction stays open
    std::string databaseName_;
    int databaseId_ = 1;
    Principal user_;
    int userDatabase_ = 0; ///< database and state of the catalog for which `user_` was looked up
    std::uint64_t userVersion_ = 0;
    SessionOptions options_;
    SessionOptions initialOptions_;
    ResultSink* sink_ = nullptr;
    std::function<void(const std::string&)> runNested_;
    std::vector<std::unique_ptr<Frame>> frames_;
    int nestLevel_ = 0;
    BatchCache cache_;

    int transactionCount_ = 0;
    std::string transactionName_;
    std::vector<std::string> pendingSavepoints_; ///< made before the first write
    std::vector<std::string> savepoints_;
    std::uint64_t transactionDescriptor_ = 0;

    std::vector<TemporaryObject> temporaries_; ///< those that stay from batch to batch
    std::vector<int> globalTemporaries_;
    int temporaryNames_ = 0; ///< given out so far
    TemporaryLeftovers& leftovers_;
    std::uint64_t visibility_ = 0; ///< counts the times that names of tempdb were lost and objects stayed
    int tableVariables_ = 0;       ///< made so far: they need names

    bool clockRead_ = false;
    DateTimeValue localNow_;
    DateTimeValue utcNow_;
};

template <typename PlanType>
PlanType* SessionState::findPlan(const void* node)
{
    auto& plans = frame().compiled->plans;
    const auto found = plans.find(node);
    if (found == plans.end())
        return nullptr;
    Plan& plan = *found->second;
    if (plan.catalogVersion != catalog().version() || plan.databaseId != database()->id ||
        plan.concatNullYieldsNull != options_.concatNullYieldsNull || plan.visibility != visibility_)
        return nullptr;
    return dynamic_cast<PlanType*>(&plan);
}

template <typename PlanType>
PlanType& SessionState::keepPlan(const void* node, std::unique_ptr<PlanType> plan)
{
    plan->catalogVersion = catalog().version();
    plan->databaseId = database()->id;
    plan->concatNullYieldsNull = options_.concatNullYieldsNull;
    plan->visibility = visibility_;
    PlanType& kept = *plan;
    frame().compiled->plans[node] = std::move(plan);
    return kept;
}

template <typename Work>
auto SessionState::atomically(Work work)
{
    const bool alone = !store_.inTransaction();
    if (doomed)
        raise(3930);
    beginWrite();
    if (!alone || transactionCount_ > 0) {
        Savepoint savepoint(store_);
        auto result = work();
        savepoint.release();
        return result;
    }
    try {
        auto result = work();
        store_.commit();
        return result;
    } catch (...) {
        store_.rollback();
        throw;
    }
}

/// A declared type, alias types included.
[[nodiscard]] SqlType declaredType(SessionState& session, const ast::DataType& type);

/// Registers the functions that ask a session: object_id, user_name ...
void registerSessionFunctions(SessionState& session);

} // namespace practice
