// The syntax tree of what tables are made of: columns, constraints, their options.
#pragma once

#include "tsql/ast_expression.h"

namespace practice::ast {

/// "NAME", "NAME = value" or "NAME ON" in the option lists of many statements.
struct NamedOption
{
    std::string name;                  ///< upper case, words joined by one blank: "CHECK_POLICY"
    std::vector<ExpressionPtr> values; ///< literals and variables; ON, OFF and other words are bareWord
                                       ///< literals as written
};

/// WITH options of an index or of a PRIMARY KEY or UNIQUE constraint, in the old form
/// (WITH PAD_INDEX, FILLFACTOR = 80) or the new one (WITH (PAD_INDEX = ON)).
struct IndexOptions
{
    std::optional<int> fillFactor;
    std::optional<bool> padIndex;
    std::optional<bool> ignoreDuplicateKey;
    std::optional<bool> dropExisting;
    std::optional<bool> statisticsNoRecompute;
    std::optional<bool> sortInTempdb;
    std::optional<bool> allowRowLocks;
    std::optional<bool> allowPageLocks;
    std::vector<NamedOption> others; ///< ONLINE, MAXDOP, DATA_COMPRESSION ...
};

struct IndexColumn
{
    std::string name;
    bool descending = false;
};

enum class ConstraintKind : std::uint8_t
{
    PrimaryKey,
    Unique,
    ForeignKey,
    Check,
    Default
};
enum class ReferentialAction : std::uint8_t
{
    NoAction,
    Cascade,
    SetNull,
    SetDefault
};

/// A constraint of a table or of a column (then without columns of its own).
struct TableConstraint
{
    SourceRange source;
    std::string name; ///< "" when the server is to invent one
    ConstraintKind kind = ConstraintKind::Check;
    bool notForReplication = false;

    // PRIMARY KEY, UNIQUE
    std::optional<bool> clustered;    ///< as written, if it was
    std::vector<IndexColumn> columns; ///< also the columns of FOREIGN KEY
    IndexOptions options;
    std::string fileGroup; ///< ON filegroup, or ""

    // FOREIGN KEY
    ObjectName referencedTable;
    std::vector<std::string> referencedColumns;
    ReferentialAction onDelete = ReferentialAction::NoAction;
    ReferentialAction onUpdate = ReferentialAction::NoAction;

    // CHECK: the condition; DEFAULT: the value. Their texts are at expression->source, without
    // the parentheses that CHECK requires and with those that the user wrote around a default.
    ExpressionPtr expression;
    std::string forColumn; ///< of ADD CONSTRAINT ... DEFAULT ... FOR column
    bool withValues = false;
};

struct IdentityClause
{
    std::string seed = "1"; ///< as written, with its sign
    std::string increment = "1";
    bool notForReplication = false;
};

struct ColumnDefinition
{
    SourceRange source;
    std::string name;
    DataType type;                ///< of a column that is not computed; "timestamp" may stand without
                                  ///< a type, then the type is timestamp
    std::string collation;        ///< "" without COLLATE
    std::optional<bool> nullable; ///< as written, if it was
    std::optional<IdentityClause> identity;
    bool rowGuid = false;
    bool sparse = false;
    ExpressionPtr computed; ///< AS expression; its text is at computed->source
    bool persisted = false;
    std::vector<TableConstraint> constraints; ///< PRIMARY KEY, UNIQUE, REFERENCES, CHECK, DEFAULT
};

/// Columns and table constraints in parentheses.
struct TableElements
{
    std::vector<ColumnDefinition> columns;
    std::vector<TableConstraint> constraints;
};

} // namespace practice::ast
