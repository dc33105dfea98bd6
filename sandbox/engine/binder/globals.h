// The names that begin with @@, and what type each has.
#pragma once

#include "types/sql_type.h"

#include <string_view>

namespace practice {

/// @return nullptr for a name that there is none of; `name` in lower case with its @@
[[nodiscard]] const SqlType* globalVariableType(std::string_view name);

} // namespace practice
