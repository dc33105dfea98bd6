// Operators with their precedence, conditions, and what operators stand between.
#include "tsql/query_parser.h"

#include <algorithm>

namespace practice {

using ast::ExpressionPtr;

void QueryParser::raiseHeight(ast::Expression& node, int height)
{
    if (height > maxTreeHeight)
        failTooDeep();
    node.height = static_cast<std::uint16_t>(std::max<int>(node.height, height));
    tallest_ = std::max(tallest_, height);
}

void QueryParser::place(ast::Expression& node, const ast::SourceRange& start,
                        std::initializer_list<const ast::Expression*> children)
{
    node.source = since(start);
    raiseHeight(node, 1);
    for (const auto* child : children) {
        if (child)
            raiseHeight(node, child->height + 1);
    }
}

// Operators -------------------------------------------------------------------------------------

QueryParser::Level QueryParser::currentLevel(bool conditionAllowed)
{
    switch (current().symbol) {
    case Symbol::Plus:
    case Symbol::Minus:
    case Symbol::Ampersand:
    case Symbol::Bar:
    case Symbol::Caret:
        return Level::Add;
    case Symbol::Star:
    case Symbol::Slash:
    case Symbol::Percent:
        return Level::Multiply;
    case Symbol::Equal:
    case Symbol::NotEqual:
    case Symbol::Less:
    case Symbol::LessEqual:
    case Symbol::Greater:
    case Symbol::GreaterEqual:
    case Symbol::StarEqual:
    case Symbol::EqualStar:
        return conditionAllowed ? Level::Compare : Level::None;
    default:
        break;
    }
    if (!conditionAllowed)
        return Level::None;
    switch (current().keyword) {
    case Keyword::Or:
        return Level::Or;
    case Keyword::And:
        return Level::And;
    case Keyword::Between:
    case Keyword::Like:
    case Keyword::In:
    case Keyword::Is:
        return Level::Compare;
    case Keyword::Not: {
        const Keyword next = peek().keyword;
        const bool predicate = next == Keyword::Between || next == Keyword::Like || next == Keyword::In;
        return predicate ? Level::Compare : Level::None;
    }
    default:
        return Level::None;
    }
}

/// Climbs the precedences: takes operators down to `lowest`. What stands where a condition may stand
/// can turn out to be a value, so the callers look at what they got.
ExpressionPtr QueryParser::operators(Level lowest, bool conditionAllowed)
{
    ExpressionPtr left;
    if (conditionAllowed && at(Keyword::Not)) {
        const Nesting nesting(*this);
        const auto start = here();
        advance();
        auto node = std::make_unique<ast::Not>();
        node->operand = condition(Level::Not);
        const auto* operand = node->operand.get();
        left = finish(std::move(node), start, {operand});
    } else {
        left = prefixed(conditionAllowed);
    }
    while (true) {
        const Level level = currentLevel(conditionAllowed);
        if (level == Level::None || level < lowest)
            return left;
        const bool joinsConditions = level == Level::Or || level == Level::And;
        if (joinsConditions && !left->isCondition())
            failNoCondition();
        if (!joinsConditions && left->isCondition())
            return left;
        if (joinsConditions)
            left = logical(std::move(left), level);
        else if (level == Level::Compare)
            left = comparison(std::move(left));
        else
            left = binary(std::move(left), level);
    }
}

ExpressionPtr QueryParser::condition(Level lowest)
{
    ExpressionPtr node = operators(lowest, true);
    if (!node->isCondition())
        failNoCondition();
    return node;
}

ExpressionPtr QueryParser::condition()
{
    return condition(Level::Or);
}

ExpressionPtr QueryParser::logical(ExpressionPtr left, Level level)
{
    const auto start = left->source;
    const Keyword word = level == Level::And ? Keyword::And : Keyword::Or;
    auto node = std::make_unique<ast::Logical>();
    node->conjunction = level == Level::And;
    int tallest = left->height;
    node->operands.push_back(std::move(left));
    while (accept(word)) {
        node->operands.push_back(condition(static_cast<Level>(static_cast<int>(level) + 1)));
        tallest = std::max<int>(tallest, node->operands.back()->height);
    }
    auto result = finish(std::move(node), start);
    raiseHeight(*result, tallest + 1);
    return result;
}

ExpressionPtr QueryParser::binary(ExpressionPtr left, Level level)
{
    using enum ast::BinaryOperator;
    auto node = std::make_unique<ast::Binary>();
    switch (current().symbol) {
    case Symbol::Plus:
        node->op = Add;
        break;
    case Symbol::Minus:
        node->op = Subtract;
        break;
    case Symbol::Ampersand:
        node->op = BitAnd;
        break;
    case Symbol::Bar:
        node->op = BitOr;
        break;
    case Symbol::Caret:
        node->op = BitXor;
        break;
    case Symbol::Star:
        node->op = Multiply;
        break;
    case Symbol::Slash:
        node->op = Divide;
        break;
    default:
        node->op = Modulo;
        break;
    }
    advance();
    const auto start = left->source;
    node->left = std::move(left);
    node->right = operators(static_cast<Level>(static_cast<int>(level) + 1), false);
    const auto& [l, r] = std::pair{node->left.get(), node->right.get()};
    return finish(std::move(node), start, {l, r});
}

ast::ComparisonOperator QueryParser::comparisonOperator()
{
    using enum ast::ComparisonOperator;
    const Symbol symbol = advance().symbol;
    switch (symbol) {
    case Symbol::Equal:
        return Equal;
    case Symbol::NotEqual:
        return NotEqual;
    case Symbol::LessEqual:
        return LessOrEqual;
    case Symbol::GreaterEqual:
        return GreaterOrEqual;
    case Symbol::StarEqual:
        return LeftOuter;
    case Symbol::EqualStar:
        return RightOuter;
    case Symbol::Less: // the two characters of an operator may stand apart
        if (accept(Symbol::Equal))
            return LessOrEqual;
        return accept(Symbol::Greater) ? NotEqual : Less;
    default:
        return accept(Symbol::Equal) ? GreaterOrEqual : Greater;
    }
}

ExpressionPtr QueryParser::comparison(ExpressionPtr left)
{
    if (at(Keyword::Is))
        return isNull(std::move(left));
    if (!at(TokenKind::Symbol))
        return negatable(std::move(left));
    const auto start = left->source;
    const ast::ComparisonOperator op = comparisonOperator();
    if (at(Keyword::All) || at(Keyword::Any) || at(Keyword::Some)) {
        auto node = std::make_unique<ast::QuantifiedComparison>();
        node->op = op;
        node->all = at(Keyword::All);
        advance();
        expect(Symbol::Open);
        const int height = left->height;
        node->left = std::move(left);
        node->query = subqueryRest();
        auto result = finish(std::move(node), start);
        raiseHeight(*result, std::max(height, queryHeight_) + 1);
        return result;
    }
    auto node = std::make_unique<ast::Comparison>();
    node->op = op;
    node->left = std::move(left);
    node->right = operators(Level::Add, false);
    const auto& [l, r] = std::pair{node->left.get(), node->right.get()};
    return finish(std::move(node), start, {l, r});
}

ExpressionPtr QueryParser::isNull(ExpressionPtr operand)
{
    const auto start = operand->source;
    advance();
    auto node = std::make_unique<ast::IsNull>();
    node->negated = accept(Keyword::Not);
    expect(Keyword::Null);
    node->operand = std::move(operand);
    const auto* child = node->operand.get();
    return finish(std::move(node), start, {child});
}

/// [NOT] BETWEEN, LIKE, IN
ExpressionPtr QueryParser::negatable(ExpressionPtr operand)
{
    const auto start = operand->source;
    const bool negated = accept(Keyword::Not);
    if (accept(Keyword::In))
        return inList(std::move(operand), negated);
    if (accept(Keyword::Between)) {
        auto node = std::make_unique<ast::Between>();
        node->negated = negated;
        node->operand = std::move(operand);
        node->low = value();
        expect(Keyword::And);
        node->high = value();
        auto* raw = node.get();
        return finish(std::move(node), start, {raw->operand.get(), raw->low.get(), raw->high.get()});
    }
    expect(Keyword::Like);
    auto node = std::make_unique<ast::Like>();
    node->negated = negated;
    node->operand = std::move(operand);
    node->pattern = value();
    if (accept(Keyword::Escape))
        node->escape = value();
    auto* raw = node.get();
    return finish(std::move(node), start, {raw->operand.get(), raw->pattern.get(), raw->escape.get()});
}

ExpressionPtr QueryParser::inList(ExpressionPtr operand, bool negated)
{
    const auto start = operand->source;
    auto node = std::make_unique<ast::In>();
    node->negated = negated;
    int tallest = operand->height;
    node->operand = std::move(operand);
    expect(Symbol::Open);
    if (at(Keyword::Select)) {
        node->query = subqueryRest();
    } else {
        node->values = values();
        for (const auto& each : node->values)
            tallest = std::max<int>(tallest, each->height);
        // IN ((SELECT ...)) is a query in one more pair of parentheses.
        if (node->values.size() == 1 && node->values.front()->kind == ast::ExpressionKind::Subquery) {
            node->query = std::move(static_cast<ast::Subquery&>(*node->values.front()).query);
            node->values.clear();
            if (atSetOperator())
                node->query = continued(std::move(node->query));
        }
        expect(Symbol::Close);
    }
    const bool hasQuery = node->query != nullptr;
    auto result = finish(std::move(node), start);
    raiseHeight(*result, (hasQuery ? std::max(tallest, queryHeight_) : tallest) + 1);
    return result;
}

std::vector<ExpressionPtr> QueryParser::values()
{
    std::vector<ExpressionPtr> list;
    do
        list.push_back(value());
    while (accept(Symbol::Comma));
    return list;
}

ExpressionPtr QueryParser::valueOrDefault()
{
    if (!at(Keyword::Default))
        return value();
    const auto start = here();
    advance();
    return finish(std::make_unique<ast::Default>(), start);
}

// Operands --------------------------------------------------------------------------------------

ExpressionPtr QueryParser::prefixed(bool conditionAllowed)
{
    const auto start = here();
    if (at(Symbol::Minus) || at(Symbol::Plus) || at(Symbol::Tilde)) {
        const Nesting nesting(*this);
        auto node = std::make_unique<ast::Unary>();
        node->op = at(Symbol::Minus)  ? ast::UnaryOperator::Minus
                   : at(Symbol::Plus) ? ast::UnaryOperator::Plus
                                      : ast::UnaryOperator::BitNot;
        advance();
        node->operand = prefixed(false);
        const auto* operand = node->operand.get();
        return finish(std::move(node), start, {operand});
    }
    ExpressionPtr operand = primary(conditionAllowed);
    while (at(Keyword::Collate) && !operand->isCondition()) {
        advance();
        auto node = std::make_unique<ast::Collate>();
        node->operand = std::move(operand);
        node->collation = identifier();
        const auto* child = node->operand.get();
        operand = finish(std::move(node), start, {child});
    }
    return operand;
}

ExpressionPtr QueryParser::primary(bool conditionAllowed)
{
    switch (current().kind) {
    case TokenKind::String:
    case TokenKind::NationalString:
    case TokenKind::Integer:
    case TokenKind::Decimal:
    case TokenKind::Float:
    case TokenKind::Money:
    case TokenKind::Binary:
        return literal();
    case TokenKind::Variable:
        return variableNode();
    case TokenKind::QuotedName:
        return named();
    case TokenKind::Word:
        return current().keyword == Keyword::None ? named() : keywordPrimary(conditionAllowed);
    default:
        break;
    }
    if (at(Symbol::Open))
        return parenthesised(conditionAllowed);
    if (at(Symbol::BraceOpen))
        return odbcEscape();
    if (at(Symbol::Dot))
        return named();
    fail();
}

ExpressionPtr QueryParser::keywordPrimary(bool conditionAllowed)
{
    switch (current().keyword) {
    case Keyword::Null:
        return literal();
    case Keyword::Case:
        return caseExpression();
    case Keyword::Convert:
    case Keyword::TryConvert:
        return convertCall();
    case Keyword::Coalesce:
    case Keyword::NullIf:
    case Keyword::Left:
    case Keyword::Right:
        return keywordCall();
    case Keyword::CurrentDate:
    case Keyword::CurrentTime:
    case Keyword::CurrentTimestamp:
    case Keyword::CurrentUser:
    case Keyword::SessionUser:
    case Keyword::SystemUser:
    case Keyword::User:
        return niladic();
    case Keyword::Identity:
        return identityCall();
    case Keyword::IdentityColumn:
    case Keyword::RowGuidColumn:
        return specialColumn({}, here());
    case Keyword::Exists:
        if (conditionAllowed)
            return existsCondition();
        break;
    case Keyword::Contains:
    case Keyword::FreeText:
        if (conditionAllowed)
            return fullText();
        break;
    case Keyword::Update:
        if (conditionAllowed)
            return updatedColumn();
        break;
    default:
        break;
    }
    fail();
}

ExpressionPtr QueryParser::parenthesised(bool conditionAllowed)
{
    const Nesting nesting(*this);
    const auto start = here();
    expect(Symbol::Open);
    ExpressionPtr inner;
    if (at(Keyword::Select)) {
        auto node = std::make_unique<ast::Subquery>();
        node->query = subqueryRest();
        inner = finish(std::move(node), start);
        raiseHeight(*inner, queryHeight_ + 1);
    } else {
        inner = operators(conditionAllowed ? Level::Or : Level::Add, conditionAllowed);
        // ((SELECT ...) UNION SELECT ...): what looked like a value was the first operand of a query.
        if (atSetOperator() && inner->kind == ast::ExpressionKind::Subquery) {
            auto& subquery = static_cast<ast::Subquery&>(*inner);
            subquery.query = continued(std::move(subquery.query));
            raiseHeight(*inner, queryHeight_ + 1);
        }
        expect(Symbol::Close);
    }
    inner->source = since(start);
    return inner;
}

namespace {

std::optional<ast::LiteralKind> literalKind(const Token& token)
{
    using enum ast::LiteralKind;
    switch (token.kind) {
    case TokenKind::String:
        return String;
    case TokenKind::NationalString:
        return NationalString;
    case TokenKind::Integer:
        return Integer;
    case TokenKind::Decimal:
        return Decimal;
    case TokenKind::Float:
        return Float;
    case TokenKind::Money:
        return Money;
    case TokenKind::Binary:
        return Binary;
    default:
        return token.keyword == Keyword::Null ? std::optional(Null) : std::nullopt;
    }
}

} // namespace

ExpressionPtr QueryParser::literal()
{
    const auto start = here();
    const auto kind = literalKind(current());
    if (!kind)
        fail();
    auto node = std::make_unique<ast::Literal>();
    node->literalKind = *kind;
    const Token token = advance();
    if (*kind != ast::LiteralKind::Null)
        node->text = token.content();
    return finish(std::move(node), start);
}

ExpressionPtr QueryParser::variableNode()
{
    const auto start = here();
    auto node = std::make_unique<ast::Variable>();
    node->name = variable();
    return finish(std::move(node), start);
}

ExpressionPtr QueryParser::constantOrVariable()
{
    if (at(TokenKind::Variable))
        return variableNode();
    if (!at(Symbol::Minus) && !at(Symbol::Plus))
        return literal();
    const auto start = here();
    auto node = std::make_unique<ast::Unary>();
    node->op = advance().symbol == Symbol::Minus ? ast::UnaryOperator::Minus : ast::UnaryOperator::Plus;
    if (atString() || at(Keyword::Null))
        fail();
    node->operand = literal();
    const auto* operand = node->operand.get();
    return finish(std::move(node), start, {operand});
}

ExpressionPtr QueryParser::constantOrWord()
{
    if (at(TokenKind::QuotedName) || (at(TokenKind::Word) && !at(Keyword::Null)))
        return bareWord();
    return constantOrVariable();
}

ExpressionPtr QueryParser::bareWord()
{
    const auto start = here();
    if (!at(TokenKind::Word) && !at(TokenKind::QuotedName))
        fail();
    auto node = std::make_unique<ast::Literal>();
    node->literalKind = ast::LiteralKind::String;
    node->bareWord = true;
    node->text = advance().content();
    return finish(std::move(node), start);
}

bool QueryParser::atValue() const
{
    switch (current().kind) {
    case TokenKind::End:
        return false;
    case TokenKind::Symbol:
        return at(Symbol::Open) || at(Symbol::Minus) || at(Symbol::Plus) || at(Symbol::Tilde) ||
               at(Symbol::BraceOpen);
    case TokenKind::Word:
        break;
    default:
        return true;
    }
    switch (current().keyword) {
    case Keyword::None:
    case Keyword::Null:
    case Keyword::Case:
    case Keyword::Convert:
    case Keyword::TryConvert:
    case Keyword::Coalesce:
    case Keyword::NullIf:
    case Keyword::Left:
    case Keyword::Right:
    case Keyword::CurrentTimestamp:
    case Keyword::CurrentUser:
    case Keyword::SessionUser:
    case Keyword::SystemUser:
    case Keyword::User:
        return true;
    default:
        return false;
    }
}

} // namespace practice
