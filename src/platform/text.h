#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Texts are bytes. Names inside model files are single bytes without a known code page; paths and messages
// are UTF-8 wherever their writer was.

namespace facet {

/// ASCII letters in lower case; other bytes as they are.
std::string lowerCase(std::string_view text);

bool isUtf8(std::string_view text);

/// Each byte becomes the character of its number, as UTF-8.
std::string utf8FromBytes(std::string_view bytes);

/// As it is where it is UTF-8, else byte by byte.
std::string utf8FromPath(std::string_view path);

/// "1,234,567"
std::string groupedNumber(uint64_t value);

/// "512 bytes", "1.2 MB"
std::string byteSize(uint64_t bytes);

/// As printf would print it.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);

}  // namespace facet
