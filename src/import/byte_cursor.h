#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

namespace facet {

/// Takes values and texts one after another from bytes in memory, for chunks whose records differ in length.
class ByteCursor {
 public:
  explicit ByteCursor(std::span<const std::byte> bytes) : rest_(bytes) {}

  size_t remaining() const { return rest_.size(); }

  /// False, with nothing taken, when too few bytes are left.
  template <class T>
  bool read(T& value) {
    if (rest_.size() < sizeof value) return false;
    std::memcpy(&value, rest_.data(), sizeof value);
    rest_ = rest_.subspan(sizeof value);
    return true;
  }

  /// The next `count` bytes, or as many as are left.
  std::span<const std::byte> take(uint64_t count) {
    const auto taken = rest_.first(static_cast<size_t>(std::min<uint64_t>(count, rest_.size())));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

  /// The bytes up to a NUL, which is passed over, or to the end.
  std::string_view readText() {
    const std::string_view all(reinterpret_cast<const char*>(rest_.data()), rest_.size());
    const std::string_view text = all.substr(0, all.find('\0'));
    take(text.size() + 1);
    return text;
  }

 private:
  std::span<const std::byte> rest_;
};

}  // namespace facet
