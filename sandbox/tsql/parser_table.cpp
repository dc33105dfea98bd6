// CREATE and ALTER TABLE, and indexes.
#include "tsql/table_parser.h"

#include <algorithm>
#include <array>

namespace practice {
namespace {

constexpr auto indexOptionWords = std::to_array<std::string_view>({
    "ALLOW_PAGE_LOCKS",
    "ALLOW_ROW_LOCKS",
    "DATA_COMPRESSION",
    "DROP_EXISTING",
    "FILLFACTOR",
    "IGNORE_DUP_KEY",
    "MAXDOP",
    "ONLINE",
    "OPTIMIZE_FOR_SEQUENTIAL_KEY",
    "PAD_INDEX",
    "SORT_IN_TEMPDB",
    "STATISTICS_INCREMENTAL",
    "STATISTICS_NORECOMPUTE",
});

std::optional<bool>* switchOf(ast::IndexOptions& options, std::string_view name)
{
    if (name == "PAD_INDEX")
        return &options.padIndex;
    if (name == "IGNORE_DUP_KEY")
        return &options.ignoreDuplicateKey;
    if (name == "DROP_EXISTING")
        return &options.dropExisting;
    if (name == "STATISTICS_NORECOMPUTE")
        return &options.statisticsNoRecompute;
    if (name == "SORT_IN_TEMPDB")
        return &options.sortInTempdb;
    if (name == "ALLOW_ROW_LOCKS")
        return &options.allowRowLocks;
    if (name == "ALLOW_PAGE_LOCKS")
        return &options.allowPageLocks;
    return nullptr;
}

} // namespace

ast::TableElements TableParser::tableBody()
{
    expect(Symbol::Open);
    ast::TableElements elements = tableElements(ElementPlace::CreateTable);
    expect(Symbol::Close);
    return elements;
}

ast::TableElements TableParser::tableElements(ElementPlace place)
{
    ast::TableElements elements;
    do {
        // CREATE TABLE forgives a comma behind the last element.
        if (place == ElementPlace::CreateTable && at(Symbol::Close) && !elements.columns.empty())
            break;
        element(elements, place);
    } while (accept(Symbol::Comma));
    return elements;
}

bool TableParser::atConstraint() const
{
    switch (current().keyword) {
    case Keyword::Constraint:
    case Keyword::Primary:
    case Keyword::Unique:
    case Keyword::Foreign:
    case Keyword::References:
    case Keyword::Check:
    case Keyword::Default:
        return true;
    default:
        return false;
    }
}

void TableParser::element(ast::TableElements& elements, ElementPlace place)
{
    if (atConstraint() && !at(Keyword::References))
        elements.constraints.push_back(constraint(place, false));
    else
        column(elements);
}

// Columns ---------------------------------------------------------------------------------------

void TableParser::column(ast::TableElements& elements)
{
    const auto start = here();
    ast::ColumnDefinition column;
    column.name = identifier();
    if (accept(Keyword::As)) {
        column.computed = value();
        column.persisted = acceptWord("PERSISTED");
    } else if (upperCase(column.name) == "TIMESTAMP" && !atIdentifier()) {
        // A lone "timestamp" is name and type in one.
        column.type.name.object = column.name;
        column.type.id = TypeId::Timestamp;
        column.type.source = since(start);
    } else if (lacksType()) {
        fail(173, "The definition for column '" + column.name + "' must include a data type.");
    } else {
        column.type = dataType();
    }
    while (columnPart(column, elements)) {
    }
    column.source = since(start);
    elements.columns.push_back(std::move(column));
}

bool TableParser::lacksType() const
{
    return atEnd() || at(Symbol::Comma) || at(Symbol::Close) || at(Keyword::Null) || at(Keyword::Not) ||
           at(Keyword::Identity) || atConstraint();
}

void TableParser::columnType(ast::ColumnDefinition& column)
{
    column.type = dataType();
    if (accept(Keyword::Collate))
        column.collation = identifier();
    if (accept(Keyword::Null)) {
        column.nullable = true;
    } else if (at(Keyword::Not) && peek().keyword == Keyword::Null) {
        advance();
        advance();
        column.nullable = false;
    }
}

bool TableParser::columnPart(ast::ColumnDefinition& column, ast::TableElements& elements)
{
    if (accept(Keyword::Collate)) {
        column.collation = identifier();
    } else if (accept(Keyword::Null)) {
        column.nullable = true;
    } else if (at(Keyword::Not)) {
        if (notForReplication()) {
            if (column.identity)
                column.identity->notForReplication = true;
        } else {
            advance();
            expect(Keyword::Null);
            column.nullable = false;
        }
    } else if (accept(Keyword::Identity)) {
        column.identity = identity();
    } else if (accept(Keyword::RowGuidColumn)) {
        column.rowGuid = true;
    } else if (acceptWord("SPARSE")) {
        column.sparse = true;
    } else if (atConstraint()) {
        // With columns of its own it belongs to the table, though no comma parts it from the column.
        ast::TableConstraint part = constraint(ElementPlace::CreateTable, true);
        if (part.columns.empty())
            column.constraints.push_back(std::move(part));
        else
            elements.constraints.push_back(std::move(part));
    } else {
        return false;
    }
    return true;
}

std::string TableParser::signedNumber()
{
    std::string text = accept(Symbol::Minus) ? "-" : "";
    if (text.empty())
        accept(Symbol::Plus);
    if (!at(TokenKind::Integer) && !at(TokenKind::Decimal))
        fail();
    return text + advance().content();
}

ast::IdentityClause TableParser::identity()
{
    ast::IdentityClause clause;
    if (accept(Symbol::Open)) {
        clause.seed = signedNumber();
        expect(Symbol::Comma);
        clause.increment = signedNumber();
        expect(Symbol::Close);
    }
    clause.notForReplication = notForReplication();
    return clause;
}

bool TableParser::notForReplication()
{
    if (!at(Keyword::Not) || peek().keyword != Keyword::For)
        return false;
    advance();
    advance();
    expect(Keyword::Replication);
    return true;
}

// Constraints -----------------------------------------------------------------------------------

ast::TableConstraint TableParser::constraint(ElementPlace place, bool ofColumn)
{
    const auto start = here();
    ast::TableConstraint constraint;
    if (accept(Keyword::Constraint))
        constraint.name = identifier();
    switch (current().keyword) {
    case Keyword::Primary:
    case Keyword::Unique:
        keyConstraint(constraint, ofColumn);
        break;
    case Keyword::Foreign:
    case Keyword::References:
        foreignKey(constraint, ofColumn);
        break;
    case Keyword::Check:
        checkConstraint(constraint);
        break;
    case Keyword::Default:
        if (place == ElementPlace::CreateTable && !ofColumn)
            fail();
        defaultConstraint(constraint, ofColumn);
        break;
    default:
        fail();
    }
    constraint.source = since(start);
    return constraint;
}

void TableParser::keyConstraint(ast::TableConstraint& constraint, bool ofColumn)
{
    constraint.kind = ast::ConstraintKind::Unique;
    if (advance().keyword == Keyword::Primary) {
        constraint.kind = ast::ConstraintKind::PrimaryKey;
        expect(Keyword::Key);
    }
    if (at(Keyword::Clustered) || at(Keyword::NonClustered))
        constraint.clustered = advance().keyword == Keyword::Clustered;
    if (!ofColumn || at(Symbol::Open))
        constraint.columns = indexColumns();
    constraint.options = indexOptions(false);
    constraint.fileGroup = onFileGroup();
}

void TableParser::foreignKey(ast::TableConstraint& constraint, bool ofColumn)
{
    constraint.kind = ast::ConstraintKind::ForeignKey;
    if (accept(Keyword::Foreign)) {
        expect(Keyword::Key);
        if (!ofColumn || at(Symbol::Open)) {
            for (auto& name : identifierList())
                constraint.columns.push_back({std::move(name), false});
        }
    } else if (!ofColumn) {
        fail();
    }
    expect(Keyword::References);
    constraint.referencedTable = objectName();
    if (at(Symbol::Open))
        constraint.referencedColumns = identifierList();
    while (at(Keyword::On) && (peek().keyword == Keyword::Delete || peek().keyword == Keyword::Update))
        referentialAction(constraint);
    constraint.notForReplication = notForReplication();
}

void TableParser::referentialAction(ast::TableConstraint& constraint)
{
    using enum ast::ReferentialAction;
    expect(Keyword::On);
    auto& action = advance().keyword == Keyword::Delete ? constraint.onDelete : constraint.onUpdate;
    if (accept(Keyword::Cascade)) {
        action = Cascade;
    } else if (acceptWord("NO")) {
        expectWord("ACTION");
        action = NoAction;
    } else {
        expect(Keyword::Set);
        const bool null = accept(Keyword::Null);
        if (!null)
            expect(Keyword::Default);
        action = null ? SetNull : SetDefault;
    }
}

void TableParser::checkConstraint(ast::TableConstraint& constraint)
{
    constraint.kind = ast::ConstraintKind::Check;
    expect(Keyword::Check);
    constraint.notForReplication = notForReplication();
    expect(Symbol::Open);
    constraint.expression = condition();
    expect(Symbol::Close);
}

void TableParser::defaultConstraint(ast::TableConstraint& constraint, bool ofColumn)
{
    constraint.kind = ast::ConstraintKind::Default;
    expect(Keyword::Default);
    constraint.expression = value();
    if (!ofColumn) {
        expect(Keyword::For);
        constraint.forColumn = identifier();
    }
    if (at(Keyword::With) && peek().keyword == Keyword::Values) {
        advance();
        advance();
        constraint.withValues = true;
    }
}

// Options ---------------------------------------------------------------------------------------

std::vector<ast::IndexColumn> TableParser::indexColumns()
{
    std::vector<ast::IndexColumn> columns;
    expect(Symbol::Open);
    do {
        ast::IndexColumn column;
        column.name = identifier();
        column.descending = accept(Keyword::Desc);
        if (!column.descending)
            accept(Keyword::Asc);
        columns.push_back(std::move(column));
    } while (accept(Symbol::Comma));
    expect(Symbol::Close);
    return columns;
}

bool TableParser::isIndexOption(const Token& token)
{
    return token.kind == TokenKind::Word &&
           std::ranges::binary_search(indexOptionWords, upperCase(token.text));
}

ast::IndexOptions TableParser::indexOptions(bool several)
{
    ast::IndexOptions options;
    if (!at(Keyword::With) || (peek().symbol != Symbol::Open && !isIndexOption(peek())))
        return options;
    advance();
    if (accept(Symbol::Open)) {
        do
            indexOption(options);
        while (accept(Symbol::Comma));
        expect(Symbol::Close);
        return options;
    }
    indexOption(options);
    // Behind a comma, a constraint's list ends and the table's goes on, unless it is an option again.
    while (at(Symbol::Comma) && (several || isIndexOption(peek()))) {
        advance();
        indexOption(options);
    }
    return options;
}

void TableParser::indexOption(ast::IndexOptions& options)
{
    if (!isIndexOption(current()))
        fail();
    if (accept(Keyword::FillFactor)) {
        expect(Symbol::Equal);
        if (!at(TokenKind::Integer))
            fail();
        options.fillFactor = integer();
        return;
    }
    auto* flag = switchOf(options, upperCase(current().text));
    if (!flag) {
        options.others.push_back(namedOption());
        return;
    }
    advance();
    *flag = accept(Symbol::Equal) ? onOrOff() : true;
}

std::string TableParser::onFileGroup()
{
    if (!at(Keyword::On))
        return {};
    advance();
    std::string name = identifierOrString();
    if (at(Symbol::Open)) // a partition scheme with its column
        skipParenthesised();
    return name;
}

ast::NamedOption TableParser::namedOption()
{
    ast::NamedOption option;
    option.name = anyWord();
    if (accept(Symbol::Equal))
        option.values.push_back(constantOrWord());
    else if (at(Keyword::On) || at(Keyword::Off))
        option.values.push_back(bareWord());
    if (at(Symbol::Open))
        skipParenthesised();
    return option;
}

std::vector<ast::NamedOption> TableParser::namedOptions()
{
    std::vector<ast::NamedOption> options;
    do
        options.push_back(namedOption());
    while (accept(Symbol::Comma));
    return options;
}

} // namespace practice
