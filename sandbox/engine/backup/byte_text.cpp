#include "engine/backup/byte_text.h"

#include <algorithm>

namespace practice {

void ByteText::fixed(std::uint64_t value, int count)
{
    for (int i = 0; i < count; ++i, value >>= 8)
        bytes.push_back(static_cast<char>(value));
}

void ByteText::number(std::uint64_t value)
{
    for (; value >= 0x80; value >>= 7)
        bytes.push_back(static_cast<char>(value | 0x80));
    bytes.push_back(static_cast<char>(value));
}

void ByteText::text(std::string_view value)
{
    number(value.size());
    bytes += value;
}

void ByteText::id(const Digest& value)
{
    bytes.append(value.begin(), value.end());
}

std::string_view ByteTextReader::take(std::uint64_t size)
{
    if (size > rest_.size())
        throw DamagedBackup{};
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return taken;
}

std::uint64_t ByteTextReader::fixed(int count)
{
    std::uint64_t value = 0;
    const std::string_view bytes = take(static_cast<std::uint64_t>(count));
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte)
        value = (value << 8) | static_cast<std::uint8_t>(*byte);
    return value;
}

std::uint64_t ByteTextReader::number()
{
    std::uint64_t value = 0;
    for (int shift = 0; shift < 64; shift += 7) {
        const auto byte = static_cast<std::uint8_t>(take(1).front());
        value |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80)
            return value;
    }
    throw DamagedBackup{};
}

std::string ByteTextReader::text()
{
    return std::string(take(number()));
}

Digest ByteTextReader::id()
{
    Digest value{};
    const std::string_view bytes = take(value.size());
    std::copy(bytes.begin(), bytes.end(), value.begin());
    return value;
}

} // namespace practice
