#include "device/reference/clip.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace facet {
namespace {

/// Farthest place from the middle of the picture in pixels: positions then fit 24 bits with their fractions.
constexpr float guardPixels = 16384;

using Plane = std::array<float, 4>;

std::array<Plane, 6> planesOf(const Viewport& viewport) {
  return {{{0, 0, 1, 0},
           {0, 0, -1, 1},
           {1, 0, 0, viewport.guardX},
           {-1, 0, 0, viewport.guardX},
           {0, 1, 0, viewport.guardY},
           {0, -1, 0, viewport.guardY}}};
}

/// At or above 0 on the inner side.
float distance(const Plane& plane, const ClipVertex& vertex) {
  return plane[0] * vertex.x + plane[1] * vertex.y + plane[2] * vertex.z + plane[3] * vertex.w;
}

ClipVertex between(const ClipVertex& a, const ClipVertex& b, float t) {
  const auto mix = [t](float from, float to) { return from + (to - from) * t; };
  return {mix(a.x, b.x),
          mix(a.y, b.y),
          mix(a.z, b.z),
          mix(a.w, b.w),
          mix(a.u, b.u),
          mix(a.v, b.v),
          {mix(a.color[0], b.color[0]), mix(a.color[1], b.color[1]), mix(a.color[2], b.color[2]),
           mix(a.color[3], b.color[3])}};
}

/// The point on the plane between an inner and an outer vertex. It is always computed from the inner one, so
/// that triangles with a common edge are cut at the same point.
ClipVertex cut(const ClipVertex& inner, const ClipVertex& outer, float innerDistance, float outerDistance) {
  return between(inner, outer, innerDistance / (innerDistance - outerDistance));
}

/// A place in 1/256 of a pixel; what is no number or too far lands on the border of what fits.
int32_t fixedPoint(float pixels) {
  constexpr float limit = 2 * guardPixels;
  const float inside = pixels > -limit ? (pixels < limit ? pixels : limit) : -limit;
  return static_cast<int32_t>(inside * 256 + (inside < 0 ? -0.5f : 0.5f));
}

float finiteOr0(float value) {
  return std::isfinite(value) ? value : 0;
}

}  // namespace

Viewport viewportOf(uint32_t width, uint32_t height) {
  const float halfWidth = static_cast<float>(width) / 2, halfHeight = static_cast<float>(height) / 2;
  return {halfWidth, halfHeight, guardPixels / halfWidth, guardPixels / halfHeight};
}

ScreenVertex toScreen(const ClipVertex& vertex, const Viewport& viewport) {
  const float rhw = finiteOr0(1 / vertex.w);
  return {fixedPoint((vertex.x * rhw + 1) * viewport.halfWidth),
          fixedPoint((1 - vertex.y * rhw) * viewport.halfHeight),
          finiteOr0(vertex.z * rhw),
          rhw,
          vertex.u,
          vertex.v,
          {vertex.color[0], vertex.color[1], vertex.color[2], vertex.color[3]}};
}

size_t clipTriangle(std::span<const ClipVertex, 3> triangle, const Viewport& viewport,
                    std::span<ClipVertex, maximumCorners> corners) {
  std::array<ClipVertex, maximumCorners> from;
  std::ranges::copy(triangle, corners.begin());
  size_t count = 3;
  for (const Plane& plane : planesOf(viewport)) {
    std::copy_n(corners.begin(), count, from.begin());
    size_t kept = 0;
    for (size_t i = 0; i < count; ++i) {
      const ClipVertex &a = from[i], &b = from[(i + 1) % count];
      const float da = distance(plane, a), db = distance(plane, b);
      if (da >= 0) corners[kept++] = a;
      if (da >= 0 && db < 0) corners[kept++] = cut(a, b, da, db);
      if (da < 0 && db >= 0) corners[kept++] = cut(b, a, db, da);
      if (kept + 2 > maximumCorners) break;
    }
    count = kept;
    if (count < 3) return 0;
  }
  return count;
}

bool clipLine(ClipVertex& first, ClipVertex& second, const Viewport& viewport) {
  for (const Plane& plane : planesOf(viewport)) {
    const float d1 = distance(plane, first), d2 = distance(plane, second);
    if (!(d1 >= 0) && !(d2 >= 0)) return false;
    if (d1 < 0) {
      first = cut(second, first, d2, d1);
    } else if (d2 < 0) {
      second = cut(first, second, d1, d2);
    }
  }
  return true;
}

}  // namespace facet
