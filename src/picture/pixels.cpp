#include "picture/pixels.h"

#include <squish.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace facet {
namespace {

constexpr PixelFormat formats[] = {
    {D3DFMT_R8G8B8, "R8G8B8", PixelFormat::color, 24, 0xFF0000, 0xFF00, 0xFF, 0},
    {D3DFMT_A8R8G8B8, "A8R8G8B8", PixelFormat::color, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000},
    {D3DFMT_X8R8G8B8, "X8R8G8B8", PixelFormat::color, 32, 0xFF0000, 0xFF00, 0xFF, 0},
    {D3DFMT_R5G6B5, "R5G6B5", PixelFormat::color, 16, 0xF800, 0x7E0, 0x1F, 0},
    {D3DFMT_X1R5G5B5, "X1R5G5B5", PixelFormat::color, 16, 0x7C00, 0x3E0, 0x1F, 0},
    {D3DFMT_A1R5G5B5, "A1R5G5B5", PixelFormat::color, 16, 0x7C00, 0x3E0, 0x1F, 0x8000},
    {D3DFMT_A4R4G4B4, "A4R4G4B4", PixelFormat::color, 16, 0xF00, 0xF0, 0xF, 0xF000},
    {D3DFMT_R3G3B2, "R3G3B2", PixelFormat::color, 8, 0xE0, 0x1C, 0x3, 0},
    {D3DFMT_A8, "A8", PixelFormat::color, 8, 0, 0, 0, 0xFF},
    {D3DFMT_A8R3G3B2, "A8R3G3B2", PixelFormat::color, 16, 0xE0, 0x1C, 0x3, 0xFF00},
    {D3DFMT_X4R4G4B4, "X4R4G4B4", PixelFormat::color, 16, 0xF00, 0xF0, 0xF, 0},
    {D3DFMT_A2B10G10R10, "A2B10G10R10", PixelFormat::color, 32, 0x3FF, 0xFFC00, 0x3FF00000, 0xC0000000},
    {D3DFMT_A8B8G8R8, "A8B8G8R8", PixelFormat::color, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000},
    {D3DFMT_X8B8G8R8, "X8B8G8R8", PixelFormat::color, 32, 0xFF, 0xFF00, 0xFF0000, 0},
    {D3DFMT_A2R10G10B10, "A2R10G10B10", PixelFormat::color, 32, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000},
    {D3DFMT_L8, "L8", PixelFormat::luminance, 8, 0xFF, 0, 0, 0},
    {D3DFMT_A8L8, "A8L8", PixelFormat::luminance, 16, 0xFF, 0, 0, 0xFF00},
    {D3DFMT_A4L4, "A4L4", PixelFormat::luminance, 8, 0xF, 0, 0, 0xF0},
    {D3DFMT_L16, "L16", PixelFormat::luminance, 16, 0xFFFF, 0, 0, 0},
    {D3DFMT_DXT1, "DXT1", PixelFormat::block, 64, 0, 0, 0, 0},
    {D3DFMT_DXT2, "DXT2", PixelFormat::block, 128, 0, 0, 0, 0},
    {D3DFMT_DXT3, "DXT3", PixelFormat::block, 128, 0, 0, 0, 0},
    {D3DFMT_DXT4, "DXT4", PixelFormat::block, 128, 0, 0, 0, 0},
    {D3DFMT_DXT5, "DXT5", PixelFormat::block, 128, 0, 0, 0, 0},
};

/// Takes one channel out of a pixel and scales it to 0..255.
class Channel {
 public:
  Channel(uint32_t mask, uint8_t absent) : mask_(mask), shift_(mask ? std::countr_zero(mask) : 0) {
    const uint32_t maximum = mask >> shift_;
    scaled_.resize(size_t{maximum} + 1, absent);
    for (uint32_t i = 0; maximum && i <= maximum; ++i)
      scaled_[i] = static_cast<uint8_t>((i * 255 + maximum / 2) / maximum);
  }

  uint8_t of(uint32_t pixel) const { return scaled_[(pixel & mask_) >> shift_]; }

