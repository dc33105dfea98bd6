// SELECT as a statement, INSERT, UPDATE, DELETE, TRUNCATE TABLE.
#include "tsql/statement_parser.h"

namespace practice {

using ast::StatementPtr;

StatementPtr StatementParser::withStatement()
{
    if (afterOpenEnd_) {
        fail(319, "Incorrect syntax near the keyword '" + current().content() +
                      "'. If this statement is a common table expression, an xmlnamespaces clause or a "
                      "change tracking "
                      "context clause, the previous statement must be terminated with a semicolon.");
    }
    std::vector<ast::CommonTable> common = commonTables();
    switch (current().keyword) {
    case Keyword::Insert:
        return insertStatement(std::move(common));
    case Keyword::Update:
        return updateStatement(std::move(common));
    case Keyword::Delete:
        return deleteStatement(std::move(common));
    default:
        return selectStatement(std::move(common));
    }
}

StatementPtr StatementParser::selectStatement(std::vector<ast::CommonTable> common)
{
    auto node = std::make_unique<ast::SelectStatement>();
    node->query = query(QueryPlace::Statement);
    node->query.commonTables = std::move(common);
    return node;
}

std::optional<ast::OutputClause> StatementParser::outputClause()
{
    if (!acceptWord("OUTPUT"))
        return std::nullopt;
    ast::OutputClause clause;
    clause.items = selectItems();
    if (accept(Keyword::Into)) {
        clause.into = targetTable(HintForm::OnlyWith);
        if (at(Symbol::Open))
            clause.intoColumns = identifierList();
    }
    return clause;
}

StatementPtr StatementParser::insertStatement(std::vector<ast::CommonTable> common)
{
    expect(Keyword::Insert);
    auto node = std::make_unique<ast::InsertStatement>();
    node->commonTables = std::move(common);
    node->top = top();
    accept(Keyword::Into);
    node->target = targetTable(HintForm::OnlyWith);
    // "(SELECT ..." and "((SELECT ..." are the source already, not columns.
    if (at(Symbol::Open) && peek().keyword != Keyword::Select && peek().symbol != Symbol::Open)
        node->columns = identifierList();
    node->output = outputClause();
    insertSource(*node);
    return node;
}

void StatementParser::insertSource(ast::InsertStatement& node)
{
    switch (current().keyword) {
    case Keyword::Values:
        advance();
        node.rows = valueRows();
        return;
    case Keyword::Default:
        advance();
        expect(Keyword::Values);
        node.sourceKind = ast::InsertSource::DefaultValues;
        return;
    case Keyword::Exec:
    case Keyword::Execute: {
        const auto start = here();
        node.sourceKind = ast::InsertSource::Execute;
        node.execute = executeStatement();
        node.execute->source = since(start);
        return;
    }
    default:
        break;
    }
    node.sourceKind = ast::InsertSource::Query;
    std::vector<ast::CommonTable> common;
    if (at(Keyword::With))
        common = commonTables();
    node.query = queryPtr(QueryPlace::Statement);
    node.query->commonTables = std::move(common);
}

ast::Assignment StatementParser::assignment()
{
    ast::Assignment result;
    if (at(TokenKind::Variable)) {
        result.variable = variable();
        // @v = column = value
        const bool column = at(Symbol::Equal) && isIdentifier(peek()) && isAssignment(peek(2).symbol);
        if (!column) {
            result.op = assignmentOperator();
            result.value = value();
            return result;
        }
        advance();
    }
    ast::ObjectName name = objectName();
    result.column = std::move(name.object);
    result.table = {"", std::move(name.server), std::move(name.database), std::move(name.schema)};
    result.op = assignmentOperator();
    result.value = valueOrDefault();
    return result;
}

void StatementParser::changeWhere(ast::ExpressionPtr& where, std::string& currentOf)
{
    if (!accept(Keyword::Where))
        return;
    if (accept(Keyword::Current)) {
        expect(Keyword::Of);
        acceptWord("GLOBAL");
        currentOf = identifierOrVariable();
    } else {
        where = condition();
    }
}

StatementPtr StatementParser::updateStatement(std::vector<ast::CommonTable> common)
{
    expect(Keyword::Update);
    auto node = std::make_unique<ast::UpdateStatement>();
    node->commonTables = std::move(common);
    node->top = top();
    node->target = targetTable(HintForm::Bare);
    expect(Keyword::Set);
    do
        node->assignments.push_back(assignment());
    while (accept(Symbol::Comma));
    node->output = outputClause();
    if (accept(Keyword::From))
        node->from = tableSources();
    changeWhere(node->where, node->currentOf);
    optionClause();
    return node;
}

StatementPtr StatementParser::deleteStatement(std::vector<ast::CommonTable> common)
{
    expect(Keyword::Delete);
    auto node = std::make_unique<ast::DeleteStatement>();
    node->commonTables = std::move(common);
    node->top = top();
    accept(Keyword::From);
    node->target = targetTable(HintForm::Bare);
    node->output = outputClause();
    if (accept(Keyword::From))
        node->from = tableSources();
    changeWhere(node->where, node->currentOf);
    optionClause();
    return node;
}

StatementPtr StatementParser::truncateStatement()
{
    expect(Keyword::Truncate);
    expect(Keyword::Table);
    auto node = std::make_unique<ast::TruncateStatement>();
    node->table = objectName();
    return node;
}

} // namespace practice
