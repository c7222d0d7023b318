#include "image_write.h"

#include <squish.h>

#include <stdexcept>

#include "bytes.h"
#include "picture/image.h"

namespace facet::sample {

namespace {

// Half the size; colours count by their alpha, so that transparent pixels do not stain edges.
Picture halved(const Picture& from) {
  Picture to{std::max(1u, from.width / 2), std::max(1u, from.height / 2), {}};
  for (uint32_t y = 0; y < to.height; ++y) {
    for (uint32_t x = 0; x < to.width; ++x) {
      uint32_t sums[3] = {}, alpha = 0, weights = 0;
      for (uint32_t k = 0; k < 4; ++k) {
        uint32_t sx = std::min(2 * x + (k & 1), from.width - 1),
                 sy = std::min(2 * y + (k >> 1), from.height - 1);
        const uint8_t* pixel = &from.rgba[(size_t{sy} * from.width + sx) * 4];
        uint32_t weight = pixel[3] + 1u;
        for (int c = 0; c < 3; ++c) sums[c] += pixel[c] * weight;
        weights += weight;
        alpha += pixel[3];
      }
      for (uint32_t sum : sums) to.rgba.push_back(uint8_t((sum + weights / 2) / weights));
      to.rgba.push_back(uint8_t((alpha + 2) / 4));
    }
  }
  return to;
}

std::string levelBytes(const Picture& level, PictureFile kind) {
  if (kind == PictureFile::argbDds) {
    Bytes bytes;
    for (size_t i = 0; i < level.rgba.size(); i += 4) {
      for (size_t channel : {2, 1, 0, 3}) bytes.u8(level.rgba[i + channel]);
    }
    return bytes.content();
  }
  int flags = (kind == PictureFile::dxt1 ? squish::kDxt1 : squish::kDxt5) | squish::kColourClusterFit;
  auto width = int(level.width), height = int(level.height);
  std::string blocks(size_t(squish::GetStorageRequirements(width, height, flags)), '\0');
  squish::CompressImage(level.rgba.data(), width, height, blocks.data(), flags);
  return blocks;
}

std::string encodeDds(const Picture& picture, PictureFile kind) {
  bool compressed = kind != PictureFile::argbDds;
  uint32_t levels = uint32_t(std::bit_width(std::max(picture.width, picture.height)));
  std::string first = levelBytes(picture, kind);
  Bytes bytes;
  bytes.raw("DDS ");
  bytes.u32(124);
  bytes.u32(compressed ? 0xA1007 : 0x2100F);  // size, format, mip count, and linear size or pitch
  bytes.u32(picture.height);
  bytes.u32(picture.width);
  bytes.u32(compressed ? uint32_t(first.size()) : picture.width * 4);
  bytes.u32(0);
  bytes.u32(levels);
  bytes.zeros(44);
  bytes.u32(32);
  bytes.u32(compressed ? 0x4 : 0x41);  // a format code, or colour masks with alpha
  bytes.raw(kind == PictureFile::dxt1   ? "DXT1"
            : kind == PictureFile::dxt5 ? "DXT5"
                                        : std::string_view("\0\0\0\0", 4));
  for (uint32_t value : {32u, 0xFF0000u, 0xFF00u, 0xFFu, 0xFF000000u}) bytes.u32(compressed ? 0 : value);
  bytes.u32(0x401008);  // a texture with further levels
  bytes.zeros(16);
  bytes.raw(first);
  Picture level = picture;
  for (uint32_t i = 1; i < levels; ++i) {
    level = halved(level);
    bytes.raw(levelBytes(level, kind));
  }
  return bytes.content();
}

bool isOpaque(const Picture& picture) {
  for (size_t i = 3; i < picture.rgba.size(); i += 4) {
    if (picture.rgba[i] != 255) return false;
  }
  return true;
}

std::string encodeTga(const Picture& picture) {
  bool opaque = isOpaque(picture);
  Bytes bytes;
  bytes.zeros(2);
  bytes.u8(2);  // true colour, not compressed
  bytes.zeros(9);
  bytes.u16(picture.width);
  bytes.u16(picture.height);
  bytes.u8(opaque ? 24 : 32);
  bytes.u8(opaque ? 0x20 : 0x28);  // rows from the top; alpha bits
  for (size_t i = 0; i < picture.rgba.size(); i += 4) {
    for (size_t channel : {2, 1, 0}) bytes.u8(picture.rgba[i + channel]);
    if (!opaque) bytes.u8(picture.rgba[i + 3]);
  }
  return bytes.content();
}

std::string encodeBmp(const Picture& picture) {
  uint32_t pitch = (picture.width * 3 + 3) & ~3u;
  Bytes bytes;
  bytes.raw("BM");
  bytes.u32(54 + pitch * picture.height);
  bytes.u32(0);
  bytes.u32(54);
  bytes.u32(40);
  bytes.u32(picture.width);
  bytes.u32(picture.height);
  bytes.u16(1);
  bytes.u16(24);
  bytes.u32(0);
  bytes.u32(pitch * picture.height);
  bytes.zeros(16);
  for (uint32_t y = picture.height; y-- > 0;) {
    for (uint32_t x = 0; x < picture.width; ++x) {
      const uint8_t* pixel = &picture.rgba[(size_t{y} * picture.width + x) * 4];
      for (int channel : {2, 1, 0}) bytes.u8(pixel[channel]);
    }
    bytes.zeros(pitch - picture.width * 3);
  }
  return bytes.content();
}

std::string encodePngFile(const Picture& picture) {
  std::vector<std::byte> file = encodePng(picture.rgba, picture.width, picture.height);
  if (file.empty()) throw std::runtime_error("a picture could not be written as PNG");
  return {reinterpret_cast<const char*>(file.data()), file.size()};
}

}  // namespace

std::string encodePicture(const Picture& picture, PictureFile kind) {
  switch (kind) {
    case PictureFile::tga:
      return encodeTga(picture);
    case PictureFile::bmp:
      return encodeBmp(picture);
    case PictureFile::png:
      return encodePngFile(picture);
    default:
      return encodeDds(picture, kind);
  }
}

}  // namespace facet::sample
