#include "device/reference/primitives.h"

#include <algorithm>
#include <cstring>

#include "device/reference/transform_light.h"

namespace facet {
namespace {

/// Carries one chunk through assembly.
class Assembler {
 public:
  Assembler(Chunk& chunk, const ScreenVertices& vertices, const Viewport& viewport, uint32_t width,
            uint32_t height)
      : chunk_(chunk),
        draw_(*chunk.draw),
        vertices_(vertices),
        viewport_(viewport),
        width_(width),
        height_(height) {}

  void run() {
    chunk_.clippedVertices.clear();
    chunk_.primitives.clear();
    bands_.clear();
    for (uint32_t i = chunk_.begin; i < chunk_.end; ++i) {
      if (draw_.kind == Draw::lineList) {
        addLine(vertexIndex(uint64_t{i} * 2), vertexIndex(uint64_t{i} * 2 + 1), vertexIndex(uint64_t{i} * 2));
      } else {
        addTriangle(i);
      }
    }
    sortIntoBands();
  }

 private:
  struct Bands {
    uint16_t first, last;
  };
  static constexpr uint32_t beyond = UINT32_MAX;  // an index outside the range

  /// Place of the draw's index number `position` within the vertex range, or `beyond`.
  uint32_t vertexIndex(uint64_t position) const {
    uint32_t index = static_cast<uint32_t>(position);
    if (draw_.indices) {
      uint16_t stored;
      std::memcpy(&stored, draw_.indices->data() + (draw_.startIndex + position) * 2, 2);
      index = stored - draw_.minIndex;
    }
    return index < draw_.vertexCount ? index : beyond;
  }

  void addTriangle(uint32_t number) {
    const bool strip = draw_.kind == Draw::triangleStrip;
    const uint64_t first = strip ? number : uint64_t{number} * 3;
    const uint32_t a = vertexIndex(first);
    uint32_t b = vertexIndex(first + 1), c = vertexIndex(first + 2);
    if (strip && number % 2 == 1) std::swap(b, c);
    if (a == beyond || b == beyond || c == beyond) return;
    const uint8_t *codes = vertices_.outcodes, any = codes[a] | codes[b] | codes[c];
    if (any & invalid || codes[a] & codes[b] & codes[c] & outsideBits) return;
    if (draw_.wireframe) {
      if (culledAsWire(a, b, c)) return;
      addLine(a, b, a);
      addLine(b, c, a);
      addLine(c, a, a);
    } else if (any & clipBits) {
      addClippedTriangle(a, b, c);
    } else {
      addScreenTriangle(a, b, c, a);
    }
  }

  bool isCulled(int64_t area) const {
    return area == 0 || (draw_.cull == D3DCULL_CCW && area < 0) || (draw_.cull == D3DCULL_CW && area > 0);
  }

  /// Which way a triangle turns before it is clipped: the sign of the determinant of x, y and w.
  bool culledAsWire(uint32_t a, uint32_t b, uint32_t c) const {
    if (draw_.cull == D3DCULL_NONE) return false;
    const ClipVertex p = clipVertexOf(draw_, a), q = clipVertexOf(draw_, b), r = clipVertexOf(draw_, c);
    const double turn = double{p.w} * (double{q.x} * r.y - double{r.x} * q.y) -
                        double{q.w} * (double{p.x} * r.y - double{r.x} * p.y) +
                        double{r.w} * (double{p.x} * q.y - double{q.x} * p.y);
    return draw_.cull == D3DCULL_CCW ? turn > 0 : turn < 0;
  }

  void addClippedTriangle(uint32_t a, uint32_t b, uint32_t c) {
    const ClipVertex triangle[] = {clipVertexOf(draw_, a), clipVertexOf(draw_, b), clipVertexOf(draw_, c)};
    std::array<ClipVertex, maximumCorners> corners;
    const size_t count = clipTriangle(triangle, viewport_, corners);
    if (count == 0) return;
    const uint32_t first = addClippedVertex(corners[0]);
    uint32_t previous = addClippedVertex(corners[1]);
    // The colour of a flat triangle is its first vertex's, which may have been cut off.
    const uint32_t flat = draw_.flat ? addClippedVertex(triangle[0]) : first;
    for (size_t i = 2; i < count; ++i) {
      const uint32_t next = addClippedVertex(corners[i]);
      addScreenTriangle(first, previous, next, flat);
      previous = next;
    }
  }

  uint32_t addClippedVertex(const ClipVertex& vertex) {
    chunk_.clippedVertices.push_back(toScreen(vertex, viewport_));
    return static_cast<uint32_t>(chunk_.clippedVertices.size() - 1) | Primitive::clipped;
  }

