#include "paint.h"

#include <squish.h>

#include <algorithm>
#include <bit>
#include <stdexcept>

#include "picture/image.h"
#include "support/byte_writer.h"

namespace facet::sample {

namespace {

// Half the size; colours count by their alpha, so that transparent pixels do not stain edges.
Picture halved(const Picture& from) {
  Picture to{std::max(1u, from.width / 2), std::max(1u, from.height / 2), {}};
  for (uint32_t i = 0; i < to.width * to.height; ++i) {
    glm::uvec4 sum(0);
    uint32_t weights = 0;
    for (uint32_t k = 0; k < 4; ++k) {
      uint32_t x = std::min(2 * (i % to.width) + (k & 1), from.width - 1),
               y = std::min(2 * (i / to.width) + (k >> 1), from.height - 1);
      const uint8_t* pixel = &from.rgba[(size_t{y} * from.width + x) * 4];
      uint32_t weight = pixel[3] + 1u;
      sum += glm::uvec4(pixel[0] * weight, pixel[1] * weight, pixel[2] * weight, pixel[3]);
      weights += weight;
    }
    for (int c = 0; c < 3; ++c) to.rgba.push_back(uint8_t((sum[c] + weights / 2) / weights));
    to.rgba.push_back(uint8_t((sum.a + 2) / 4));
  }
  return to;
}

// Rows from the top or the bottom, as blue, green, red and perhaps alpha, each row filled up to a multiple.
std::string pixelBytes(const Picture& picture, bool alpha, bool fromTop, size_t multiple = 1) {
  std::string bytes;
  for (uint32_t row = 0; row < picture.height; ++row) {
    const uint8_t* pixel =
        &picture.rgba[size_t{fromTop ? row : picture.height - 1 - row} * picture.width * 4];
    for (uint32_t x = 0; x < picture.width; ++x, pixel += 4) {
      for (int channel : {2, 1, 0}) bytes += char(pixel[channel]);
      if (alpha) bytes += char(pixel[3]);
    }
    while (bytes.size() % multiple != 0) bytes += '\0';
  }
  return bytes;
}

std::string levelBytes(const Picture& level, PictureFile kind) {
  if (kind == PictureFile::argbDds) return pixelBytes(level, true, true);
  int flags = (kind == PictureFile::dxt1 ? squish::kDxt1 : squish::kDxt5) | squish::kColourClusterFit;
  auto width = int(level.width), height = int(level.height);
  std::string blocks(size_t(squish::GetStorageRequirements(width, height, flags)), '\0');
  squish::CompressImage(level.rgba.data(), width, height, blocks.data(), flags);
  return blocks;
}

std::string encodeDds(Picture level, PictureFile kind) {
  bool compressed = kind != PictureFile::argbDds;
  uint32_t levels = uint32_t(std::bit_width(std::max(level.width, level.height)));
  std::string data = levelBytes(level, kind);
  uint32_t pitch = compressed ? uint32_t(data.size()) : level.width * 4;
  ByteWriter file;
  file.raw("DDS ").write(124u, compressed ? 0xA1007u : 0x2100Fu, level.height, level.width, pitch, 0u,
                         levels);
  file.zeros(44).write(32u);
  if (compressed)
    file.write(4u).raw(kind == PictureFile::dxt1 ? "DXT1" : "DXT5").zeros(20);
  else
    file.write(0x41u, 0u, 32u, 0xFF0000u, 0xFF00u, 0xFFu, 0xFF000000u);  // masks of red, green, blue, alpha
  file.write(0x401008u).zeros(16);                                       // a texture with further levels
  for (uint32_t i = 1; i < levels; ++i) {
    level = halved(level);
    data += levelBytes(level, kind);
  }
  return file.raw(data).bytes();
}

std::string encodeTga(const Picture& picture) {
  bool opaque = true;
  for (size_t i = 3; i < picture.rgba.size(); i += 4) opaque = opaque && picture.rgba[i] == 255;
  constexpr uint8_t trueColor = 2, fromTop = 0x20, alphaBits = 8;
  ByteWriter file;
  file.zeros(2).write(trueColor).zeros(9).write(uint16_t(picture.width), uint16_t(picture.height));
  file.write(uint8_t(opaque ? 24 : 32), uint8_t(opaque ? fromTop : fromTop | alphaBits));
  return file.raw(pixelBytes(picture, !opaque, true)).bytes();
}

std::string encodeBmp(const Picture& picture) {
  std::string data = pixelBytes(picture, false, false, 4);
  constexpr uint32_t headers = 54, infoHeader = 40;
  auto size = uint32_t(data.size());
  ByteWriter file;
  file.raw("BM").write(headers + size, 0u, headers, infoHeader, picture.width, picture.height);
  return file.write(uint16_t{1}, uint16_t{24}, 0u, size).zeros(16).raw(data).bytes();
}

std::string encodePngFile(const Picture& picture) {
  std::vector<std::byte> file = encodePng(picture.rgba, picture.width, picture.height);
  if (file.empty()) throw std::runtime_error("a picture could not be written as PNG");
  return {reinterpret_cast<const char*>(file.data()), file.size()};
}

}  // namespace

Color hex(uint32_t rgb, float alpha) {
  return {float(rgb >> 16 & 255) / 255, float(rgb >> 8 & 255) / 255, float(rgb & 255) / 255, alpha};
}

Color mix(Color from, Color to, float t) {
  return glm::mix(from, to, clamp01(t));
}

Color shaded(Color color, float factor) {
  return {vec3(color) * factor, color.a};
}

Picture paint(uint32_t width, uint32_t height, const std::function<Color(float u, float v)>& colorAt) {
  Picture picture{width, height, {}};
  for (uint32_t i = 0; i < width * height; ++i) {
    Color c = colorAt((float(i % width) + 0.5f) / float(width), (float(i / width) + 0.5f) / float(height));
    for (int channel = 0; channel < 4; ++channel)
      picture.rgba.push_back(uint8_t(std::lround(clamp01(c[channel]) * 255)));
  }
  return picture;
}

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
