// The tables and indexes of the store that hold users' rows.
#pragma once

#include "engine/catalog/catalog_types.h"

#include <string>
#include <vector>

namespace practice {

/// The CREATE TABLE that holds a user table's rows, without its indexes.
[[nodiscard]] std::string tableStatement(const Object& table);
/// `"c3" TEXT COLLATE "..."`: one column of it. Nothing about NULL or defaults: the engine sees to those.
[[nodiscard]] std::string columnDeclaration(const Column& column);
/// The CREATE INDEX statements for one index. A unique one over columns that may be NULL takes two,
/// since SQL Server counts NULLs as equal.
[[nodiscard]] std::vector<std::string> indexStatements(const Object& table, const Index& index);
/// What drops them again, whichever of them exist.
[[nodiscard]] std::vector<std::string> dropIndexStatements(const Object& table, const Index& index);

} // namespace practice
