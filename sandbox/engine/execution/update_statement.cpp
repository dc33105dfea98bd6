// UPDATE and DELETE.
#include "engine/binder/parsed_texts.h"
#include "engine/context/permissions.h"
#include "engine/execution/change_target.h"
#include "engine/execution/output_clause.h"
#include "engine/execution/row_changes.h"
#include "engine/execution/statements.h"
#include "engine/execution/step_query.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <unordered_set>

namespace practice {

namespace {

/// The rows that an UPDATE or DELETE is about: FROM and WHERE as written, the target among them.
struct ChangePlan : Plan
{
    ObjectPtr table;
    bool direct = false; ///< one statement of SQLite does it all
    Statement statement; ///< the change itself, or the query for rows and new values
    std::vector<int> columns;
    std::vector<std::string> variables; ///< SET @v = ..., behind the columns in the query
    std::vector<SqlType> variableTypes;
    std::optional<OutputPlan> output;
};

const Source* findTarget(const Scope& scope, const ast::TableSource& target, const ObjectPtr& table)
{
    const auto* named = ast::tryAs<ast::NamedTable>(&target);
    for (const Source& source : scope.sources) {
        if (named != nullptr && source.aliased && named->name.schema.empty() &&
            sameName(source.exposed, named->name.object))
            return &source;
    }
    for (const Source& source : scope.sources) {
        if (table && source.object && source.object->id == table->id &&
            source.object->databaseId == table->databaseId)
            return &source;
    }
    return nullptr;
}

/// FROM with the target in it, the target's own source, and what the WHERE says.
class ChangeBinder
{
public:
    ChangeBinder(SessionState& session, const ast::TableSource& target,
                 const std::vector<ast::TableSourcePtr>& from, const ast::Expression* where, Right right)
        : session_(session), translator_(session.bindContext()), target_(target), fromList_(from),
          whereNode_(where), right_(right)
    {}

    void bindSources(ChangePlan& plan)
    {
        from_ = translator_.fromClause(fromList_, scope_);
        if (!fromList_.empty()) {
            if (const Source* aliased = findTarget(scope_, target_, nullptr))
                plan.table = aliased->object;
        }
        if (!plan.table)
            plan.table = changeTarget(session_, translator_, target_, right_);
        if (!plan.table || plan.table->kind != ObjectKind::UserTable)
            raise(208, {"inserted"});
        requireWritable(*session_.catalog().database(plan.table->databaseId));
        if (findTarget(scope_, target_, plan.table) == nullptr) {
            const auto* named = ast::tryAs<ast::NamedTable>(&target_);
            const std::string exposed = !target_.alias.empty() ? target_.alias
                                        : named != nullptr     ? named->name.object
                                                               : ast::as<ast::VariableTable>(target_).name;
            Source source{.exposed = exposed, .shown = exposed};
            translator_.watch(source, plan.table);
            const std::string own = translator_.addStoredTable(plan.table, std::move(source), scope_);
            from_ = from_.empty() ? own : own + ", " + from_;
        }
        const Source& source = *findTarget(scope_, target_, plan.table);
        translator_.needOnlyWhatIsRead(source);
        handle_ = source.handle;
        scope_.clause = Clause::Where;
        if (whereNode_ != nullptr)
            where_ = " WHERE " + translator_.condition(*whereNode_, scope_);
        scope_.clause = Clause::Set;
    }

    [[nodiscard]] std::string limit(const std::optional<ast::Top>& top)
    {
        if (!top)
            return {};
        Scope scalar;
        return " LIMIT " + callText("t_rowlimit", {translator_.expression(*top->count, scalar).sql});
    }

    /// A column of the target is read though no expression names it.
    void noteRead(const Column& column)
    {
        const Source& source = *std::ranges::find(scope_.sources, handle_, &Source::handle);
        const auto read = std::ranges::find(source.columns, column.name, &SourceColumn::name);
        translator_.noteRead(source, *read);
    }

