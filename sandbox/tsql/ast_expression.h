// The syntax tree of expressions, conditions, queries and table sources.
#pragma once

#include "types/sql_type.h"

#include <cassert>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace practice::ast {

/// Where a node stands in the text of its batch. Bytes are UTF-8; lines count from 1.
struct SourceRange
{
    std::uint32_t begin = 0; ///< first byte
    std::uint32_t end = 0;   ///< byte after the last one; blanks and comments around are outside
    std::uint32_t line = 1;
};

/// A name of up to four parts as it was written, without its quotes. A part that is absent or left
/// empty ("db..t") is "".
struct ObjectName
{
    std::string server;
    std::string database;
    std::string schema;
    std::string object;

    [[nodiscard]] bool empty() const { return object.empty(); }
    bool operator==(const ObjectName&) const = default;
};

/// A type as it was written. Facets are checked by whoever resolves it.
struct DataType
{
    ObjectName name;          ///< "varchar", "dbo.mytype"; "character varying" is one name
    TypeId id = TypeId::Null; ///< of a system type; Null for a user's type (or an unknown one)
    std::vector<int> facets;  ///< (length), (precision) or (precision, scale)
    bool max = false;         ///< (max)
    bool varying = false;     ///< CURSOR VARYING and the like
    SourceRange source;
};

enum class ExpressionKind : std::uint8_t
{
    Literal,
    Variable,
    Column,
    Unary,
    Binary,
    Collate,
    Case,
    Cast,
    Function,
    Subquery,
    Default,
    // Conditions: what WHERE takes and SELECT does not.
    Comparison,
    QuantifiedComparison,
    Logical,
    Not,
    Between,
    Like,
    In,
    IsNull,
    Exists,
    FullText,
};

struct Expression
{
    const ExpressionKind kind;
    /// Levels of nodes from here down, subqueries included. The parser keeps it below a bound, so that
    /// a recursive walk over a tree is safe.
    std::uint16_t height = 1;
    SourceRange source; ///< with the parentheses around it, if any

    Expression(const Expression&) = delete;
    Expression& operator=(const Expression&) = delete;
    virtual ~Expression() = default;

    [[nodiscard]] bool isCondition() const { return kind >= ExpressionKind::Comparison; }

protected:
    explicit Expression(ExpressionKind k) : kind(k) {}
};
using ExpressionPtr = std::unique_ptr<Expression>;

template <ExpressionKind K>
struct ExpressionOf : Expression
{
    static constexpr ExpressionKind nodeKind = K;
    ExpressionOf() : Expression(K) {}
};

/// Any node as what its kind says it is.
template <class Node, class Base>
[[nodiscard]] const Node& as(const Base& node)
{
    assert(node.kind == Node::nodeKind);
    return static_cast<const Node&>(node);
}

/// The node as a `Node`, or nullptr when it is of another kind (or there is none).
template <class Node, class Base>
[[nodiscard]] const Node* tryAs(const Base* node)
{
    return node && node->kind == Node::nodeKind ? static_cast<const Node*>(node) : nullptr;
}

struct Query;
using QueryPtr = std::unique_ptr<Query>;

enum class LiteralKind : std::uint8_t
{
    Null,
    Integer,
    Decimal,
    Float,
    Money,
    String,
    NationalString,
    Binary
};

/// - Integer: digits only, of any length (above 2147483647 it is a numeric);
/// - Decimal "1.50", Float "1e3", as written; Money without its currency sign, "" for a bare one;
/// - String, NationalString: the content with doubled quotes halved;
/// - Binary: hexadecimal digits without 0x, possibly none.
struct Literal : ExpressionOf<ExpressionKind::Literal>
{
    LiteralKind literalKind = LiteralKind::Null;
    /// A word without quotes where a constant was due: a procedure's argument, an option's value.
    bool bareWord = false;
    std::string text;
};

