// The syntax tree of a batch of Transact-SQL. A node says by its `kind` what it is; `ast::as<T>` and
// `ast::tryAs<T>` give it as such. Names keep the case they were written in.
#pragma once

#include "tsql/ast_administration.h"
#include "tsql/ast_definition.h"
#include "tsql/ast_expression.h"
#include "tsql/ast_statement.h"
#include "tsql/ast_table.h"

namespace practice::ast {

struct Batch
{
    StatementList statements;
};

} // namespace practice::ast
