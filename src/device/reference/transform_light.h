#pragma once

#include <cstdint>

#include "device/reference/clip.h"
#include "device/reference/draw.h"

namespace facet {

/// Transforms and lights the vertices `begin` .. `end` of the draw's range. `screen` and `outcodes` are those
/// of the whole range. Vertices with a clip bit get no place on the screen.
void transformVertices(const Draw& draw, const Viewport& viewport, uint32_t begin, uint32_t end,
                       ScreenVertex* screen, uint8_t* outcodes);

/// One vertex before the division by w, for clipping.
ClipVertex clipVertexOf(const Draw& draw, uint32_t index);

}  // namespace facet
