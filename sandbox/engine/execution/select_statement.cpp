// SELECT as a statement: rows sent, or assigned to variables.
#include "engine/execution/select_into.h"
#include "engine/execution/statements.h"
#include "engine/execution/step_query.h"
#include "engine/messages/errors.h"
#include "types/text_encoding.h"

#include <algorithm>

namespace practice {

namespace {

const ast::SelectBlock* firstBlock(const ast::QueryBody& body)
{
    const ast::QueryBody* at = &body;
    while (!at->block)
        at = at->operands.front().get();
    return at->block.get();
}

/// The variables that a SELECT @v = ... fills; none of a query that returns rows.
std::vector<std::string> assignedVariables(const ast::SelectBlock& block)
{
    std::vector<std::string> names;
    for (const ast::SelectItem& item : block.items) {
        if (item.kind == ast::SelectItemKind::Assignment)
            names.push_back(lowerCase(item.variable));
    }
    if (!names.empty() && names.size() != block.items.size())
        raise(141);
    return names;
}

} // namespace

QueryPlan& planQuery(SessionState& session, const ast::Query& query)
{
    if (auto* known = session.findPlan<QueryPlan>(&query))
        return *known;
    auto plan = std::make_unique<QueryPlan>();
    plan->block = firstBlock(*query.body);
    plan->assigned = assignedVariables(*plan->block);
    Translator translator(session.bindContext());
    if (!plan->block->from.empty())
        translator.liveVariables.insert(plan->assigned.begin(), plan->assigned.end());
    TranslatedQuery translated = translator.statement(query);
    translator.requireRights();
    for (const std::string& name : plan->assigned)
        (void)session.calls().variable(name);
    plan->columns = std::move(translated.columns);
    for (const QueryColumn& column : plan->columns) {
        ColumnInfo info{column.name, column.type, column.nullable, column.identity.has_value(),
                        column.updatable};
        if (info.type.id == TypeId::Null)
            info.type = intType();
        plan->described.push_back(std::move(info));
    }
    plan->slots = translator.parameters();
    plan->statement = Statement(session.connection(), translated.sql, true);
    return session.keepPlan(&query, std::move(plan));
}

namespace {

void selectIntoVariables(SessionState& session, QueryPlan& plan)
{
    const std::uint64_t rows = stepQuery(session, plan, [&session, &plan](const std::vector<Value>& values) {
        for (std::size_t i = 0; i < values.size(); ++i)
            session.assign(plan.assigned[i], values[i], plan.columns[i].type);
    });
    session.outcome().lastRowCount = static_cast<std::int64_t>(rows);
    session.done(rows, commands::select);
}

void selectRows(SessionState& session, QueryPlan& plan)
{
    ResultSink& sink = session.sink();
    sink.columns(plan.described);
    if (session.options().formatOnly)
        return session.done(0, commands::select);
    const std::uint64_t rows =
        stepQuery(session, plan, [&sink](const std::vector<Value>& values) { sink.row(values); });
    session.outcome().lastRowCount = static_cast<std::int64_t>(rows);
    session.done(rows, commands::select);
}

} // namespace

void executeSelect(SessionState& session, const ast::SelectStatement& statement)
{
    QueryPlan& plan = planQuery(session, statement.query);
    if (plan.block->into)
        return selectInto(session, plan, *plan.block->into);
    if (!plan.block->from.empty())
        session.startImplicitTransaction();
    if (!plan.assigned.empty())
        return selectIntoVariables(session, plan);
    selectRows(session, plan);
}

} // namespace practice
