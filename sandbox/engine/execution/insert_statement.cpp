// INSERT.
#include "engine/binder/parsed_texts.h"
#include "engine/execution/change_target.h"
#include "engine/execution/output_clause.h"
#include "engine/execution/statements.h"
#include "engine/execution/step_query.h"
#include "engine/execution/table_constraints.h"
#include "engine/messages/errors.h"
#include "types/conversion.h"

#include <algorithm>
#include <set>

namespace practice {

namespace {

struct InsertPlan : Plan
{
    ObjectPtr table;
    Statement insert;
    Statement source; ///< the rows alone, to tell which one is a duplicate; prepared when needed
    std::string sourceSql;
    std::vector<int> columns; ///< ids, in the order of the source
    const Column* generated = nullptr;
    const Column* explicitIdentity = nullptr;
    TableTest test;
    Statement testStatement;
    std::optional<OutputPlan> output;
};

/// What goes into one column.
struct Assigned
{
    const Column* column = nullptr;
    std::string sql; ///< over the source's columns
};

bool isFilledByServer(const Column& column)
{
    return column.computed || column.type.id == TypeId::Timestamp;
}

class InsertBinder
{
public:
    InsertBinder(SessionState& session, const ast::InsertStatement& statement)
        : session_(session), statement_(statement), translator_(session.bindContext())
    {}

    std::unique_ptr<InsertPlan> bind();
    /// The same for rows that come from outside: INSERT ... EXEC.
    std::unique_ptr<InsertPlan> bindRows(const std::vector<ColumnInfo>& given);

private:
    void bindTarget();
    void chooseTargets();
    void refuseExplicit(const Column& column) const;
    [[nodiscard]] std::string defaultOf(const Column& column);
    [[nodiscard]] std::string required(const Column& column, const Term& value) const;
    void bindValues();
    void bindQuery();
    void bindDefaults();
    void countValues(std::size_t values, int tooFew, int tooMany) const;
    void finish();

