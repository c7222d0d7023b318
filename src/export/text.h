#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/output.h"

// A float to six decimals, as an integer. Scaling by a million is exact in double precision (a significand of
// 24 bits times 15625 has 38), so the only rounding is the one to an integer, to even as printf does it.

namespace facet {

/// True for the numbers that roundedMillionths takes: magnitudes below 2^32.
inline bool hasMillionths(float value) {
  return std::fabs(value) < 0x1p32F;
}

/// |value| x 1,000,000 as a double that holds an integer. Adding 2^52 leaves no bits for a fraction.
inline double roundedMillionthsAsDouble(float value) {
  return (std::fabs(static_cast<double>(value)) * 1e6 + 0x1p52) - 0x1p52;
}

/// The same as an integer: the low bits of the sum with 2^52.
inline uint64_t roundedMillionths(float value) {
  constexpr uint64_t fractionBits = (uint64_t{1} << 52) - 1;
  return std::bit_cast<uint64_t>(std::fabs(static_cast<double>(value)) * 1e6 + 0x1p52) & fractionBits;
}

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

/// Text for an output, gathered into blocks, so that memory does not grow with it. What finish() has not
/// written is not in the output.
class TextBlocks {
 public:
  explicit TextBlocks(Output& out) : out_(out) {}

  /// As TextBuffer::put().
  template <class... Parts>
  void put(const Parts&... parts) {
    text_.put(parts...);
    if (text_.size() >= blockSize) finish();
  }

  void finish() {
    out_.write(text_.view());
    text_.clear();
  }

 private:
  static constexpr size_t blockSize = size_t{64} * 1024;

  Output& out_;
  TextBuffer text_;
};

}  // namespace facet
