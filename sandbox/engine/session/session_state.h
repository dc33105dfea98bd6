// A session: who it is, its parts, and the work of statements that needs several of them.
#pragma once

#include "engine/binder/translator.h"
#include "engine/context/session_context.h"
#include "engine/session/call_stack.h"
#include "engine/session/current_place.h"
#include "engine/session/plan.h"
#include "engine/session/prepared_texts.h"
#include "engine/session/read_view.h"
#include "engine/session/session_clock.h"
#include "engine/session/statement_outcome.h"
#include "engine/session/temporaries.h"
#include "engine/session/transactions.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace practice {

/// The parts of a session, each with its own business, and what they do for a running statement together.
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
    [[nodiscard]] int transactionCount() const override { return transactions_.count(); }
    [[nodiscard]] ResultSink& sink() override { return *sink_; }
    void sendMessage(Message message) override;
    [[nodiscard]] std::string temporaryName(const std::string& name) const override;
    [[nodiscard]] std::string newTemporaryName(const std::string& name) override;
    void beginWrite() override;
    void attempt(const std::function<void()>& part) override;
    [[nodiscard]] std::string_view batchText() const override { return calls_.top().compiled->text; }
    void runText(const std::string& text) override;
    [[nodiscard]] std::vector<std::vector<Value>> queryText(const std::string& text) override;
    [[nodiscard]] std::string translateScalar(const Object* table, const std::string& text,
                                              const SqlType& target) override;
    [[nodiscard]] std::string translateCondition(const Object& table, const std::string& text) override;
    [[nodiscard]] SqlType typeOfExpression(const Object* table, const std::string& text) override;
    [[nodiscard]] std::string convertExpression(const std::string& sqlite, const SqlType& from,
                                                const SqlType& to) override;
    [[nodiscard]] std::vector<ColumnInfo> describeQuery(const ast::SelectStatement& query,
                                                        const ModuleOwner& owner) override;

    /// SET LANGUAGE, with the environment change and message 5703.
    void useLanguage(const Language& language, const std::string& before);
    /// What `reset` goes back to.
    void rememberOptions() { initialOptions_ = options_; }

    // The parts.
    [[nodiscard]] CallStack& calls() { return calls_; }
    [[nodiscard]] Transactions& transactions() { return transactions_; }
    [[nodiscard]] Temporaries& temporaries() { return *temporaries_; }
    [[nodiscard]] StatementOutcome& outcome() { return outcome_; }
    [[nodiscard]] SessionClock& clock() { return clock_; }
    [[nodiscard]] PreparedTexts& preparedTexts() { return preparedTexts_; }
    [[nodiscard]] std::map<std::string, Cursor>& globalCursors() { return globalCursors_; }
    [[nodiscard]] Frame& frame() { return calls_.top(); }

    /// Between two statements of the outermost batch: keeps the plans of a long one from piling up.
    void limitPlans();
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

    // Results.
    void setSink(ResultSink& sink) { sink_ = &sink; }
    ResultSink* exchangeSink(ResultSink* sink) { return std::exchange(sink_, sink); }
    /// Ends the running statement. A call in a client's batch ends as a procedure does.
    void done(std::optional<std::uint64_t> rows, std::uint16_t command, bool error = false);

    /// Runs a piece of work that writes: all of it happens or nothing. @throws SqlError 3930
    template <typename Work>
    auto atomically(Work work);
    void startImplicitTransaction();

    [[nodiscard]] const std::string& databaseName() const { return place_.databaseName(); }
    /// Undoes a USE of an inner batch.
    void returnTo(const DatabasePtr& database);
    /// After a request that broke off: no frames, no half-done statement.
    void abandon();
    /// Back to what a fresh login has.
    void reset();
    void createTableVariable(const ast::Declaration& declaration);

    /// The next value for a timestamp column, of the whole server.
    [[nodiscard]] std::int64_t nextTimestamp();

    /// The clock stands still within a statement, and so does what others commit to the catalog.
    void beginStatement();
    /// A statement outside any transaction reads one state of the store throughout.
    void endStatement() { view_.end(); }

private:
    QueryPlan& scalarPlan(const ast::Expression& expression, bool condition);

    std::filesystem::path dataDirectory_;
    std::string serverName_;
    int spid_;
    LoginRequest client_;
    Login login_;
    Store store_;
    std::unique_ptr<Catalog> catalog_;
    ReadView view_;
    CurrentPlace place_;
    SessionOptions options_;
    SessionOptions initialOptions_;
    ResultSink* sink_ = nullptr;
    std::function<void(const std::string&)> runNested_;
    CallStack calls_;
    BatchCache cache_;

    Transactions transactions_;
    std::unique_ptr<Temporaries> temporaries_;
    StatementOutcome outcome_;
    SessionClock clock_;
    PreparedTexts preparedTexts_;
    std::map<std::string, Cursor> globalCursors_;
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
        plan.concatNullYieldsNull != options_.concatNullYieldsNull ||
        plan.visibility != temporaries_->visibility() || plan.module != frame().module)
        return nullptr;
    return dynamic_cast<PlanType*>(&plan);
}

template <typename PlanType>
PlanType& SessionState::keepPlan(const void* node, std::unique_ptr<PlanType> plan)
{
    plan->catalogVersion = catalog().version();
    plan->databaseId = database()->id;
    plan->concatNullYieldsNull = options_.concatNullYieldsNull;
    plan->visibility = temporaries_->visibility();
    plan->module = frame().module;
    PlanType& kept = *plan;
    frame().compiled->plans[node] = std::move(plan);
    return kept;
}

template <typename Work>
auto SessionState::atomically(Work work)
{
    const bool alone = !store_.inTransaction();
    if (transactions_.doomed)
        raise(3930);
    beginWrite();
    return transactions_.atomically(alone, std::move(work));
}

/// A declared type, alias types included.
[[nodiscard]] SqlType declaredType(SessionState& session, const ast::DataType& type);

/// Registers the functions that ask a session: object_id, user_name ...
void registerSessionFunctions(SessionState& session);

} // namespace practice
