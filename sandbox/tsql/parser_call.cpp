// Names in expressions, calls, CASE, conversions, ODBC escapes and types.
#include "tsql/query_parser.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace practice {

using ast::ExpressionPtr;

namespace {

bool isAlone(const ast::ObjectName& name)
{
    return name.schema.empty() && name.database.empty() && name.server.empty();
}

/// The parts before a column's name.
ast::ObjectName qualifierOf(ast::ObjectName name)
{
    return {"", std::move(name.server), std::move(name.database), std::move(name.schema)};
}

} // namespace

// Names -----------------------------------------------------------------------------------------

ExpressionPtr QueryParser::named()
{
    const auto start = here();
    if (atSpecialColumn())
        return specialColumn({}, start);
    const bool bare = at(TokenKind::Word);
    std::vector<std::string> parts;
    while (true) {
        if (atSpecialColumn() && !parts.empty()) {
            parts.emplace_back(); // in the place of the column's name
            return specialColumn(joinParts(std::move(parts)), start);
        }
        parts.push_back(at(Symbol::Dot) ? std::string() : identifier());
        if (!accept(Symbol::Dot))
            break;
    }
    ast::ObjectName name = joinParts(std::move(parts));
    if (!at(Symbol::Open))
        return column(std::move(name), start);
    if (bare && isAlone(name)) {
        const std::string word = upperCase(name.object);
        if (word == "CAST" || word == "TRY_CAST")
            return castRest(word == "TRY_CAST", start);
        if (word == "IIF")
            return iif(start);
    }
    return call(std::move(name), start);
}

bool QueryParser::atSpecialColumn() const
{
    return at(Keyword::IdentityColumn) || at(Keyword::RowGuidColumn) ||
           (at(TokenKind::Word) && current().text.front() == '$');
}

ExpressionPtr QueryParser::column(ast::ObjectName name, const ast::SourceRange& start)
{
    auto node = std::make_unique<ast::Column>();
    node->name = std::move(name.object);
    node->table = qualifierOf(std::move(name));
    return finish(std::move(node), start);
}

ExpressionPtr QueryParser::specialColumn(ast::ObjectName name, const ast::SourceRange& start)
{
    auto node = std::make_unique<ast::Column>();
    if (at(Keyword::IdentityColumn) || atWord("$IDENTITY"))
        node->role = ast::ColumnRole::Identity;
    else if (at(Keyword::RowGuidColumn) || atWord("$ROWGUID"))
        node->role = ast::ColumnRole::RowGuid;
    else
        fail();
    advance();
    node->table = qualifierOf(std::move(name));
    return finish(std::move(node), start);
}

// Calls -----------------------------------------------------------------------------------------

std::unique_ptr<ast::Function> QueryParser::call(ast::ObjectName name, const ast::SourceRange& start)
{
    const Nesting nesting(*this);
    auto node = std::make_unique<ast::Function>();
    node->name = std::move(name);
    expect(Symbol::Open);
    if (at(Symbol::Star) && peek().symbol == Symbol::Close) {
        advance();
        node->star = true;
    } else if (!at(Symbol::Close)) {
        node->distinct = accept(Keyword::Distinct);
        if (!node->distinct)
            accept(Keyword::All);
        do
            node->arguments.push_back(valueOrDefault());
        while (accept(Symbol::Comma));
    }
    expect(Symbol::Close);
    if (atWord("WITHIN") && peek().keyword == Keyword::Group) {
        advance();
        advance();
        expect(Symbol::Open);
        expect(Keyword::Order);
        expect(Keyword::By);
        node->withinGroup = orderItems();
        expect(Symbol::Close);
    }
    int tallest = 0;
    for (const auto& argument : node->arguments)
        tallest = std::max<int>(tallest, argument->height);
    for (const auto& item : node->withinGroup)
        tallest = std::max<int>(tallest, item.expression->height);
    if (at(Keyword::Over)) {
        node->over = window();
        for (const auto& each : node->over->partitionBy)
            tallest = std::max<int>(tallest, each->height);
        for (const auto& item : node->over->orderBy)
            tallest = std::max<int>(tallest, item.expression->height);
    }
    auto result = finish(std::move(node), start);
    raiseHeight(*result, tallest + 1);
    return result;
}

ast::Window QueryParser::window()
{
    ast::Window result;
    expect(Keyword::Over);
    expect(Symbol::Open);
    if (acceptWord("PARTITION")) {
        expect(Keyword::By);
        result.partitionBy = values();
    }
    if (accept(Keyword::Order)) {
        expect(Keyword::By);
        result.orderBy = orderItems();
    }
    if (atWord("ROWS") || atWord("RANGE"))
        result.frame = windowFrame();
    expect(Symbol::Close);
    return result;
}

ast::WindowFrame QueryParser::windowFrame()
{
    ast::WindowFrame frame;
    frame.rows = atWord("ROWS");
    advance();
    if (accept(Keyword::Between)) {
        frame.start = frameBound();
        expect(Keyword::And);
        frame.end = frameBound();
    } else {
        frame.start = frameBound();
    }
    return frame;
}

