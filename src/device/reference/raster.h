#pragma once

#include "device/reference/primitives.h"

namespace facet {

/// Draws the chunk's primitives of one band of rows, in order. `vertices` are those of the chunk's draw.
void rasterBand(const Chunk& chunk, const ScreenVertices& vertices, uint32_t band, Surface& surface);

}  // namespace facet
