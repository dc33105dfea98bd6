// The version that the server claims to be, at login and in @@VERSION alike.
#pragma once

#include <cstdint>

namespace practice {

struct ProductVersion
{
    std::uint8_t major;
    std::uint8_t minor;
    std::uint16_t build;
};

inline constexpr ProductVersion productVersion{11, 0, 2100};

} // namespace practice
