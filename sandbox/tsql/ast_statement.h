// The syntax tree of statements: what they have in common, data changes, control of flow, session.
#pragma once

#include "tsql/ast_table.h"

namespace practice::ast {

enum class StatementKind : std::uint8_t
{
    // Data
    Select,
    Insert,
    Update,
    Delete,
    Truncate,
    // Definition (ast_definition.h)
    CreateTable,
    AlterTable,
    CreateIndex,
    AlterIndex,
    DropIndex,
    Drop,
    CreateView,
    CreateProcedure,
    CreateFunction,
    CreateTrigger,
    CreateDefault,
    CreateRule,
    CreateType,
    EnableTrigger,
    CreateStatistics,
    UpdateStatistics,
    // Databases, backup and security (ast_administration.h)
    CreateDatabase,
    AlterDatabase,
    Backup,
    Restore,
    Permission,
    CreateLogin,
    AlterLogin,
    CreateUser,
    AlterUser,
    CreateRole,
    AlterRole,
    CreateSchema,
    AlterSchema,
    AlterAuthorization,
    // Control and session
    Use,
    Declare,
    SetVariable,
    SetOption,
    If,
    While,
    Break,
    Continue,
    Block,
    TryCatch,
    Transaction,
    Return,
    Goto,
    Label,
    WaitFor,
    Print,
    Raiserror,
    Throw,
    Execute,
    ExecuteString,
    DeclareCursor,
    Cursor,
    Fetch,
    Dbcc,
    Checkpoint,
    Kill,
    Shutdown,
    Reconfigure,
    ExecuteAs,
    Revert,
};

struct Statement
{
    const StatementKind kind;
    SourceRange source; ///< from the first word to the last, without a closing semicolon

    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    virtual ~Statement() = default;

protected:
    explicit Statement(StatementKind k) : kind(k) {}
};
using StatementPtr = std::unique_ptr<Statement>;
using StatementList = std::vector<StatementPtr>;

template <StatementKind K>
struct StatementOf : Statement
{
    static constexpr StatementKind nodeKind = K;
    StatementOf() : Statement(K) {}
};

// Data ------------------------------------------------------------------------------------------

struct SelectStatement : StatementOf<StatementKind::Select>
{
    Query query;
};

/// OUTPUT inserted.*, deleted.a [INTO @t [(columns)]]
struct OutputClause
{
    std::vector<SelectItem> items;
    TableSourcePtr into; ///< NamedTable or VariableTable, or null
    std::vector<std::string> intoColumns;
};

enum class InsertSource : std::uint8_t
{
    Values,
    Query,
    Execute,
    DefaultValues
};

struct InsertStatement : StatementOf<StatementKind::Insert>
{
    std::vector<CommonTable> commonTables;
    std::optional<Top> top;
    TableSourcePtr target; ///< NamedTable or VariableTable
    std::vector<std::string> columns;
    std::optional<OutputClause> output;
    InsertSource sourceKind = InsertSource::Values;
    std::vector<ValueRow> rows; ///< of Values; elements may be Default
    QueryPtr query;             ///< of Query
    StatementPtr execute;       ///< of Execute: an ExecuteStatement or ExecuteStringStatement
};

/// SET column = value, @v = value, or @v = column = value.
struct Assignment
{
    std::string variable; ///< "@v" or ""
    ObjectName table;     ///< the column's qualifier
    std::string column;   ///< "" when only a variable is assigned
    AssignmentOperator op = AssignmentOperator::Set;
    ExpressionPtr value; ///< may be Default
};

struct UpdateStatement : StatementOf<StatementKind::Update>
{
    std::vector<CommonTable> commonTables;
    std::optional<Top> top;
    TableSourcePtr target; ///< NamedTable (its name may be an alias of FROM) or VariableTable
    std::vector<Assignment> assignments;
    std::optional<OutputClause> output;
    std::vector<TableSourcePtr> from;
    ExpressionPtr where;
    std::string currentOf; ///< WHERE CURRENT OF cursor
};

struct DeleteStatement : StatementOf<StatementKind::Delete>
{
    std::vector<CommonTable> commonTables;
    std::optional<Top> top;
    TableSourcePtr target; ///< NamedTable (its name may be an alias of FROM) or VariableTable
    std::optional<OutputClause> output;
    std::vector<TableSourcePtr> from; ///< the second FROM
    ExpressionPtr where;
    std::string currentOf;
};

struct TruncateStatement : StatementOf<StatementKind::Truncate>
{
    ObjectName table;
};

// Control ---------------------------------------------------------------------------------------

struct UseStatement : StatementOf<StatementKind::Use>
{
    std::string database;
};

enum class DeclarationKind : std::uint8_t
{
    Scalar,
    Table,
    Cursor
};

struct Declaration
{
    DeclarationKind kind = DeclarationKind::Scalar;
    std::string name; ///< "@v"
    DataType type;    ///< of a Scalar
    ExpressionPtr initial;
    std::unique_ptr<TableElements> table;
};

struct DeclareStatement : StatementOf<StatementKind::Declare>
{
    std::vector<Declaration> declarations;
};

struct DeclareCursorStatement : StatementOf<StatementKind::DeclareCursor>
{
    std::string name;
    bool global = false;
    bool insensitive = false;         ///< INSENSITIVE or STATIC
    bool scroll = false;              ///< SCROLL, or an option that brings it (STATIC, KEYSET, DYNAMIC)
    bool readOnly = false;            ///< READ_ONLY, FAST_FORWARD or FOR READ ONLY
    std::vector<std::string> options; ///< upper case, as written
    QueryPtr query;
    std::vector<std::string> updateColumns; ///< FOR UPDATE OF
};

/// SET @v = expression
struct SetVariableStatement : StatementOf<StatementKind::SetVariable>
{
    std::string variable;
    AssignmentOperator op = AssignmentOperator::Set;
    ExpressionPtr value;
    std::unique_ptr<DeclareCursorStatement> cursor; ///< SET @c = CURSOR ... FOR query (without name)
};

/// SET names ON|OFF, SET IDENTITY_INSERT t ON|OFF, SET name value, SET TRANSACTION ISOLATION LEVEL.
struct SetOptionStatement : StatementOf<StatementKind::SetOption>
{
    /// Upper case. One, or several for "SET ANSI_NULLS, ANSI_PADDING ON". "STATISTICS IO" is one;
    /// so is "TRANSACTION ISOLATION LEVEL".
    std::vector<std::string> options;
    std::optional<bool> on; ///< of the options that are switched
    ObjectName table;       ///< of IDENTITY_INSERT
    /// Of the others: a literal (a bareWord for "us_english", "READ UNCOMMITTED") or a variable.
    ExpressionPtr value;
};

struct IfStatement : StatementOf<StatementKind::If>
{
    ExpressionPtr condition;
    StatementPtr then;
    StatementPtr otherwise; ///< or null
};

struct WhileStatement : StatementOf<StatementKind::While>
{
    ExpressionPtr condition;
    StatementPtr body;
};

struct BreakStatement : StatementOf<StatementKind::Break>
{};

struct ContinueStatement : StatementOf<StatementKind::Continue>
{};

struct BlockStatement : StatementOf<StatementKind::Block>
{
    StatementList statements;
};

struct TryCatchStatement : StatementOf<StatementKind::TryCatch>
{
    StatementList tryPart;
    StatementList catchPart;
};

enum class TransactionAction : std::uint8_t
{
    Begin,
    Commit,
    Rollback,
    Save
};

struct TransactionStatement : StatementOf<StatementKind::Transaction>
{
    TransactionAction action = TransactionAction::Begin;
    std::string name; ///< "" without one; a variable has its "@"
    std::string mark; ///< WITH MARK 'text'
};

struct ReturnStatement : StatementOf<StatementKind::Return>
{
    ExpressionPtr value; ///< or null
    QueryPtr query;      ///< of an inline table function
};

struct GotoStatement : StatementOf<StatementKind::Goto>
{
    std::string label;
};

struct LabelStatement : StatementOf<StatementKind::Label>
{
    std::string label;
};

struct WaitForStatement : StatementOf<StatementKind::WaitFor>
{
    bool delay = true;  ///< DELAY; otherwise TIME
    ExpressionPtr time; ///< a string literal or a variable
};

struct PrintStatement : StatementOf<StatementKind::Print>
{
    ExpressionPtr value;
};

struct RaiserrorStatement : StatementOf<StatementKind::Raiserror>
{
    ExpressionPtr message;  ///< number, text or variable
    ExpressionPtr severity; ///< null in the old form "RAISERROR 50001 'text'"
    ExpressionPtr state;
    std::vector<ExpressionPtr> arguments; ///< the text alone in the old form
    bool log = false;
    bool noWait = false;
    bool setError = false;
};

struct ThrowStatement : StatementOf<StatementKind::Throw>
{
    ExpressionPtr number; ///< all null for a bare THROW
    ExpressionPtr message;
    ExpressionPtr state;
};

struct Argument
{
    std::string name;    ///< "@p" or "" by position
    ExpressionPtr value; ///< Literal (maybe bareWord), Unary Minus of one, Variable, or Default
    bool output = false;
};

struct ExecuteStatement : StatementOf<StatementKind::Execute>
{
    bool keyword = true;        ///< false for a bare call as a batch's first statement
    std::string returnVariable; ///< "@r" of EXEC @r = ..., or ""
    ObjectName procedure;       ///< empty when a variable names it
    std::string variable;       ///< "@p" of EXEC @p ...
    int number = 0;             ///< proc;2
    std::vector<Argument> arguments;
    bool recompile = false;
};

/// EXEC ('text' + @v, ...) [AS LOGIN|USER = 'name']
struct ExecuteStringStatement : StatementOf<StatementKind::ExecuteString>
{
    ExpressionPtr text;
    std::vector<Argument> arguments;
    std::string asLogin;
    std::string asUser;
    std::string at; ///< linked server
};

enum class CursorAction : std::uint8_t
{
    Open,
    Close,
    Deallocate
};

struct CursorStatement : StatementOf<StatementKind::Cursor>
{
    CursorAction action = CursorAction::Open;
    bool global = false;
    std::string name; ///< a variable has its "@"
};

enum class FetchDirection : std::uint8_t
{
    Next,
    Prior,
    First,
    Last,
    Absolute,
    Relative
};

struct FetchStatement : StatementOf<StatementKind::Fetch>
{
    FetchDirection direction = FetchDirection::Next;
    ExpressionPtr position; ///< of Absolute and Relative
    bool global = false;
    std::string name;
    std::vector<std::string> into; ///< variables
};

// Session and server ----------------------------------------------------------------------------

struct DbccStatement : StatementOf<StatementKind::Dbcc>
{
    std::string command;                  ///< upper case
    std::vector<ExpressionPtr> arguments; ///< literals (bareWord for names) and variables
    std::vector<NamedOption> options;
};

struct CheckpointStatement : StatementOf<StatementKind::Checkpoint>
{};

struct KillStatement : StatementOf<StatementKind::Kill>
{
    ExpressionPtr spid;
    bool statusOnly = false;
};

struct ShutdownStatement : StatementOf<StatementKind::Shutdown>
{
    bool noWait = false;
};

struct ReconfigureStatement : StatementOf<StatementKind::Reconfigure>
{
    bool withOverride = false;
};

struct ExecuteAsStatement : StatementOf<StatementKind::ExecuteAs>
{
    bool login = false; ///< LOGIN; otherwise USER
    bool caller = false;
    std::string name;
};

struct RevertStatement : StatementOf<StatementKind::Revert>
{};

} // namespace practice::ast