/// "@name", or "@@name" for what the server tells about itself.
struct Variable : ExpressionOf<ExpressionKind::Variable>
{
    std::string name; ///< with its at signs, as written
    [[nodiscard]] bool isGlobal() const { return name.starts_with("@@"); }
};

enum class ColumnRole : std::uint8_t
{
    Named,
    Identity,
    RowGuid
};

struct Column : ExpressionOf<ExpressionKind::Column>
{
    ColumnRole role = ColumnRole::Named; ///< otherwise IDENTITYCOL/$IDENTITY, ROWGUIDCOL/$ROWGUID
    ObjectName table;                    ///< the qualifier; all empty when there is none
    std::string name;                    ///< "" unless the role is Named
};

enum class UnaryOperator : std::uint8_t
{
    Plus,
    Minus,
    BitNot
};

struct Unary : ExpressionOf<ExpressionKind::Unary>
{
    UnaryOperator op = UnaryOperator::Plus;
    ExpressionPtr operand;
};

enum class BinaryOperator : std::uint8_t
{
    Add,
    Subtract,
    Multiply,
    Divide,
    Modulo,
    BitAnd,
    BitOr,
    BitXor
};

struct Binary : ExpressionOf<ExpressionKind::Binary>
{
    BinaryOperator op = BinaryOperator::Add;
    ExpressionPtr left;
    ExpressionPtr right;
};

struct Collate : ExpressionOf<ExpressionKind::Collate>
{
    ExpressionPtr operand;
    std::string collation;
};

struct CaseBranch
{
    ExpressionPtr when; ///< a condition in the searched form, a value in the simple one
    ExpressionPtr then;
};

/// CASE in both forms; IIF comes as a searched one.
struct Case : ExpressionOf<ExpressionKind::Case>
{
    ExpressionPtr operand; ///< of the simple form, else null
    std::vector<CaseBranch> branches;
    ExpressionPtr otherwise; ///< null without ELSE
};

/// CAST, CONVERT, TRY_CAST and TRY_CONVERT; also {ts '...'}, {d '...'}, {t '...'} (to datetime) and
/// {guid '...'}.
struct Cast : ExpressionOf<ExpressionKind::Cast>
{
    DataType type;
    ExpressionPtr operand;
    ExpressionPtr style;  ///< CONVERT's third argument or null
    bool attempt = false; ///< NULL instead of an error
};

struct OrderItem
{
    ExpressionPtr expression; ///< an integer literal is an ordinal
    bool descending = false;
};

enum class FrameBoundKind : std::uint8_t
{
    UnboundedPreceding,
    Preceding,
    CurrentRow,
    Following,
    UnboundedFollowing
};

struct FrameBound
{
    FrameBoundKind kind = FrameBoundKind::CurrentRow;
    ExpressionPtr count; ///< of Preceding and Following
};

struct WindowFrame
{
    bool rows = true; ///< otherwise RANGE
    FrameBound start;
    std::optional<FrameBound> end; ///< absent without BETWEEN
};

struct Window
{
    std::vector<ExpressionPtr> partitionBy;
    std::vector<OrderItem> orderBy;
    std::optional<WindowFrame> frame;
};

/// Any call, aggregates included; UPDATE(column) as a condition comes as its comparison with 1; also the
/// functions without parentheses (CURRENT_TIMESTAMP, USER, SYSTEM_USER ...), which have no arguments. A date
/// part comes as a Column ("DATEADD(day, ...)"). IDENTITY(type, seed, increment) in a SELECT INTO has its
/// type in `type`.
struct Function : ExpressionOf<ExpressionKind::Function>
{
    ObjectName name;
    std::vector<ExpressionPtr> arguments;
    bool distinct = false;
    bool star = false;       ///< COUNT(*)
    bool parentheses = true; ///< false for CURRENT_TIMESTAMP and its like
    std::optional<DataType> type;
    std::vector<OrderItem> withinGroup;
    std::optional<Window> over;
};

/// A query as a value.
struct Subquery : ExpressionOf<ExpressionKind::Subquery>
{
    QueryPtr query;
};

