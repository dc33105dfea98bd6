#include "engine/definition/ddl.h"

#include "engine/context/permissions.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace practice {
namespace {

template <typename Node>
const Node& as(const ast::Statement& statement)
{
    return ast::as<Node>(statement);
}

/// Statistics are the store's own affair; the statement only has to name things that exist.
void createStatistics(SessionContext& session, const ast::CreateStatisticsStatement& statement)
{
    const ObjectPtr table = requireTable(session, statement.table, 1088);
    for (const std::string& column : statement.columns) {
        if (table->column(column) == nullptr)
            raise(1911, {column});
    }
}

void updateStatistics(SessionContext& session, const ast::UpdateStatisticsStatement& statement)
{
    const ObjectPtr table = findNamed(session, statement.table);
    if (!table)
        raise(2706, {plainName(statement.table)});
    if (!mayChange(session, *table))
        raiseHidden(statement.table, ofCreateIndex);
    for (const std::string& name : statement.names) {
        if (table->index(name) == nullptr)
            raise(2727, {name});
    }
}

/// "CREATE TRIGGER": what a statement does, and to what.
std::string firstWords(const std::string& text)
{
    std::istringstream words(text);
    std::string verb;
    std::string noun;
    words >> verb >> noun;
    std::string both = verb + ' ' + noun;
    std::transform(both.begin(), both.end(), both.begin(), [](unsigned char c) { return std::toupper(c); });
    return both;
}

} // namespace

std::optional<std::uint64_t> executeDdl(SessionContext& session, const ast::Statement& statement)
{
    using Kind = ast::StatementKind;
    session.catalog().version();
    switch (statement.kind) {
    case Kind::CreateTable:
        createTable(session, as<ast::CreateTableStatement>(statement));
        break;
    case Kind::AlterTable:
        alterTable(session, as<ast::AlterTableStatement>(statement));
        break;
    case Kind::CreateIndex:
        createIndex(session, as<ast::CreateIndexStatement>(statement));
        break;
    case Kind::AlterIndex:
        alterIndex(session, as<ast::AlterIndexStatement>(statement));
        break;
    case Kind::DropIndex:
        dropIndexes(session, as<ast::DropIndexStatement>(statement));
        break;
    case Kind::Drop:
        drop(session, as<ast::DropStatement>(statement));
        break;
    case Kind::CreateView:
        createView(session, as<ast::CreateViewStatement>(statement));
        break;
    case Kind::CreateProcedure:
        createProcedure(session, as<ast::CreateProcedureStatement>(statement));
        break;
    case Kind::CreateStatistics:
        createStatistics(session, as<ast::CreateStatisticsStatement>(statement));
        break;
    case Kind::UpdateStatistics:
        updateStatistics(session, as<ast::UpdateStatisticsStatement>(statement));
        break;
    case Kind::CreateDatabase:
        createDatabase(session, as<ast::CreateDatabaseStatement>(statement));
        break;
    case Kind::AlterDatabase:
        alterDatabase(session, as<ast::AlterDatabaseStatement>(statement));
        break;
    case Kind::Permission:
        changePermission(session, as<ast::PermissionStatement>(statement));
        break;
    case Kind::CreateLogin:
        createLogin(session, as<ast::CreateLoginStatement>(statement));
        break;
    case Kind::AlterLogin:
        alterLogin(session, as<ast::AlterLoginStatement>(statement));
        break;
    case Kind::CreateUser:
        createUser(session, as<ast::CreateUserStatement>(statement));
        break;
    case Kind::AlterUser:
        alterUser(session, as<ast::AlterUserStatement>(statement));
        break;
    case Kind::CreateRole:
        createRole(session, as<ast::CreateRoleStatement>(statement));
        break;
    case Kind::AlterRole:
        alterRole(session, as<ast::AlterRoleStatement>(statement));
        break;
    default:
        raise(40510, {firstWords(sourceText(session, statement.source))});
    }
    return std::nullopt;
}

} // namespace practice
