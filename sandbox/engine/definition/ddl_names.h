// Finds what definition statements name, and refuses what may not be named.
#pragma once

#include "engine/context/session_context.h"
#include "tsql/ast.h"

#include <string>

namespace practice {

/// Where an object stands or is going to stand.
struct ObjectPlace
{
    DatabasePtr database;
    int ownerId = 1;
    std::string owner;   ///< "dbo"
    std::string name;    ///< as the catalog has it: a temporary table's carries its session's suffix
    std::string written; ///< as messages call it
};

/// The database of a name, the current one where none is written.
/// @throws SqlError 911, 916, 942
[[nodiscard]] DatabasePtr databaseOf(SessionContext& session, const ast::ObjectName& name);

/// Where CREATE puts an object. "#t" goes to tempdb.
/// @throws SqlError 911, 916; 262, 2760 when the user may not create there
[[nodiscard]] ObjectPlace placeForNew(SessionContext& session, const ast::ObjectName& name,
                                      const char* statement);

/// The object of that name, or nullptr.
/// @throws SqlError 911, 916
[[nodiscard]] ObjectPtr findNamed(SessionContext& session, const ast::ObjectName& name);

/// A user's table for ALTER TABLE or CREATE INDEX.
/// @throws SqlError `missing` (4902, 1088) when there is none, 1088 for one that the user may not alter, 4909
/// for what is no table
[[nodiscard]] ObjectPtr requireTable(SessionContext& session, const ast::ObjectName& name, int missing);

/// How a statement tells of an object that it hides from who may not alter it, by its state.
inline constexpr int ofCreateIndex = 12;
inline constexpr int ofAlterTable = 13;
/// @throws SqlError 1088 always
[[noreturn]] void raiseHidden(const ast::ObjectName& name, int state);
/// The object is there, and not the user's to drop or alter.
/// @throws SqlError 3701 always
[[noreturn]] void raiseNoRight(const char* verb, const char* kind, const std::string& name);

/// True when an object, a constraint included, has that name.
[[nodiscard]] bool isNameTaken(SessionContext& session, int databaseId, int ownerId, const std::string& name);

/// The groupid of a filegroup; the default group for "" and "DEFAULT".
/// @throws SqlError 1921
[[nodiscard]] int filegroupOf(SessionContext& session, int databaseId, const std::string& name);

/// As messages write it: the parts that were written, joined by points, without quotes.
[[nodiscard]] std::string plainName(const ast::ObjectName& name);
/// "table", "view", "procedure" ... as messages call a kind of object.
[[nodiscard]] const char* kindWord(ObjectKind kind);

/// Sends the first message and raises the second: constraints fail with two.
[[noreturn]] void raiseAfter(SessionContext& session, const Message& first, int second);

/// Takes a list's items one by one, each by itself: what fails leaves the others done.
template <typename List, typename Work>
void forEachOf(SessionContext& session, const List& list, Work work)
{
    if (list.size() == 1)
        return work(list.front());
    for (const auto& item : list)
        session.attempt([&] { work(item); });
}

/// A table as it now stands, changes of the running statement included.
[[nodiscard]] ObjectPtr reread(SessionContext& session, int databaseId, int objectId);

/// A piece of the running batch.
[[nodiscard]] std::string sourceText(SessionContext& session, const ast::SourceRange& range);

/// An expression's text in one pair of parentheses.
[[nodiscard]] std::string inParentheses(const std::string& text);

} // namespace practice