 private:
  uint32_t mask_, shift_;
  std::vector<uint8_t> scaled_;  ///< for each value that fits the mask
};

void decodePlain(const PixelFormat& format, std::span<const std::byte> bytes, std::span<uint8_t> rgba) {
  const bool gray = format.kind == PixelFormat::luminance;
  const Channel r(format.r, 0), g(gray ? format.r : format.g, 0), b(gray ? format.r : format.b, 0),
      a(format.a, 255);
  const size_t pixelBytes = format.bits / 8;
  const std::byte* from = bytes.data();
  for (size_t i = 0; i < rgba.size() / 4; ++i, from += pixelBytes) {
    uint32_t pixel = 0;
    for (size_t byte = 0; byte < pixelBytes; ++byte)
      pixel |= std::to_integer<uint32_t>(from[byte]) << 8 * byte;
    rgba[i * 4] = r.of(pixel);
    rgba[i * 4 + 1] = g.of(pixel);
    rgba[i * 4 + 2] = b.of(pixel);
    rgba[i * 4 + 3] = a.of(pixel);
  }
}

/// The usual formats of textures, where the general way would take most of a load's time.
void decodeArgb(uint32_t opaque, std::span<const std::byte> bytes, std::span<uint8_t> rgba) {
  for (size_t i = 0; i < rgba.size() / 4; ++i) {
    uint32_t pixel;
    std::memcpy(&pixel, bytes.data() + i * 4, 4);
    pixel = (pixel & 0xFF00FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16 | opaque;
    std::memcpy(rgba.data() + i * 4, &pixel, 4);
  }
}

/// Block by block: the library's way for whole pictures counts their bytes in 32 bits and starts threads of
/// its own, which then wait for more on a core each.
void decodeBlocks(const PixelFormat& format, uint32_t width, uint32_t height,
                  std::span<const std::byte> bytes, std::span<uint8_t> rgba) {
  const int flags = format.format == D3DFMT_DXT1                                   ? squish::kDxt1
                    : format.format == D3DFMT_DXT2 || format.format == D3DFMT_DXT3 ? squish::kDxt3
                                                                                   : squish::kDxt5;
  const std::byte* block = bytes.data();
  for (uint32_t y = 0; y < height; y += 4) {
    for (uint32_t x = 0; x < width; x += 4, block += format.bits / 8) {
      uint8_t pixels[4][16];
      squish::Decompress(pixels[0], block, flags);
      const size_t part = std::min(4u, width - x) * size_t{4};
      for (uint32_t row = 0; row < std::min(4u, height - y); ++row)
        std::memcpy(&rgba[(size_t{y + row} * width + x) * 4], pixels[row], part);
    }
  }
}

}  // namespace

std::span<const PixelFormat> pixelFormats() {
  return formats;
}

const PixelFormat* findPixelFormat(D3DFORMAT format) {
  const auto* row = std::ranges::find(formats, format, &PixelFormat::format);
  return row == std::end(formats) ? nullptr : row;
}

std::string formatName(D3DFORMAT format) {
  const PixelFormat* row = findPixelFormat(format);
  return row ? row->name : "UNKNOWN";
}

uint64_t levelBytes(D3DFORMAT format, uint32_t width, uint32_t height) {
  const PixelFormat* row = findPixelFormat(format);
  if (!row) return 0;
  const uint64_t side = row->kind == PixelFormat::block ? 4 : 1;  // of a unit, in pixels
  return (width + side - 1) / side * ((height + side - 1) / side) * (row->bits / 8);
}

uint32_t fullLevelCount(uint32_t width, uint32_t height) {
  return static_cast<uint32_t>(std::bit_width(std::max(width, height)));
}

bool decodePixels(D3DFORMAT format, uint32_t width, uint32_t height, std::span<const std::byte> bytes,
                  std::span<uint8_t> rgba) {
  const PixelFormat* row = findPixelFormat(format);
  if (!row) return false;
  if (row->kind == PixelFormat::block)
    decodeBlocks(*row, width, height, bytes, rgba);
  else if (format == D3DFMT_A8R8G8B8 || format == D3DFMT_X8R8G8B8)
    decodeArgb(row->a ? 0 : 0xFF000000, bytes, rgba);
  else
    decodePlain(*row, bytes, rgba);
  return true;
}

}  // namespace facet
