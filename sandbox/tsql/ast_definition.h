// The syntax tree of the statements that define tables, indexes, views and programs.
#pragma once

#include "tsql/ast_statement.h"

namespace practice::ast {

struct CreateTableStatement : StatementOf<StatementKind::CreateTable>
{
    ObjectName name;
    TableElements elements;
    std::string fileGroup;     ///< ON, or ""
    std::string textFileGroup; ///< TEXTIMAGE_ON, or ""
    std::vector<NamedOption> options;
};

enum class AlterTableAction : std::uint8_t
{
    Add,
    AlterColumn,
    Drop,
    SwitchConstraints,
    SwitchTriggers
};

struct DropElement
{
    bool column = false; ///< otherwise a constraint
    bool ifExists = false;
    std::string name;
};

struct AlterTableStatement : StatementOf<StatementKind::AlterTable>
{
    ObjectName name;
    AlterTableAction action = AlterTableAction::Add;
    /// WITH CHECK (true) or WITH NOCHECK (false), as written, before ADD and CHECK CONSTRAINT.
    std::optional<bool> withCheck;
    TableElements elements; ///< of Add

    // AlterColumn
    ColumnDefinition column; ///< name, type, collation, nullable
    /// ALTER COLUMN c ADD|DROP ROWGUIDCOL (or PERSISTED, NOT FOR REPLICATION, SPARSE): the word, with
    /// `adds` telling which; then the column has no type.
    std::string columnProperty;
    bool adds = false;

    std::vector<DropElement> drops; ///< of Drop

    // SwitchConstraints (CHECK|NOCHECK CONSTRAINT), SwitchTriggers (ENABLE|DISABLE TRIGGER)
    bool enable = false;
    bool all = false;
    std::vector<std::string> names;
};

struct CreateIndexStatement : StatementOf<StatementKind::CreateIndex>
{
    bool unique = false;
    bool clustered = false;
    std::string name;
    ObjectName table;
    std::vector<IndexColumn> columns;
    std::vector<std::string> included;
    ExpressionPtr where; ///< of a filtered index
    IndexOptions options;
    std::string fileGroup;
};

enum class AlterIndexAction : std::uint8_t
{
    Rebuild,
    Reorganize,
    Disable,
    Set
};

struct AlterIndexStatement : StatementOf<StatementKind::AlterIndex>
{
    bool all = false;
    std::string name;
    ObjectName table;
    AlterIndexAction action = AlterIndexAction::Rebuild;
    IndexOptions options;
};

struct DroppedIndex
{
    ObjectName table;
    std::string name;
};

/// DROP INDEX t.i, t.j or DROP INDEX i ON t
struct DropIndexStatement : StatementOf<StatementKind::DropIndex>
{
    bool ifExists = false;
    std::vector<DroppedIndex> indexes;
};

enum class DropKind : std::uint8_t
{
    Table,
    View,
    Procedure,
    Function,
    Trigger,
    Database,
    Default,
    Rule,
    Type,
    Synonym,
    Statistics,
    Login,
    User,
    Role,
    Schema,
};

struct DropStatement : StatementOf<StatementKind::Drop>
{
    DropKind dropKind = DropKind::Table;
    bool ifExists = false;
    std::vector<ObjectName> names; ///< principals, schemas and databases in `object` alone
};

/// For views, procedures, functions and triggers: CREATE, ALTER, or CREATE OR ALTER. They stand alone
/// in their batch, so the text to keep is the whole batch.
enum class DefinitionMode : std::uint8_t
{
    Create,
    Alter,
    CreateOrAlter
};

struct CreateViewStatement : StatementOf<StatementKind::CreateView>
{
    DefinitionMode mode = DefinitionMode::Create;
    ObjectName name;
    std::vector<std::string> columns;
    bool encryption = false;
    bool schemaBinding = false;
    bool viewMetadata = false;
    Query query; ///< its text is at query.source
    bool checkOption = false;
};

struct ParameterDefinition
{
    SourceRange source;
    std::string name; ///< "@p"
    DataType type;
    ExpressionPtr defaultValue; ///< literal (maybe bareWord) or null
    bool output = false;
    bool readOnly = false;
};

struct CreateProcedureStatement : StatementOf<StatementKind::CreateProcedure>
{
    DefinitionMode mode = DefinitionMode::Create;
    ObjectName name;
    int number = 0; ///< proc;2
    std::vector<ParameterDefinition> parameters;
    bool recompile = false;
    bool encryption = false;
    bool forReplication = false;
    std::string executeAs; ///< "CALLER", "OWNER", "SELF", a user's name, or ""
    StatementList body;
};

enum class FunctionForm : std::uint8_t
{
    Scalar,
    InlineTable,
    MultiStatement
};

struct CreateFunctionStatement : StatementOf<StatementKind::CreateFunction>
{
    DefinitionMode mode = DefinitionMode::Create;
    ObjectName name;
    std::vector<ParameterDefinition> parameters;
    FunctionForm form = FunctionForm::Scalar;
    DataType returnType;       ///< of Scalar
    std::string tableVariable; ///< of MultiStatement
    TableElements tableElements;
    std::vector<std::string> options; ///< upper case: "SCHEMABINDING", "ENCRYPTION" ...
    StatementList body;               ///< of InlineTable: one ReturnStatement with its query
};

enum class TriggerTiming : std::uint8_t
{
    After,
    InsteadOf
};

struct CreateTriggerStatement : StatementOf<StatementKind::CreateTrigger>
{
    DefinitionMode mode = DefinitionMode::Create;
    ObjectName name;
    ObjectName table; ///< empty for ON DATABASE and ON ALL SERVER
    bool onDatabase = false;
    bool onServer = false;
    TriggerTiming timing = TriggerTiming::After;
    std::vector<std::string> events; ///< upper case: "INSERT", "UPDATE", "DELETE", "CREATE_TABLE" ...
    bool encryption = false;
    bool notForReplication = false;
    StatementList body;
};

/// CREATE DEFAULT name AS constant
struct CreateDefaultStatement : StatementOf<StatementKind::CreateDefault>
{
    ObjectName name;
    ExpressionPtr value;
};

/// CREATE RULE name AS condition over one @variable
struct CreateRuleStatement : StatementOf<StatementKind::CreateRule>
{
    ObjectName name;
    ExpressionPtr condition;
};

/// CREATE TYPE name FROM type [NULL | NOT NULL], or AS TABLE (...)
struct CreateTypeStatement : StatementOf<StatementKind::CreateType>
{
    ObjectName name;
    DataType base;
    std::optional<bool> nullable;
    std::unique_ptr<TableElements> table; ///< or null
};

/// ENABLE|DISABLE TRIGGER names ON table as a statement of its own.
struct EnableTriggerStatement : StatementOf<StatementKind::EnableTrigger>
{
    bool enable = false;
    bool all = false;
    std::vector<ObjectName> names;
    ObjectName table; ///< empty for ON DATABASE and ON ALL SERVER
};

struct CreateStatisticsStatement : StatementOf<StatementKind::CreateStatistics>
{
    std::string name;
    ObjectName table;
    std::vector<std::string> columns;
    std::vector<NamedOption> options;
};

struct UpdateStatisticsStatement : StatementOf<StatementKind::UpdateStatistics>
{
    ObjectName table;
    std::vector<std::string> names; ///< indexes or statistics; empty for all
    std::vector<NamedOption> options;
};

} // namespace practice::ast