/// The word DEFAULT among VALUES, in SET c = DEFAULT or as an argument.
struct Default : ExpressionOf<ExpressionKind::Default>
{};

enum class ComparisonOperator : std::uint8_t
{
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    LeftOuter,  ///< *=
    RightOuter, ///< =*
};

struct Comparison : ExpressionOf<ExpressionKind::Comparison>
{
    ComparisonOperator op = ComparisonOperator::Equal;
    ExpressionPtr left;
    ExpressionPtr right;
};

/// left op ANY|SOME|ALL (query)
struct QuantifiedComparison : ExpressionOf<ExpressionKind::QuantifiedComparison>
{
    ComparisonOperator op = ComparisonOperator::Equal;
    bool all = false;
    ExpressionPtr left;
    QueryPtr query;
};

/// A run of ANDs or of ORs, flat, so that a long one is no deep tree. Two operands or more.
struct Logical : ExpressionOf<ExpressionKind::Logical>
{
    bool conjunction = true; ///< AND; otherwise OR
    std::vector<ExpressionPtr> operands;
};

struct Not : ExpressionOf<ExpressionKind::Not>
{
    ExpressionPtr operand;
};

struct Between : ExpressionOf<ExpressionKind::Between>
{
    bool negated = false;
    ExpressionPtr operand;
    ExpressionPtr low;
    ExpressionPtr high;
};

struct Like : ExpressionOf<ExpressionKind::Like>
{
    bool negated = false;
    ExpressionPtr operand;
    ExpressionPtr pattern;
    ExpressionPtr escape; ///< or null
};

struct In : ExpressionOf<ExpressionKind::In>
{
    bool negated = false;
    ExpressionPtr operand;
    std::vector<ExpressionPtr> values; ///< empty when there is a query
    QueryPtr query;
};

struct IsNull : ExpressionOf<ExpressionKind::IsNull>
{
    bool negated = false;
    ExpressionPtr operand;
};

struct Exists : ExpressionOf<ExpressionKind::Exists>
{
    QueryPtr query;
};

/// CONTAINS(...) and FREETEXT(...).
struct FullText : ExpressionOf<ExpressionKind::FullText>
{
    bool freeText = false;
    std::vector<ExpressionPtr> arguments;
};

// Table sources ---------------------------------------------------------------------------------

enum class TableSourceKind : std::uint8_t
{
    Named,
    Variable,
    Function,
    Derived,
    Values,
    Join
};

struct TableSource
{
    const TableSourceKind kind;
    SourceRange source;
    std::string alias;                      ///< "" without one; a join has none
    std::vector<std::string> columnAliases; ///< (a, b) after the alias

    TableSource(const TableSource&) = delete;
    TableSource& operator=(const TableSource&) = delete;
    virtual ~TableSource() = default;

protected:
    explicit TableSource(TableSourceKind k) : kind(k) {}
};
using TableSourcePtr = std::unique_ptr<TableSource>;

template <TableSourceKind K>
struct TableSourceOf : TableSource
{
    static constexpr TableSourceKind nodeKind = K;
    TableSourceOf() : TableSource(K) {}
};

struct NamedTable : TableSourceOf<TableSourceKind::Named>
{
    ObjectName name;
    std::vector<std::string> hints; ///< upper case: "NOLOCK", "INDEX"
};

struct VariableTable : TableSourceOf<TableSourceKind::Variable>
{
    std::string name; ///< "@t"
};

struct FunctionTable : TableSourceOf<TableSourceKind::Function>
{
    std::unique_ptr<Function> call;
    bool systemFunction = false; ///< written ::fn_x(...)
};

struct DerivedTable : TableSourceOf<TableSourceKind::Derived>
{
    QueryPtr query;
};

using ValueRow = std::vector<ExpressionPtr>;

/// (VALUES (1, 2), (3, 4)) AS t (a, b)
struct ValuesTable : TableSourceOf<TableSourceKind::Values>
{
    std::vector<ValueRow> rows;
};

