// Passwords of logins: kept as salted PBKDF2 hashes.
#pragma once

#include <string>

struct sqlite3;

namespace practice {

struct PasswordHash
{
    std::string salt; ///< raw bytes
    std::string hash; ///< raw bytes
};

[[nodiscard]] PasswordHash hashPassword(const std::string& password);
[[nodiscard]] bool verifyPassword(const std::string& password, const std::string& salt,
                                  const std::string& hash);

/// A fresh security identifier for a login or an application role: 16 random bytes.
[[nodiscard]] std::string newSid();

} // namespace practice
