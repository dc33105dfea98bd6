// Statements, and the batch that they make up.
#pragma once

#include "tsql/ast.h"
#include "tsql/table_parser.h"

#include <set>

namespace practice {

class StatementParser : public TableParser
{
public:
    using TableParser::TableParser;

    [[nodiscard]] ast::Batch batch();

private:
    // Batch and dispatch (parser_statement.cpp)
    [[nodiscard]] ast::StatementPtr statement();
    [[nodiscard]] ast::StatementPtr dispatch();
    [[nodiscard]] ast::StatementPtr wordStatement();
    [[nodiscard]] ast::StatementPtr createStatement();
    [[nodiscard]] ast::StatementPtr createKeyword(ast::DefinitionMode mode, const ast::SourceRange& start);
    [[nodiscard]] ast::StatementPtr createWord();
    [[nodiscard]] ast::StatementPtr alterStatement();
    [[nodiscard]] ast::StatementPtr dropStatement();
    /// Statements up to END (not taken), at least one.
    [[nodiscard]] ast::StatementList statementList();
    /// All that is left of the batch: the body of a procedure.
    [[nodiscard]] ast::StatementList restOfBatch();
    bool skipSemicolons();

    // Data (parser_data.cpp)
    [[nodiscard]] ast::StatementPtr withStatement();
    [[nodiscard]] ast::StatementPtr selectStatement(std::vector<ast::CommonTable> common);
    [[nodiscard]] ast::StatementPtr insertStatement(std::vector<ast::CommonTable> common);
    void insertSource(ast::InsertStatement& node);
    [[nodiscard]] ast::StatementPtr updateStatement(std::vector<ast::CommonTable> common);
    [[nodiscard]] ast::Assignment assignment();
    [[nodiscard]] ast::StatementPtr deleteStatement(std::vector<ast::CommonTable> common);
    [[nodiscard]] ast::StatementPtr truncateStatement();
    [[nodiscard]] std::optional<ast::OutputClause> outputClause();
    void changeWhere(ast::ExpressionPtr& where, std::string& currentOf);

    // Control of flow (parser_control.cpp)
    [[nodiscard]] ast::StatementPtr beginStatement();
    [[nodiscard]] ast::StatementPtr tryCatch();
    [[nodiscard]] ast::StatementPtr ifStatement();
    [[nodiscard]] ast::StatementPtr whileStatement();
    [[nodiscard]] ast::StatementPtr transaction(ast::TransactionAction action);
    [[nodiscard]] ast::StatementPtr returnStatement();
    [[nodiscard]] ast::StatementPtr breakStatement();
    [[nodiscard]] ast::StatementPtr continueStatement();
    [[nodiscard]] ast::StatementPtr gotoStatement();
    /// @throws SyntaxError 133 for a GOTO without its label
    void requireLabels() const;
    [[nodiscard]] ast::StatementPtr label();
    [[nodiscard]] ast::StatementPtr waitFor();
    [[nodiscard]] ast::StatementPtr print();
    [[nodiscard]] ast::StatementPtr raiserror();
    void raiserrorOptions(ast::RaiserrorStatement& node);
    [[nodiscard]] ast::StatementPtr throwStatement();

    // Calls and cursors (parser_execute.cpp)
    [[nodiscard]] ast::StatementPtr executeStatement();
    [[nodiscard]] ast::StatementPtr executeString();
    [[nodiscard]] ast::StatementPtr executeAs();
    [[nodiscard]] ast::StatementPtr revert();
    [[nodiscard]] ast::StatementPtr bareCall();
    void callRest(ast::ExecuteStatement& node);
    [[nodiscard]] std::vector<ast::Argument> arguments();
    [[nodiscard]] ast::Argument argument();
    [[nodiscard]] bool atArgument() const;
    [[nodiscard]] ast::StatementPtr declareStatement();
    [[nodiscard]] ast::Declaration declaration();
    [[nodiscard]] ast::StatementPtr declareCursor();
    void cursorBody(ast::DeclareCursorStatement& node);
    [[nodiscard]] ast::StatementPtr cursorStatement(ast::CursorAction action);
    [[nodiscard]] ast::StatementPtr fetchStatement();

    // Session and server (parser_session.cpp)
    [[nodiscard]] ast::StatementPtr setStatement();
    [[nodiscard]] ast::StatementPtr setVariable();
    void setSwitches(ast::SetOptionStatement& node);
    void setIsolation(ast::SetOptionStatement& node);
    [[nodiscard]] ast::StatementPtr useStatement();
    [[nodiscard]] ast::StatementPtr dbcc();
    void qualify(ast::Expression& word);
    [[nodiscard]] ast::StatementPtr kill();
    [[nodiscard]] ast::StatementPtr shutdown();
    [[nodiscard]] ast::StatementPtr checkpoint();
    [[nodiscard]] ast::StatementPtr reconfigure();