    [[nodiscard]] Translator& translator() { return translator_; }
    [[nodiscard]] Scope& scope() { return scope_; }
    [[nodiscard]] const std::string& from() const { return from_; }
    [[nodiscard]] const std::string& where() const { return where_; }
    [[nodiscard]] const std::string& handle() const { return handle_; }
    [[nodiscard]] bool isAlone() const { return fromList_.empty(); }

private:
    SessionState& session_;
    Translator translator_;
    const ast::TableSource& target_;
    const std::vector<ast::TableSourcePtr>& fromList_;
    const ast::Expression* whereNode_;
    Right right_;
    Scope scope_;
    std::string from_;
    std::string where_;
    std::string handle_;
};

bool hasUniqueKeyOn(const Object& table, const std::vector<int>& columns)
{
    return std::any_of(table.indexes.begin(), table.indexes.end(), [&columns](const Index& index) {
        return index.unique &&
               std::any_of(index.keys.begin(), index.keys.end(), [&columns](const IndexKey& key) {
                   return std::find(columns.begin(), columns.end(), key.columnId) != columns.end();
               });
    });
}

bool hasTimestamp(const Object& table)
{
    return std::any_of(table.columns.begin(), table.columns.end(),
                       [](const Column& column) { return column.type.id == TypeId::Timestamp; });
}

std::string newValue(SessionState& session, ChangeBinder& binder, const ObjectPtr& table,
                     const Column& column, const ast::Assignment& assignment)
{
    Translator& translator = binder.translator();
    Term value;
    if (assignment.value->kind == ast::ExpressionKind::Default) {
        Scope scalar;
        if (!column.defaultText.empty()) {
            const auto tree = parsedExpression(column.defaultText);
            value = translator.expression(*tree, scalar);
        } else {
            value = nullTerm();
        }
    } else {
        value = translator.expression(*assignment.value, binder.scope());
    }
    if (assignment.op != ast::AssignmentOperator::Set) {
        binder.noteRead(column);
        const Term before =
            resultTerm(binder.handle() + "." + storageColumn(column.id), column.type, column.nullable);
        value = arithmetic(ast::operatorOf(assignment.op), before, value, translator.emptyNulls());
    }
    const Term converted = convertTerm(value, column.type, Conversion::Assignment);
    if (column.nullable || !converted.nullable)
        return converted.sql;
    return callText("t_required", {converted.sql, quotedText(column.name),
                                   quotedText(fullName(session, *table)), "'UPDATE'"});
}

std::unique_ptr<ChangePlan> bindUpdate(SessionState& session, const ast::UpdateStatement& statement)
{
    auto plan = std::make_unique<ChangePlan>();
    ChangeBinder binder(session, *statement.target, statement.from, statement.where.get(), Right::Update);
    binder.translator().enterCommonTables(statement.commonTables);
    binder.bindSources(*plan);
    const Object& table = *plan->table;
    std::vector<std::string> values;
    std::vector<std::string> variableValues;
    for (const ast::Assignment& assignment : statement.assignments) {
        if (!assignment.variable.empty()) {
            plan->variables.push_back(assignment.variable);
            (void)session.calls().variable(assignment.variable);
        }
        if (assignment.column.empty()) {
            const Term value = binder.translator().expression(*assignment.value, binder.scope());
            variableValues.push_back(value.sql);
            plan->variableTypes.push_back(value.type);
            continue;
        }
        const Column* column = table.column(assignment.column);
        if (column == nullptr)
            raise(207, {assignment.column});
        if (std::find(plan->columns.begin(), plan->columns.end(), column->id) != plan->columns.end())
            raise(264, {assignment.column});
        if (column->identity)
            raise(8102, {column->name});
        if (column->computed)
            raise(271, {column->name});
        if (column->type.id == TypeId::Timestamp)
            raise(272);
        plan->columns.push_back(column->id);
        values.push_back(newValue(session, binder, plan->table, *column, assignment));
        if (!assignment.variable.empty()) {
            variableValues.push_back(values.back());
            plan->variableTypes.push_back(column->type);
        }
    }
    binder.translator().need(plan->table, Right::Update, {plan->columns.begin(), plan->columns.end()});
    binder.translator().requireRights();
    const bool quiet = table.checks.empty() && table.foreignKeys.empty() && table.referencedBy.empty();
    plan->direct = binder.isAlone() && quiet && !statement.top && !statement.output &&
                   plan->variables.empty() && !plan->columns.empty() &&
                   !hasUniqueKeyOn(table, plan->columns) && !hasTimestamp(table);
    std::string text;
    if (plan->direct) {
        for (std::size_t i = 0; i < values.size(); ++i)
            text += (i == 0 ? "UPDATE " + binder.from() + " SET " : ", ") + storageColumn(plan->columns[i]) +
                    " = " + values[i];
        text += binder.where();
    } else {
        text = "SELECT " + binder.handle() + ".rowid";
        for (const auto* list : {&values, &variableValues}) {
            for (const std::string& value : *list)
                text += ", " + value;
        }
        text += " FROM " + binder.from() + binder.where() + binder.limit(statement.top);
    }
    plan->statement = Statement(session.connection(), text, true);
    plan->slots = binder.translator().parameters();
    if (statement.output)
        plan->output = bindOutput(session, *statement.output, plan->table, OutputOf::Updated);
    return plan;
}

std::unique_ptr<ChangePlan> bindDelete(SessionState& session, const ast::DeleteStatement& statement)
{
    auto plan = std::make_unique<ChangePlan>();
    ChangeBinder binder(session, *statement.target, statement.from, statement.where.get(), Right::Delete);
    binder.translator().enterCommonTables(statement.commonTables);
    binder.bindSources(*plan);
    binder.translator().need(plan->table, Right::Delete);
    binder.translator().requireRights();
    plan->direct =
        binder.isAlone() && plan->table->referencedBy.empty() && !statement.top && !statement.output;
    const std::string text = plan->direct ? "DELETE FROM " + binder.from() + binder.where()
                                          : "SELECT " + binder.handle() + ".rowid FROM " + binder.from() +
                                                binder.where() + binder.limit(statement.top);
    plan->statement = Statement(session.connection(), text, true);
    plan->slots = binder.translator().parameters();
    if (statement.output)
        plan->output = bindOutput(session, *statement.output, plan->table, OutputOf::Deleted);
    return plan;
}

ChangePlan& planUpdate(SessionState& session, const ast::UpdateStatement& statement)
{
    if (auto* known = session.findPlan<ChangePlan>(&statement))
        return *known;
    return session.keepPlan(&statement, bindUpdate(session, statement));
}

ChangePlan& planDelete(SessionState& session, const ast::DeleteStatement& statement)
{
    if (auto* known = session.findPlan<ChangePlan>(&statement))
        return *known;
    return session.keepPlan(&statement, bindDelete(session, statement));
}

std::uint64_t runDirect(SessionState& session, ChangePlan& plan)
{
    session.bindSlots(plan.statement.handle(), plan.slots);
    const ResetGuard guard(plan.statement);
    while (plan.statement.step()) {
    }
    return static_cast<std::uint64_t>(sqlite3_changes64(session.connection()));
}

/// Reads all before anything changes; of a row that a join found twice the first finding counts.
std::vector<RowChange> collectChanges(SessionState& session, ChangePlan& plan)
{
    session.bindSlots(plan.statement.handle(), plan.slots);
    const ResetGuard guard(plan.statement);
    sqlite3_stmt* handle = plan.statement.handle();
    std::vector<RowChange> changes;
    std::unordered_set<std::int64_t> seen;
    while (plan.statement.step()) {
        const std::int64_t row = plan.statement.integer(0);
        if (plan.statement.isNull(0) || !seen.insert(row).second)
            continue;
        RowChange change{row, {}};
        for (std::size_t i = 0; i < plan.columns.size(); ++i)
            change.values.emplace_back(
                sqlite3_value_dup(sqlite3_column_value(handle, static_cast<int>(i + 1))));
        changes.push_back(std::move(change));
        for (std::size_t i = 0; i < plan.variables.size(); ++i) {
            Value value;
            decodeColumn(handle, static_cast<int>(1 + plan.columns.size() + i), plan.variableTypes[i], value);
            session.assign(plan.variables[i], value, plan.variableTypes[i]);
        }
    }
    return changes;
}

} // namespace

void executeUpdate(SessionState& session, const ast::UpdateStatement& statement)
{
    session.startImplicitTransaction();
    std::vector<std::vector<Value>> shown;
    ChangePlan* used = nullptr;
    const std::uint64_t rows = session.atomically([&session, &statement, &shown, &used] {
        ChangePlan& plan = planUpdate(session, statement);
        used = &plan;
        if (plan.direct)
            return runDirect(session, plan);
        const std::vector<RowChange> changes = collectChanges(session, plan);
        std::vector<OldRow> before;
        for (const RowChange& change : changes) {
            if (plan.output)
                before.push_back(readOldRow(session, *plan.output, change.row));
        }
        if (!plan.columns.empty())
            updateRows(session, plan.table, plan.columns, changes, "UPDATE");
        for (std::size_t i = 0; i < before.size(); ++i)
            shown.push_back(rowOutput(session, *plan.output, changes[i].row, before[i]));
        if (plan.output)
            storeOutput(session, *plan.output, shown);
        return static_cast<std::uint64_t>(changes.size());
    });
    if (used->output)
        sendOutput(session, *used->output, shown);
    session.outcome().lastRowCount = static_cast<std::int64_t>(rows);
    session.done(rows, commands::updateRows);
}

void executeDelete(SessionState& session, const ast::DeleteStatement& statement)
{
    session.startImplicitTransaction();
    std::vector<std::vector<Value>> shown;
    ChangePlan* used = nullptr;
    const std::uint64_t rows = session.atomically([&session, &statement, &shown, &used] {
        ChangePlan& plan = planDelete(session, statement);
        used = &plan;
        if (plan.direct)
            return runDirect(session, plan);
        std::vector<std::int64_t> places;
        for (const RowChange& change : collectChanges(session, plan)) {
            places.push_back(change.row);
            if (plan.output)
                shown.push_back(rowOutput(session, *plan.output, change.row));
        }
        deleteRows(session, plan.table, places);
        if (plan.output)
            storeOutput(session, *plan.output, shown);
        return static_cast<std::uint64_t>(places.size());
    });
    if (used->output)
        sendOutput(session, *used->output, shown);
    session.outcome().lastRowCount = static_cast<std::int64_t>(rows);
    session.done(rows, commands::deleteRows);
}

void executeTruncate(SessionState& session, const ast::TruncateStatement& statement)
{
    session.startImplicitTransaction();
    session.atomically([&session, &statement] {
        Translator translator(session.bindContext());
        ObjectPtr table;
        try {
            table = translator.object(statement.table);
        } catch (const SqlError& error) {
            if (error.message.number != 208)
                throw;
            raise(4701, {statement.table.object});
        }
        // No module lends it: what is asked for is the right to alter the table.
        if (!mayChange(session, *table)) {
            constexpr int ofTruncate = 7;
            Message hidden = makeMessage(1088, {writtenName(statement.table)});
            hidden.state = ofTruncate;
            throw SqlError{hidden};
        }
        if (table->kind != ObjectKind::UserTable)
            raise(4708, {statement.table.object});
        requireWritable(*session.catalog().database(table->databaseId));
        const bool referenced =
            std::any_of(table->referencedBy.begin(), table->referencedBy.end(),
                        [](const ForeignKey& key) { return key.tableId != key.referencedId; });
        if (referenced)
            raise(4712, {statement.table.object});
        execute(session.connection(), "DELETE FROM " + storageTable(table->databaseId, table->id));
        if (const Column* identity = table->identityColumn(); identity != nullptr) {
            session.catalog().setLastIdentity(table->databaseId, table->id,
                                              identity->identity->seed - identity->identity->increment);
        }
        return 0;
    });
    session.outcome().lastRowCount = 0;
}

void planAhead(SessionState& session, const ast::Statement& statement)
{
    switch (statement.kind) {
    case ast::StatementKind::Select:
        (void)planQuery(session, ast::as<ast::SelectStatement>(statement).query);
        break;
    case ast::StatementKind::Update:
        (void)planUpdate(session, ast::as<ast::UpdateStatement>(statement));
        break;
    case ast::StatementKind::Delete:
        (void)planDelete(session, ast::as<ast::DeleteStatement>(statement));
        break;
    default:
        break;
    }
}

} // namespace practice
