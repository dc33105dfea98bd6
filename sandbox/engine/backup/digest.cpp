#include "engine/backup/digest.h"

#include <algorithm>
#include <new>
#include <random>

namespace practice {

Hasher::Hasher() : context_(EVP_MD_CTX_new(), &EVP_MD_CTX_free)
{
    if (!context_)
        throw std::bad_alloc();
    start();
}

void Hasher::start()
{
    EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr);
}

void Hasher::add(std::string_view bytes)
{
    EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size());
}

Digest Hasher::finish()
{
    std::array<std::uint8_t, EVP_MAX_MD_SIZE> whole{};
    EVP_DigestFinal_ex(context_.get(), whole.data(), nullptr);
    start();
    Digest digest{};
    std::copy_n(whole.begin(), digest.size(), digest.begin());
    return digest;
}

Digest digestOf(std::string_view bytes)
{
    Hasher hasher;
    hasher.add(bytes);
    return hasher.finish();
}

Digest randomId()
{
    std::random_device source;
    Digest id{};
    for (std::uint8_t& byte : id)
        byte = static_cast<std::uint8_t>(source());
    return id;
}

} // namespace practice
