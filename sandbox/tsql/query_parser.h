// Expressions, conditions, table sources and queries.
#pragma once

#include "tsql/token_stream.h"

namespace practice {

class QueryParser : public TokenStream
{
public:
    using TokenStream::TokenStream;

    /// What SELECT takes: comparisons and the like stay untouched.
    [[nodiscard]] ast::ExpressionPtr value() { return operators(Level::Add, false); }
    /// What WHERE takes.
    /// @throws SyntaxError 4145 when it is a value
    [[nodiscard]] ast::ExpressionPtr condition();
    [[nodiscard]] ast::DataType dataType();

protected:
    enum class Level : std::uint8_t
    {
        None,
        Or,
        And,
        Not,
        Compare,
        Add,
        Multiply,
        Unary
    };
    enum class QueryPlace : std::uint8_t
    {
        Statement,
        Nested
    };
    /// Whether hints may stand without WITH; where columns may follow in parentheses they may not.
    enum class HintForm : std::uint8_t
    {
        Bare,
        OnlyWith
    };

    // Expressions (parser_expression.cpp)
    [[nodiscard]] ast::ExpressionPtr operators(Level lowest, bool conditionAllowed);
    [[nodiscard]] ast::ExpressionPtr condition(Level lowest);
    [[nodiscard]] ast::ExpressionPtr valueOrDefault();
    [[nodiscard]] std::vector<ast::ExpressionPtr> values();
    /// True when the current token may begin a value.
    [[nodiscard]] bool atValue() const;
    /// A constant with an optional sign, or a variable.
    [[nodiscard]] ast::ExpressionPtr constantOrVariable();
    /// The same, or a bare word (keywords ON, OFF, FULL and the like included).
    [[nodiscard]] ast::ExpressionPtr constantOrWord();
    [[nodiscard]] ast::ExpressionPtr bareWord();
    [[nodiscard]] ast::ExpressionPtr literal();
    [[nodiscard]] ast::ExpressionPtr variableNode();

    // Queries (parser_query.cpp)
    [[nodiscard]] ast::Query query(QueryPlace place);
    [[nodiscard]] ast::QueryPtr queryPtr(QueryPlace place);
    /// The rest of "(query)" behind the opening parenthesis, the closing one included.
    [[nodiscard]] ast::QueryPtr subqueryRest();
    [[nodiscard]] std::vector<ast::CommonTable> commonTables();
    [[nodiscard]] std::optional<ast::Top> top();
    [[nodiscard]] ast::SelectItem selectItem();
    [[nodiscard]] std::vector<ast::SelectItem> selectItems();
    [[nodiscard]] ast::AssignmentOperator assignmentOperator();
    [[nodiscard]] static bool isAssignment(Symbol symbol);
    void optionClause();

    // Table sources (parser_table_source.cpp)
    [[nodiscard]] std::vector<ast::TableSourcePtr> tableSources();
    /// A table or table variable by name, with hints: what data changes aim at.
    [[nodiscard]] ast::TableSourcePtr targetTable(HintForm form);
    [[nodiscard]] std::vector<ast::ValueRow> valueRows();

