#pragma once

#include <cstdint>
#include <span>

#include "device/software/draw.h"

// From the vertices of a buffer to places on the screen: transform, lighting, clipping, division by w.

namespace facet {

/// A vertex on the screen: pixel (0, 0) has its centre at 0, 0. Positions count in 1/256 of a pixel.
struct ScreenVertex {
  int32_t x, y;
  float z, rhw;  ///< depth 0..1 and 1 / w
  float u, v;
  float color[4];  ///< r, g, b, a in 0..1
};

/// A vertex before the division by w.
struct ClipVertex {
  float x, y, z, w;
  float u, v;
  float color[4];
};

/// Maps clip space onto a surface. Vertices up to `guard` times the picture's half size from its middle keep
/// their place; what lies farther out is clipped, so that positions fit their integers. Most triangles that
/// reach out of the picture are thus not clipped at all: the rasteriser leaves out what nobody sees.
struct Viewport {
  float halfWidth = 0, halfHeight = 0;
  float guardX = 1, guardY = 1;
};
Viewport viewportOf(uint32_t width, uint32_t height);

/// Where a vertex lies. A primitive is unseen when all its vertices share one of the `outside` bits; it must
/// be clipped when one of them has a `clip` bit, and is dropped when one is `invalid` (not a finite number).
enum Outcode : uint8_t {
  outNear = 1,
  outFar = 2,
  outLeft = 4,
  outRight = 8,
  outTop = 16,
  outBottom = 32,
  outGuard = 64,
  invalid = 128,
  outsideBits = outNear | outFar | outLeft | outRight | outTop | outBottom,
  clipBits = outNear | outFar | outGuard,
};

/// Transforms and lights the vertices `begin` .. `end` of the draw's range. `screen` and `outcodes` are those
/// of the whole range. Vertices with a clip bit get no place on the screen.
void transformVertices(const Draw& draw, const Viewport& viewport, uint32_t begin, uint32_t end,
                       ScreenVertex* screen, uint8_t* outcodes);

/// One vertex of the range before the division by w, for clipping.
ClipVertex clipVertexOf(const Draw& draw, uint32_t index);

/// A vertex that lies within the clip planes, on the screen.
ScreenVertex toScreen(const ClipVertex& vertex, const Viewport& viewport);

/// Room for the corners of a clipped triangle: six planes make nine, rounding may add some.
inline constexpr size_t maximumCorners = 12;

/// Cuts a triangle at the near, far and guard planes. Returns the number of corners written, 0 when nothing
/// is left.
size_t clipTriangle(std::span<const ClipVertex, 3> triangle, const Viewport& viewport,
                    std::span<ClipVertex, maximumCorners> corners);

/// Cuts a line in the same way; false when nothing is left.
bool clipLine(ClipVertex& first, ClipVertex& second, const Viewport& viewport);

}  // namespace facet
