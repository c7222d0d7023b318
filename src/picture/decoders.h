#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "picture/image.h"

// One reader for each kind of picture file; `decodeImage` picks among them by the first bytes.

namespace facet {

using Bytes = std::span<const std::byte>;

/// Longest side of a picture.
inline constexpr uint32_t maximumPictureSide = 32768;
/// Most pixels of a picture that is packed in its file: 1 GiB when unpacked.
inline constexpr uint64_t maximumPackedPixels = uint64_t{1} << 28;

ImageResult decodeDds(Bytes file);
ImageResult decodePng(Bytes file);
ImageResult decodeBmp(Bytes file);

/// TGA files have no signature: `isTga` asks for a header that makes sense in every field.
bool isTga(Bytes file);
ImageResult decodeTga(Bytes file);

/// The little-endian value at `offset`, which the caller knows to lie within the file.
template <class T>
T valueAt(Bytes file, size_t offset) {
  T value;
  std::memcpy(&value, file.data() + offset, sizeof value);
  return value;
}

/// "A has 3 bytes, B needs 5" for a file or part that is too short.
std::string tooShort(const char* what, uint64_t held, uint64_t needed);

/// Empty for sizes of 1 .. maximumPictureSide, otherwise what is wrong with them.
std::string sizeError(const char* kind, uint64_t width, uint64_t height);

/// A picture of one level in D3DFMT_A8R8G8B8 or, without alpha, D3DFMT_X8R8G8B8. `rgba` holds R, G, B, A
/// bytes, top row first, and is turned over in place.
ImageResult pictureOfRgba(D3DXIMAGE_FILEFORMAT kind, uint32_t width, uint32_t height, bool alpha,
                          std::vector<std::byte> rgba);

/// Decodes a TGA or BMP file whose header has been checked. R, G, B, A bytes; empty when it is refused.
std::vector<std::byte> decodeByStb(Bytes file, uint32_t width, uint32_t height);

/// True when no pixel has an alpha above 0: writers that know no alpha leave its byte at 0.
bool alphaIsZero(Bytes rgba);

}  // namespace facet