    SessionState& session_;
    const ast::InsertStatement& statement_;
    Translator translator_;
    std::unique_ptr<InsertPlan> plan_ = std::make_unique<InsertPlan>();
    std::vector<const Column*> targets_;
    std::vector<std::vector<std::string>> rows_; ///< of VALUES: an expression for each target
    std::string query_;                          ///< of a SELECT: columns k1 ...
    std::vector<std::string> converted_;         ///< over the query's columns
};

void InsertBinder::refuseExplicit(const Column& column) const
{
    if (column.computed)
        raise(271, {column.name});
    if (column.type.id == TypeId::Timestamp)
        raise(273);
    if (column.identity && !acceptsIdentity(session_, *plan_->table))
        raise(544, {plan_->table->name});
}

void InsertBinder::bindTarget()
{
    plan_->table = changeTarget(session_, translator_, *statement_.target, Right::Insert);
    translator_.need(plan_->table, Right::Insert);
    chooseTargets();
}

void InsertBinder::chooseTargets()
{
    const Object& table = *plan_->table;
    for (const std::string& name : statement_.columns) {
        const Column* column = table.column(name);
        if (column == nullptr)
            raise(207, {name});
        if (std::find(targets_.begin(), targets_.end(), column) != targets_.end())
            raise(264, {name});
        targets_.push_back(column);
    }
    if (!statement_.columns.empty())
        return;
    for (const Column& column : table.columns) {
        if (!isFilledByServer(column) && !column.identity)
            targets_.push_back(&column);
    }
}

std::string InsertBinder::defaultOf(const Column& column)
{
    if (column.type.id == TypeId::Timestamp)
        return "s_timestamp()";
    if (column.identity)
        return "s_identity()";
    if (column.defaultText.empty())
        return required(column, nullTerm());
    const auto tree = parsedExpression(column.defaultText);
    Scope scope;
    const Term value = translator_.expression(*tree, scope);
    return required(column, convertTerm(value, column.type, Conversion::Assignment));
}

std::string InsertBinder::required(const Column& column, const Term& value) const
{
    if (column.nullable || !value.nullable)
        return value.sql;
    return callText("t_required", {value.sql, quotedText(column.name),
                                   quotedText(fullName(session_, *plan_->table)), "'INSERT'"});
}

void InsertBinder::countValues(std::size_t values, int tooFew, int tooMany) const
{
    const std::size_t wanted = targets_.size();
    if (values == wanted)
        return;
    if (!statement_.columns.empty())
        raise(values < wanted ? tooFew : tooMany);
    const auto writable = std::count_if(plan_->table->columns.begin(), plan_->table->columns.end(),
                                        [](const Column& column) { return !isFilledByServer(column); });
    if (plan_->table->identityColumn() != nullptr && values == static_cast<std::size_t>(writable))
        raise(8101, {plan_->table->name});
    raise(213);
}

void InsertBinder::bindValues()
{
    constexpr std::size_t mostRows = 1000;
    if (statement_.rows.size() > mostRows)
        raise(10738, {std::to_string(mostRows)});
    for (const ast::ValueRow& row : statement_.rows) {
        countValues(row.size(), 109, 110);
        std::vector<std::string> values;
        Scope scope;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const Column& column = *targets_[i];
            if (row[i]->kind == ast::ExpressionKind::Default) {
                values.push_back(defaultOf(column));
                continue;
            }
            refuseExplicit(column);
            const Term value = translator_.expression(*row[i], scope);
            values.push_back(required(column, convertTerm(value, column.type, Conversion::Assignment)));
        }
        rows_.push_back(std::move(values));
    }
}

void InsertBinder::bindQuery()
{
    const TranslatedQuery query = translator_.subquery(*statement_.query, nullptr, true);
    countValues(query.columns.size(), 120, 121);
    for (std::size_t i = 0; i < targets_.size(); ++i) {
        refuseExplicit(*targets_[i]);
        const Term value =
            resultTerm("s.k" + std::to_string(i + 1), query.columns[i].type, query.columns[i].nullable);
        converted_.push_back(
            required(*targets_[i], convertTerm(value, targets_[i]->type, Conversion::Assignment)));
    }
    query_ = query.sql;
}

void InsertBinder::bindDefaults()
{
    rows_.emplace_back();
    for (const Column* column : targets_)
        rows_.back().push_back(defaultOf(*column));
}

void InsertBinder::finish()
{
    const Object& table = *plan_->table;
    std::vector<Assigned> rest;
    for (const Column& column : table.columns) {
        const bool given = std::find(targets_.begin(), targets_.end(), &column) != targets_.end();
        if (given && column.identity)
            plan_->explicitIdentity = &column;
        if (given || column.computed)
            continue;
        if (column.identity) {
            if (acceptsIdentity(session_, table))
                raise(545, {table.name});
            plan_->generated = &column;
        }
        if (!column.identity && column.nullable && column.defaultText.empty() &&
            column.type.id != TypeId::Timestamp)
            continue;
        rest.push_back({&column, defaultOf(column)});
    }
    std::string names;
    for (const Column* column : targets_) {
        plan_->columns.push_back(column->id);
        names += (names.empty() ? "" : ",") + storageColumn(column->id);
    }
    std::string restValues;
    for (const Assigned& assigned : rest) {
        names += (names.empty() ? "" : ",") + storageColumn(assigned.column->id);
        restValues += "," + assigned.sql;
    }
    const auto joined = [&restValues](const std::vector<std::string>& values) {
        std::string text;
        for (const std::string& value : values)
            text += (text.empty() ? "" : ",") + value;
        text += restValues;
        return text.starts_with(',') ? text.substr(1) : text;
    };
    std::string source;
    if (!query_.empty()) {
        source = "SELECT " + joined(converted_) + " FROM (" + query_ + ") AS s";
    } else {
        for (const auto& row : rows_)
            source += (source.empty() ? "VALUES (" : ", (") + joined(row) + ")";
    }
    if (statement_.top) {
        Scope scope;
        const Term count = translator_.expression(*statement_.top->count, scope);
        source = "SELECT * FROM (" + source + ") LIMIT " + callText("t_rowlimit", {count.sql});
    }
    const std::string target = "INSERT INTO " + storageTable(table.databaseId, table.id);
    const std::string text =
        names.empty() ? target + " DEFAULT VALUES" : target + " (" + names + ") " + source;
    plan_->sourceSql = source;
    plan_->insert = Statement(session_.connection(), text, true);
    plan_->slots = translator_.parameters();
    plan_->test = tableTest(session_, plan_->table, nullptr);
    if (!plan_->test.empty()) {
        plan_->testStatement =
            Statement(session_.connection(),
                      "SELECT broken FROM (SELECT " + plan_->test.sql + " AS broken FROM " +
                          storageTable(table.databaseId, table.id) + " AS " + plan_->test.handle + " WHERE " +
                          plan_->test.handle + ".rowid > ?" + std::to_string(plan_->test.slots.size() + 1) +
                          ") WHERE broken IS NOT NULL LIMIT 1",
                      true);
    }
}

std::unique_ptr<InsertPlan> InsertBinder::bind()
{
    translator_.enterCommonTables(statement_.commonTables);
    bindTarget();
    switch (statement_.sourceKind) {
    case ast::InsertSource::Values:
        bindValues();
        break;
    case ast::InsertSource::Query:
        bindQuery();
        break;
    default:
        bindDefaults();
    }
    translator_.requireRights();
    finish();
    if (statement_.output)
        plan_->output = bindOutput(session_, *statement_.output, plan_->table, OutputOf::Inserted);
    return std::move(plan_);
}

std::unique_ptr<InsertPlan> InsertBinder::bindRows(const std::vector<ColumnInfo>& given)
{
    bindTarget();
    countValues(given.size(), 120, 121);
    rows_.emplace_back();
    for (std::size_t i = 0; i < targets_.size(); ++i) {
        refuseExplicit(*targets_[i]);
        const Term value = resultTerm("?" + std::to_string(i + 1), given[i].type);
        rows_.front().push_back(
            required(*targets_[i], convertTerm(value, targets_[i]->type, Conversion::Assignment)));
    }
    translator_.requireRights();
    finish();
    return std::move(plan_);
}

/// Finds the row that the index refused, for the message.
[[noreturn]] void explainDuplicate(SessionState& session, InsertPlan& plan, const Index& index)
{
    const Object& table = *plan.table;
    std::vector<std::size_t> places;
    std::string match;
    for (const IndexKey& key : index.keys) {
        const auto at = std::find(plan.columns.begin(), plan.columns.end(), key.columnId);
        if (at == plan.columns.end())
            raiseDuplicate(session, table, index, {});
        places.push_back(static_cast<std::size_t>(at - plan.columns.begin()));
        match += (match.empty() ? "" : " AND ") + storageColumn(key.columnId) + " IS ?" +
                 std::to_string(places.size());
    }
    Statement rows(session.connection(), plan.sourceSql);
    session.bindSlots(rows.handle(), plan.slots);
    Statement present(session.connection(),
                      "SELECT 1 FROM " + storageTable(table.databaseId, table.id) + " WHERE " + match);
    std::set<std::string> seen;
    std::vector<Value> values;
    while (rows.step()) {
        values.assign(places.size(), {});
        std::string key;
        for (std::size_t i = 0; i < places.size(); ++i) {
            const int column = static_cast<int>(places[i]);
            const SqlType& type = table.column(index.keys[i].columnId)->type;
            decodeColumn(rows.handle(), column, type, values[i]);
            sqlite3_bind_value(present.handle(), static_cast<int>(i + 1),
                               sqlite3_column_value(rows.handle(), column));
            std::string text = values[i].isNull() ? "" : toText(values[i], type);
            key += foldName(text.erase(text.find_last_not_of(' ') + 1)) + '\x1f';
        }
        const bool known = present.step();
        present.reset();
        if (known || !seen.insert(key).second)
            break;
    }
    raiseDuplicate(session, table, index, values);
}

std::int64_t highestRow(SessionState& session, const Object& table)
{
    Statement highest(session.connection(),
                      "SELECT max(rowid) FROM " + storageTable(table.databaseId, table.id));
    return highest.step() ? highest.integer(0) : 0;
}

void runInsert(SessionState& session, InsertPlan& plan)
{
    try {
        const ResetGuard guard(plan.insert);
        while (plan.insert.step()) {
        }
    } catch (const StoreError& failure) {
        const bool unique = failure.code == SQLITE_CONSTRAINT_UNIQUE;
        const Index* index = unique ? violatedIndex(*plan.table, failure.text) : nullptr;
        if (index == nullptr)
            throw;
        session.outcome().identityCounter.last.reset();
        explainDuplicate(session, plan, *index);
    }
}

void startIdentity(SessionState& session, const InsertPlan& plan)
{
    session.outcome().identityCounter = {};
    if (plan.generated == nullptr)
        return;
    const Identity& identity = *plan.generated->identity;
    const auto last = session.catalog().lastIdentity(plan.table->databaseId, plan.table->id);
    session.outcome().identityCounter.increment = identity.increment;
    session.outcome().identityCounter.next = last ? *last + identity.increment : identity.seed;
}

void requireIdentityFits(SessionState& session, std::int64_t value, const SqlType& type)
try {
    (void)convert(Value{value, {}}, bigIntType(), type, 0, session.options().dates);
} catch (const ConversionError&) {
    Message message = makeMessage(8115);
    message.state = identityOverflow;
    message.text =
        "Arithmetic overflow error converting IDENTITY to data type " + std::string(typeName(type.id)) + ".";
    throw SqlError{message};
}

void keepIdentity(SessionState& session, const InsertPlan& plan, std::int64_t firstRow)
{
    if (plan.generated != nullptr && session.outcome().identityCounter.last) {
        const std::int64_t last = *session.outcome().identityCounter.last;
        requireIdentityFits(session, last, plan.generated->type);
        session.catalog().setLastIdentity(plan.table->databaseId, plan.table->id, last);
        session.outcome().lastIdentity = session.outcome().scopeIdentity = last;
        return;
    }
    if (plan.explicitIdentity == nullptr)
        return;
    const bool rising = plan.explicitIdentity->identity->increment > 0;
    const std::string column = storageColumn(plan.explicitIdentity->id);
    Statement extreme(session.connection(),
                      "SELECT " + std::string(rising ? "max(" : "min(") + column + ") FROM " +
                          storageTable(plan.table->databaseId, plan.table->id) + " WHERE rowid > ?1");
    extreme.bind(1, firstRow);
    if (!extreme.step() || extreme.isNull(0))
        return;
    const std::int64_t given = extreme.integer(0);
    const auto last = session.catalog().lastIdentity(plan.table->databaseId, plan.table->id);
    if (!last || (rising ? given > *last : given < *last))
        session.catalog().setLastIdentity(plan.table->databaseId, plan.table->id, given);
    session.outcome().lastIdentity = session.outcome().scopeIdentity = given;
}

void testRows(SessionState& session, InsertPlan& plan, std::int64_t firstRow)
{
    if (plan.test.empty())
        return;
    session.bindSlots(plan.testStatement.handle(), plan.test.slots);
    plan.testStatement.bind(static_cast<int>(plan.test.slots.size()) + 1, firstRow);
    const ResetGuard guard(plan.testStatement);
    if (plan.testStatement.step())
        raiseBroken("INSERT", plan.test.constraints[static_cast<std::size_t>(plan.testStatement.number(0))]);
}

bool looksBack(const InsertPlan& plan)
{
    return !plan.test.empty() || plan.explicitIdentity != nullptr || plan.output;
}

InsertPlan& planInsert(SessionState& session, const ast::InsertStatement& statement)
{
    if (auto* known = session.findPlan<InsertPlan>(&statement)) {
        const bool explicitWanted = known->explicitIdentity != nullptr;
        // What IDENTITY_INSERT says is no part of the catalog.
        if (acceptsIdentity(session, *known->table) == explicitWanted ||
            known->table->identityColumn() == nullptr)
            return *known;
    }
    return session.keepPlan(&statement, InsertBinder(session, statement).bind());
}

} // namespace

