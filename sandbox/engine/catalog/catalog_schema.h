// The tables of the store that hold the catalog. Everything else that the server tells about its
// objects is derived from them.
#pragma once

namespace practice {

/// Makes all catalog tables; several statements in one text.
[[nodiscard]] const char* catalogSchema();
/// Makes the table of the rights on columns, unless it is there.
[[nodiscard]] const char* columnPermissionSchema();

} // namespace practice
