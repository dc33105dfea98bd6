#include "engine/execution/output_clause.h"

#include "engine/execution/statements.h"
#include "engine/messages/errors.h"

namespace practice {

namespace {

/// Parameters behind any that variables take.
constexpr int firstOld = 2000;

std::string oldParameter(std::size_t place)
{
    return "?" + std::to_string(firstOld + static_cast<int>(place));
}

/// The columns of a row that is no more, as parameters.
Source oldSource(const ObjectPtr& table, std::string& sql)
{
    Source source{.exposed = "deleted", .shown = "deleted", .aliased = true};
    std::string list;
    for (const Column& column : table->columns) {
        if (column.computed)
            continue;
        SourceColumn made;
        made.name = column.name;
        made.term = resultTerm(oldParameter(source.columns.size()), column.type, column.nullable);
        source.columns.push_back(std::move(made));
        list += (list.empty() ? "SELECT " : ", ") + storageColumn(column.id);
    }
    sql = list + " FROM " + storageTable(table->databaseId, table->id) + " WHERE rowid = ?1";
    return source;
}

} // namespace

OutputPlan bindOutput(SessionState& session, const ast::OutputClause& clause, const ObjectPtr& table,
                      OutputOf kind)
{
    Translator translator(session.bindContext());
    Scope scope;
    const char* name = kind == OutputOf::Deleted ? "deleted" : "inserted";
    Source fresh{.exposed = name, .shown = name, .aliased = true};
    translator.watch(fresh, table);
    const int need = fresh.need;
    const std::string from = translator.addStoredTable(table, std::move(fresh), scope);
    OutputPlan plan;
    plan.clause = &clause;
    plan.handle = scope.sources.front().handle;
    if (kind == OutputOf::Updated) {
        scope.sources.push_back(oldSource(table, plan.oldRowSql));
        scope.sources.back().need = need;
    }
    std::string list;
    const auto add = [&plan, &list](const Term& term, const std::string& column) {
        list += (list.empty() ? "" : ", ") + term.sql;
        plan.columns.push_back({column, term.type, term.collation, term.coercibility, term.nullable});
    };
    for (const ast::SelectItem& item : clause.items) {
        if (item.kind == ast::SelectItemKind::Star) {
            for (const Source& source : scope.sources) {
                if (!sameName(source.exposed, item.table.object))
                    continue;
                for (const SourceColumn& column : source.columns) {
                    translator.noteRead(source, column);
                    add(column.term, column.name);
                }
            }
            continue;
        }
        const auto* column = ast::tryAs<ast::Column>(item.expression.get());
        add(translator.expression(*item.expression, scope),
            !item.alias.empty() || column == nullptr ? item.alias : column->name);
    }
    translator.requireRights();
    if (clause.into)
        requireMayInsert(session, *clause.into);
    plan.sql = "SELECT " + list + " FROM " + from;
    plan.slots = translator.parameters();
    return plan;
}

namespace {

std::vector<std::vector<Value>> read(SessionState& session, const OutputPlan& plan, const char* comparison,
                                     std::int64_t row, const OldRow& old)
{
    const int rowParameter = static_cast<int>(plan.slots.size()) + 1;
    Statement statement(session.connection(), plan.sql + " WHERE " + plan.handle + ".rowid " + comparison +
                                                  " ?" + std::to_string(rowParameter));
    session.bindSlots(statement.handle(), plan.slots);
    statement.bind(rowParameter, row);
    const int known = sqlite3_bind_parameter_count(statement.handle());
    for (std::size_t i = 0; i < old.size() && firstOld + static_cast<int>(i) <= known; ++i)
        sqlite3_bind_value(statement.handle(), firstOld + static_cast<int>(i), old[i].get());
    std::vector<std::vector<Value>> rows;
    while (statement.step()) {
        rows.emplace_back(plan.columns.size());
        for (std::size_t i = 0; i < plan.columns.size(); ++i)
            decodeColumn(statement.handle(), static_cast<int>(i), plan.columns[i].type, rows.back()[i]);
    }
    return rows;
}

std::vector<ColumnInfo> describedColumns(const OutputPlan& plan)
{
    std::vector<ColumnInfo> described;
    for (const QueryColumn& column : plan.columns)
        described.push_back({column.name, column.type, column.nullable, false, false});
    return described;
}

} // namespace

std::vector<std::vector<Value>> insertedOutput(SessionState& session, const OutputPlan& plan,
                                               std::int64_t firstRow)
{
    return read(session, plan, ">", firstRow, {});
}

OldRow readOldRow(SessionState& session, const OutputPlan& plan, std::int64_t row)
{
    Statement statement(session.connection(), plan.oldRowSql);
    statement.bind(1, row);
    OldRow old;
    if (!statement.step())
        return old;
    for (int i = 0; i < sqlite3_column_count(statement.handle()); ++i)
        old.emplace_back(sqlite3_value_dup(sqlite3_column_value(statement.handle(), i)), &sqlite3_value_free);
    return old;
}

std::vector<Value> rowOutput(SessionState& session, const OutputPlan& plan, std::int64_t row,
                             const OldRow& old)
{
    auto rows = read(session, plan, "=", row, old);
    return rows.empty() ? std::vector<Value>() : std::move(rows.front());
}

void storeOutput(SessionState& session, const OutputPlan& plan, const std::vector<std::vector<Value>>& rows)
{
    if (!plan.clause->into || rows.empty())
        return;
    ast::InsertStatement insert;
    insert.columns = plan.clause->intoColumns;
    if (const auto* named = ast::tryAs<ast::NamedTable>(plan.clause->into.get())) {
        auto target = std::make_unique<ast::NamedTable>();
        target->name = named->name;
        insert.target = std::move(target);
    } else {
        auto target = std::make_unique<ast::VariableTable>();
        target->name = ast::as<ast::VariableTable>(*plan.clause->into).name;
        insert.target = std::move(target);
    }
    addRows(session, insert, describedColumns(plan), rows);
}

void sendOutput(SessionState& session, const OutputPlan& plan, const std::vector<std::vector<Value>>& rows)
{
    if (plan.clause->into)
        return;
    session.sink().columns(describedColumns(plan));
    for (const auto& row : rows)
        session.sink().row(row);
}

} // namespace practice
