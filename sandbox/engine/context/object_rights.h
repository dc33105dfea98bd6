// Rights on tables, views and procedures, as a whole or on some of their columns.
#pragma once

#include "engine/context/standing.h"

#include <set>
#include <vector>

namespace practice {

/// The numbers that sysprotects shows. It does not show the first ones.
enum class Right : std::uint8_t
{
    Alter = 1,
    Control = 2, ///< brings all of the others; asked for by itself, the right to drop
    ViewDefinition = 3,
    References = 26,
    Select = 193,
    Insert = 195,
    Delete = 196,
    Update = 197,
    Execute = 224
};

/// What a statement wants to do with an object.
struct RightNeed
{
    ObjectPtr object;
    Right right = Right::Select;
    /// Ids. None: the object as a whole, or any column where the right may be had on columns.
    std::set<int> columns{};
};

/// True for SELECT, UPDATE and REFERENCES.
[[nodiscard]] bool appliesToColumns(Right right);

/// Looks at all of the needs and raises one error with a message for each that is refused. Temporary
/// objects are everybody's who can name them.
/// @throws SqlError 229, 230; 916 where the login has no user
void requireRights(SessionContext& session, const std::vector<RightNeed>& needs);

/// True when nothing of the need would be refused.
[[nodiscard]] bool hasRight(SessionContext& session, const RightNeed& need);

inline void requireRight(SessionContext& session, const ObjectPtr& object, Right right)
{
    requireRights(session, {{object, right}});
}

/// A system table or view is open to all who may enter the database, unless a denial says otherwise.
/// @param object its entry in the catalog, if it has one
/// @throws SqlError 229, 916
void requireSystemTable(SessionContext& session, const Database& database, const SystemTable& table,
                        const ObjectPtr& object);

} // namespace practice