ast::FrameBound QueryParser::frameBound()
{
    using enum ast::FrameBoundKind;
    ast::FrameBound bound;
    if (accept(Keyword::Current)) {
        expectWord("ROW");
        return bound;
    }
    const bool unbounded = acceptWord("UNBOUNDED");
    if (!unbounded)
        bound.count = literal();
    if (acceptWord("PRECEDING")) {
        bound.kind = unbounded ? UnboundedPreceding : Preceding;
    } else {
        expectWord("FOLLOWING");
        bound.kind = unbounded ? UnboundedFollowing : Following;
    }
    return bound;
}

/// CURRENT_TIMESTAMP, USER and their like.
ExpressionPtr QueryParser::niladic()
{
    const auto start = here();
    auto node = std::make_unique<ast::Function>();
    node->name.object = advance().content();
    node->parentheses = false;
    return finish(std::move(node), start);
}

/// Functions whose names are reserved words.
ExpressionPtr QueryParser::keywordCall()
{
    const auto start = here();
    ast::ObjectName name;
    name.object = advance().content();
    return call(std::move(name), start);
}

ExpressionPtr QueryParser::identityCall()
{
    const auto start = here();
    auto node = std::make_unique<ast::Function>();
    node->name.object = advance().content();
    expect(Symbol::Open);
    node->type = dataType();
    while (accept(Symbol::Comma))
        node->arguments.push_back(constantOrVariable());
    expect(Symbol::Close);
    return finish(std::move(node), start);
}

ExpressionPtr QueryParser::updatedColumn()
{
    const auto start = here();
    auto function = std::make_unique<ast::Function>();
    function->name.object = advance().content();
    expect(Symbol::Open);
    const auto columnStart = here();
    ast::ObjectName name;
    name.object = identifier();
    function->arguments.push_back(column(std::move(name), columnStart));
    expect(Symbol::Close);
    auto one = std::make_unique<ast::Literal>();
    one->literalKind = ast::LiteralKind::Integer;
    one->text = "1";
    auto node = std::make_unique<ast::Comparison>();
    node->left = finish(std::move(function), start);
    node->right = finish(std::move(one), start);
    const auto* left = node->left.get();
    return finish(std::move(node), start, {left});
}

ExpressionPtr QueryParser::existsCondition()
{
    const auto start = here();
    expect(Keyword::Exists);
    expect(Symbol::Open);
    auto node = std::make_unique<ast::Exists>();
    node->query = subqueryRest();
    auto result = finish(std::move(node), start);
    raiseHeight(*result, queryHeight_ + 1);
    return result;
}

ExpressionPtr QueryParser::fullText()
{
    const auto start = here();
    auto node = std::make_unique<ast::FullText>();
    node->freeText = advance().keyword == Keyword::FreeText;
    expect(Symbol::Open);
    if (at(Symbol::Star)) {
        auto star = std::make_unique<ast::Column>();
        const auto starStart = here();
        star->name = advance().content();
        node->arguments.push_back(finish(std::move(star), starStart));
    } else {
        node->arguments.push_back(value());
    }
    while (accept(Symbol::Comma))
        node->arguments.push_back(value());
    expect(Symbol::Close);
    return finish(std::move(node), start);
}

// CASE and conversions --------------------------------------------------------------------------

ExpressionPtr QueryParser::caseExpression()
{
    const Nesting nesting(*this);
    const auto start = here();
    expect(Keyword::Case);
    auto node = std::make_unique<ast::Case>();
    int tallest = 0;
    const auto note = [&](const ExpressionPtr& child) { tallest = std::max<int>(tallest, child->height); };
    if (!at(Keyword::When)) {
        node->operand = value();
        note(node->operand);
    }
    while (accept(Keyword::When)) {
        ast::CaseBranch branch;
        branch.when = node->operand ? value() : condition();
        expect(Keyword::Then);
        branch.then = value();
        note(branch.when);
        note(branch.then);
        node->branches.push_back(std::move(branch));
    }
    if (node->branches.empty())
        fail();
    if (accept(Keyword::Else)) {
        accept(Symbol::Colon); // "else: x" is let pass
        node->otherwise = value();
        note(node->otherwise);
    }
    expect(Keyword::End);
    auto result = finish(std::move(node), start);
    raiseHeight(*result, tallest + 1);
    return result;
}

ExpressionPtr QueryParser::iif(const ast::SourceRange& start)
{
    const Nesting nesting(*this);
    expect(Symbol::Open);
    auto node = std::make_unique<ast::Case>();
    ast::CaseBranch branch;
    branch.when = condition();
    expect(Symbol::Comma);
    branch.then = value();
    expect(Symbol::Comma);
    node->otherwise = value();
    expect(Symbol::Close);
    node->branches.push_back(std::move(branch));
    const auto* raw = node.get();
    return finish(std::move(node), start,
                  {raw->branches[0].when.get(), raw->branches[0].then.get(), raw->otherwise.get()});
}

