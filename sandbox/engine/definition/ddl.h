// The definition statements, one function a kind; executeDdl (session_context.h) calls them.
#pragma once

#include "engine/context/session_context.h"
#include "tsql/ast.h"

namespace practice {

void createTable(SessionContext& session, const ast::CreateTableStatement& statement);
void alterTable(SessionContext& session, const ast::AlterTableStatement& statement);
void createIndex(SessionContext& session, const ast::CreateIndexStatement& statement);
void alterIndex(SessionContext& session, const ast::AlterIndexStatement& statement);
void dropIndexes(SessionContext& session, const ast::DropIndexStatement& statement);
void drop(SessionContext& session, const ast::DropStatement& statement);
void createView(SessionContext& session, const ast::CreateViewStatement& statement);
void createProcedure(SessionContext& session, const ast::CreateProcedureStatement& statement);

void createDatabase(SessionContext& session, const ast::CreateDatabaseStatement& statement);
void alterDatabase(SessionContext& session, const ast::AlterDatabaseStatement& statement);
void dropDatabase(SessionContext& session, const std::string& name, bool ifExists);

void changePermission(SessionContext& session, const ast::PermissionStatement& statement);
void createLogin(SessionContext& session, const ast::CreateLoginStatement& statement);
void alterLogin(SessionContext& session, const ast::AlterLoginStatement& statement);
void createUser(SessionContext& session, const ast::CreateUserStatement& statement);
void alterUser(SessionContext& session, const ast::AlterUserStatement& statement);
void createRole(SessionContext& session, const ast::CreateRoleStatement& statement);
void alterRole(SessionContext& session, const ast::AlterRoleStatement& statement);
void dropPrincipal(SessionContext& session, const ast::DropStatement& statement);

} // namespace practice
