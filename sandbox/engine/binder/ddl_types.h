// Turns a type as it was written into the type that a column, a parameter or a variable has.
#pragma once

#include "tsql/ast.h"
#include "types/sql_type.h"

#include <string>

namespace practice {

/// @param ordinal position among the columns or parameters, for messages
/// @param what "column" or "parameter", for messages
/// @throws SqlError 2715 for an unknown type; 1001, 1002, 131, 2716, 2717, 2750, 183, 192 for wrong facets
[[nodiscard]] SqlType resolveDeclaredType(const ast::DataType& type, int ordinal, const char* what,
                                          const std::string& name);

/// "sysname" when the type is written by that name, else "".
[[nodiscard]] std::string aliasTypeName(const ast::DataType& type);

} // namespace practice
