// HASHBYTES, on OpenSSL.
#include "engine/functions/sql_functions.h"

#include <array>
#include <memory>

#include <openssl/evp.h>
#include <openssl/provider.h>

namespace practice {

namespace {

struct Algorithm
{
    std::string_view name; ///< SQL Server's, upper case
    const char* digest;    ///< OpenSSL's
};

constexpr std::array algorithms = {
    Algorithm{"MD2", "MD2"},         Algorithm{"MD4", "MD4"},   Algorithm{"MD5", "MD5"},
    Algorithm{"SHA", "SHA1"},        Algorithm{"SHA1", "SHA1"}, Algorithm{"SHA2_256", "SHA256"},
    Algorithm{"SHA2_512", "SHA512"},
};

using Digest = std::unique_ptr<EVP_MD, decltype(&EVP_MD_free)>;

/// A library of its own, since the old digests come from a provider that nothing else is to use.
class Library
{
public:
    Library()
        : context_(OSSL_LIB_CTX_new()), current_(OSSL_PROVIDER_load(context_, "default")),
          old_(OSSL_PROVIDER_load(context_, "legacy"))
    {}
    ~Library()
    {
        for (OSSL_PROVIDER* provider : {old_, current_}) {
            if (provider != nullptr)
                OSSL_PROVIDER_unload(provider);
        }
        OSSL_LIB_CTX_free(context_);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    [[nodiscard]] Digest digest(const char* name) const
    {
        return {EVP_MD_fetch(context_, name, nullptr), EVP_MD_free};
    }

private:
    OSSL_LIB_CTX* context_;
    OSSL_PROVIDER* current_;
    OSSL_PROVIDER* old_; ///< nullptr where it is not installed
};

// hashbytes(algorithm, bytes): NULL for an algorithm that is none
void hashBytes(const Call& call)
{
    std::string name(call.text(0));
    for (char& c : name)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    for (const Algorithm& known : algorithms) {
        if (known.name != name)
            continue;
        static const Library library;
        const Digest digest = library.digest(known.digest);
        if (!digest)
            raise(40510, {"HASHBYTES " + name});
        std::array<unsigned char, EVP_MAX_MD_SIZE> hash{};
        unsigned size = 0;
        const std::string_view bytes = call.blob(1);
        if (EVP_Digest(bytes.data(), bytes.size(), hash.data(), &size, digest.get(), nullptr) != 1)
            raise(40510, {"HASHBYTES " + name});
        return call.resultBlob({reinterpret_cast<const char*>(hash.data()), size});
    }
    sqlite3_result_null(call.context());
}

} // namespace

void registerHashFunctions(sqlite3* connection)
{
    defineFunction(connection, "t_hashbytes", 2, hashBytes);
}

} // namespace practice
