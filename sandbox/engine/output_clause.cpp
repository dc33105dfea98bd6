#include "engine/output_clause.h"

#include "engine/errors.h"
#include "engine/statements.h"

namespace practice {

OutputPlan bindOutput(SessionState& session, const ast::OutputClause& clause, const ObjectPtr& table, OutputOf kind)
{
    Translator translator(session.bindContext());
    Scope scope;
    const char* name = kind == OutputOf::Deleted ? "deleted" : "inserted";
    const std::string from = translator.addStoredTable(table, {.exposed = name, .shown = name, .aliased = true}, scope);
    OutputPlan plan;
    plan.clause = &clause;
    plan.handle = scope.sources.front().handle;
    std::string list;
    const auto add = [&plan, &list](const Term& term, const std::string& column) {
        list += (list.empty() ? "" : ", ") + term.sql;
        plan.columns.push_back({column, term.type, term.collation, term.coercibility, term.nullable});
    };
    for (const ast::SelectItem& item : clause.items) {
        if (item.kind == ast::SelectItemKind::Star) {
            for (const SourceColumn& column : scope.sources.front().columns)
                add(column.term, column.name);
            continue;
        }
        const auto* column = ast::tryAs<ast::Column>(item.expression.get());
        add(translator.expression(*item.expression, scope),
            !item.alias.empty() || column == nullptr ? item.alias : column->name);
    }
    plan.sql = "SELECT " + list + " FROM " + from;
    plan.slots = translator.parameters();
    return plan;
}

namespace {

std::vector<std::vector<Value>> read(SessionState& session, const OutputPlan& plan, const char* comparison,
                                     std::int64_t row)
{
    Statement statement(session.connection(), plan.sql + " WHERE " + plan.handle + ".rowid " + comparison + " ?" +
                                                  std::to_string(plan.slots.size() + 1));
    session.bindSlots(statement.handle(), plan.slots);
    statement.bind(static_cast<int>(plan.slots.size()) + 1, row);
    std::vector<std::vector<Value>> rows;
    while (statement.step()) {
        rows.emplace_back(plan.columns.size());
        for (std::size_t i = 0; i < plan.columns.size(); ++i)
            decodeColumn(statement.handle(), static_cast<int>(i), plan.columns[i].type, rows.back()[i]);
    }
    return rows;
}

} // namespace

std::vector<std::vector<Value>> insertedOutput(SessionState& session, const OutputPlan& plan, std::int64_t firstRow)
{
    return read(session, plan, ">", firstRow);
}

std::vector<Value> rowOutput(SessionState& session, const OutputPlan& plan, std::int64_t row)
{
    auto rows = read(session, plan, "=", row);
    return rows.empty() ? std::vector<Value>() : std::move(rows.front());
}

void deliverOutput(SessionState& session, const OutputPlan& plan, const std::vector<std::vector<Value>>& rows)
{
    std::vector<ColumnInfo> described;
    for (const QueryColumn& column : plan.columns)
        described.push_back({column.name, column.type, column.nullable, false, false});
    if (plan.clause->into)
        raise(10700);
    session.sink().columns(described);
    for (const auto& row : rows)
        session.sink().row(row);
}

} // namespace practice
