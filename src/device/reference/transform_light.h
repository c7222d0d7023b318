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

D3DMATRIX multiply(const D3DMATRIX& a, const D3DMATRIX& b);

/// The upper 3 x 3 part that turns normals: the inverse, transposed. Zero for a matrix without inverse.
D3DMATRIX normalMatrix(const D3DMATRIX& matrix);

}  // namespace facet
