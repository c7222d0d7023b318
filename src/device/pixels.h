#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "device/device.h"

namespace facet {

/// How the pixels of one format lie in memory. Plain formats are little-endian words of `bits` bits with one
/// mask for each channel; the DXT formats are blocks of 4 x 4 pixels.
struct PixelFormat {
  enum Kind : uint8_t { color, luminance, block };
  D3DFORMAT format;
  const char* name;
  Kind kind;
  uint32_t bits;        ///< of a pixel; of a whole block in the DXT formats
  uint32_t r, g, b, a;  ///< masks; luminance stands in `r`; 0 for a channel that the format has not
};

/// All formats whose pixels can be read.
std::span<const PixelFormat> pixelFormats();

/// The row of `format`, or none.
const PixelFormat* findPixelFormat(D3DFORMAT format);

/// "DXT1", "A8R8G8B8" ... as Direct3D names the format without its prefix; "UNKNOWN" for any other.
std::string formatName(D3DFORMAT format);

/// Bytes from one row of pixels (or of blocks) to the next, without gaps; 0 for a format that is not
/// readable.
uint64_t rowBytes(D3DFORMAT format, uint32_t width);

/// Bytes of one level of `width` x `height` in `format`; 0 for a format that is not readable.
uint64_t levelBytes(D3DFORMAT format, uint32_t width, uint32_t height);

/// Levels of a full chain down to 1 x 1.
uint32_t fullLevelCount(uint32_t width, uint32_t height);

/// Turns a level, its rows without gaps, into R, G, B, A bytes. Channels are scaled to 0..255 and rounded; a
/// format without alpha is opaque, one without colour black. `bytes` holds levelBytes() of them, `rgba`
/// width * height * 4. False for a format that is not readable.
bool decodePixels(D3DFORMAT format, uint32_t width, uint32_t height, std::span<const std::byte> bytes,
                  std::span<uint8_t> rgba);

}  // namespace facet
