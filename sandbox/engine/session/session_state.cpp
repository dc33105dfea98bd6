#include "engine/session/session_state.h"

#include "engine/binder/ddl_types.h"
#include "engine/binder/parsed_texts.h"
#include "engine/catalog/catalog_functions.h"
#include "engine/context/standing.h"
#include "engine/functions/sql_functions.h"
#include "engine/messages/errors.h"
#include "types/conversion.h"
#include "types/date_time.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace practice {

namespace {

/// What a connection begins with: ODBC drivers get what the standard wants, others the server's own
/// defaults, which are older.
SessionOptions firstOptions(const LoginRequest& client)
{
    SessionOptions options;
    options.textSize = client.textSize;
    options.ansiNulls = options.ansiPadding = options.ansiWarnings = options.ansiNullDefault = client.odbc;
    options.quotedIdentifier = options.concatNullYieldsNull = client.odbc;
    return options;
}

/// Conversion of SET and of parameters: what is too long is cut, anything else fails as usual.
Value convertedForVariable(const Value& value, const SqlType& from, const SqlType& to,
                           const DateSettings& dates)
{
    if (value.isNull() || from == to)
        return value;
    try {
        return convert(value, from, to, 0, dates);
    } catch (const ConversionError& error) {
        throw SqlError{messageOf(error)};
    }
}

} // namespace

SqlType declaredType(SessionState&, const ast::DataType& type)
{
    return resolveDeclaredType(type, 1, "type", std::string(typeName(type.id)));
}

SessionState::SessionState(const std::filesystem::path& dataDirectory, const std::string& serverName,
                           int spid, LoginRequest client, Login login, TemporaryLeftovers& leftovers)
    : dataDirectory_(dataDirectory), serverName_(serverName), spid_(spid), client_(std::move(client)),
      login_(std::move(login)), store_(dataDirectory / "store.db"), options_(firstOptions(client_)),
      transactions_(store_, [this](EnvironmentChange kind, const std::string& descriptor) {
          const bool begins = kind == EnvironmentChange::BeginTransaction;
          sink().environment(kind, begins ? descriptor : "", begins ? "" : descriptor);
      })
{
    registerSqlFunctions(connection(), options_.dates);
    registerCatalogFunctions(connection());
    registerSessionFunctions(*this);
    catalog_ = std::make_unique<Catalog>(connection());
    view_ = ReadView(store_);
    temporaries_ = std::make_unique<Temporaries>(Temporaries::Ground{store_, *catalog_, view_, calls_, spid_},
                                                 leftovers);
}

SessionState::~SessionState()
{
    calls_.clear();
    store_.rollback();
    temporaries_->dropAll();
}

DatabasePtr SessionState::database()
{
    if (!calls_.empty() && calls_.top().database)
        return calls_.top().database;
    DatabasePtr found = catalog_->database(place_.databaseId());
    // A database may vanish under a session that stands in it.
    return found ? found : catalog_->database(masterId);
}

const Principal& SessionState::user()
{
    return place_.user(*catalog_, login_, database()->id);
}

void SessionState::useDatabase(const std::string& name)
{
    catalog_->version();
    const DatabasePtr found = catalog_->database(name);
    if (!found)
        raise(911, {name});
    if ((found->options & Restoring) != 0)
        raise(927, {found->name});
    if ((found->options & Offline) != 0)
        raise(942, {found->name});
    requireAccess(*this, *found);
    sink().environment(EnvironmentChange::Database, found->name, place_.enter(*found));
    inform(5701, {found->name});
}

void SessionState::useLanguage(const Language& language, const std::string& before)
{
    const std::string name(language.name);
    options_.dates = {dateOrderNamed(language.dateFormat).value_or(DateOrder::MonthDayYear), &language};
    options_.dateFirst = language.dateFirst;
    sink().environment(EnvironmentChange::Language, name, before);
    inform(5703, {name});
}

void SessionState::sendMessage(Message message)
{
    if (!calls_.empty()) {
        message.line = frame().line;
        if (message.procedure.empty())
            message.procedure = frame().procedure;
    }
    sink().message(message);
}

std::string SessionState::temporaryName(const std::string& name) const
{
    return temporaries_->storedName(name);
}

std::string SessionState::newTemporaryName(const std::string& name)
{
    return temporaries_->newStoredName(name);
}

void SessionState::beginWrite()
{
    endStatement();
    if (store_.inTransaction())
        return;
    store_.beginWrite();
    catalog_->version();
    transactions_.replaySavepoints();
}

void SessionState::attempt(const std::function<void()>& part)
{
    Savepoint savepoint(store_);
    try {
        catalog_->version();
        part();
        savepoint.release();
    } catch (const SqlError& error) {
        if (calls_.catchesErrors())
            throw;
        sendMessage(error.message);
        outcome_.statementError = error.message.number;
    }
}

void SessionState::startImplicitTransaction()
{
    if (options_.implicitTransactions && transactions_.count() == 0)
        transactions_.begin("");
}

void SessionState::assign(const std::string& name, const Value& value, const SqlType& type)
{
    Variable& target = calls_.variable(name);
    target.value = convertedForVariable(value, type, target.type, options_.dates);
}

