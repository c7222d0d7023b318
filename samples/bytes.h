#pragma once

#include <bit>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "vec.h"

namespace facet::sample {

/// Puts the bytes of a little-endian file together.
class Bytes {
 public:
  void u8(uint32_t value) { text_ += char(value & 255); }
  void u16(uint32_t value) {
    u8(value);
    u8(value >> 8);
  }
  void u32(uint32_t value) {
    u16(value);
    u16(value >> 16);
  }
  void f32(float value) { u32(std::bit_cast<uint32_t>(value)); }
  void vec3(Vec3 v) {
    f32(v.x);
    f32(v.y);
    f32(v.z);
  }
  void zeros(size_t count) { text_.append(count, '\0'); }
  void raw(std::string_view bytes) { text_ += bytes; }
  /// A text and its NUL.
  void text(std::string_view value) {
    raw(value);
    u8(0);
  }
  /// A text after its length in 16 bits.
  void countedText(std::string_view value) {
    u16(uint32_t(value.size()));
    raw(value);
  }
  /// A chunk: its id, the size of its data, the data.
  void chunk(uint32_t id, const Bytes& data) {
    u32(id);
    u32(uint32_t(data.size()));
    raw(data.text_);
  }
  size_t size() const { return text_.size(); }
  const std::string& content() const { return text_; }

 private:
  std::string text_;
};

/// Writes a file, making the folders above it. Throws std::runtime_error naming the path and the reason.
void writeFile(const std::filesystem::path& path, std::string_view content);

}  // namespace facet::sample
