#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "device/software/draw.h"

// From the vertices of a buffer to places on the screen: transform, lighting, clipping, division by w.

// From a draw's transformed vertices to triangles and lines on the screen, in two steps that many threads
// take at once: chunks of primitives are assembled and sorted into bands of rows, then each band is drawn by
// one thread, chunk after chunk. So within a pixel the order of the primitives holds, whatever the threads.
//
// Coverage is Direct3D's: a pixel belongs to a triangle when its centre lies inside or on a top or left edge,
// so triangles that share an edge neither overlap nor leave gaps. A line has one pixel in each column, or in
// each row where it is steep, from its first end up to but not including its last.

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

/// Rows of the picture that one thread draws at a time.
inline constexpr uint32_t bandRows = 16;

/// The vertices of one draw after transformation.
struct ScreenVertices {
  const ScreenVertex* transformed = nullptr;
  const uint8_t* outcodes = nullptr;
};

/// A triangle, or a line from `a` to `b`. Indices count the draw's vertices; those with `clipped` set count
/// the chunk's own. `flat` is the vertex whose colour counts when shading is flat.
struct Primitive {
  static constexpr uint32_t clipped = 1u << 31;
  uint32_t a, b, c;
  uint32_t flat;
};

/// Some primitives of one draw and, after assembly, what is left to draw of them, in order.
struct Chunk {
  const Draw* draw = nullptr;
  uint32_t begin = 0, end = 0;  ///< primitives of the draw

  std::vector<ScreenVertex> clippedVertices;
  std::vector<Primitive> primitives;
  std::vector<uint32_t> firstOfBand;  ///< for each band its first place in `order`, and the end
  std::vector<uint32_t> order;        ///< indices of primitives, band by band

  const ScreenVertex& vertex(const ScreenVertices& all, uint32_t index) const {
    return index & Primitive::clipped ? clippedVertices[index & ~Primitive::clipped] : all.transformed[index];
  }
};

/// Assembles a chunk: culls, clips, drops what covers no pixel, sorts the rest into the picture's bands.
/// `vertices` are those of the chunk's draw.
void assemble(Chunk& chunk, const ScreenVertices& vertices, const Viewport& viewport, uint32_t width,
              uint32_t height);

/// Draws the chunk's primitives of one band of rows, in order.
void rasterBand(const Chunk& chunk, const ScreenVertices& vertices, uint32_t band, Surface& surface);

}  // namespace facet
