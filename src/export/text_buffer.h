#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace facet {

/// Writes `value` like printf's "%f" and returns the end; at most `maxFloatText` bytes.
char* formatFloat(char* out, float value);
inline constexpr size_t maxFloatText = 48;

/// An unsigned number with leading zeros up to `width` digits, like "%05u".
struct Padded {
  uint32_t value;
  int width;
};

/// Text that grows in memory, built of literals, numbers and names:
///   text.put("v ", x, ' ', y, ' ', -z, '\n');
/// Floats are written like "%f", integers like "%d" or "%u".
class TextBuffer {
 public:
  template <class... Parts>
  void put(const Parts&... parts) {
    reserve((maxSize(parts) + ...));
    char* out = bytes_.data() + size_;
    ((out = append(out, parts)), ...);
    size_ = static_cast<size_t>(out - bytes_.data());
  }

  std::string_view view() const { return {bytes_.data(), size_}; }
  size_t size() const { return size_; }
  void clear() { size_ = 0; }

 private:
  void reserve(size_t more) {
    if (bytes_.size() - size_ < more) bytes_.resize(std::max(2 * bytes_.size(), size_ + more + 4096));
  }

  static size_t maxSize(float) { return maxFloatText; }
  static size_t maxSize(char) { return 1; }
  static size_t maxSize(std::integral auto) { return 20; }
  static size_t maxSize(Padded) { return 20; }
  static size_t maxSize(std::string_view text) { return text.size(); }

  static char* append(char* out, float value) { return formatFloat(out, value); }
  static char* append(char* out, char c) {
    *out = c;
    return out + 1;
  }
  static char* append(char* out, std::integral auto value) { return std::to_chars(out, out + 20, value).ptr; }
  static char* append(char* out, Padded number) {
    const char* end = std::to_chars(out, out + 20, number.value).ptr;
    const auto digits = static_cast<int>(end - out);
    const int zeros = std::max(number.width - digits, 0);
    std::memmove(out + zeros, out, digits);
    std::memset(out, '0', zeros);
    return out + zeros + digits;
  }
  static char* append(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
  }

  std::vector<char> bytes_;
  size_t size_ = 0;
};

}  // namespace facet
