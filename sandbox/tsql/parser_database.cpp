// CREATE DATABASE and ALTER DATABASE.
#include "tsql/statement_parser.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace practice {

using ast::StatementPtr;

namespace {

/// Options of SET that stand without a value.
constexpr auto bareOptions = std::to_array<std::string_view>({
    "DISABLE_BROKER",
    "EMERGENCY",
    "ENABLE_BROKER",
    "ERROR_BROKER_CONVERSATIONS",
    "MULTI_USER",
    "NEW_BROKER",
    "OFFLINE",
    "ONLINE",
    "READ_ONLY",
    "READ_WRITE",
    "RESTRICTED_USER",
    "SINGLE_USER",
});

constexpr auto fileGroupProperties = std::to_array<std::string_view>({
    "AUTOGROW_ALL_FILES",
    "AUTOGROW_SINGLE_FILE",
    "READONLY",
    "READWRITE",
    "READ_ONLY",
    "READ_WRITE",
});

} // namespace

// Files -----------------------------------------------------------------------------------------

ast::FileSize StatementParser::fileSize(bool percent)
{
    using enum ast::SizeUnit;
    ast::FileSize size;
    if (!at(TokenKind::Integer))
        fail();
    const std::string_view digits = current().text;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), size.number).ec != std::errc())
        fail();
    advance();
    if (percent && accept(Symbol::Percent))
        size.unit = Percent;
    else if (acceptWord("KB"))
        size.unit = KB;
    else if (acceptWord("MB"))
        size.unit = MB;
    else if (acceptWord("GB"))
        size.unit = GB;
    else if (acceptWord("TB"))
        size.unit = TB;
    return size;
}

void StatementParser::fileProperty(ast::FileSpec& file)
{
    if (acceptWord("OFFLINE")) {
        file.offline = true;
        return;
    }
    const Token word = current();
    if (!at(TokenKind::Word))
        fail();
    advance();
    const auto assigned = [&](std::string_view name) {
        if (!isWord(word, name))
            return false;
        expect(Symbol::Equal);
        return true;
    };
    if (assigned("NAME")) {
        file.name = identifierOrString();
    } else if (assigned("NEWNAME")) {
        file.newName = identifierOrString();
    } else if (assigned("FILENAME")) {
        file.fileName = string();
    } else if (assigned("SIZE")) {
        file.size = fileSize(false);
    } else if (assigned("MAXSIZE")) {
        file.unlimited = acceptWord("UNLIMITED");
        if (!file.unlimited)
            file.maxSize = fileSize(false);
    } else if (assigned("FILEGROWTH")) {
        file.growth = fileSize(true);
    } else {
        failAt(word);
    }
}

ast::FileSpec StatementParser::fileSpec()
{
    const auto start = here();
    ast::FileSpec file;
    expect(Symbol::Open);
    do
        fileProperty(file);
    while (accept(Symbol::Comma));
    expect(Symbol::Close);
    file.source = since(start);
    return file;
}

/// Files by comma, up to a comma that a FILEGROUP follows.
std::vector<ast::FileSpec> StatementParser::fileSpecs()
{
    std::vector<ast::FileSpec> files;
    files.push_back(fileSpec());
    while (at(Symbol::Comma) && peek().symbol == Symbol::Open) {
        advance();
        files.push_back(fileSpec());
    }
    return files;
}

// CREATE DATABASE -------------------------------------------------------------------------------

void StatementParser::fileGroups(ast::CreateDatabaseStatement& node)
{
    node.primaryKeyword = accept(Keyword::Primary);
    node.groups.emplace_back();
    if (node.primaryKeyword || at(Symbol::Open))
        node.groups.back().files = fileSpecs();
    while (node.groups.back().files.empty() || accept(Symbol::Comma)) {
        ast::FileGroupSpec group;
        expectWord("FILEGROUP");
        group.name = identifier();
        group.isDefault = accept(Keyword::Default);
        group.files = fileSpecs();
        node.groups.push_back(std::move(group));
    }
}

StatementPtr StatementParser::createDatabase()
{
    expect(Keyword::Database);
    auto node = std::make_unique<ast::CreateDatabaseStatement>();
    node->name = identifier();
    if (accept(Keyword::On))
        fileGroups(*node);
    if (acceptWord("LOG")) {
        expect(Keyword::On);
        node->logFiles = fileSpecs();
    }
    if (accept(Keyword::Collate))
        node->collation = identifier();
    if (accept(Keyword::For)) {
        node->forLoad = accept(Keyword::Load);
        node->rebuildLog = !node->forLoad && acceptWord("ATTACH_REBUILD_LOG");
        node->forAttach = node->rebuildLog || (!node->forLoad && acceptWord("ATTACH"));
        if (!node->forLoad && !node->forAttach)
            fail();
    }
    if (accept(Keyword::As)) {
        expectWord("SNAPSHOT");
        expect(Keyword::Of);
        node->snapshotOf = identifier();
    }
    if (accept(Keyword::With)) {
        do
            node->options.push_back(databaseOption());
        while (accept(Symbol::Comma));
    }
    return node;
}

