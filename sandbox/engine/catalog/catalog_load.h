// Builds the snapshots that Catalog hands out.
#pragma once

#include "engine/catalog/catalog_types.h"

struct sqlite3;

namespace practice {

/// nullptr when there is none
[[nodiscard]] DatabasePtr loadDatabase(sqlite3* connection, int id);
[[nodiscard]] ObjectPtr loadObject(sqlite3* connection, int databaseId, int objectId);

/// The server's number of a type (56 for int) and back.
[[nodiscard]] int xtypeNumber(TypeId type);
[[nodiscard]] TypeId typeOfNumber(int xtype);

} // namespace practice