  void addScreenTriangle(uint32_t a, uint32_t b, uint32_t c, uint32_t flat) {
    const ScreenVertex &va = chunk_.vertex(vertices_, a), &vb = chunk_.vertex(vertices_, b),
                       &vc = chunk_.vertex(vertices_, c);
    const PixelRange rows =
        pixelsBetween(std::min({va.y, vb.y, vc.y}), std::max({va.y, vb.y, vc.y}), height_);
    const PixelRange columns =
        pixelsBetween(std::min({va.x, vb.x, vc.x}), std::max({va.x, vb.x, vc.x}), width_);
    if (rows.last < rows.first || columns.last < columns.first) return;
    const int64_t area = doubleArea(va, vb, vc);
    if (isCulled(area)) return;
    if (area > 0) {
      if (coversNone(va, vb, vc, columns, rows)) return;
      add({a, b, c, flat}, rows);
    } else {
      if (coversNone(va, vc, vb, columns, rows)) return;
      add({a, c, b, flat}, rows);
    }
  }

  /// True for a tiny triangle that lies between the pixels' centres.
  static bool coversNone(const ScreenVertex& a, const ScreenVertex& b, const ScreenVertex& c,
                         PixelRange columns, PixelRange rows) {
    if ((columns.last - columns.first + 1) * (rows.last - rows.first + 1) > 4) return false;
    const Edge edges[] = {edgeBetween(a, b), edgeBetween(b, c), edgeBetween(c, a)};
    for (int32_t y = rows.first; y <= rows.last; ++y) {
      for (int32_t x = columns.first; x <= columns.last; ++x) {
        int64_t outside = 0;
        for (const Edge& e : edges) outside |= e.atOrigin + int64_t{e.perX} * x + int64_t{e.perY} * y;
        if (outside >= 0) return false;
      }
    }
    return true;
  }

  void addLine(uint32_t a, uint32_t b, uint32_t flat) {
    if (a == beyond || b == beyond) return;
    const uint8_t codeA = vertices_.outcodes[a], codeB = vertices_.outcodes[b];
    if ((codeA | codeB) & invalid || codeA & codeB & outsideBits) return;
    if ((codeA | codeB) & clipBits) {
      ClipVertex first = clipVertexOf(draw_, a), second = clipVertexOf(draw_, b);
      if (!clipLine(first, second, viewport_)) return;
      if (draw_.flat) flat = addClippedVertex(clipVertexOf(draw_, flat));
      a = addClippedVertex(first);
      b = addClippedVertex(second);
    }
    const ScreenVertex &va = chunk_.vertex(vertices_, a), &vb = chunk_.vertex(vertices_, b);
    // A line touches the pixels whose centres are nearest, so half a pixel around it counts.
    const PixelRange rows = pixelsBetween(std::min(va.y, vb.y) - 256, std::max(va.y, vb.y) + 256, height_);
    if (rows.last < rows.first) return;
    add({a, b, b, flat}, rows);
  }

  void add(const Primitive& primitive, PixelRange rows) {
    chunk_.primitives.push_back(primitive);
    bands_.push_back({static_cast<uint16_t>(static_cast<uint32_t>(rows.first) / bandRows),
                      static_cast<uint16_t>(static_cast<uint32_t>(rows.last) / bandRows)});
  }

  void sortIntoBands() {
    const uint32_t bandCount = (height_ + bandRows - 1) / bandRows;
    std::vector<uint32_t>& starts = chunk_.firstOfBand;
    starts.assign(bandCount + 2, 0);
    for (const Bands& bands : bands_) {
      for (uint32_t band = bands.first; band <= bands.last; ++band) ++starts[band + 2];
    }
    for (uint32_t band = 2; band < starts.size(); ++band) starts[band] += starts[band - 1];
    chunk_.order.resize(starts.back());
    for (uint32_t i = 0; i < bands_.size(); ++i) {
      for (uint32_t band = bands_[i].first; band <= bands_[i].last; ++band)
        chunk_.order[starts[band + 1]++] = i;
    }
    starts.pop_back();
  }

  Chunk& chunk_;
  const Draw& draw_;
  ScreenVertices vertices_;
  const Viewport& viewport_;
  uint32_t width_, height_;
  std::vector<Bands> bands_;
};

}  // namespace

void assemble(Chunk& chunk, const ScreenVertices& vertices, const Viewport& viewport, uint32_t width,
              uint32_t height) {
  Assembler(chunk, vertices, viewport, width, height).run();
}

PixelRange pixelsBetween(int32_t low, int32_t high, uint32_t size) {
  return {std::max((low + 255) >> 8, 0), std::min((high - 1) >> 8, static_cast<int32_t>(size) - 1)};
}

int64_t doubleArea(const ScreenVertex& a, const ScreenVertex& b, const ScreenVertex& c) {
  return int64_t{b.x - a.x} * (c.y - a.y) - int64_t{c.x - a.x} * (b.y - a.y);
}

Edge edgeBetween(const ScreenVertex& from, const ScreenVertex& to) {
  const int32_t dx = to.x - from.x, dy = to.y - from.y;
  const bool topOrLeft = dy < 0 || (dy == 0 && dx > 0);
  const int64_t atOrigin = int64_t{dy} * from.x - int64_t{dx} * from.y - (topOrLeft ? 0 : 1);
  // All centres lie at whole pixels: what is left below 256 never changes the sign.
  return {atOrigin >> 8, -dy, dx};
}

}  // namespace facet
