#include "device/software/raster.h"

#include <algorithm>
#include <cmath>

#include "device/software/spans.h"

namespace facet {
namespace {

/// Pixels that a span of positions in 1/256 of a pixel can cover, cut to 0 .. size - 1; empty when last <
/// first.
struct PixelRange {
  int32_t first, last;
};
PixelRange pixelsBetween(int32_t low, int32_t high, uint32_t size) {
  return {std::max((low + 255) >> 8, 0), std::min((high - 1) >> 8, static_cast<int32_t>(size) - 1)};
}

/// Twice the area of a triangle in (1/256 pixel)²; above 0 when its corners turn clockwise on the screen.
int64_t doubleArea(const ScreenVertex& a, const ScreenVertex& b, const ScreenVertex& c) {
  return int64_t{b.x - a.x} * (c.y - a.y) - int64_t{c.x - a.x} * (b.y - a.y);
}

/// One edge of a triangle that turns clockwise: e = atOrigin + perX * x + perY * y is at or above 0 for
/// pixels (x, y) on its inner side. An edge that runs through a pixel's centre takes it when it is a top or
/// left one.
struct Edge {
  int64_t atOrigin;
  int32_t perX, perY;
};
Edge edgeBetween(const ScreenVertex& from, const ScreenVertex& to) {
  const int32_t dx = to.x - from.x, dy = to.y - from.y;
  const bool topOrLeft = dy < 0 || (dy == 0 && dx > 0);
  const int64_t atOrigin = int64_t{dy} * from.x - int64_t{dx} * from.y - (topOrLeft ? 0 : 1);
  // All centres lie at whole pixels: what is left below 256 never changes the sign.
  return {atOrigin >> 8, -dy, dx};
}

/// Carries one chunk through assembly.
class Assembler {
 public:
  Assembler(Chunk& chunk, const ScreenVertices& vertices, const Viewport& viewport, uint32_t width,
            uint32_t height)
      : chunk_(chunk), vertices_(vertices), viewport_(viewport), width_(width), height_(height) {}

  void run() {
    chunk_.clippedVertices.clear();
    chunk_.primitives.clear();
    bands_.clear();
    for (uint32_t i = chunk_.begin; i < chunk_.end; ++i)
      if (draw_.type == D3DPT_LINELIST)
        addLine(vertexIndex(i * 2), vertexIndex(i * 2 + 1), vertexIndex(i * 2));
      else
        addTriangle(i);
    sortIntoBands();
  }

 private:
  struct Bands {
    uint16_t first, last;
  };
  static constexpr uint32_t beyond = UINT32_MAX;  // an index outside the range

  /// Place of the draw's index number `position` within the vertex range, or `beyond`.
  uint32_t vertexIndex(uint32_t position) const {
    const uint32_t index = indices_ ? indices_[position] : position;
    return index < draw_.vertexCount ? index : beyond;
  }

  void addTriangle(uint32_t number) {
    const bool strip = draw_.type == D3DPT_TRIANGLESTRIP;
    const uint32_t first = strip ? number : number * 3;
    const uint32_t a = vertexIndex(first);
    uint32_t b = vertexIndex(first + 1), c = vertexIndex(first + 2);
    if (strip && number % 2 == 1) std::swap(b, c);
    if (a == beyond || b == beyond || c == beyond) return;
    const uint8_t *codes = vertices_.outcodes, any = codes[a] | codes[b] | codes[c];
    if (any & invalid || codes[a] & codes[b] & codes[c] & outsideBits) return;
    if (draw_.wireframe) {
      addLine(a, b, a);
      addLine(b, c, a);
      addLine(c, a, a);
    } else if (any & clipBits) {
      addClippedTriangle(a, b, c);
    } else {
      addScreenTriangle(a, b, c, a);
    }
  }

  bool isCulled(int64_t area) const { return area == 0 || (draw_.cull == D3DCULL_CCW && area < 0); }

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
    for (const Bands& bands : bands_)
      for (uint32_t band = bands.first; band <= bands.last; ++band) ++starts[band + 2];
    for (uint32_t band = 2; band < starts.size(); ++band) starts[band] += starts[band - 1];
    chunk_.order.resize(starts.back());
    for (uint32_t i = 0; i < bands_.size(); ++i)
      for (uint32_t band = bands_[i].first; band <= bands_[i].last; ++band)
        chunk_.order[starts[band + 1]++] = i;
    starts.pop_back();
  }

