#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string_view>

namespace facet {

/// Writes `value` like printf's "%f" and returns the end. `out` has room for maxFloatText bytes.
char* formatFloat(char* out, float value);
inline constexpr size_t maxFloatText = 48;

/// Writes `value` in decimal and returns the end. `out` has room for maxIntegerText bytes.
char* formatInteger(char* out, int64_t value);
inline constexpr size_t maxIntegerText = 24;

/// An unsigned number with leading zeros up to `width` digits (at most 10), like "%05u".
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
    char* out = bytes_.get() + size_;
    ((out = append(out, parts)), ...);
    size_ = static_cast<size_t>(out - bytes_.get());
  }

  /// Appends `size` bytes for the caller to fill; they stay in place until more is appended.
  char* extend(size_t size) {
    reserve(size);
    size_ += size;
    return bytes_.get() + size_ - size;
  }
  /// Drops what extend() gave from `end` on.
  void endAt(const char* end) { size_ = static_cast<size_t>(end - bytes_.get()); }

  std::string_view view() const { return {bytes_.get(), size_}; }
  size_t size() const { return size_; }
  void clear() { size_ = 0; }

 private:
  void reserve(size_t more) {
    if (capacity_ - size_ < more) grow(more);
  }
  void grow(size_t more);

  static size_t maxSize(float) { return maxFloatText; }
  static size_t maxSize(char) { return 1; }
  static size_t maxSize(std::integral auto) { return maxIntegerText; }
  static size_t maxSize(Padded) { return 2 * maxIntegerText; }
  static size_t maxSize(std::string_view text) { return text.size(); }

  static char* append(char* out, float value) { return formatFloat(out, value); }
  static char* append(char* out, char c) {
    *out = c;
    return out + 1;
  }
  static char* append(char* out, std::integral auto value) {
    return formatInteger(out, static_cast<int64_t>(value));
  }
  static char* append(char* out, Padded number) {
    char* digits = std::fill_n(out, number.width, '0');
    char* end = formatInteger(digits, number.value);
    const auto zeros = std::max<ptrdiff_t>(number.width - (end - digits), 0);
    return std::copy(digits, end, out + zeros);
  }
  static char* append(char* out, std::string_view text) { return std::copy(text.begin(), text.end(), out); }

  std::unique_ptr<char[]> bytes_;
  size_t capacity_ = 0;
  size_t size_ = 0;
};

}  // namespace facet
