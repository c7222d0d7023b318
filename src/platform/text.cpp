#include "platform/text.h"

#include <utf8.h>

#include <cstdarg>
#include <cstdio>
#include <iterator>

namespace facet {

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

bool isUtf8(std::string_view text) {
  return utf8::is_valid(text.begin(), text.end());
}

std::string utf8FromBytes(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) utf8::append(static_cast<uint8_t>(c), std::back_inserter(text));
  return text;
}

std::string utf8FromPath(std::string_view path) {
  return isUtf8(path) ? std::string(path) : utf8FromBytes(path);
}

std::string groupedNumber(uint64_t value) {
  std::string digits = std::to_string(value);
  for (size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
  return digits;
}

std::string byteSize(uint64_t bytes) {
  constexpr const char* units[] = {"kB", "MB", "GB", "TB"};
  if (bytes < 1000) return std::to_string(bytes) + " bytes";
  double value = static_cast<double>(bytes) / 1000;
  size_t unit = 0;
  for (; value >= 999.95 && unit + 1 < std::size(units); ++unit) value /= 1000;
  return formatted("%.1f %s", value, units[unit]);
}

std::string formatted(const char* format, ...) {
  va_list arguments, again;
  va_start(arguments, format);
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string text(length < 0 ? 0 : static_cast<size_t>(length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

}  // namespace facet