  Chunk& chunk_;
  const Draw& draw_ = *chunk_.draw;
  const uint16_t* indices_ = draw_.indices ? draw_.indices->indices.data() : nullptr;
  ScreenVertices vertices_;
  const Viewport& viewport_;
  uint32_t width_, height_;
  std::vector<Bands> bands_;
};

/// Turns three values at the corners of a triangle into a gradient that starts at the first corner.
class TriangleGradients {
 public:
  TriangleGradients(const ScreenVertex& a, const ScreenVertex& b, const ScreenVertex& c)
      : abX_(b.x - a.x),
        abY_(b.y - a.y),
        acX_(c.x - a.x),
        acY_(c.y - a.y),
        scale_(256 / (abX_ * acY_ - acX_ * abY_)) {}

  Gradient of(double a, double b, double c) const {
    const double ab = b - a, ac = c - a;
    return {a, (ab * acY_ - ac * abY_) * scale_, (ac * abX_ - ab * acX_) * scale_};
  }

 private:
  double abX_, abY_, acX_, acY_, scale_;
};

/// The same for the two ends of a line: values change along the axis on which it is longer.
class LineGradients {
 public:
  LineGradients(const ScreenVertex& a, const ScreenVertex& b, bool alongX)
      : alongX_(alongX), scale_(256.0 / (alongX ? b.x - a.x : b.y - a.y)) {}

  Gradient of(double a, double b, double) const {
    const double change = (b - a) * scale_;
    return alongX_ ? Gradient{a, change, 0} : Gradient{a, 0, change};
  }

