// The version that the server claims to be at login; SERVERPROPERTY and @@VERSION say the same.
#pragma once

#include <cstdint>

namespace practice {

struct ProductVersion
{
    std::uint8_t major;
    std::uint8_t minor;
    std::uint16_t build;
};

inline constexpr ProductVersion productVersion{10, 50, 6000};
inline constexpr const char* productVersionText = "10.50.6000.34";
inline constexpr const char* productLevel = "SP3";

} // namespace practice
