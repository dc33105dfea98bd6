// Writes a syntax tree compactly, every operator in parentheses, so that tests compare texts.
#pragma once

#include "tsql/ast.h"

#include <string>

namespace practice::test {

[[nodiscard]] std::string render(const ast::Expression* node);
[[nodiscard]] std::string render(const ast::Query& query);
[[nodiscard]] std::string render(const ast::Statement& node);
[[nodiscard]] std::string render(const ast::StatementList& list);

} // namespace practice::test
