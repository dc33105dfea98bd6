#include "engine/catalog/security.h"

#include "engine/catalog/catalog.h"
#include "engine/store/store.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <stdexcept>

namespace practice {
namespace {

constexpr int iterations = 20000; // some ten milliseconds a login
constexpr std::size_t saltSize = 16;
constexpr std::size_t hashSize = 32;

unsigned char* bytesOf(std::string& text)
{
    return reinterpret_cast<unsigned char*>(text.data());
}

std::string randomBytes(std::size_t count)
{
    std::string bytes(count, '\0');
    if (RAND_bytes(bytesOf(bytes), int(count)) != 1)
        throw std::runtime_error("no random bytes to be had");
    return bytes;
}

std::string derive(const std::string& password, const std::string& salt)
{
    std::string hash(hashSize, '\0');
    if (PKCS5_PBKDF2_HMAC(password.data(), int(password.size()),
                          reinterpret_cast<const unsigned char*>(salt.data()), int(salt.size()), iterations,
                          EVP_sha256(), int(hashSize), bytesOf(hash)) != 1)
        throw std::runtime_error("the password can't be hashed");
    return hash;
}

} // namespace

PasswordHash hashPassword(const std::string& password)
{
    PasswordHash made;
    made.salt = randomBytes(saltSize);
    made.hash = derive(password, made.salt);
    return made;
}

bool verifyPassword(const std::string& password, const std::string& salt, const std::string& hash)
{
    const std::string derived = derive(password, salt);
    return derived.size() == hash.size() && CRYPTO_memcmp(derived.data(), hash.data(), hash.size()) == 0;
}

std::string newSid()
{
    return randomBytes(16);
}

bool checkPassword(sqlite3* connection, const std::string& login, const std::string& password)
{
    Statement row(connection, "SELECT salt, hash FROM cat_login WHERE fold = ?");
    if (!row.bind(1, foldName(login)).step())
        return false;
    const std::string salt(row.blob(0));
    const std::string hash(row.blob(1));
    return !hash.empty() && verifyPassword(password, salt, hash);
}

} // namespace practice
