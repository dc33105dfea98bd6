// The checksum of blocks and of chunks of rows: the first 16 bytes of SHA-256.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

#include <openssl/evp.h>

namespace practice {

using Digest = std::array<std::uint8_t, 16>;

class Hasher
{
public:
    Hasher();
    void add(std::string_view bytes);
    /// What was added since the last call, or since the making.
    [[nodiscard]] Digest finish();

private:
    void start();

    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_;
};

[[nodiscard]] Digest digestOf(std::string_view bytes);

/// Random, for the ids of media, sets and recovery forks.
[[nodiscard]] Digest randomId();

} // namespace practice
