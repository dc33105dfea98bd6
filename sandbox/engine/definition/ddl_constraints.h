// Adds constraints and indexes to a table that stands in catalog and store; CREATE TABLE and ALTER
// TABLE share it. Existing rows are checked where the statement asks for it.
#pragma once

#include "engine/context/session_context.h"
#include "tsql/ast.h"

#include <set>
#include <string>
#include <vector>

namespace practice {

/// The table that a statement works on.
struct TableChange
{
    SessionContext& session;
    int databaseId;
    int tableId;
    bool creating; ///< CREATE TABLE; ALTER TABLE otherwise
    bool check;    ///< existing rows must satisfy what is added

    [[nodiscard]] ObjectPtr table() const;
    [[nodiscard]] const char* statement() const { return creating ? "CREATE TABLE" : "ALTER TABLE"; }
};

/// PRIMARY KEY, UNIQUE, FOREIGN KEY and CHECK. `column` is the one that a column constraint was
/// written with, "" for a table's.
/// @throws SqlError, after the message that tells the cause where SQL Server sends two
void addConstraint(const TableChange& change, const ast::TableConstraint& constraint,
                   const std::string& column);

/// The DEFAULTs of columns and table.
void addDefaults(const TableChange& change, const ast::TableElements& elements);
/// All other constraints: keys first.
void addConstraints(const TableChange& change, const ast::TableElements& elements);
/// The columns that PRIMARY KEY constraints among the elements name, folded.
[[nodiscard]] std::set<std::string> primaryKeyColumns(const ast::TableElements& elements);

/// A DEFAULT for a column of the table.
void addDefault(const TableChange& change, const ast::TableConstraint& constraint, const std::string& column);

// The parts of it -------------------------------------------------------------------------------

void addKey(const TableChange& change, const ast::TableConstraint& constraint,
            std::vector<ast::IndexColumn> columns);
void addForeignKey(const TableChange& change, const ast::TableConstraint& constraint,
                   std::vector<std::string> columns);

/// The object behind a constraint, under its own name or one that is made for it.
/// @throws SqlError 1750 after 2714
int insertConstraintObject(const TableChange& change, ObjectKind kind, const std::string& name,
                           const std::string& column);

/// `check` and `nocheck` alike look for rows that break a constraint.
/// @throws SqlError 547
void requireRowsSatisfyCheck(const TableChange& change, const CheckConstraint& check);
void requireRowsSatisfyKey(const TableChange& change, const ForeignKey& key);

} // namespace practice