BindContext SessionState::bindContext()
{
    const std::optional<ModuleOwner> module = calls_.empty() ? std::nullopt : frame().module;
    return {*this,
            database(),
            module ? module->ownerId : user().id,
            [this](const std::string& name) -> std::optional<SqlType> {
                const Variable* found = calls_.find(name);
                return found == nullptr ? std::nullopt : std::optional(found->type);
            },
            [this](const std::string& name) {
                const auto found = frame().tableVariables.find(name);
                return found == frame().tableVariables.end() ? std::string() : temporaryName(found->second);
            },
            module};
}

CompiledBatchPtr SessionState::compile(const std::string& text, const std::string& family)
{
    const std::string key = family + (options_.quotedIdentifier ? "\n1" : "\n0") + text;
    if (CompiledBatchPtr known = cache_.find(key))
        return known;
    auto compiled = std::make_shared<CompiledBatch>();
    compiled->text = text;
    compiled->batch = parsedBatch(text, options_.quotedIdentifier);
    cache_.insert(key, compiled);
    return compiled;
}

void SessionState::limitPlans()
{
    constexpr std::size_t mostPlans = 1000;
    if (calls_.depth() == 1 && frame().compiled->plans.size() > mostPlans)
        frame().compiled->plans.clear();
}

void SessionState::bindSlots(sqlite3_stmt* statement, const std::vector<ParameterSlot>& slots)
{
    int place = 0;
    for (const ParameterSlot& slot : slots) {
        ++place;
        if (slot.kind == ParameterSlot::Kind::Variable)
            bindStorage(statement, place, calls_.variable(slot.name).value, slot.type);
        else
            bindStorage(statement, place, globalValue(slot.name), slot.type);
    }
}

QueryPlan& SessionState::scalarPlan(const ast::Expression& expression, bool condition)
{
    if (auto* known = findPlan<QueryPlan>(&expression))
        return *known;
    Translator translator(bindContext());
    Scope scope;
    Term term;
    if (condition)
        term = resultTerm(translator.condition(expression, scope), intType());
    else
        term = translator.expression(expression, scope);
    auto plan = std::make_unique<QueryPlan>();
    plan->columns.push_back({"", term.type, term.collation});
    translator.requireRights();
    plan->slots = translator.parameters();
    plan->statement = Statement(connection(), "SELECT " + term.sql, true);
    return keepPlan(&expression, std::move(plan));
}

Variable SessionState::evaluate(const ast::Expression& expression)
{
    if (const auto* name = ast::tryAs<ast::Variable>(&expression); name != nullptr && !name->isGlobal())
        return calls_.variable(name->name);
    QueryPlan& plan = scalarPlan(expression, false);
    bindSlots(plan.statement.handle(), plan.slots);
    Variable result{plan.columns.front().type, {}};
    if (plan.statement.step())
        decodeColumn(plan.statement.handle(), 0, result.type, result.value);
    plan.statement.reset();
    return result;
}

Value SessionState::evaluate(const ast::Expression& expression, const SqlType& target)
{
    const Variable result = evaluate(expression);
    requireConversion(result.type, target, Conversion::Implicit);
    return convertedForVariable(result.value, result.type, target, options_.dates);
}

bool SessionState::isTrue(const ast::Expression& condition)
{
    QueryPlan& plan = scalarPlan(condition, true);
    bindSlots(plan.statement.handle(), plan.slots);
    const bool result = plan.statement.step() && plan.statement.integer(0) != 0;
    plan.statement.reset();
    return result;
}

void SessionState::done(std::optional<std::uint64_t> rows, std::uint16_t command, bool error)
{
    Completion completion;
    if (!calls_.empty()) {
        frame().closed = true;
        if (frame().silent)
            return;
        completion.kind = frame().completion;
    }
    if (completion.kind == Completion::Kind::Statement && command == commands::execute)
        completion.kind = Completion::Kind::Procedure;
    if (!options_.noCount)
        completion.rows = rows;
    completion.command = command;
    completion.error = error;
    completion.omissible = options_.noCount && completion.kind == Completion::Kind::InProcedure && !error;
    sink().done(completion);
}

void SessionState::beginStatement()
{
    clock_.nextStatement();
    view_.begin();
    catalog_->version();
}

std::int64_t SessionState::nextTimestamp()
{
    execute(connection(), "UPDATE engine_timestamp SET value = value + 1");
    Statement stamp(connection(), "SELECT value FROM engine_timestamp");
    return stamp.step() ? stamp.integer(0) : 0;
}

Variable SessionState::combined(const Variable& left, ast::AssignmentOperator op, const Variable& right)
{
    const Term term = arithmetic(ast::operatorOf(op), constantTerm(left.value, left.type),
                                 constantTerm(right.value, right.type), !options_.concatNullYieldsNull);
    Statement statement(connection(), "SELECT " + term.sql);
    Variable result{term.type, {}};
    if (statement.step())
        decodeColumn(statement.handle(), 0, result.type, result.value);
    return result;
}

void SessionState::returnTo(const DatabasePtr& database)
{
    if (database->id == place_.databaseId() || (!calls_.empty() && frame().database))
        return;
    sink().environment(EnvironmentChange::Database, database->name, place_.enter(*database));
}

void SessionState::abandon()
{
    if (transactions_.count() == 0)
        store_.rollback();
    else if (transactions_.doomed)
        transactions_.rollbackAll();
}

void SessionState::reset()
{
    transactions_.rollbackAll();
    temporaries_->dropAll();
    options_ = initialOptions_;
    store_.setLockTimeout(-1);
    outcome_ = {};
    globalCursors_.clear();
    preparedTexts_.clear();
}

} // namespace practice
