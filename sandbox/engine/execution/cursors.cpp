// Cursors.
#include "engine/execution/statements.h"
#include "engine/execution/step_query.h"
#include "engine/messages/errors.h"
#include "engine/session/session_scope.h"

#include <algorithm>

namespace practice {

namespace {

/// A local cursor hides a global one of its name.
Cursor& findCursor(SessionState& session, const std::string& name)
{
    const std::string key = foldName(name);
    if (const auto local = session.frame().cursors.find(key); local != session.frame().cursors.end())
        return local->second;
    const auto found = session.globalCursors().find(key);
    if (found == session.globalCursors().end())
        raise(16916, {name});
    return found->second;
}

void open(SessionState& session, Cursor& cursor)
{
    if (cursor.open)
        raise(16905);
    // The query belongs to the batch that declared the cursor, so its plan is kept there too.
    const Temporarily<CompiledBatchPtr> compiled(session.frame().compiled, cursor.owner);
    QueryPlan& plan = planQuery(session, *cursor.query);
    cursor.columns = plan.columns;
    cursor.rows.clear();
    stepQuery(session, plan, [&cursor](const std::vector<Value>& values) { cursor.rows.push_back(values); });
    cursor.open = true;
    cursor.position = -1;
    session.outcome().cursorRows = static_cast<int>(cursor.rows.size());
}

std::int64_t targetOf(SessionState& session, const Cursor& cursor, const ast::FetchStatement& statement)
{
    const auto count = static_cast<std::int64_t>(cursor.rows.size());
    const auto given = [&session, &statement] {
        const Value value = session.evaluate(*statement.position, intType());
        return value.isNull() ? std::int64_t{0} : std::get<std::int64_t>(value.data);
    };
    switch (statement.direction) {
    case ast::FetchDirection::Next:
        return cursor.position + 1;
    case ast::FetchDirection::Prior:
        return cursor.position - 1;
    case ast::FetchDirection::First:
        return 0;
    case ast::FetchDirection::Last:
        return count - 1;
    case ast::FetchDirection::Absolute: {
        const std::int64_t place = given();
        return place > 0 ? place - 1 : place < 0 ? count + place : -1;
    }
    case ast::FetchDirection::Relative:
        return cursor.position + given();
    }
    return count;
}

const char* directionName(ast::FetchDirection direction)
{
    constexpr const char* names[] = {"next", "prior", "first", "last", "absolute", "relative"};
    return names[static_cast<std::size_t>(direction)];
}

} // namespace

void declareCursor(SessionState& session, const ast::DeclareCursorStatement& statement)
{
    const bool local =
        std::find(statement.options.begin(), statement.options.end(), "LOCAL") != statement.options.end();
    auto& cursors = local ? session.frame().cursors : session.globalCursors();
    Cursor cursor;
    cursor.query = statement.query.get();
    cursor.owner = session.frame().compiled;
    cursor.forwardOnly = !statement.scroll;
    if (!cursors.emplace(foldName(statement.name), std::move(cursor)).second)
        raise(16915, {statement.name});
}

void executeCursor(SessionState& session, const ast::CursorStatement& statement)
{
    Cursor& cursor = findCursor(session, statement.name);
    switch (statement.action) {
    case ast::CursorAction::Open:
        return open(session, cursor);
    case ast::CursorAction::Close:
        if (!cursor.open)
            raise(16917);
        cursor.open = false;
        cursor.rows.clear();
        return;
    case ast::CursorAction::Deallocate:
        if (session.frame().cursors.erase(foldName(statement.name)) == 0)
            session.globalCursors().erase(foldName(statement.name));
    }
}

void executeFetch(SessionState& session, const ast::FetchStatement& statement)
{
    Cursor& cursor = findCursor(session, statement.name);
    if (!cursor.open)
        raise(16917);
    if (cursor.forwardOnly && statement.direction != ast::FetchDirection::Next)
        raise(16911, {"fetch", directionName(statement.direction)});
    const auto count = static_cast<std::int64_t>(cursor.rows.size());
    cursor.position = std::clamp<std::int64_t>(targetOf(session, cursor, statement), -1, count);
    const bool found = cursor.position >= 0 && cursor.position < count;
    session.outcome().fetchStatus = found ? 0 : -1;
    session.outcome().lastRowCount = found ? 1 : 0;
    if (!statement.into.empty()) {
        if (statement.into.size() != cursor.columns.size())
            raise(16924);
        for (std::size_t i = 0; found && i < statement.into.size(); ++i)
            session.assign(statement.into[i], cursor.rows[static_cast<std::size_t>(cursor.position)][i],
                           cursor.columns[i].type);
        return;
    }
    std::vector<ColumnInfo> described;
    for (const QueryColumn& column : cursor.columns)
        described.push_back({column.name, column.type, column.nullable, column.identity.has_value(), false});
    session.sink().columns(described);
    if (found)
        session.sink().row(cursor.rows[static_cast<std::size_t>(cursor.position)]);
    session.done(found ? 1 : 0, commands::select);
}

} // namespace practice
