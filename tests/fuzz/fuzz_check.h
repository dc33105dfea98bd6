// What every target of the fuzzer has in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Ends the program where something does not hold, in every build, so that the fuzzer keeps the input.
inline void check(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace fuzz
