// The rule of the names that stand in tempdb, whatever database a statement names.
#pragma once

#include <string_view>

namespace practice {

/// "#name" is the session's, "##name" everybody's.
[[nodiscard]] inline bool isTemporary(std::string_view name)
{
    return name.starts_with('#');
}

[[nodiscard]] inline bool isGlobalTemporary(std::string_view name)
{
    return name.starts_with("##");
}

} // namespace practice
