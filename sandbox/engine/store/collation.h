// SQL Server's collations as far as the names' suffixes tell them apart: _CI/_CS, _AI/_AS, _BIN.
#pragma once

#include <string>
#include <string_view>

struct sqlite3;

namespace practice {

/// Compares as the collation does: trailing blanks never count.
/// @return below, equal to or above zero
[[nodiscard]] int compareText(std::string_view left, std::string_view right, std::string_view collation);

/// True for a name that the server would accept after COLLATE.
[[nodiscard]] bool isCollation(std::string_view name);
[[nodiscard]] bool isCaseSensitive(std::string_view collation);

/// Lets statements of a connection name any collation; each is registered when first asked for.
void registerCollations(sqlite3* connection);

} // namespace practice