 private:
  bool alongX_;
  double scale_;
};

bool haveOneColor(const ScreenVertex& a, const ScreenVertex& b, const ScreenVertex& c) {
  return std::ranges::equal(a.color, b.color) && std::ranges::equal(a.color, c.color);
}

/// Corners of one colour that comes from bytes make a flat primitive: there is nothing to interpolate. Light
/// leaves colours between two bytes, which interpolation might round either way.
template <class Gradients>
Attributes attributesOf(const Draw& draw, const Gradients& gradients, const ScreenVertex& a,
                        const ScreenVertex& b, const ScreenVertex& c, const ScreenVertex& flat) {
  Attributes result;
  result.x = a.x / 256.0;
  result.y = a.y / 256.0;
  result.depth = gradients.of(a.z, b.z, c.z);
  result.rhw = gradients.of(a.rhw, b.rhw, c.rhw);
  const double ra = a.rhw, rb = b.rhw, rc = c.rhw;
  if (draw.pixel.textured) {
    result.u = gradients.of(a.u * ra, b.u * rb, c.u * rc);
    result.v = gradients.of(a.v * ra, b.v * rb, c.v * rc);
  }
  if (draw.pixel.diffuse) {
    result.flat = draw.flat || (!draw.lighting.enabled && haveOneColor(a, b, c));
    if (result.flat)
      result.flatColor = packColor(draw.flat ? flat.color : a.color);
    else
      for (uint32_t i = 0; i < 4; ++i)
        result.color[i] = gradients.of(a.color[i] * ra, b.color[i] * rb, c.color[i] * rc);
  }
  return result;
}

/// Pixels of a row that lie inside all three edges, within `columns`; empty when last < first.
PixelRange insideOf(const int64_t (&values)[3], const Edge (&edges)[3], PixelRange columns) {
  int64_t first = 0, last = columns.last - columns.first;
  for (uint32_t i = 0; i < 3; ++i) {
    const int64_t value = values[i], step = edges[i].perX;
    if (step > 0 && value < 0) first = std::max(first, (-value + step - 1) / step);
    if (step < 0) last = value < 0 ? -1 : std::min(last, value / -step);
    if (step == 0 && value < 0) last = -1;
  }
  return {columns.first + static_cast<int32_t>(std::min<int64_t>(first, INT32_MAX / 2)),
          columns.first + static_cast<int32_t>(last)};
}

/// The same by walking from pixel to pixel, which is faster for a few.
PixelRange walkInside(const int64_t (&values)[3], const Edge (&edges)[3], PixelRange columns) {
  int64_t a = values[0], b = values[1], c = values[2];
  const auto step = [&] {
    a += edges[0].perX;
    b += edges[1].perX;
    c += edges[2].perX;
  };
  int32_t first = columns.first;
  for (; first <= columns.last && (a | b | c) < 0; ++first) step();
  int32_t last = first;
  for (; last <= columns.last && (a | b | c) >= 0; ++last) step();
  return {first, last - 1};
}

void drawTriangle(const Draw& draw, const ScreenVertex& a, const ScreenVertex& b, const ScreenVertex& c,
                  const ScreenVertex& flat, PixelRange band, Surface& surface) {
  PixelRange rows = pixelsBetween(std::min({a.y, b.y, c.y}), std::max({a.y, b.y, c.y}), surface.height);
  const PixelRange columns =
      pixelsBetween(std::min({a.x, b.x, c.x}), std::max({a.x, b.x, c.x}), surface.width);
  rows = {std::max(rows.first, band.first), std::min(rows.last, band.last)};
  const Edge edges[] = {edgeBetween(a, b), edgeBetween(b, c), edgeBetween(c, a)};
  int64_t values[3];
  for (uint32_t i = 0; i < 3; ++i) {
    values[i] =
        edges[i].atOrigin + int64_t{edges[i].perX} * columns.first + int64_t{edges[i].perY} * rows.first;
  }
  const Attributes attributes = attributesOf(draw, TriangleGradients(a, b, c), a, b, c, flat);
  const bool narrow = columns.last - columns.first < 16;
  for (int32_t y = rows.first; y <= rows.last; ++y) {
    const PixelRange inside = narrow ? walkInside(values, edges, columns) : insideOf(values, edges, columns);
    if (inside.first <= inside.last) drawSpan(draw.pixel, attributes, surface, y, inside.first, inside.last);
    for (uint32_t i = 0; i < 3; ++i) values[i] += edges[i].perY;
  }
}

/// The steps of a line along x in which it can lie within the band. Computed steps are off by less than one.
PixelRange stepsWithin(PixelRange band, PixelRange steps, double from, double start, double slope) {
  if (slope == 0 || steps.last < steps.first) return steps;
  const auto stepAt = [&](double row) { return (from + (row * 256 - start) / slope) / 256; };
  const double top = stepAt(band.first - 0.5), bottom = stepAt(band.last + 0.5);
  const double first = std::min(top, bottom) - 1, last = std::max(top, bottom) + 1;
  return {static_cast<int32_t>(std::clamp(first, double(steps.first), steps.last + 1.0)),
          static_cast<int32_t>(std::clamp(last, steps.first - 1.0, double(steps.last)))};
}

/// std::floor as a number of pixels, without a call into the library for each.
int32_t wholePixels(double position) {
  const auto truncated = static_cast<int32_t>(position);
  return truncated - (truncated > position ? 1 : 0);
}

/// Draws one pixel for each column (or row, when the line is steep) whose centre lies between the ends.
void drawLine(const Draw& draw, const ScreenVertex& first, const ScreenVertex& second,
              const ScreenVertex& flat, PixelRange band, Surface& surface) {
  const bool alongX = std::abs(second.x - first.x) > std::abs(second.y - first.y);
  const bool forward = alongX ? first.x <= second.x : first.y <= second.y;
  const ScreenVertex &a = forward ? first : second, &b = forward ? second : first;
  const int32_t from = alongX ? a.x : a.y, to = alongX ? b.x : b.y;
  if (from == to) return;
  const double slope = alongX ? double(b.y - a.y) / (to - from) : double(b.x - a.x) / (to - from);
  const double start = alongX ? a.y : a.x;
  PixelRange steps = pixelsBetween(from, to, alongX ? surface.width : surface.height);
  if (alongX)
    steps = stepsWithin(band, steps, from, start, slope);
  else
    steps = {std::max(steps.first, band.first), std::min(steps.last, band.last)};
  if (steps.last < steps.first) return;
  const Attributes attributes = attributesOf(draw, LineGradients(a, b, alongX), a, b, b, flat);
  for (int32_t step = steps.first; step <= steps.last; ++step) {
    const int32_t across = wholePixels((start + slope * (step * 256.0 - from)) / 256 + 0.5);
    const int32_t x = alongX ? step : across, y = alongX ? across : step;
    if (x < 0 || x >= static_cast<int32_t>(surface.width) || y < band.first || y > band.last) continue;
    drawPixel(draw.pixel, attributes, surface, x, y);
  }
}

}  // namespace

void assemble(Chunk& chunk, const ScreenVertices& vertices, const Viewport& viewport, uint32_t width,
              uint32_t height) {
  Assembler(chunk, vertices, viewport, width, height).run();
}

void rasterBand(const Chunk& chunk, const ScreenVertices& vertices, uint32_t band, Surface& surface) {
  const Draw& draw = *chunk.draw;
  const bool lines = draw.wireframe || draw.type == D3DPT_LINELIST;
  const PixelRange rows{static_cast<int32_t>(band * bandRows),
                        static_cast<int32_t>(std::min((band + 1) * bandRows, surface.height)) - 1};
  for (uint32_t i = chunk.firstOfBand[band]; i < chunk.firstOfBand[band + 1]; ++i) {
    const Primitive& p = chunk.primitives[chunk.order[i]];
    const ScreenVertex &a = chunk.vertex(vertices, p.a), &b = chunk.vertex(vertices, p.b),
                       &flat = chunk.vertex(vertices, p.flat);
    if (lines)
      drawLine(draw, a, b, flat, rows, surface);
    else
      drawTriangle(draw, a, b, chunk.vertex(vertices, p.c), flat, rows, surface);
  }
}

}  // namespace facet
