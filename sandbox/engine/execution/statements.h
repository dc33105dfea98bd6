// The statements that read and change data, and those that change the session.
#pragma once

#include "engine/session/session_state.h"

#include <vector>

namespace practice {

/// The plan of a query, made or taken from the batch's cache.
QueryPlan& planQuery(SessionState& session, const ast::Query& query);

void executeSelect(SessionState& session, const ast::SelectStatement& statement);

void executeInsert(SessionState& session, const ast::InsertStatement& statement);
/// Rows that come from outside, within the running statement: of a procedure, of OUTPUT.
void addRows(SessionState& session, const ast::InsertStatement& statement,
             const std::vector<ColumnInfo>& columns, const std::vector<std::vector<Value>>& rows);
/// Before the rows are there, and though there may be none. @throws SqlError 208, 229 ...
void requireMayInsert(SessionState& session, const ast::TableSource& target);
/// INSERT ... EXEC with the rows that the procedure gave.
void insertRows(SessionState& session, const ast::InsertStatement& statement,
                const std::vector<ColumnInfo>& columns, const std::vector<std::vector<Value>>& rows);
void executeUpdate(SessionState& session, const ast::UpdateStatement& statement);
void executeDelete(SessionState& session, const ast::DeleteStatement& statement);
void executeTruncate(SessionState& session, const ast::TruncateStatement& statement);

/// Binds a statement before it runs, so that its faults show before the batch begins.
void planAhead(SessionState& session, const ast::Statement& statement);

void executeSetOption(SessionState& session, const ast::SetOptionStatement& statement);
void executePrint(SessionState& session, const ast::PrintStatement& statement);
void executeRaiserror(SessionState& session, const ast::RaiserrorStatement& statement);
void executeWaitFor(SessionState& session, const ast::WaitForStatement& statement);
/// What can be said of a WAITFOR before its batch runs. @throws SqlError 148
void checkWaitFor(const ast::WaitForStatement& statement);
void executeDbcc(SessionState& session, const ast::DbccStatement& statement);

void declareCursor(SessionState& session, const ast::DeclareCursorStatement& statement);
void executeCursor(SessionState& session, const ast::CursorStatement& statement);
void executeFetch(SessionState& session, const ast::FetchStatement& statement);

} // namespace practice
