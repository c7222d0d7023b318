#pragma once

#include "picture/decoders.h"

namespace facet {

/// Pictures above this many pixels are decoded by the reader but not unpacked, so that a run stays fast.
inline constexpr uint64_t fuzzedPixels = 1u << 20;

inline void decodeAllLevels(Bytes file, ImageResult (*decode)(Bytes file)) {
  const ImageResult result = decode(file);
  if (!result.image) return;
  for (uint32_t i = 0; i < result.image->levels.size(); ++i) {
    const ImageLevel& level = result.image->levels[i];
    if (uint64_t{level.width} * level.height <= fuzzedPixels) imagePixels(*result.image, i);
  }
}

}  // namespace facet