// ALTER DATABASE --------------------------------------------------------------------------------

StatementPtr StatementParser::alterDatabase()
{
    expect(Keyword::Database);
    auto node = std::make_unique<ast::AlterDatabaseStatement>();
    node->current = accept(Keyword::Current);
    if (!node->current)
        node->name = identifier();
    if (accept(Keyword::Add)) {
        alterDatabaseAdd(*node);
    } else if (acceptWord("REMOVE")) {
        alterDatabaseRemove(*node);
    } else if (acceptWord("MODIFY")) {
        alterDatabaseModify(*node);
    } else if (accept(Keyword::Collate)) {
        node->action = ast::AlterDatabaseAction::Collate;
        node->collation = identifier();
    } else {
        expect(Keyword::Set);
        alterDatabaseSet(*node);
    }
    return node;
}

void StatementParser::alterDatabaseAdd(ast::AlterDatabaseStatement& node)
{
    using enum ast::AlterDatabaseAction;
    if (acceptWord("FILEGROUP")) {
        node.action = AddFileGroup;
        node.fileGroup = identifier();
        return;
    }
    node.action = acceptWord("LOG") ? AddLogFile : AddFile;
    expect(Keyword::File);
    node.files = fileSpecs();
    if (node.action == AddFile && accept(Keyword::To)) {
        expectWord("FILEGROUP");
        node.fileGroup = identifier();
    }
}

void StatementParser::alterDatabaseRemove(ast::AlterDatabaseStatement& node)
{
    using enum ast::AlterDatabaseAction;
    if (acceptWord("FILEGROUP")) {
        node.action = RemoveFileGroup;
        node.fileGroup = identifier();
        return;
    }
    expect(Keyword::File);
    node.action = RemoveFile;
    node.file = identifierOrString();
}

void StatementParser::alterDatabaseModify(ast::AlterDatabaseStatement& node)
{
    using enum ast::AlterDatabaseAction;
    if (accept(Keyword::File)) {
        node.action = ModifyFile;
        node.files.push_back(fileSpec());
        return;
    }
    if (acceptWord("NAME")) {
        node.action = ModifyName;
        expect(Symbol::Equal);
        node.newName = identifier();
        return;
    }
    expectWord("FILEGROUP");
    node.fileGroup = identifier();
    if (acceptWord("NAME")) {
        node.action = RenameFileGroup;
        expect(Symbol::Equal);
        node.newName = identifier();
        return;
    }
    node.action = ModifyFileGroup;
    const bool known =
        at(Keyword::Default) ||
        std::ranges::find(fileGroupProperties, upperCase(current().text)) != fileGroupProperties.end();
    if (!known || !at(TokenKind::Word))
        fail();
    node.property = anyWord();
}

ast::NamedOption StatementParser::databaseOption()
{
    ast::NamedOption option;
    option.name = anyWord();
    if (std::ranges::binary_search(bareOptions, option.name))
        return option;
    const bool assigned = accept(Symbol::Equal);
    if (assigned || at(Keyword::On) || at(Keyword::Off) || at(Keyword::Full) || at(TokenKind::Integer) ||
        atIdentifier() || atString())
        option.values.push_back(constantOrWord());
    if (isWord(current(), "SECONDS") || isWord(current(), "MINUTES"))
        option.values.push_back(bareWord());
    if (at(Symbol::Open))
        skipParenthesised();
    return option;
}

void StatementParser::alterDatabaseSet(ast::AlterDatabaseStatement& node)
{
    using enum ast::Termination;
    node.action = ast::AlterDatabaseAction::SetOptions;
    do
        node.options.push_back(databaseOption());
    while (accept(Symbol::Comma));
    if (!accept(Keyword::With))
        return;
    if (acceptWord("NO_WAIT")) {
        node.termination = NoWait;
        return;
    }
    expect(Keyword::Rollback);
    if (acceptWord("IMMEDIATE")) {
        node.termination = RollbackImmediate;
        return;
    }
    expectWord("AFTER");
    node.termination = RollbackAfter;
    node.terminationSeconds = integer();
    acceptWord("SECONDS");
}

} // namespace practice
