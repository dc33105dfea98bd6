// The options of a database by their names in ALTER DATABASE, sp_dboption and DATABASEPROPERTYEX.
#pragma once

#include "engine/catalog/catalog_types.h"

#include <optional>
#include <span>
#include <string>

namespace practice {

struct DatabaseOptionName
{
    DatabaseOption option;
    const char* setName;       ///< of ALTER DATABASE: "AUTO_CLOSE"
    const char* property;      ///< of DATABASEPROPERTYEX: "IsAutoClose"
    const char* procedureName; ///< of sp_dboption: "autoclose"; "" for those it does not know
};

[[nodiscard]] std::span<const DatabaseOptionName> databaseOptionNames();

/// What DATABASEPROPERTYEX tells: a text ("FULL", "ONLINE") or a number; nothing for a property that
/// it doesn't know.
struct DatabaseProperty
{
    bool isText = false;
    std::string text;
    int number = 0;
};
[[nodiscard]] std::optional<DatabaseProperty> databaseProperty(const Database& database,
                                                               const std::string& property);

} // namespace practice