    /// Closes a node: its place, its height from its children.
    template <class Node>
    std::unique_ptr<Node> finish(std::unique_ptr<Node> node, const ast::SourceRange& start,
                                 std::initializer_list<const ast::Expression*> children = {})
    {
        place(*node, start, children);
        return node;
    }

private:
    // Expressions
    [[nodiscard]] ast::ExpressionPtr prefixed(bool conditionAllowed);
    [[nodiscard]] ast::ExpressionPtr primary(bool conditionAllowed);
    [[nodiscard]] ast::ExpressionPtr keywordPrimary(bool conditionAllowed);
    [[nodiscard]] ast::ExpressionPtr named();
    [[nodiscard]] ast::ExpressionPtr column(ast::ObjectName name, const ast::SourceRange& start);
    [[nodiscard]] ast::ExpressionPtr specialColumn(ast::ObjectName name, const ast::SourceRange& start);
    [[nodiscard]] bool atSpecialColumn() const;
    [[nodiscard]] ast::ExpressionPtr parenthesised(bool conditionAllowed);
    [[nodiscard]] ast::ExpressionPtr caseExpression();
    [[nodiscard]] ast::ExpressionPtr iif(const ast::SourceRange& start);
    [[nodiscard]] ast::ExpressionPtr castRest(bool attempt, const ast::SourceRange& start);
    [[nodiscard]] ast::ExpressionPtr convertCall();
    [[nodiscard]] std::unique_ptr<ast::Function> call(ast::ObjectName name, const ast::SourceRange& start);
    [[nodiscard]] ast::ExpressionPtr niladic();
    [[nodiscard]] ast::ExpressionPtr keywordCall();
    [[nodiscard]] ast::ExpressionPtr identityCall();
    [[nodiscard]] ast::ExpressionPtr updatedColumn();
    [[nodiscard]] ast::ExpressionPtr existsCondition();
    [[nodiscard]] ast::ExpressionPtr fullText();
    [[nodiscard]] ast::ExpressionPtr odbcEscape();
    [[nodiscard]] ast::ExpressionPtr odbcFunction();
    [[nodiscard]] ast::Window window();
    [[nodiscard]] ast::WindowFrame windowFrame();
    [[nodiscard]] ast::FrameBound frameBound();
    [[nodiscard]] ast::ExpressionPtr binary(ast::ExpressionPtr left, Level level);
    [[nodiscard]] ast::ExpressionPtr logical(ast::ExpressionPtr left, Level level);
    [[nodiscard]] ast::ExpressionPtr comparison(ast::ExpressionPtr left);
    [[nodiscard]] ast::ComparisonOperator comparisonOperator();
    [[nodiscard]] ast::ExpressionPtr negatable(ast::ExpressionPtr operand);
    [[nodiscard]] ast::ExpressionPtr inList(ast::ExpressionPtr operand, bool negated);
    [[nodiscard]] ast::ExpressionPtr isNull(ast::ExpressionPtr operand);
    [[nodiscard]] Level currentLevel(bool conditionAllowed);
    [[nodiscard]] std::string typeName();
    void facets(ast::DataType& type);
    void place(ast::Expression& node, const ast::SourceRange& start,
               std::initializer_list<const ast::Expression*> children);
    void raiseHeight(ast::Expression& node, int height);

    // Queries
    [[nodiscard]] std::unique_ptr<ast::QueryBody> unions();
    [[nodiscard]] std::unique_ptr<ast::QueryBody> unionsAfter(std::unique_ptr<ast::QueryBody> left,
                                                              int chain);
    [[nodiscard]] std::unique_ptr<ast::QueryBody> intersections();
    [[nodiscard]] std::unique_ptr<ast::QueryBody> intersectionsAfter(std::unique_ptr<ast::QueryBody> left);
    [[nodiscard]] std::unique_ptr<ast::QueryBody> queryTerm();
    [[nodiscard]] std::unique_ptr<ast::SelectBlock> selectBlock();
    [[nodiscard]] ast::GroupBy groupBy();
    [[nodiscard]] bool atQualifiedStar();
    [[nodiscard]] std::string optionalAlias();
    [[nodiscard]] bool atSetOperator() const
    {
        return at(Keyword::Union) || at(Keyword::Except) || at(Keyword::Intersect);
    }
    [[nodiscard]] std::vector<ast::OrderItem> orderItems();
    void queryTail(ast::Query& query, QueryPlace place);
    void forClause(ast::Query& query);
    /// A query that began as an operand in parentheses and goes on with a set operator.
    [[nodiscard]] ast::QueryPtr continued(ast::QueryPtr first);

    // Table sources
    [[nodiscard]] ast::TableSourcePtr joined();
    [[nodiscard]] ast::TableSourcePtr joinsAfter(ast::TableSourcePtr left);
    [[nodiscard]] ast::TableSourcePtr oneJoin(ast::TableSourcePtr left);
    [[nodiscard]] std::optional<ast::JoinKind> atJoin();
    [[nodiscard]] ast::JoinKind joinWords();
    [[nodiscard]] ast::TableSourcePtr tableSource();
    [[nodiscard]] ast::TableSourcePtr parenthesisedSource();
    [[nodiscard]] ast::TableSourcePtr namedSource();
    [[nodiscard]] ast::TableSourcePtr functionSource(ast::ObjectName name, bool system,
                                                     const ast::SourceRange& start);
    [[nodiscard]] ast::TableSourcePtr derived(ast::QueryPtr query, const ast::SourceRange& start);
    [[nodiscard]] bool atHints();
    [[nodiscard]] std::vector<std::string> hints();
    void tableAlias(ast::TableSource& source, bool columns);

    int tables_ = 0;      ///< in the FROM being read
    int tallest_ = 0;     ///< expression since the innermost query began
    int queryHeight_ = 0; ///< of the query that ended last
};

} // namespace practice
