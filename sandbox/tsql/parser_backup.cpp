// BACKUP and RESTORE.
#include "tsql/statement_parser.h"

namespace practice {

using ast::StatementPtr;

ast::ExpressionPtr StatementParser::nameOrVariable()
{
    if (at(TokenKind::Variable))
        return variableNode();
    if (!atIdentifier())
        fail();
    return bareWord();
}

ast::ExpressionPtr StatementParser::stringOrVariable()
{
    if (!atString() && !at(TokenKind::Variable))
        fail();
    return constantOrVariable();
}

/// FILE = 'x', FILEGROUP = 'x', PAGE = 'x', READ_WRITE_FILEGROUPS between the name and TO or FROM.
std::vector<ast::BackupFile> StatementParser::backupFiles()
{
    std::vector<ast::BackupFile> files;
    while (at(Keyword::File) || atWord("FILEGROUP") || atWord("READ_WRITE_FILEGROUPS")) {
        ast::BackupFile file;
        file.group = !at(Keyword::File);
        if (atWord("READ_WRITE_FILEGROUPS")) {
            file.name = bareWord();
        } else {
            advance();
            expect(Symbol::Equal);
            file.name = stringOrVariable();
        }
        files.push_back(std::move(file));
        if (!accept(Symbol::Comma))
            break;
    }
    return files;
}

std::vector<ast::BackupDevice> StatementParser::backupDevices()
{
    using enum ast::DeviceKind;
    std::vector<ast::BackupDevice> devices;
    do {
        ast::BackupDevice device;
        if (peek().symbol == Symbol::Equal) {
            device.kind = at(Keyword::Disk) ? Disk
                          : atWord("TAPE")  ? Tape
                          : atWord("URL")   ? Url
                          : atWord("PIPE")  ? Pipe
                                            : Logical;
            if (device.kind == Logical)
                fail();
            advance();
            advance();
            device.name = stringOrVariable();
        } else {
            device.name = nameOrVariable();
        }
        devices.push_back(std::move(device));
    } while (accept(Symbol::Comma));
    return devices;
}

ast::BackupOption StatementParser::backupOption()
{
    if (!atWord("MOVE"))
        return namedOption();
    ast::BackupOption option;
    option.name = anyWord();
    option.values.push_back(stringOrVariable());
    expect(Keyword::To);
    option.values.push_back(stringOrVariable());
    return option;
}

std::vector<ast::BackupOption> StatementParser::backupOptions()
{
    std::vector<ast::BackupOption> options;
    if (!accept(Keyword::With))
        return options;
    do
        options.push_back(backupOption());
    while (accept(Symbol::Comma));
    return options;
}

StatementPtr StatementParser::backup()
{
    expect(Keyword::Backup);
    auto node = std::make_unique<ast::BackupStatement>();
    if (!accept(Keyword::Database)) {
        if (!accept(Keyword::Tran) && !accept(Keyword::Transaction))
            expectWord("LOG");
        node->backupKind = ast::BackupKind::Log;
    }
    node->database = nameOrVariable();
    node->files = backupFiles();
    // BACKUP LOG x WITH TRUNCATE_ONLY needs no device.
    if (node->backupKind == ast::BackupKind::Database || !at(Keyword::With)) {
        expect(Keyword::To);
        node->devices = backupDevices();
    }
    node->options = backupOptions();
    return node;
}

StatementPtr StatementParser::restore()
{
    using enum ast::RestoreKind;
    expect(Keyword::Restore);
    auto node = std::make_unique<ast::RestoreStatement>();
    if (accept(Keyword::Database))
        node->restoreKind = Database;
    else if (acceptWord("LOG") || accept(Keyword::Tran) || accept(Keyword::Transaction))
        node->restoreKind = Log;
    else if (acceptWord("HEADERONLY"))
        node->restoreKind = HeaderOnly;
    else if (acceptWord("FILELISTONLY"))
        node->restoreKind = FileListOnly;
    else if (acceptWord("VERIFYONLY"))
        node->restoreKind = VerifyOnly;
    else if (acceptWord("LABELONLY"))
        node->restoreKind = LabelOnly;
    else if (acceptWord("REWINDONLY"))
        node->restoreKind = RewindOnly;
    else
        fail();
    const bool named = node->restoreKind == Database || node->restoreKind == Log;
    if (named) {
        node->database = nameOrVariable();
        node->files = backupFiles();
    }
    if (!named || at(Keyword::From)) {
        expect(Keyword::From);
        node->devices = backupDevices();
    }
    node->options = backupOptions();
    return node;
}

} // namespace practice
