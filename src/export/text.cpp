#include "export/text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

namespace facet {

namespace {

/// "00", "01" ... "99", each as the integer whose bytes in memory are the two characters.
constexpr auto digitPairs = [] {
  std::array<uint16_t, 100> pairs{};
  for (int i = 0; i < 100; ++i) pairs[i] = static_cast<uint16_t>(('0' + i / 10) | ('0' + i % 10) << 8);
  return pairs;
}();

char* put2(char* out, uint32_t below100) {
  std::memcpy(out, &digitPairs[below100], 2);
  return out + 2;
}

uint32_t fourDigits(uint32_t below10000) {
  return digitPairs[below10000 / 100] | uint32_t{digitPairs[below10000 % 100]} << 16;
}

char* put4(char* out, uint32_t below10000) {
  const uint32_t digits = fourDigits(below10000);
  std::memcpy(out, &digits, 4);
  return out + 4;
}

/// Without leading zeros. They are shifted out without a branch, because how many there are is what a
/// processor cannot foresee; up to three bytes behind the end are overwritten.
char* putShort(char* out, uint32_t below10000) {
  const int zeros = 3 - (below10000 >= 10) - (below10000 >= 100) - (below10000 >= 1000);
  const uint32_t digits = fourDigits(below10000) >> (8 * zeros);
  std::memcpy(out, &digits, 4);
  return out + 4 - zeros;
}

char* putUnsigned(char* out, uint32_t value) {
  if (value < 10'000) return putShort(out, value);
  if (value < 100'000'000) return put4(putShort(out, value / 10'000), value % 10'000);
  out = putShort(out, value / 100'000'000);
  value %= 100'000'000;
  return put4(put4(out, value / 10'000), value % 10'000);
}

}  // namespace

char* formatInteger(char* out, int64_t value) {
  if (value >= 0 && value <= UINT32_MAX) return putUnsigned(out, static_cast<uint32_t>(value));
  return std::to_chars(out, out + maxIntegerText, value).ptr;
}

char* formatFloat(char* out, float value) {
  if (!hasMillionths(value))
    return std::to_chars(out, out + maxFloatText, value, std::chars_format::fixed, 6).ptr;
  *out = '-';
  out += std::signbit(value);
  const uint64_t millionths = roundedMillionths(value);
  const auto whole = static_cast<uint32_t>(millionths / 1'000'000);
  const auto fraction = static_cast<uint32_t>(millionths - uint64_t{whole} * 1'000'000);
  out = putUnsigned(out, whole);
  *out++ = '.';
  return put4(put2(out, fraction / 10'000), fraction % 10'000);
}

void TextBuffer::grow(size_t more) {
  const size_t capacity = std::max(2 * capacity_, size_ + more + 4096);
  auto bytes = std::make_unique_for_overwrite<char[]>(capacity);
  if (size_ != 0) std::memcpy(bytes.get(), bytes_.get(), size_);
  bytes_ = std::move(bytes);
  capacity_ = capacity;
}

}  // namespace facet
