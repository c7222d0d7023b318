#include "paint.h"

#include <squish.h>

#include <algorithm>
#include <bit>
#include <stdexcept>

#include "picture/image.h"
#include "support/picture_files.h"

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

std::string levelBytes(const Picture& level, int flags) {
  if (flags == 0) return pixelBytes(level, true, true);
  auto width = int(level.width), height = int(level.height);
  std::string blocks(size_t(squish::GetStorageRequirements(width, height, flags)), '\0');
  squish::CompressImage(level.rgba.data(), width, height, blocks.data(), flags);
  return blocks;
}

// Compressed by squish with these flags, or for 0 not at all.
std::string encodeDds(Picture level, int flags) {
  DdsFile file{.width = level.width, .height = level.height};
  file.mipCount = uint32_t(std::bit_width(std::max(level.width, level.height)));
  if (flags != 0) {
    file.flags = 4;
    file.code = flags & squish::kDxt1 ? 0x31545844 : 0x35545844;  // "DXT1", "DXT5"
  }
  for (uint32_t i = 0; i < file.mipCount; ++i, level = halved(level)) file.data += levelBytes(level, flags);
  return file;
}

std::string encodeTga(const Picture& picture) {
  bool opaque = true;
  for (size_t i = 3; i < picture.rgba.size(); i += 4) opaque = opaque && picture.rgba[i] == 255;
  constexpr uint8_t fromTop = 0x20, alphaBits = 8;
  return TgaFile{.bits = uint8_t(opaque ? 24 : 32),
                 .descriptor = uint8_t(opaque ? fromTop : fromTop | alphaBits),
                 .width = uint16_t(picture.width),
                 .height = uint16_t(picture.height),
                 .data = pixelBytes(picture, !opaque, true)};
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

std::string encodePicture(const Picture& picture, std::string_view kind) {
  if (kind == "tga") return encodeTga(picture);
  if (kind == "png") return encodePngFile(picture);
  if (kind == "bmp")
    return BmpFile{.width = int(picture.width),
                   .height = int(picture.height),
                   .data = pixelBytes(picture, false, false, 4)};
  if (kind == "argb") return encodeDds(picture, 0);
  return encodeDds(picture, (kind == "dxt1" ? squish::kDxt1 : squish::kDxt5) | squish::kColourClusterFit);
}

}  // namespace facet::sample
