#pragma once

#include "support/byte_writer.h"

// Picture files, built field by field: of tests and of the sample scene. What is not said is that of a small
// picture without compression.

namespace facet {

struct DdsFile {
  uint32_t width = 4, height = 4, depth = 0, mipCount = 1;
  uint32_t flags = 0x41, code = 0, bits = 32, r = 0xFF0000, g = 0xFF00, b = 0xFF, a = 0xFF000000;
  uint32_t caps2 = 0;
  std::string data = {};  ///< the second header or the palette, then the pixels of all levels

  operator std::string() const {
    return ByteWriter()
        .raw("DDS ")
        .write(124u, 0x21007u, height, width, 0u, depth, mipCount)
        .zeros(44)
        .write(32u, flags, code, bits, r, g, b, a, 0x401008u, caps2, 0u, 0u, 0u)
        .raw(data)
        .bytes();
  }
};

struct TgaFile {
  uint8_t kind = 2, bits = 24, descriptor = 0x20;
  uint16_t width = 1, height = 2;
  std::string data;  ///< the palette, then the pixels
  uint16_t mapStart = 0, mapLength = 0;
  uint8_t mapBits = 0;

  operator std::string() const {
    return ByteWriter()
        .write(uint8_t{0}, mapLength > 0, kind, mapStart, mapLength, mapBits, 0u, width, height, bits,
               descriptor)
        .raw(data)
        .bytes();
  }
};

struct BmpFile {
  int32_t width = 1, height = 2;
  uint16_t bits = 24;
  uint32_t compression = 0;
  std::string palette = {};  ///< or masks
  std::string data = {};

  operator std::string() const {
    return ByteWriter()
        .raw("BM")
        .write(static_cast<uint32_t>(54 + palette.size() + data.size()), 0u,
               static_cast<uint32_t>(54 + palette.size()), 40u, width, height, uint16_t{1}, bits, compression)
        .zeros(20)
        .raw(palette + data)
        .bytes();
  }
};

/// A DDS picture of 32-bit pixels of no interest.
inline std::string ddsFile(uint32_t width, uint32_t height) {
  return DdsFile{.width = width, .height = height, .data = std::string(size_t{width} * height * 4, '\xEE')};
}

}  // namespace facet
