#include "device/texture.h"

#include <algorithm>
#include <cstring>

namespace facet {
namespace {

/// Pixels of 32 bits in one of the A8R8G8B8 family's layouts, moved but never looked into.
struct Pixels {
  uint32_t width, height;
  std::vector<uint32_t> pixels;
};

/// Formats that textures have on every device; pictures of other formats become A8R8G8B8 textures.
constexpr D3DFORMAT textureFormats[] = {
    D3DFMT_A8R8G8B8, D3DFMT_X8R8G8B8, D3DFMT_R5G6B5, D3DFMT_X1R5G5B5, D3DFMT_A1R5G5B5,
    D3DFMT_A4R4G4B4, D3DFMT_L8,       D3DFMT_A8L8,   D3DFMT_A8,       D3DFMT_DXT1,
    D3DFMT_DXT2,     D3DFMT_DXT3,     D3DFMT_DXT4,   D3DFMT_DXT5,
};

/// Copies rows without gaps into a level of a texture.
bool fillLevel(IDirect3DTexture9& texture, uint32_t level, D3DFORMAT format,
               std::span<const std::byte> bytes) {
  D3DSURFACE_DESC desc;
  D3DLOCKED_RECT locked;
  if (texture.GetLevelDesc(level, &desc) != D3D_OK || texture.LockRect(level, &locked) != D3D_OK)
    return false;
  const uint64_t row = rowBytes(format, desc.Width);
  auto* destination = static_cast<std::byte*>(locked.pBits);
  for (uint64_t offset = 0; offset < bytes.size(); offset += row, destination += locked.Pitch) {
    std::memcpy(destination, bytes.data() + offset, row);
  }
  return texture.UnlockRect(level) == D3D_OK;
}

Pixels decodeLevel(const Image& image, uint32_t level) {
  const std::vector<uint8_t> rgba = imagePixels(image, level);
  Pixels result{image.levels[level].width, image.levels[level].height,
                std::vector<uint32_t>(rgba.size() / 4)};
  for (size_t i = 0; i < result.pixels.size(); ++i) {
    const uint8_t* pixel = rgba.data() + i * 4;
    result.pixels[i] =
        uint32_t{pixel[3]} << 24 | uint32_t{pixel[0]} << 16 | uint32_t{pixel[1]} << 8 | pixel[2];
  }
  return result;
}

/// Each pixel is the source's pixel under its centre.
Pixels resample(const Pixels& source, uint32_t width, uint32_t height) {
  Pixels result{width, height, std::vector<uint32_t>(size_t{width} * height)};
  const auto sourceOf = [](uint64_t to, uint64_t from, uint64_t i) { return (2 * i + 1) * from / (2 * to); };
  for (uint32_t y = 0; y < height; ++y) {
    const uint32_t* row = &source.pixels[sourceOf(height, source.height, y) * source.width];
    for (uint32_t x = 0; x < width; ++x) {
      result.pixels[size_t{y} * width + x] = row[sourceOf(width, source.width, x)];
    }
  }
  return result;
}

/// True when the texture takes the picture's own bytes.
bool fits(const Image& image, uint32_t width, uint32_t height, uint32_t levels) {
  return width == image.info.Width && height == image.info.Height && levels <= image.levels.size() &&
         std::ranges::count(textureFormats, image.info.Format) > 0;
}

bool copyLevels(IDirect3DTexture9& texture, const Image& image, uint32_t levels) {
  for (uint32_t i = 0; i < levels; ++i) {
    if (!fillLevel(texture, i, image.info.Format, image.levels[i].bytes)) return false;
  }
  return true;
}

/// Decodes the levels that the picture has in this size and point-samples each further one from the one
/// before.
bool makeLevels(IDirect3DTexture9& texture, const Image& image, uint32_t width, uint32_t height,
                uint32_t levels) {
  const bool resized = width != image.info.Width || height != image.info.Height;
  Pixels pixels = decodeLevel(image, 0);
  for (uint32_t i = 0; i < levels; ++i) {
    const uint32_t w = std::max(width >> i, 1u), h = std::max(height >> i, 1u);
    if (i > 0 && !resized && i < image.levels.size()) {
      pixels = decodeLevel(image, i);
    } else if (pixels.width != w || pixels.height != h) {
      pixels = resample(pixels, w, h);
    }
    if (!fillLevel(texture, i, D3DFMT_A8R8G8B8, std::as_bytes(std::span(pixels.pixels)))) return false;
  }
  return true;
}

}  // namespace

std::shared_ptr<IDirect3DTexture9> createTexture(IDirect3DDevice9& device, const Image& image, uint32_t width,
                                                 uint32_t height, uint32_t levels) {
  if (width == 0) width = image.info.Width;
  if (height == 0) height = image.info.Height;
  const uint32_t full = fullLevelCount(width, height);
  levels = levels == 0 ? full : std::min(levels, full);

  const bool whole = fits(image, width, height, levels);
  const D3DFORMAT format = whole ? image.info.Format : D3DFMT_A8R8G8B8;
  std::shared_ptr<IDirect3DTexture9> texture;
  if (device.CreateTexture(width, height, levels, 0, format, D3DPOOL_MANAGED, &texture) != D3D_OK)
    return nullptr;
  const bool filled =
      whole ? copyLevels(*texture, image, levels) : makeLevels(*texture, image, width, height, levels);
  return filled ? texture : nullptr;
}

}  // namespace facet