void executeInsert(SessionState& session, const ast::InsertStatement& statement)
{
    session.startImplicitTransaction();
    std::vector<std::vector<Value>> shown;
    InsertPlan* used = nullptr;
    const std::uint64_t rows = session.atomically([&session, &statement, &shown, &used] {
        InsertPlan& plan = planInsert(session, statement);
        used = &plan;
        const std::int64_t firstRow = looksBack(plan) ? highestRow(session, *plan.table) : 0;
        startIdentity(session, plan);
        session.bindSlots(plan.insert.handle(), plan.slots);
        runInsert(session, plan);
        const auto count = static_cast<std::uint64_t>(sqlite3_changes64(session.connection()));
        testRows(session, plan, firstRow);
        keepIdentity(session, plan, firstRow);
        if (plan.output) {
            shown = insertedOutput(session, *plan.output, firstRow);
            storeOutput(session, *plan.output, shown);
        }
        return count;
    });
    if (used->output)
        sendOutput(session, *used->output, shown);
    session.outcome().lastRowCount = static_cast<std::int64_t>(rows);
    session.done(rows, commands::insertRows);
}

void addRows(SessionState& session, const ast::InsertStatement& statement,
             const std::vector<ColumnInfo>& columns, const std::vector<std::vector<Value>>& given)
{
    if (given.empty())
        return;
    const std::unique_ptr<InsertPlan> plan = InsertBinder(session, statement).bindRows(columns);
    const std::int64_t firstRow = highestRow(session, *plan->table);
    startIdentity(session, *plan);
    for (const auto& row : given) {
        for (std::size_t i = 0; i < row.size(); ++i)
            bindStorage(plan->insert.handle(), static_cast<int>(i + 1), row[i], columns[i].type);
        runInsert(session, *plan);
    }
    testRows(session, *plan, firstRow);
    keepIdentity(session, *plan, firstRow);
}

void requireMayInsert(SessionState& session, const ast::TableSource& target)
{
    Translator translator(session.bindContext());
    translator.need(changeTarget(session, translator, target, Right::Insert), Right::Insert);
    translator.requireRights();
}

void insertRows(SessionState& session, const ast::InsertStatement& statement,
                const std::vector<ColumnInfo>& columns, const std::vector<std::vector<Value>>& given)
{
    const std::uint64_t rows = session.atomically([&session, &statement, &columns, &given] {
        addRows(session, statement, columns, given);
        return static_cast<std::uint64_t>(given.size());
    });
    session.outcome().lastRowCount = static_cast<std::int64_t>(rows);
    session.done(rows, commands::insertRows);
}

} // namespace practice
