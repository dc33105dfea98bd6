// Reads numbers and text out of a message, refusing whatever lies beyond its end.
#pragma once

#include "tds/protocol.h"
#include "types/text_encoding.h"

#include <cstring>
#include <span>
#include <string>

namespace practice::tds {

class ByteReader
{
public:
    explicit ByteReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] bool atEnd() const { return position_ == bytes_.size(); }
    [[nodiscard]] std::size_t left() const { return bytes_.size() - position_; }
    [[nodiscard]] std::uint8_t peek() const
    {
        if (atEnd())
            throw ProtocolError("message cut short");
        return bytes_[position_];
    }

    /// @throws ProtocolError when there are fewer bytes left
    [[nodiscard]] std::span<const std::uint8_t> take(std::size_t count)
    {
        if (count > left())
            throw ProtocolError("message cut short");
        const auto part = bytes_.subspan(position_, count);
        position_ += count;
        return part;
    }

    template <class T>
    [[nodiscard]] T number()
    {
        T value{};
        std::memcpy(&value, take(sizeof(T)).data(), sizeof(T));
        return value;
    }

    void skip(std::size_t count) { static_cast<void>(take(count)); }

    /// UTF-16LE of that many units, as UTF-8.
    [[nodiscard]] std::string utf16(std::size_t units)
    {
        const auto part = take(units * 2);
        return utf8FromUtf16Bytes(part.data(), part.size());
    }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t position_ = 0;
};

} // namespace practice::tds
