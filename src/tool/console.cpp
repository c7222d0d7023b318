#include "tool/console.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace facet {

namespace {

std::mutex consoleMutex;

/// The number of bytes of the UTF-8 character that starts at `at`, 0 when it is not a valid one.
size_t utf8Length(std::string_view text, size_t at) {
  const auto byte = [&](size_t i) { return i < text.size() ? static_cast<uint8_t>(text[i]) : 0u; };
  const uint32_t first = byte(at);
  if (first < 0x80) return 1;
  const size_t length = first >= 0xC2 && first < 0xE0   ? 2
                        : first >= 0xE0 && first < 0xF0 ? 3
                        : first >= 0xF0 && first < 0xF5 ? 4
                                                        : 0;
  for (size_t i = 1; i < length; ++i)
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  const uint32_t second = byte(at + 1);
  const bool tooLong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool outside = (first == 0xED && second >= 0xA0) || (first == 0xF4 && second >= 0x90);
  return tooLong || outside ? 0 : length;
}

bool isUtf8(std::string_view text) {
  for (size_t at = 0; at < text.size();) {
    const size_t length = utf8Length(text, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

}  // namespace

void reportFailure(std::string_view path, std::string_view reason) {
  const std::string line = "facetbench: " + std::string(path) + ": " + std::string(reason) + "\n";
  const std::lock_guard lock(consoleMutex);
  if (errorIsTerminal()) std::fputs("\r\033[K", stderr);
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void printOut(std::string_view text) {
  const std::lock_guard lock(consoleMutex);
  std::fwrite(text.data(), 1, text.size(), stdout);
}

bool errorIsTerminal() {
#ifdef _WIN32
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(fileno(stderr)) != 0;
#endif
}

void showProgress(size_t done, size_t total, std::string_view name) {
  constexpr size_t width = 30;
  const size_t filled = total == 0 ? width : width * done / total;
  const std::string bar = std::string(filled, '#') + std::string(width - filled, '.');
  const std::lock_guard lock(consoleMutex);
  std::fprintf(stderr, "\r\033[K[%s] %zu/%zu %.*s%s", bar.c_str(), done, total,
               static_cast<int>(std::min<size_t>(name.size(), 36)), name.data(), done == total ? "\n" : "");
  std::fflush(stderr);
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
  char text[32];
  std::snprintf(text, sizeof text, "%.1f %s", value, units[unit]);
  return text;
}

std::string utf8FromBytes(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<uint8_t>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | (byte >> 6));
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

std::string utf8FromPath(std::string_view path) {
  return isUtf8(path) ? std::string(path) : utf8FromBytes(path);
}

}  // namespace facet
