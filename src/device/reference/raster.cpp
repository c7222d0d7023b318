#include "device/reference/raster.h"

#include <algorithm>
#include <cmath>

#include "device/reference/spans.h"

namespace facet {
namespace {

struct Rows {
  int32_t first, last;
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
  if (draw.pixel.usesTexture) {
    result.u = gradients.of(a.u * ra, b.u * rb, c.u * rc);
    result.v = gradients.of(a.v * ra, b.v * rb, c.v * rc);
  }
  if (draw.pixel.usesDiffuse) {
    result.flat = draw.flat || (!draw.lighting.enabled && haveOneColor(a, b, c));
    if (result.flat) {
      result.flatColor = packColor(draw.flat ? flat.color : a.color);
    } else {
      for (uint32_t i = 0; i < 4; ++i) {
        result.color[i] = gradients.of(a.color[i] * ra, b.color[i] * rb, c.color[i] * rc);
      }
    }
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
  int32_t first = columns.first;
  for (; first <= columns.last && (a | b | c) < 0; ++first) {
    a += edges[0].perX;
    b += edges[1].perX;
    c += edges[2].perX;
  }
  int32_t last = first;
  for (; last <= columns.last && (a | b | c) >= 0; ++last) {
    a += edges[0].perX;
    b += edges[1].perX;
    c += edges[2].perX;
  }
  return {first, last - 1};
}

void drawTriangle(const Draw& draw, const ScreenVertex& a, const ScreenVertex& b, const ScreenVertex& c,
                  const ScreenVertex& flat, Rows band, Surface& surface) {
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
PixelRange stepsWithin(Rows band, PixelRange steps, double from, double start, double slope) {
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
              const ScreenVertex& flat, Rows band, Surface& surface) {
  const bool alongX = std::abs(second.x - first.x) > std::abs(second.y - first.y);
  const bool forward = alongX ? first.x <= second.x : first.y <= second.y;
  const ScreenVertex &a = forward ? first : second, &b = forward ? second : first;
  const int32_t from = alongX ? a.x : a.y, to = alongX ? b.x : b.y;
  if (from == to) return;
  const double slope = alongX ? double(b.y - a.y) / (to - from) : double(b.x - a.x) / (to - from);
  const double start = alongX ? a.y : a.x;
  PixelRange steps = pixelsBetween(from, to, alongX ? surface.width : surface.height);
  if (alongX) {
    steps = stepsWithin(band, steps, from, start, slope);
  } else {
    steps = {std::max(steps.first, band.first), std::min(steps.last, band.last)};
  }
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

void rasterBand(const Chunk& chunk, const ScreenVertices& vertices, uint32_t band, Surface& surface) {
  const Draw& draw = *chunk.draw;
  const bool lines = draw.wireframe || draw.kind == Draw::lineList;
  const auto firstRow = static_cast<int32_t>(band * bandRows);
  const Rows rows{
      firstRow,
      std::min(firstRow + static_cast<int32_t>(bandRows), static_cast<int32_t>(surface.height)) - 1};
  for (uint32_t i = chunk.firstOfBand[band]; i < chunk.firstOfBand[band + 1]; ++i) {
    const Primitive& p = chunk.primitives[chunk.order[i]];
    const ScreenVertex &a = chunk.vertex(vertices, p.a), &b = chunk.vertex(vertices, p.b),
                       &flat = chunk.vertex(vertices, p.flat);
    if (lines) {
      drawLine(draw, a, b, flat, rows, surface);
    } else {
      drawTriangle(draw, a, b, chunk.vertex(vertices, p.c), flat, rows, surface);
    }
  }
}

}  // namespace facet
