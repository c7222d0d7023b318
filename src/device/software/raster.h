#pragma once

#include <cstdint>
#include <vector>

#include "device/software/draw.h"
#include "device/software/vertices.h"

// From a draw's transformed vertices to triangles and lines on the screen, in two steps that many threads
// take at once: chunks of primitives are assembled and sorted into bands of rows, then each band is drawn by
// one thread, chunk after chunk. So within a pixel the order of the primitives holds, whatever the threads.
//
// Coverage is Direct3D's: a pixel belongs to a triangle when its centre lies inside or on a top or left edge,
// so triangles that share an edge neither overlap nor leave gaps. A line has one pixel in each column, or in
// each row where it is steep, from its first end up to but not including its last.

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

/// Draws the chunk's primitives of one band of rows, in order.
void rasterBand(const Chunk& chunk, const ScreenVertices& vertices, uint32_t band, Surface& surface);

}  // namespace facet
