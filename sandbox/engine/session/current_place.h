// The database in which a session stands, and the user that its login is there.
#pragma once

#include "engine/catalog/catalog.h"

#include <string>
#include <utility>

namespace practice {

class CurrentPlace
{
public:
    [[nodiscard]] int databaseId() const { return databaseId_; }
    [[nodiscard]] const std::string& databaseName() const { return databaseName_; }
    /// The name of the one before.
    std::string enter(const Database& database)
    {
        databaseId_ = database.id;
        return std::exchange(databaseName_, database.name);
    }

    /// Looked up anew when the database or the catalog is another than before; guest for a login that has no
    /// user there.
    [[nodiscard]] const Principal& user(Catalog& catalog, const Login& login, int databaseId);

private:
    int databaseId_ = masterId;
    std::string databaseName_;
    Principal user_;
    int userDatabase_ = 0; ///< database and state of the catalog for which `user_` was looked up
    std::uint64_t userVersion_ = 0;
};

} // namespace practice
