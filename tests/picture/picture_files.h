#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// Picture files built byte by byte.

namespace facet {

using FileBytes = std::vector<std::byte>;

inline void append(FileBytes& file, std::string_view text) {
  for (const char c : text) file.push_back(static_cast<std::byte>(c));
}

template <class T>
void append(FileBytes& file, std::initializer_list<T> values) {
  for (const T value : values) {
    const size_t offset = file.size();
    file.resize(offset + sizeof value);
    std::memcpy(&file[offset], &value, sizeof value);
  }
}

/// `count` bytes 0, 1, 2 ...
inline FileBytes counting(size_t count) {
  FileBytes bytes(count);
  for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::byte>(i);
  return bytes;
}

struct DdsFile {
  uint32_t width = 4, height = 4, depth = 0, mipCount = 1;
  uint32_t flags = 0x41, code = 0, bits = 32, r = 0xFF0000, g = 0xFF00, b = 0xFF, a = 0xFF000000;
  uint32_t caps2 = 0;
  FileBytes extension = {};  // DX10 header or palette
  FileBytes data = {};

  FileBytes bytes() const {
    FileBytes file;
    append(file, "DDS ");
    append<uint32_t>(file, {124, 0x1007, height, width, 0, depth, mipCount});
    file.resize(76);
    append<uint32_t>(file, {32, flags, code, bits, r, g, b, a, 0x1000, caps2, 0, 0, 0});
    file.insert(file.end(), extension.begin(), extension.end());
    file.insert(file.end(), data.begin(), data.end());
    return file;
  }
};

struct TgaFile {
  uint8_t kind = 2, bits = 24, descriptor = 0x20;
  uint16_t width = 2, height = 2;
  uint16_t mapStart = 0, mapLength = 0;
  uint8_t mapBits = 0;
  FileBytes data = {};  // the palette, then the pixels

  FileBytes bytes() const {
    FileBytes file;
    append<uint8_t>(file, {0, static_cast<uint8_t>(mapLength > 0), kind});
    append<uint16_t>(file, {mapStart, mapLength});
    append<uint8_t>(file, {mapBits});
    append<uint16_t>(file, {0, 0, width, height});
    append<uint8_t>(file, {bits, descriptor});
    file.insert(file.end(), data.begin(), data.end());
    return file;
  }
};

struct BmpFile {
  int32_t width = 2, height = 2;
  uint16_t bits = 24;
  uint32_t compression = 0;
  FileBytes palette = {};  // or masks
  FileBytes data = {};

  FileBytes bytes() const {
    FileBytes file;
    append(file, "BM");
    append<uint32_t>(file, {0, 0, static_cast<uint32_t>(54 + palette.size()), 40});
    append<int32_t>(file, {width, height});
    append<uint16_t>(file, {1, bits});
    append<uint32_t>(file, {compression, 0, 0, 0, 0, 0});
    file.insert(file.end(), palette.begin(), palette.end());
    file.insert(file.end(), data.begin(), data.end());
    return file;
  }
};

}  // namespace facet
