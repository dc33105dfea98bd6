// Numbers and texts as bytes of a backup file: little-endian, lengths ahead.
#pragma once

#include "engine/backup/digest.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace practice {

/// What was read is no backup, or no longer the one that was written.
struct DamagedBackup
{
    std::uint64_t offset = 0; ///< of the block in the file
};

class ByteText
{
public:
    void fixed(std::uint64_t value, int bytes);
    /// Seven bits a byte, the lowest first.
    void number(std::uint64_t value);
    void integer(std::int64_t value)
    {
        number((static_cast<std::uint64_t>(value) << 1) ^ static_cast<std::uint64_t>(value >> 63));
    }
    void text(std::string_view value);
    void id(const Digest& value);

    std::string bytes;
};

/// Reads them back. Every reading past the end throws DamagedBackup.
class ByteTextReader
{
public:
    explicit ByteTextReader(std::string_view bytes) : rest_(bytes) {}
    std::uint64_t fixed(int bytes);
    std::uint64_t number();
    std::int64_t integer()
    {
        const std::uint64_t folded = number();
        return static_cast<std::int64_t>((folded >> 1) ^ (~(folded & 1) + 1));
    }
    std::string text();
    Digest id();
    std::string_view take(std::uint64_t size);
    [[nodiscard]] bool atEnd() const { return rest_.empty(); }

private:
    std::string_view rest_;
};

} // namespace practice
