#include "engine/execution/select_into.h"

#include "engine/execution/step_query.h"
#include "engine/messages/errors.h"
#include "engine/session/session_scope.h"
#include "tsql/parser.h"

namespace practice {

namespace {

std::string columnDefinition(const QueryColumn& column)
{
    SqlType type = column.type;
    if (type.id == TypeId::Null)
        type = intType();
    std::string text =
        renderName(column.name) + " " + (type.id == TypeId::Timestamp ? "timestamp" : describe(type));
    if (isCharacter(type.id) && !column.collation.empty())
        text += " COLLATE " + column.collation;
    if (column.identity)
        text += " IDENTITY(" + std::to_string(column.identity->seed) + "," +
                std::to_string(column.identity->increment) + ")";
    return text + (column.nullable && !column.identity ? " NULL" : " NOT NULL");
}

std::string tableDefinition(const QueryPlan& plan, const ast::ObjectName& target)
{
    std::string text;
    for (const QueryColumn& column : plan.columns) {
        if (column.name.empty())
            raise(1038);
        text +=
            (text.empty() ? "CREATE TABLE " + renderName(target) + " (" : ", ") + columnDefinition(column);
    }
    return text + ")";
}

/// Puts the rows in as they are, in storage form.
std::uint64_t fill(SessionState& session, const ObjectPtr& table, const std::vector<std::vector<Value>>& rows)
{
    std::string columns;
    std::string places;
    for (const Column& column : table->columns) {
        columns += (columns.empty() ? "" : ",") + storageColumn(column.id);
        places += places.empty() ? "?" : ",?";
    }
    Statement insert(session.connection(), "INSERT INTO " + storageTable(table->databaseId, table->id) +
                                               " (" + columns + ") VALUES (" + places + ")");
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            bindStorage(insert.handle(), static_cast<int>(i + 1), row[i], table->columns[i].type);
        insert.run();
    }
    if (const Column* identity = table->identityColumn(); identity != nullptr && !rows.empty()) {
        Statement highest(session.connection(), "SELECT max(" + storageColumn(identity->id) + ") FROM " +
                                                    storageTable(table->databaseId, table->id));
        if (highest.step())
            session.catalog().setLastIdentity(table->databaseId, table->id, highest.integer(0));
    }
    return rows.size();
}

} // namespace

void selectInto(SessionState& session, QueryPlan& plan, const ast::ObjectName& target)
{
    const std::string definition = tableDefinition(plan, target);
    session.startImplicitTransaction();
    const std::uint64_t rows = session.atomically([&session, &plan, &target, &definition] {
        // Read first: the statement must not be running while the schema changes.
        std::vector<std::vector<Value>> read;
        stepQuery(session, plan, [&read](const std::vector<Value>& values) { read.push_back(values); });
        {
            const Temporarily<bool> quiet(session.options().noCount, true);
            (void)session.queryText(definition);
        }
        Translator translator(session.bindContext());
        return fill(session, translator.object(target), read);
    });
    session.temporaries().ownGlobal(target.object);
    session.outcome().lastRowCount = static_cast<std::int64_t>(rows);
    session.done(rows, commands::select);
}

} // namespace practice
