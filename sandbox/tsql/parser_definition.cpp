// Tables, indexes, statistics, types, and dropping.
#include "tsql/statement_parser.h"

namespace practice {

using ast::StatementPtr;

// Tables ----------------------------------------------------------------------------------------

StatementPtr StatementParser::createTable()
{
    expect(Keyword::Table);
    auto node = std::make_unique<ast::CreateTableStatement>();
    node->name = objectName();
    node->elements = tableBody();
    node->fileGroup = onFileGroup();
    if (acceptWord("TEXTIMAGE_ON"))
        node->textFileGroup = identifierOrString();
    if (at(Keyword::With) && peek().symbol == Symbol::Open) {
        advance();
        advance();
        node->options = namedOptions();
        expect(Symbol::Close);
    }
    return node;
}

StatementPtr StatementParser::alterTable()
{
    using enum ast::AlterTableAction;
    expect(Keyword::Table);
    auto node = std::make_unique<ast::AlterTableStatement>();
    node->name = objectName();
    if (accept(Keyword::With)) {
        node->withCheck = at(Keyword::Check);
        if (!at(Keyword::Check) && !at(Keyword::NoCheck))
            fail();
        advance();
        if (!at(Keyword::Add) && !at(Keyword::Check) && !at(Keyword::NoCheck))
            fail();
    }
    switch (current().keyword) {
    case Keyword::Add:
        advance();
        node->elements = tableElements(ElementPlace::AlterTable);
        break;
    case Keyword::Alter:
        alterColumn(*node);
        break;
    case Keyword::Drop:
        dropElements(*node);
        break;
    case Keyword::Check:
    case Keyword::NoCheck:
        node->action = SwitchConstraints;
        node->enable = advance().keyword == Keyword::Check;
        expect(Keyword::Constraint);
        switched(*node);
        break;
    default:
        if (!atWord("ENABLE") && !atWord("DISABLE"))
            fail();
        node->action = SwitchTriggers;
        node->enable = anyWord() == "ENABLE";
        expect(Keyword::Trigger);
        switched(*node);
        break;
    }
    return node;
}

void StatementParser::switched(ast::AlterTableStatement& node)
{
    node.all = accept(Keyword::All);
    if (!node.all)
        node.names = identifiers();
}

void StatementParser::alterColumn(ast::AlterTableStatement& node)
{
    node.action = ast::AlterTableAction::AlterColumn;
    expect(Keyword::Alter);
    expect(Keyword::Column);
    const auto start = here();
    node.column.name = identifier();
    if (at(Keyword::Add) || at(Keyword::Drop)) {
        node.adds = advance().keyword == Keyword::Add;
        if (at(Keyword::Not)) {
            advance();
            expect(Keyword::For);
            expect(Keyword::Replication);
            node.columnProperty = "NOT FOR REPLICATION";
        } else {
            if (!at(Keyword::RowGuidColumn) && !atWord("PERSISTED") && !atWord("SPARSE"))
                fail();
            node.columnProperty = anyWord();
        }
    } else {
        columnType(node.column);
    }
    node.column.source = since(start);
}

void StatementParser::dropElements(ast::AlterTableStatement& node)
{
    node.action = ast::AlterTableAction::Drop;
    expect(Keyword::Drop);
    bool column = false;
    bool ifExists = false;
    do {
        // COLUMN and CONSTRAINT hold for the names that follow.
        if (at(Keyword::Column) || at(Keyword::Constraint)) {
            column = advance().keyword == Keyword::Column;
            ifExists = accept(Keyword::If);
            if (ifExists)
                expect(Keyword::Exists);
        }
        node.drops.push_back({column, ifExists, identifier()});
        if (at(Keyword::With) && peek().symbol == Symbol::Open) {
            advance();
            skipParenthesised();
        }
    } while (accept(Symbol::Comma));
}

// Indexes and statistics ------------------------------------------------------------------------

StatementPtr StatementParser::createIndex()
{
    auto node = std::make_unique<ast::CreateIndexStatement>();
    node->unique = accept(Keyword::Unique);
    node->clustered = accept(Keyword::Clustered);
    if (!node->clustered)
        accept(Keyword::NonClustered);
    expect(Keyword::Index);
    node->name = identifier();
    expect(Keyword::On);
    node->table = objectName();
    node->columns = indexColumns();
    if (acceptWord("INCLUDE"))
        node->included = identifierList();
    if (accept(Keyword::Where))
        node->where = condition();
    node->options = indexOptions(true);
    node->fileGroup = onFileGroup();
    return node;
}

StatementPtr StatementParser::alterIndex()
{
    using enum ast::AlterIndexAction;
    expect(Keyword::Index);
    auto node = std::make_unique<ast::AlterIndexStatement>();
    node->all = accept(Keyword::All);
    if (!node->all)
        node->name = identifier();
    expect(Keyword::On);
    node->table = objectName();
    if (accept(Keyword::Set)) {
        node->action = Set;
        skipParenthesised();
    } else if (acceptWord("DISABLE")) {
        node->action = Disable;
    } else if (acceptWord("REORGANIZE")) {
        node->action = Reorganize;
    } else {
        expectWord("REBUILD");
        node->options = indexOptions(true);
    }
    return node;
}

StatementPtr StatementParser::dropIndex()
{
    auto node = std::make_unique<ast::DropIndexStatement>();
    node->ifExists = accept(Keyword::If);
    if (node->ifExists)
        expect(Keyword::Exists);
    do {
        ast::ObjectName name = objectName();
        ast::DroppedIndex dropped;
        dropped.name = std::move(name.object);
        if (accept(Keyword::On))
            dropped.table = objectName();
        else
            dropped.table = {"", std::move(name.server), std::move(name.database), std::move(name.schema)};
        node->indexes.push_back(std::move(dropped));
    } while (accept(Symbol::Comma));
    if (at(Keyword::With) && peek().symbol == Symbol::Open) {
        advance();
        skipParenthesised();
    }
    return node;
}

StatementPtr StatementParser::createStatistics()
{
    expect(Keyword::Statistics);
    auto node = std::make_unique<ast::CreateStatisticsStatement>();
    node->name = identifier();
    expect(Keyword::On);
    node->table = objectName();
    node->columns = identifierList();
    if (accept(Keyword::With))
        node->options = statisticsOptions();
    return node;
}

StatementPtr StatementParser::updateStatistics()
{
    expect(Keyword::Update);
    expect(Keyword::Statistics);
    auto node = std::make_unique<ast::UpdateStatisticsStatement>();
    node->table = objectName();
    if (at(Symbol::Open))
        node->names = identifierList();
    else if (atIdentifier())
        node->names.push_back(identifier());
    if (accept(Keyword::With))
        node->options = statisticsOptions();
    return node;
}

/// FULLSCAN, SAMPLE n PERCENT|ROWS, NORECOMPUTE ...
std::vector<ast::NamedOption> StatementParser::statisticsOptions()
{
    std::vector<ast::NamedOption> options;
    do {
        options.push_back(namedOption());
        if (at(TokenKind::Integer)) {
            options.back().values.push_back(literal());
            options.back().values.push_back(bareWord());
        }
    } while (accept(Symbol::Comma));
    return options;
}

// Types, triggers -------------------------------------------------------------------------------

/// Behind CREATE TYPE.
StatementPtr StatementParser::createType()
{
    auto node = std::make_unique<ast::CreateTypeStatement>();
    node->name = objectName();
    if (accept(Keyword::As)) {
        expect(Keyword::Table);
        node->table = std::make_unique<ast::TableElements>(tableBody());
        return node;
    }
    expect(Keyword::From);
    node->base = dataType();
    if (accept(Keyword::Null)) {
        node->nullable = true;
    } else if (accept(Keyword::Not)) {
        expect(Keyword::Null);
        node->nullable = false;
    }
    return node;
}

StatementPtr StatementParser::enableTrigger()
{
    auto node = std::make_unique<ast::EnableTriggerStatement>();
    node->enable = anyWord() == "ENABLE";
    expect(Keyword::Trigger);
    node->all = accept(Keyword::All);
    if (!node->all) {
        do
            node->names.push_back(objectName());
        while (accept(Symbol::Comma));
    }
    bool onDatabase = false;
    bool onServer = false;
    triggerTarget(node->table, onDatabase, onServer);
    return node;
}

// DROP ------------------------------------------------------------------------------------------

StatementPtr StatementParser::dropObjects(ast::DropKind kind, bool qualified)
{
    auto node = std::make_unique<ast::DropStatement>();
    node->dropKind = kind;
    node->ifExists = accept(Keyword::If);
    if (node->ifExists)
        expect(Keyword::Exists);
    do {
        ast::ObjectName name;
        if (qualified)
            name = objectName();
        else
            name.object = identifier();
        node->names.push_back(std::move(name));
    } while (accept(Symbol::Comma));
    if (kind == ast::DropKind::Trigger && at(Keyword::On)) {
        bool onDatabase = false;
        bool onServer = false;
        ast::ObjectName table;
        triggerTarget(table, onDatabase, onServer);
        if (!onDatabase && !onServer)
            fail();
    }
    return node;
}

} // namespace practice
