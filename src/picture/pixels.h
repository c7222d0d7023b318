#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace facet {

/// Direct3D's codes of formats: of pixels in files and textures, of depth buffers, of indices.
enum D3DFORMAT : uint32_t {
  D3DFMT_UNKNOWN = 0,
  D3DFMT_R8G8B8 = 20,
  D3DFMT_A8R8G8B8 = 21,
  D3DFMT_X8R8G8B8 = 22,
  D3DFMT_R5G6B5 = 23,
  D3DFMT_X1R5G5B5 = 24,
  D3DFMT_A1R5G5B5 = 25,
  D3DFMT_A4R4G4B4 = 26,
  D3DFMT_R3G3B2 = 27,
  D3DFMT_A8 = 28,
  D3DFMT_A8R3G3B2 = 29,
  D3DFMT_X4R4G4B4 = 30,
  D3DFMT_A2B10G10R10 = 31,
  D3DFMT_A8B8G8R8 = 32,
  D3DFMT_X8B8G8R8 = 33,
  D3DFMT_A2R10G10B10 = 35,
  D3DFMT_L8 = 50,
  D3DFMT_A8L8 = 51,
  D3DFMT_A4L4 = 52,
  D3DFMT_D32 = 71,
  D3DFMT_D15S1 = 73,
  D3DFMT_D24S8 = 75,
  D3DFMT_D24X8 = 77,
  D3DFMT_D24X4S4 = 79,
  D3DFMT_D16 = 80,
  D3DFMT_L16 = 81,
  D3DFMT_DXT1 = 0x31545844,
  D3DFMT_DXT2 = 0x32545844,
  D3DFMT_DXT3 = 0x33545844,
  D3DFMT_DXT4 = 0x34545844,
  D3DFMT_DXT5 = 0x35545844,
};

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
