// The sample's statements, one batch each, in the order of their running.
#pragma once

#include <span>

namespace practice {

[[nodiscard]] std::span<const char* const> sampleTables();
[[nodiscard]] std::span<const char* const> sampleData();
/// Views, procedures, logins, users and permissions; then the second database.
[[nodiscard]] std::span<const char* const> sampleCode();

} // namespace practice
