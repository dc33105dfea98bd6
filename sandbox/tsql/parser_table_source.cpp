// What stands behind FROM: tables, joins, derived tables, hints.
#include "tsql/query_parser.h"

#include <algorithm>
#include <array>

namespace practice {

using ast::JoinKind;
using ast::TableSourcePtr;

namespace {

constexpr int maxTables = 256;

constexpr auto hintWords = std::to_array<std::string_view>({
    "FASTFIRSTROW",    "FORCESCAN",       "FORCESEEK",      "HOLDLOCK",      "IGNORE_CONSTRAINTS",
    "IGNORE_TRIGGERS", "INDEX",           "KEEPDEFAULTS",   "KEEPIDENTITY",  "NOEXPAND",
    "NOLOCK",          "NOWAIT",          "PAGLOCK",        "READCOMMITTED", "READCOMMITTEDLOCK",
    "READPAST",        "READUNCOMMITTED", "REPEATABLEREAD", "ROWLOCK",       "SERIALIZABLE",
    "SNAPSHOT",        "TABLOCK",         "TABLOCKX",       "UPDLOCK",       "XLOCK",
});

bool isHint(const Token& token)
{
    return token.kind == TokenKind::Word && std::ranges::binary_search(hintWords, upperCase(token.text));
}

} // namespace

std::vector<TableSourcePtr> QueryParser::tableSources()
{
    std::vector<TableSourcePtr> sources;
    do
        sources.push_back(joined());
    while (accept(Symbol::Comma));
    return sources;
}

// Joins -----------------------------------------------------------------------------------------

TableSourcePtr QueryParser::joined()
{
    return joinsAfter(tableSource());
}

TableSourcePtr QueryParser::joinsAfter(TableSourcePtr left)
{
    while (atJoin())
        left = oneJoin(std::move(left));
    return left;
}

/// The join that starts here, if one does.
std::optional<JoinKind> QueryParser::atJoin()
{
    switch (current().keyword) {
    case Keyword::Join:
    case Keyword::Inner:
        return JoinKind::Inner;
    case Keyword::Left:
        return JoinKind::Left;
    case Keyword::Right:
        return JoinKind::Right;
    case Keyword::Full:
        return JoinKind::Full;
    case Keyword::Cross:
        return isWord(peek(), "APPLY") ? JoinKind::CrossApply : JoinKind::Cross;
    case Keyword::Outer:
        return JoinKind::OuterApply;
    default:
        return std::nullopt;
    }
}

JoinKind QueryParser::joinWords()
{
    const JoinKind kind = atJoin().value_or(JoinKind::Inner);
    if (kind == JoinKind::CrossApply || kind == JoinKind::OuterApply) {
        advance();
        expectWord("APPLY");
        return kind;
    }
    if (!at(Keyword::Join)) {
        advance();
        if (kind != JoinKind::Inner && kind != JoinKind::Cross)
            accept(Keyword::Outer);
        if (!acceptWord("HASH") && !acceptWord("LOOP") && !acceptWord("REMOTE"))
            accept(Keyword::Merge);
    }
    expect(Keyword::Join);
    return kind;
}

TableSourcePtr QueryParser::oneJoin(TableSourcePtr left)
{
    const Nesting nesting(*this);
    const auto start = left->source;
    auto node = std::make_unique<ast::JoinedTable>();
    node->joinKind = joinWords();
    node->left = std::move(left);
    node->right = tableSource();
    const bool hasCondition = node->joinKind == JoinKind::Inner || node->joinKind == JoinKind::Left ||
                              node->joinKind == JoinKind::Right || node->joinKind == JoinKind::Full;
    if (hasCondition) {
        // a JOIN b JOIN c ON ... ON ...: the inner join comes first.
        node->right = joinsAfter(std::move(node->right));
        expect(Keyword::On);
        node->on = condition();
    }
    node->source = since(start);
    return node;
}

// Sources ---------------------------------------------------------------------------------------

TableSourcePtr QueryParser::tableSource()
{
    if (++tables_ > maxTables)
        fail(106, "Too many table names in the query. The maximum allowable is 256.");
    const auto start = here();
    if (at(Symbol::Open)) {
        TableSourcePtr source = parenthesisedSource();
        if (source->kind == ast::TableSourceKind::Derived && source->alias.empty())
            fail();
        return source;
    }
    if (at(TokenKind::Variable)) {
        auto node = std::make_unique<ast::VariableTable>();
        node->name = variable();
        tableAlias(*node, false);
        node->source = since(start);
        return node;
    }
    if (accept(Symbol::DoubleColon)) {
        ast::ObjectName name;
        name.object = identifier();
        return functionSource(std::move(name), true, start);
    }
    if (at(Symbol::BraceOpen) && isWord(peek(), "OJ")) {
        advance();
        advance();
        TableSourcePtr source = joined();
        expect(Symbol::BraceClose);
        return source;
    }
    return namedSource();
}

/// A derived table, VALUES, or joins in parentheses. A query in further parentheses comes back without
/// an alias, since only what follows can tell that it is no table yet.
TableSourcePtr QueryParser::parenthesisedSource()
{
    const Nesting nesting(*this);
    const auto start = here();
    expect(Symbol::Open);
    if (at(Keyword::Select))
        return derived(subqueryRest(), start);
    if (accept(Keyword::Values)) {
        auto node = std::make_unique<ast::ValuesTable>();
        node->rows = valueRows();
        expect(Symbol::Close);
        tableAlias(*node, true);
        if (node->alias.empty())
            fail();
        node->source = since(start);
        return node;
    }
    TableSourcePtr inner = at(Symbol::Open) ? parenthesisedSource() : tableSource();
    if (inner->kind == ast::TableSourceKind::Derived && inner->alias.empty()) {
        auto query = std::move(static_cast<ast::DerivedTable&>(*inner).query);
        if (atSetOperator())
            query = continued(std::move(query));
        expect(Symbol::Close);
        return derived(std::move(query), start);
    }
    inner = joinsAfter(std::move(inner));
    expect(Symbol::Close);
    inner->source = since(start);
    return inner;
}

TableSourcePtr QueryParser::derived(ast::QueryPtr query, const ast::SourceRange& start)
{
    auto node = std::make_unique<ast::DerivedTable>();
    node->query = std::move(query);
    tableAlias(*node, true);
    node->source = since(start);
    return node;
}

TableSourcePtr QueryParser::namedSource()
{
    const auto start = here();
    ast::ObjectName name = objectName();
    if (at(Symbol::Open) && !atHints())
        return functionSource(std::move(name), false, start);
    auto node = std::make_unique<ast::NamedTable>();
    node->name = std::move(name);
    node->hints = hints();
    tableAlias(*node, false);
    if (node->hints.empty())
        node->hints = hints();
    node->source = since(start);
    return node;
}

TableSourcePtr QueryParser::functionSource(ast::ObjectName name, bool system, const ast::SourceRange& start)
{
    auto node = std::make_unique<ast::FunctionTable>();
    node->systemFunction = system;
    node->call = call(std::move(name), start);
    tableAlias(*node, true);
    node->source = since(start);
    return node;
}

TableSourcePtr QueryParser::targetTable(HintForm form)
{
    const auto start = here();
    if (at(TokenKind::Variable)) {
        auto node = std::make_unique<ast::VariableTable>();
        node->name = variable();
        node->source = since(start);
        return node;
    }
    auto node = std::make_unique<ast::NamedTable>();
    node->name = objectName();
    if (at(Keyword::With) || form == HintForm::Bare)
        node->hints = hints();
    node->source = since(start);
    return node;
}

void QueryParser::tableAlias(ast::TableSource& source, bool columns)
{
    if (accept(Keyword::As)) {
        source.alias = identifier();
    } else {
        const bool label = at(TokenKind::Word) && atIdentifier() && peek().symbol == Symbol::Colon;
        if (!atIdentifier() || label)
            return;
        source.alias = identifier();
    }
    if (columns && at(Symbol::Open))
        source.columnAliases = identifierList();
}

/// At "(nolock" and the like, or at the old "(1)" and "(0)" for an index?
bool QueryParser::atHints()
{
    return at(Symbol::Open) && isHint(peek()) &&
           (peek(2).symbol == Symbol::Close || peek(2).symbol == Symbol::Comma || isHint(peek(2)) ||
            peek().keyword == Keyword::Index);
}

std::vector<std::string> QueryParser::hints()
{
    std::vector<std::string> words;
    const bool with = at(Keyword::With) && peek().symbol == Symbol::Open;
    if (with)
        advance();
    else if (!atHints())
        return words;
    expect(Symbol::Open);
    do {
        if (!isHint(current()))
            fail();
        words.push_back(anyWord());
        if (accept(Symbol::Equal) && !at(Symbol::Open))
            advance();
        if (at(Symbol::Open))
            skipParenthesised();
        accept(Symbol::Comma);
    } while (!at(Symbol::Close));
    expect(Symbol::Close);
    return words;
}

std::vector<ast::ValueRow> QueryParser::valueRows()
{
    std::vector<ast::ValueRow> rows;
    do {
        expect(Symbol::Open);
        ast::ValueRow row;
        do
            row.push_back(valueOrDefault());
        while (accept(Symbol::Comma));
        expect(Symbol::Close);
        rows.push_back(std::move(row));
    } while (accept(Symbol::Comma));
    return rows;
}

} // namespace practice
