// Who the session is in one database: its user, and all that the user belongs to.
#pragma once

#include "engine/context/session_context.h"

#include <string>
#include <string_view>
#include <vector>

namespace practice {

/// What the catalog records of a right, in the numbers of sysprotects.
namespace protection {
inline constexpr int excepted = 0; ///< of a column: what is recorded for the object does not reach it
inline constexpr int withOption = 204;
inline constexpr int granted = 205;
inline constexpr int denied = 206;
} // namespace protection

class Standing
{
public:
    /// @throws SqlError 916 where the login has no user
    Standing(SessionContext& session, const Database& database);

    /// dbo, whom nothing is refused.
    [[nodiscard]] bool isDbo() const { return user_ == dboId; }
    /// One of the roles that each database has of itself: "db_owner".
    [[nodiscard]] bool inFixedRole(std::string_view role) const;
    /// The user itself or a role that it is in, through other roles too.
    [[nodiscard]] bool belongsTo(int principalId) const;
    /// The owner of an object, or of what it belongs to.
    [[nodiscard]] bool owns(const Object& object) const { return belongsTo(object.ownerId); }

    /// user, public and roles as a list for IN: "5,0,16400"
    [[nodiscard]] const std::string& principals() const { return principals_; }
    [[nodiscard]] int userId() const { return user_; }

private:
    int user_ = 0;
    std::vector<int> all_;
    std::string principals_;
    std::vector<std::string> fixedRoles_;
};

/// The user as whom the session works in a database; none where it may not enter.
[[nodiscard]] std::optional<Principal> userIn(SessionContext& session, int databaseId);

/// @throws SqlError 916
void requireAccess(SessionContext& session, const Database& database);

/// True when what stands in a module may use the object by the module's owner's right: both belong to
/// one owner, in one database or in two that are open to each other's chains.
[[nodiscard]] bool lends(SessionContext& session, const std::optional<ModuleOwner>& module,
                         const Object& object);

} // namespace practice
