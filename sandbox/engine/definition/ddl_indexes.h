// Makes indexes in catalog and store.
#pragma once

#include "engine/context/session_context.h"
#include "tsql/ast.h"

#include <string>
#include <vector>

namespace practice {

/// The columns of a key, checked: they exist (1911), none twice (1909), not too many (1904), of a
/// type that can be a key (1919), not too long (1944, warning 1945).
[[nodiscard]] std::vector<IndexKey> resolveKey(SessionContext& session, const Object& table,
                                               const std::string& indexName,
                                               const std::vector<ast::IndexColumn>& columns);

/// 1 for a clustered index, else the lowest free number from 2 on.
/// @throws SqlError 1902, 1910
[[nodiscard]] int freeIndexId(const Object& table, bool clustered);

/// What WITH says, over what `index` holds.
/// @throws SqlError 129, 1916
void applyIndexOptions(Index& index, const ast::IndexOptions& options);

/// Writes the index to catalog and store. The table's snapshot may be the one before.
/// @throws SqlError 1505 when the rows of the table have duplicates
void createIndex(SessionContext& session, const Object& table, const Index& index);
/// Only the store's part: after a rewrite of the table.
void buildIndex(SessionContext& session, const Object& table, const Index& index);
void dropIndex(SessionContext& session, const Object& table, const Index& index);

} // namespace practice
