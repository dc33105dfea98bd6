// Transact-SQL that the catalog keeps as text, as trees again.
#pragma once

#include "tsql/ast.h"

#include <string>

namespace practice {

/// @throws SqlError with what the parser says
[[nodiscard]] ast::ExpressionPtr parsedExpression(const std::string& text);
[[nodiscard]] ast::ExpressionPtr parsedCondition(const std::string& text);
[[nodiscard]] ast::Batch parsedBatch(const std::string& text, bool quotedIdentifier);

} // namespace practice
