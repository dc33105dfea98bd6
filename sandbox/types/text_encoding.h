// UTF-8 inside the server, UTF-16 and code page 1252 towards clients and in binary conversions.
// A cut may leave half a surrogate pair in an nvarchar: such a half is kept as a three-byte
// sequence, so that it leaves as it came.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace practice {

/// Takes the next code point off `text`, advancing `position`; a byte that begins no valid sequence
/// counts as U+FFFD.
[[nodiscard]] char32_t nextCodePoint(std::string_view text, std::size_t& position);
void appendUtf8(std::string& out, char32_t codePoint);

[[nodiscard]] std::u16string toUtf16(std::string_view utf8);
[[nodiscard]] std::string toUtf8(std::u16string_view utf16);
/// From UTF-16LE bytes; an odd last byte is dropped.
[[nodiscard]] std::string utf8FromUtf16Bytes(const std::uint8_t* bytes, std::size_t count);

/// Length in UTF-16 units: what nvarchar counts.
[[nodiscard]] std::size_t utf16Length(std::string_view utf8);

/// The byte in code page 1252; '?' for a character outside it.
[[nodiscard]] std::uint8_t codePage1252(char32_t codePoint);
/// A character beyond the basic plane counts as two, both '?'.
[[nodiscard]] std::string toCodePage1252(std::string_view utf8);
[[nodiscard]] std::string utf8FromCodePage1252(const std::uint8_t* bytes, std::size_t count);
/// The text as a varchar keeps it: characters outside code page 1252 become '?'.
[[nodiscard]] std::string restrictToCodePage1252(std::string text);

[[nodiscard]] bool isAscii(std::string_view text);

[[nodiscard]] std::string lowerCase(std::string_view text); ///< ASCII letters only: keywords, variables

} // namespace practice