enum class JoinKind : std::uint8_t
{
    Inner,
    Left,
    Right,
    Full,
    Cross,
    CrossApply,
    OuterApply
};

struct JoinedTable : TableSourceOf<TableSourceKind::Join>
{
    JoinKind joinKind = JoinKind::Inner;
    TableSourcePtr left;
    TableSourcePtr right;
    ExpressionPtr on; ///< null for Cross and the applies
};

// Queries ---------------------------------------------------------------------------------------

struct Top
{
    ExpressionPtr count;
    bool percent = false;
    bool withTies = false;
};

enum class AssignmentOperator : std::uint8_t
{
    Set,
    Add,
    Subtract,
    Multiply,
    Divide,
    Modulo,
    BitAnd,
    BitOr,
    BitXor
};

/// The operator that a compound assignment applies: they stand in one order, behind Set.
[[nodiscard]] constexpr BinaryOperator operatorOf(AssignmentOperator compound)
{
    static_assert(
        static_cast<int>(AssignmentOperator::Add) - 1 == static_cast<int>(BinaryOperator::Add) &&
        static_cast<int>(AssignmentOperator::Modulo) - 1 == static_cast<int>(BinaryOperator::Modulo) &&
        static_cast<int>(AssignmentOperator::BitXor) - 1 == static_cast<int>(BinaryOperator::BitXor));
    return static_cast<BinaryOperator>(static_cast<int>(compound) - 1);
}

enum class SelectItemKind : std::uint8_t
{
    Expression,
    Star,
    Assignment
};

struct SelectItem
{
    SelectItemKind kind = SelectItemKind::Expression;
    SourceRange source;
    ExpressionPtr expression; ///< null for Star
    std::string alias;        ///< "" without one
    ObjectName table;         ///< the qualifier of a Star
    std::string variable;     ///< of an Assignment: "@v"
    AssignmentOperator op = AssignmentOperator::Set;
};

enum class GroupingKind : std::uint8_t
{
    Plain,
    Rollup,
    Cube
};

struct GroupBy
{
    bool all = false; ///< GROUP BY ALL
    GroupingKind grouping = GroupingKind::Plain;
    std::vector<ExpressionPtr> expressions;
};

/// One SELECT ... FROM ... WHERE ... GROUP BY ... HAVING.
struct SelectBlock
{
    bool distinct = false;
    std::optional<Top> top;
    std::vector<SelectItem> items;
    std::optional<ObjectName> into;
    std::vector<TableSourcePtr> from; ///< joined by commas
    ExpressionPtr where;
    std::optional<GroupBy> groupBy;
    ExpressionPtr having;
};

enum class SetOperator : std::uint8_t
{
    Union,
    UnionAll,
    Except,
    Intersect
};

/// Either one block, or operands that one set operator combines from left to right.
struct QueryBody
{
    SourceRange source;
    std::unique_ptr<SelectBlock> block; ///< null for a set operation
    SetOperator op = SetOperator::Union;
    std::vector<std::unique_ptr<QueryBody>> operands; ///< two or more, or none for a block
};

struct CommonTable
{
    std::string name;
    std::vector<std::string> columns;
    QueryPtr query;
};

enum class ForKind : std::uint8_t
{
    None,
    Browse,
    XmlRaw,
    XmlAuto,
    XmlExplicit,
    XmlPath,
    Json
};

/// A whole query: what a SELECT statement, a view, a subquery and an INSERT hold.
struct Query
{
    SourceRange source;
    std::vector<CommonTable> commonTables; ///< WITH x AS (...); only at the head of a statement
    std::unique_ptr<QueryBody> body;
    std::vector<OrderItem> orderBy;
    ExpressionPtr offset; ///< OFFSET n ROWS, or null
    ExpressionPtr fetch;  ///< FETCH NEXT n ROWS ONLY, or null
    ForKind forKind = ForKind::None;
};

} // namespace practice::ast