    // Tables and indexes (parser_definition.cpp)
    [[nodiscard]] ast::StatementPtr createTable();
    [[nodiscard]] ast::StatementPtr alterTable();
    void alterColumn(ast::AlterTableStatement& node);
    void dropElements(ast::AlterTableStatement& node);
    void switched(ast::AlterTableStatement& node);
    [[nodiscard]] ast::StatementPtr createIndex();
    [[nodiscard]] ast::StatementPtr alterIndex();
    [[nodiscard]] ast::StatementPtr dropIndex();
    [[nodiscard]] ast::StatementPtr dropObjects(ast::DropKind kind, bool qualified);
    [[nodiscard]] ast::StatementPtr createStatistics();
    [[nodiscard]] ast::StatementPtr updateStatistics();
    [[nodiscard]] std::vector<ast::NamedOption> statisticsOptions();
    [[nodiscard]] ast::StatementPtr createType();
    [[nodiscard]] ast::StatementPtr enableTrigger();

    // Views and programs (parser_program.cpp)
    void requireFirst(ast::DefinitionMode mode, std::string_view what, const ast::SourceRange& start) const;
    [[nodiscard]] ast::StatementPtr createView(ast::DefinitionMode mode);
    [[nodiscard]] ast::StatementPtr createProcedure(ast::DefinitionMode mode);
    void procedureOptions(ast::CreateProcedureStatement& node);
    [[nodiscard]] std::string executeAsOption();
    [[nodiscard]] ast::ParameterDefinition parameter();
    [[nodiscard]] ast::StatementPtr createFunction(ast::DefinitionMode mode);
    void functionReturns(ast::CreateFunctionStatement& node);
    void functionBody(ast::CreateFunctionStatement& node);
    [[nodiscard]] ast::StatementPtr createTrigger(ast::DefinitionMode mode);
    void triggerTarget(ast::ObjectName& table, bool& onDatabase, bool& onServer);
    [[nodiscard]] ast::StatementPtr createDefault();
    [[nodiscard]] ast::StatementPtr createRule();

    // Databases and backups (parser_database.cpp, parser_backup.cpp)
    [[nodiscard]] ast::StatementPtr createDatabase();
    void fileGroups(ast::CreateDatabaseStatement& node);
    [[nodiscard]] std::vector<ast::FileSpec> fileSpecs();
    [[nodiscard]] ast::FileSpec fileSpec();
    void fileProperty(ast::FileSpec& file);
    [[nodiscard]] ast::FileSize fileSize(bool percent);
    [[nodiscard]] ast::StatementPtr alterDatabase();
    void alterDatabaseAdd(ast::AlterDatabaseStatement& node);
    void alterDatabaseRemove(ast::AlterDatabaseStatement& node);
    void alterDatabaseModify(ast::AlterDatabaseStatement& node);
    void alterDatabaseSet(ast::AlterDatabaseStatement& node);
    [[nodiscard]] ast::NamedOption databaseOption();
    [[nodiscard]] ast::StatementPtr backup();
    [[nodiscard]] ast::StatementPtr restore();
    [[nodiscard]] std::vector<ast::BackupFile> backupFiles();
    [[nodiscard]] std::vector<ast::BackupDevice> backupDevices();
    [[nodiscard]] std::vector<ast::BackupOption> backupOptions();
    [[nodiscard]] ast::BackupOption backupOption();
    [[nodiscard]] ast::ExpressionPtr nameOrVariable();
    [[nodiscard]] ast::ExpressionPtr stringOrVariable();

    // Security (parser_security.cpp)
    [[nodiscard]] ast::StatementPtr permission(ast::PermissionAction action);
    [[nodiscard]] ast::PermissionItem permissionItem();
    void securable(std::string& securableClass, ast::ObjectName& name);
    [[nodiscard]] std::string principal();
    [[nodiscard]] ast::StatementPtr createLogin();
    [[nodiscard]] ast::StatementPtr alterLogin();
    template <class Login>
    void loginOption(Login& node);
    [[nodiscard]] ast::StatementPtr createUser();
    [[nodiscard]] ast::StatementPtr alterUser();
    [[nodiscard]] ast::StatementPtr createRole(bool server);
    [[nodiscard]] ast::StatementPtr alterRole(bool server);
    [[nodiscard]] ast::StatementPtr createSchema();
    [[nodiscard]] ast::StatementPtr alterSchema();
    [[nodiscard]] ast::StatementPtr alterAuthorization();

    struct Jump
    {
        std::string label;
        std::size_t line;
    };

    std::set<std::string> labels_; ///< of the batch, upper case
    std::vector<Jump> jumps_;      ///< the GOTO of the batch
    int loops_ = 0;                ///< how many WHILE hold the statement that is read

    bool untouched_ = true;     ///< no statement of the batch has begun
    bool first_ = false;        ///< the statement that begins is the batch's first
    bool openEnd_ = false;      ///< the statement before ended without a semicolon
    bool afterOpenEnd_ = false; ///< the same, of the statement that begins
};

} // namespace practice
