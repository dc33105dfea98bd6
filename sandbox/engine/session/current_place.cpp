#include "engine/session/current_place.h"

namespace practice {

const Principal& CurrentPlace::user(Catalog& catalog, const Login& login, int databaseId)
{
    const std::uint64_t version = catalog.version();
    if (userDatabase_ != databaseId || userVersion_ != version) {
        const auto found = catalog.userOf(databaseId, login);
        user_ = found ? *found : Principal{guestId, "guest", "", false, false, true};
        userDatabase_ = databaseId;
        userVersion_ = version;
    }
    return user_;
}

} // namespace practice