ExpressionPtr QueryParser::castRest(bool attempt, const ast::SourceRange& start)
{
    const Nesting nesting(*this);
    expect(Symbol::Open);
    auto node = std::make_unique<ast::Cast>();
    node->attempt = attempt;
    node->operand = value();
    expect(Keyword::As);
    node->type = dataType();
    expect(Symbol::Close);
    const auto* operand = node->operand.get();
    return finish(std::move(node), start, {operand});
}

ExpressionPtr QueryParser::convertCall()
{
    const Nesting nesting(*this);
    const auto start = here();
    auto node = std::make_unique<ast::Cast>();
    node->attempt = advance().keyword == Keyword::TryConvert;
    expect(Symbol::Open);
    node->type = dataType();
    expect(Symbol::Comma);
    node->operand = value();
    if (accept(Symbol::Comma))
        node->style = value();
    expect(Symbol::Close);
    const auto* raw = node.get();
    return finish(std::move(node), start, {raw->operand.get(), raw->style.get()});
}

// ODBC escapes ----------------------------------------------------------------------------------

/// {ts '...'}, {d '...'}, {t '...'}, {guid '...'}, {fn f(...)}
ExpressionPtr QueryParser::odbcEscape()
{
    const auto start = here();
    expect(Symbol::BraceOpen);
    if (acceptWord("FN")) {
        ExpressionPtr inner = odbcFunction();
        expect(Symbol::BraceClose);
        inner->source = since(start);
        return inner;
    }
    const bool guid = atWord("GUID");
    if (!guid && !atWord("TS") && !atWord("D") && !atWord("T"))
        fail();
    advance();
    if (!atString())
        fail();
    auto node = std::make_unique<ast::Cast>();
    node->type.id = guid ? TypeId::UniqueIdentifier : TypeId::DateTime;
    node->type.name.object = practice::typeName(node->type.id);
    node->operand = literal();
    expect(Symbol::BraceClose);
    const auto* operand = node->operand.get();
    return finish(std::move(node), start, {operand});
}

/// ODBC's scalar functions under the names that the server has for them.
ExpressionPtr QueryParser::odbcFunction()
{
    constexpr std::array<std::pair<std::string_view, std::string_view>, 7> names{{
        {"UCASE", "upper"},
        {"LCASE", "lower"},
        {"LENGTH", "len"},
        {"NOW", "getdate"},
        {"IFNULL", "isnull"},
        {"DATABASE", "db_name"},
        {"LOCATE", "charindex"},
    }};
    const auto start = here();
    const auto* known = std::ranges::find_if(names, [&](const auto& each) { return atWord(each.first); });
    if (known == names.end() || peek().symbol != Symbol::Open)
        return value();
    advance();
    ast::ObjectName name;
    name.object = known->second;
    return call(std::move(name), start);
}

// Types -----------------------------------------------------------------------------------------

/// The type names of several words, joined by one blank; "" when there is no such one here.
std::string QueryParser::typeName()
{
    std::string name;
    const auto take = [&] { name += (name.empty() ? "" : " ") + advance().content(); };
    if (at(Keyword::Double)) {
        take();
        if (!atWord("PRECISION"))
            fail();
        take();
        return name;
    }
    if (at(Keyword::National)) {
        take();
        if (!atWord("CHAR") && !atWord("CHARACTER") && !atWord("TEXT"))
            fail();
        take();
    } else if ((atWord("CHAR") || atWord("CHARACTER") || atWord("BINARY")) &&
               peek().keyword == Keyword::Varying) {
        take();
    } else if (at(Keyword::Cursor)) {
        take();
        return name;
    }
    if (!name.empty() && at(Keyword::Varying))
        take();
    return name;
}

void QueryParser::facets(ast::DataType& type)
{
    if (!at(Symbol::Open))
        return;
    const Token& first = peek();
    const bool number = first.kind == TokenKind::Decimal || first.kind == TokenKind::Float ||
                        (first.kind == TokenKind::Symbol && first.symbol == Symbol::Minus);
    if (first.kind != TokenKind::Integer && !isWord(first, "MAX") && !number)
        return;
    advance();
    if (number)
        fail();
    if (acceptWord("MAX")) {
        type.max = true;
    } else {
        type.facets.push_back(integer());
        if (accept(Symbol::Comma))
            type.facets.push_back(integer());
    }
    expect(Symbol::Close);
}

ast::DataType QueryParser::dataType()
{
    const auto start = here();
    ast::DataType type;
    type.name.object = typeName();
    if (type.name.empty())
        type.name = objectName();
    const bool system =
        isAlone(type.name) || (type.name.database.empty() && lowerCase(type.name.schema) == "sys");
    if (system)
        type.id = typeByName(lowerCase(type.name.object));
    facets(type);
    type.varying = accept(Keyword::Varying);
    type.source = since(start);
    return type;
}

} // namespace practice
