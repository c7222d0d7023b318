#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/output.h"

namespace facet {

/// Little-endian records, gathered into blocks that stay in a core's cache. What finish() has not written is
/// not in the output.
class BinaryBlocks {
 public:
  explicit BinaryBlocks(Output& out) : out_(out), block_(blockSize) {}

  /// Appends plain values without padding between them: put(uint16_t{0}, x, y, z).
  template <class... Values>
  void put(const Values&... values) {
    static_assert((std::is_trivially_copyable_v<Values> && ...) && (sizeof(Values) + ...) <= blockSize);
    if (blockSize - size_ < (sizeof(Values) + ...)) finish();
    // A place of its own: through size_ each copied byte could be part of the size itself.
    char* to = block_.data() + size_;
    ((std::memcpy(to, &values, sizeof values), to += sizeof values), ...);
    size_ = static_cast<size_t>(to - block_.data());
  }

  /// Bytes of any number; many of them go to the output as they are.
  void putBytes(std::string_view bytes) {
    if (bytes.size() > blockSize - size_) finish();
    if (bytes.size() > blockSize) {
      out_.write(bytes);
    } else {
      std::copy(bytes.begin(), bytes.end(), block_.data() + size_);
      size_ += bytes.size();
    }
  }
  template <class T>
  void putArray(std::span<const T> values) {
    putBytes({reinterpret_cast<const char*>(values.data()), values.size_bytes()});
  }

  void putZeros(size_t count) {
    for (; count > 0; --count) put(char{0});
  }

  /// A field of `width` bytes: the text, cut so that a NUL fits behind it, and zeros.
  void putName(std::string_view name, size_t width) {
    name = name.substr(0, std::min(name.size(), width - 1));
    putBytes(name);
    putZeros(width - name.size());
  }

  void finish() {
    out_.write({block_.data(), size_});
    size_ = 0;
  }

 private:
  static constexpr size_t blockSize = size_t{64} * 1024;

  Output& out_;
  std::vector<char> block_;
  size_t size_ = 0;
};

}  // namespace facet
