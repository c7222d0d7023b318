#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace facet {

/// Builds the bytes of a binary file: write(u32, u32, f32 ...) appends plain values little-endian, the
/// elements of vectors, and what other writers hold.
class ByteWriter {
 public:
  template <class... Values>
  ByteWriter& write(const Values&... values) {
    (append(values), ...);
    return *this;
  }
  /// How many there are, as a plain value of type Count, and the values.
  template <class Count = uint32_t, class T>
  ByteWriter& list(const std::vector<T>& values) {
    return write(static_cast<Count>(values.size()), values);
  }
  /// Bytes as they are.
  ByteWriter& raw(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
  }
  /// A text and its NUL.
  ByteWriter& text(std::string_view text) { return raw(text).zeros(1); }
  ByteWriter& zeros(size_t count) {
    bytes_.append(count, '\0');
    return *this;
  }
  /// A chunk: u32 id, u32 size, data.
  ByteWriter& chunk(uint32_t id, const ByteWriter& data) {
    return write(id, static_cast<uint32_t>(data.size()), data);
  }

  const std::string& bytes() const { return bytes_; }
  size_t size() const { return bytes_.size(); }

 private:
  void append(const ByteWriter& other) { bytes_ += other.bytes_; }
  template <class T>
  void append(const std::vector<T>& values) {
    for (const T& value : values) append(value);
  }
  template <class T>
  void append(const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  std::string bytes_;
};

inline std::span<const std::byte> asBytes(std::string_view text) {
  return std::as_bytes(std::span(text.data(), text.size()));
}

}  // namespace facet
