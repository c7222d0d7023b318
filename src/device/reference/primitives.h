#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "device/reference/clip.h"
#include "device/reference/draw.h"

// From a draw's transformed vertices to triangles and lines on the screen, sorted into bands of rows.

namespace facet {

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

/// Pixels that a span of positions in 1/256 of a pixel can cover, cut to 0 .. size - 1; empty when last <
/// first.
struct PixelRange {
  int32_t first, last;
};
PixelRange pixelsBetween(int32_t low, int32_t high, uint32_t size);

/// Twice the area of a triangle in (1/256 pixel)²; above 0 when its corners turn clockwise on the screen.
int64_t doubleArea(const ScreenVertex& a, const ScreenVertex& b, const ScreenVertex& c);

/// One edge of a triangle that turns clockwise: e = atOrigin + perX * x + perY * y is at or above 0 for
/// pixels (x, y) on its inner side. An edge that runs through a pixel's centre takes it when it is a top or
/// left one.
struct Edge {
  int64_t atOrigin;
  int32_t perX, perY;
};
Edge edgeBetween(const ScreenVertex& from, const ScreenVertex& to);

}  // namespace facet
