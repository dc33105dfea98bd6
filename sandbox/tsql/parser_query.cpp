// SELECT, set operators, ORDER BY, common table expressions.
#include "tsql/query_parser.h"

#include <algorithm>
#include <utility>

namespace practice {

using ast::QueryPtr;

QueryPtr QueryParser::queryPtr(QueryPlace place)
{
    return std::make_unique<ast::Query>(query(place));
}

ast::Query QueryParser::query(QueryPlace place)
{
    const Nesting nesting(*this);
    const int outerTallest = std::exchange(tallest_, 0);
    const int outerTables = std::exchange(tables_, 0);
    const auto start = here();
    ast::Query result;
    result.body = unions();
    queryTail(result, place);
    result.source = since(start);
    queryHeight_ = tallest_;
    tallest_ = std::max(tallest_, outerTallest);
    tables_ = outerTables;
    return result;
}

QueryPtr QueryParser::subqueryRest()
{
    QueryPtr result = queryPtr(QueryPlace::Nested);
    expect(Symbol::Close);
    return result;
}

QueryPtr QueryParser::continued(QueryPtr first)
{
    const auto start = first->source;
    const int height = queryHeight_;
    auto result = std::make_unique<ast::Query>();
    // INTERSECT binds tighter, so it is looked for first.
    result->body = unionsAfter(intersectionsAfter(std::move(first->body)), 0);
    queryTail(*result, QueryPlace::Nested);
    result->source = since(start);
    queryHeight_ = std::max(height, tallest_);
    return result;
}

void QueryParser::queryTail(ast::Query& query, QueryPlace place)
{
    if (accept(Keyword::Order)) {
        expect(Keyword::By);
        query.orderBy = orderItems();
        if (acceptWord("OFFSET")) {
            query.offset = value();
            if (!acceptWord("ROWS"))
                expectWord("ROW");
            if (accept(Keyword::Fetch)) {
                if (!acceptWord("NEXT"))
                    expectWord("FIRST");
                query.fetch = value();
                if (!acceptWord("ROWS"))
                    expectWord("ROW");
                expectWord("ONLY");
            }
        }
    }
    forClause(query);
    if (place == QueryPlace::Statement)
        optionClause();
}

void QueryParser::forClause(ast::Query& query)
{
    using enum ast::ForKind;
    if (!at(Keyword::For))
        return;
    if (peek().keyword == Keyword::Browse) {
        advance();
        advance();
        query.forKind = Browse;
        return;
    }
    if (acceptWords({"FOR", "JSON"})) {
        query.forKind = Json;
        if (!acceptWord("AUTO"))
            expectWord("PATH");
    } else if (acceptWords({"FOR", "XML"})) {
        query.forKind = acceptWord("RAW")        ? XmlRaw
                        : acceptWord("AUTO")     ? XmlAuto
                        : acceptWord("EXPLICIT") ? XmlExplicit
                        : acceptWord("PATH")     ? XmlPath
                                                 : None;
        if (query.forKind == None)
            fail();
    } else {
        return; // FOR UPDATE and the like belong to a cursor
    }
    if (at(Symbol::Open))
        skipParenthesised();
    while (accept(Symbol::Comma)) {
        do
            advance();
        while (at(TokenKind::Word) && at(Keyword::None));
        if (at(Symbol::Open))
            skipParenthesised();
    }
}

void QueryParser::optionClause()
{
    if (accept(Keyword::Option))
        skipParenthesised();
}

std::vector<ast::OrderItem> QueryParser::orderItems()
{
    std::vector<ast::OrderItem> items;
    do {
        ast::OrderItem item;
        item.expression = value();
        item.descending = accept(Keyword::Desc);
        if (!item.descending)
            accept(Keyword::Asc);
        items.push_back(std::move(item));
    } while (accept(Symbol::Comma));
    return items;
}

std::vector<ast::CommonTable> QueryParser::commonTables()
{
    std::vector<ast::CommonTable> tables;
    expect(Keyword::With);
    do {
        ast::CommonTable table;
        table.name = identifier();
        if (at(Symbol::Open))
            table.columns = identifierList();
        expect(Keyword::As);
        expect(Symbol::Open);
        table.query = subqueryRest();
        tables.push_back(std::move(table));
    } while (accept(Symbol::Comma));
    return tables;
}

// Set operators ---------------------------------------------------------------------------------

namespace {

/// Adds an operand to a run of one operator; a run that parentheses closed is not added to.
std::unique_ptr<ast::QueryBody> combined(std::unique_ptr<ast::QueryBody> left, ast::SetOperator op,
                                         std::unique_ptr<ast::QueryBody> right, bool extend)
{
    if (extend) {
        left->source.end = right->source.end;
        left->operands.push_back(std::move(right));
        return left;
    }
    auto body = std::make_unique<ast::QueryBody>();
    body->op = op;
    body->source = {left->source.begin, right->source.end, left->source.line};
    body->operands.push_back(std::move(left));
    body->operands.push_back(std::move(right));
    return body;
}

} // namespace

std::unique_ptr<ast::QueryBody> QueryParser::unions()
{
    return unionsAfter(intersections(), 0);
}

std::unique_ptr<ast::QueryBody> QueryParser::unionsAfter(std::unique_ptr<ast::QueryBody> left, int chain)
{
    std::optional<ast::SetOperator> last;
    while (at(Keyword::Union) || at(Keyword::Except)) {
        ast::SetOperator op = ast::SetOperator::Except;
        if (advance().keyword == Keyword::Union)
            op = accept(Keyword::All) ? ast::SetOperator::UnionAll : ast::SetOperator::Union;
        const bool extend = last == op;
        if (!extend && ++chain > maxNesting)
            failTooDeep();
        left = combined(std::move(left), op, intersections(), extend);
        last = op;
    }
    return left;
}

std::unique_ptr<ast::QueryBody> QueryParser::intersections()
{
    return intersectionsAfter(queryTerm());
}

std::unique_ptr<ast::QueryBody> QueryParser::intersectionsAfter(std::unique_ptr<ast::QueryBody> left)
{
    bool extend = false;
    while (accept(Keyword::Intersect)) {
        left = combined(std::move(left), ast::SetOperator::Intersect, queryTerm(), extend);
        extend = true;
    }
    return left;
}

std::unique_ptr<ast::QueryBody> QueryParser::queryTerm()
{
    const auto start = here();
    if (at(Symbol::Open)) {
        const Nesting nesting(*this);
        advance();
        auto inner = unions();
        expect(Symbol::Close);
        inner->source = since(start);
        return inner;
    }
    auto body = std::make_unique<ast::QueryBody>();
    body->block = selectBlock();
    body->source = since(start);
    return body;
}

// One SELECT ------------------------------------------------------------------------------------

std::optional<ast::Top> QueryParser::top()
{
    if (!accept(Keyword::Top))
        return std::nullopt;
    ast::Top result;
    if (at(Symbol::Open)) {
        advance();
        result.count = value();
        expect(Symbol::Close);
    } else if (at(TokenKind::Integer) || at(TokenKind::Decimal) || at(TokenKind::Float)) {
        result.count = literal();
    } else {
        result.count = variableNode();
    }
    result.percent = accept(Keyword::Percent);
    if (at(Keyword::With) && isWord(peek(), "TIES")) {
        advance();
        advance();
        result.withTies = true;
    }
    return result;
}

std::unique_ptr<ast::SelectBlock> QueryParser::selectBlock()
{
    expect(Keyword::Select);
    auto block = std::make_unique<ast::SelectBlock>();
    block->distinct = accept(Keyword::Distinct);
    if (!block->distinct)
        accept(Keyword::All);
    block->top = top();
    block->items = selectItems();
    if (accept(Keyword::Into))
        block->into = objectName();
    if (accept(Keyword::From)) {
        tables_ = 0;
        block->from = tableSources();
    }
    if (accept(Keyword::Where))
        block->where = condition();
    if (accept(Keyword::Group)) {
        expect(Keyword::By);
        block->groupBy = groupBy();
    }
    if (accept(Keyword::Having))
        block->having = condition();
    return block;
}

ast::GroupBy QueryParser::groupBy()
{
    ast::GroupBy group;
    group.all = accept(Keyword::All);
    const bool rollup = atWord("ROLLUP");
    if ((rollup || atWord("CUBE")) && peek().symbol == Symbol::Open) {
        group.grouping = rollup ? ast::GroupingKind::Rollup : ast::GroupingKind::Cube;
        advance();
        advance();
        group.expressions = values();
        expect(Symbol::Close);
        return group;
    }
    group.expressions = values();
    if (at(Keyword::With) && (isWord(peek(), "ROLLUP") || isWord(peek(), "CUBE"))) {
        advance();
        group.grouping = atWord("CUBE") ? ast::GroupingKind::Cube : ast::GroupingKind::Rollup;
        advance();
    }
    return group;
}

std::vector<ast::SelectItem> QueryParser::selectItems()
{
    std::vector<ast::SelectItem> items;
    do
        items.push_back(selectItem());
    while (accept(Symbol::Comma));
    return items;
}

bool QueryParser::isAssignment(Symbol symbol)
{
    switch (symbol) {
    case Symbol::Equal:
    case Symbol::PlusEqual:
    case Symbol::MinusEqual:
    case Symbol::StarEqual:
    case Symbol::SlashEqual:
    case Symbol::PercentEqual:
    case Symbol::AmpersandEqual:
    case Symbol::BarEqual:
    case Symbol::CaretEqual:
        return true;
    default:
        return false;
    }
}

ast::AssignmentOperator QueryParser::assignmentOperator()
{
    using enum ast::AssignmentOperator;
    if (!isAssignment(current().symbol))
        fail();
    switch (advance().symbol) {
    case Symbol::PlusEqual:
        return Add;
    case Symbol::MinusEqual:
        return Subtract;
    case Symbol::StarEqual:
        return Multiply;
    case Symbol::SlashEqual:
        return Divide;
    case Symbol::PercentEqual:
        return Modulo;
    case Symbol::AmpersandEqual:
        return BitAnd;
    case Symbol::BarEqual:
        return BitOr;
    case Symbol::CaretEqual:
        return BitXor;
    default:
        return Set;
    }
}

/// At "a.b.*"?
bool QueryParser::atQualifiedStar()
{
    if (!atIdentifier() && !at(Symbol::Dot))
        return false;
    bool dot = at(Symbol::Dot);
    for (std::size_t distance = 1;; ++distance) {
        const Token& token = peek(distance);
        if (token.symbol == Symbol::Dot)
            dot = true;
        else if (dot && token.symbol == Symbol::Star)
            return true;
        else if (dot && isIdentifier(token))
            dot = false;
        else
            return false;
    }
}

ast::SelectItem QueryParser::selectItem()
{
    const auto start = here();
    ast::SelectItem item;
    if (at(Symbol::Star)) {
        advance();
        item.kind = ast::SelectItemKind::Star;
    } else if (atQualifiedStar()) {
        item.kind = ast::SelectItemKind::Star;
        std::vector<std::string> parts;
        while (!at(Symbol::Star)) {
            parts.push_back(at(Symbol::Dot) ? std::string() : identifier());
            expect(Symbol::Dot);
        }
        advance();
        item.table = joinParts(std::move(parts));
    } else if (at(TokenKind::Variable) && isAssignment(peek().symbol)) {
        item.kind = ast::SelectItemKind::Assignment;
        item.variable = variable();
        item.op = assignmentOperator();
        item.expression = value();
    } else if ((atIdentifier() || at(TokenKind::String)) && peek().symbol == Symbol::Equal) {
        item.alias = identifierOrString();
        advance();
        item.expression = value();
    } else {
        item.expression = value();
        item.alias = optionalAlias();
    }
    item.source = since(start);
    return item;
}

std::string QueryParser::optionalAlias()
{
    if (accept(Keyword::As))
        return identifierOrString();
    const bool label = at(TokenKind::Word) && atIdentifier() && peek().symbol == Symbol::Colon;
    if (label || (!atIdentifier() && !at(TokenKind::String)))
        return {};
    return identifierOrString();
}

} // namespace practice
