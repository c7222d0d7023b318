#include "device/software/raster.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace facet {
namespace {

/// Vertices that are carried through one step after the other, so that each step is a loop over plain arrays.
constexpr uint32_t blockSize = 64;

struct Block {
  float x[blockSize], y[blockSize], z[blockSize];
  float cx[blockSize], cy[blockSize], cz[blockSize], cw[blockSize];
  float rhw[blockSize], sx[blockSize], sy[blockSize], sz[blockSize];
  int32_t fixedX[blockSize], fixedY[blockSize], code[blockSize];
};

template <class T>
T read(const std::byte* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

/// The vertex's own colour, or else `otherwise`.
D3DCOLORVALUE colorOf(const VertexShape& shape, const std::byte* vertex, const D3DCOLORVALUE& otherwise) {
  if (shape.color == VertexShape::none) return otherwise;
  const auto color = read<uint32_t>(vertex + shape.color);
  const auto channel = [color](int shift) { return static_cast<float>(color >> shift & 255) / 255; };
  return {channel(16), channel(8), channel(0), channel(24)};
}

/// How directly the vertex faces the light: the cosine of the angle between normal and light, for the
/// normal's length is the model's matter; 0 for one that is turned away.
float facing(const Lighting& light, const VertexShape& shape, const std::byte* vertex) {
  if (shape.normal == VertexShape::none) return 0;
  const auto n = read<D3DVECTOR>(vertex + shape.normal);
  const auto& m = light.normalToWorld.m;
  const D3DVECTOR w{n.x * m[0][0] + n.y * m[1][0] + n.z * m[2][0],
                    n.x * m[0][1] + n.y * m[1][1] + n.z * m[2][1],
                    n.x * m[0][2] + n.y * m[1][2] + n.z * m[2][2]};
  const float cosine = -(w.x * light.direction.x + w.y * light.direction.y + w.z * light.direction.z);
  return cosine > 0 ? cosine : 0;
}

void shade(const Lighting& light, const VertexShape& shape, const std::byte* vertex, float* color) {
  if (!light.enabled) {
    const D3DCOLORVALUE plain = colorOf(shape, vertex, {1, 1, 1, 1});
    std::ranges::copy(std::array{plain.r, plain.g, plain.b, plain.a}, color);
    return;
  }
  const D3DCOLORVALUE diffuse = colorOf(shape, vertex, light.material);
  const float level = facing(light, shape, vertex);
  color[0] = cut(light.ambient.r + diffuse.r * light.light.r * level, 0, 1);
  color[1] = cut(light.ambient.g + diffuse.g * light.light.g * level, 0, 1);
  color[2] = cut(light.ambient.b + diffuse.b * light.light.b * level, 0, 1);
  color[3] = cut(diffuse.a, 0, 1);
}

void loadPositions(const Draw& draw, uint32_t begin, uint32_t count, Block& block) {
  const std::byte* vertex = draw.vertex(begin);
  const uint32_t stride = draw.vertices->shape.stride;
  for (uint32_t i = 0; i < count; ++i, vertex += stride) {
    const auto position = read<D3DVECTOR>(vertex);
    block.x[i] = position.x;
    block.y[i] = position.y;
    block.z[i] = position.z;
  }
  for (uint32_t i = count; i < blockSize; ++i) block.x[i] = block.y[i] = block.z[i] = 0;
}

void transform(const D3DMATRIX& matrix, Block& block) {
  const auto& m = matrix.m;
  for (uint32_t i = 0; i < blockSize; ++i) {
    const float x = block.x[i], y = block.y[i], z = block.z[i];
    block.cx[i] = x * m[0][0] + y * m[1][0] + z * m[2][0] + m[3][0];
    block.cy[i] = x * m[0][1] + y * m[1][1] + z * m[2][1] + m[3][1];
    block.cz[i] = x * m[0][2] + y * m[1][2] + z * m[2][2] + m[3][2];
    block.cw[i] = x * m[0][3] + y * m[1][3] + z * m[2][3] + m[3][3];
  }
}

void classify(const Viewport& viewport, Block& block) {
  for (uint32_t i = 0; i < blockSize; ++i) {
    const float x = block.cx[i], y = block.cy[i], z = block.cz[i], w = block.cw[i];
    const float guardX = viewport.guardX * w, guardY = viewport.guardY * w;
    const float sum = (x + y + z + w) * 0;  // not 0 for what is infinite or no number
    int32_t code = 0;
    code |= z < 0 ? outNear : 0;
    code |= z > w ? outFar : 0;
    code |= x < -w ? outLeft : 0;
    code |= x > w ? outRight : 0;
    code |= y > w ? outTop : 0;
    code |= y < -w ? outBottom : 0;
    code |= x < -guardX || x > guardX || y < -guardY || y > guardY || !(w > 0) ? outGuard : 0;
    code |= sum == 0 ? 0 : invalid;
    block.code[i] = code;
  }
}

void project(const Viewport& viewport, Block& block) {
  for (uint32_t i = 0; i < blockSize; ++i) {
    const float w = block.code[i] & (clipBits | invalid) ? 1.0f : block.cw[i];
    const float rhw = 1 / w;
    block.rhw[i] = rhw;
    block.sz[i] = block.cz[i] * rhw;
    block.sx[i] = (block.cx[i] * rhw + 1) * viewport.halfWidth * 256;
    block.sy[i] = (1 - block.cy[i] * rhw) * viewport.halfHeight * 256;
  }
  constexpr float limit = 1 << 23;  // what a guard lets through, but not what was classified as outside
  for (uint32_t i = 0; i < blockSize; ++i) {
    const float x = cut(block.sx[i], -limit, limit), y = cut(block.sy[i], -limit, limit);
    block.fixedX[i] = static_cast<int32_t>(x + (x < 0 ? -0.5f : 0.5f));
    block.fixedY[i] = static_cast<int32_t>(y + (y < 0 ? -0.5f : 0.5f));
  }
}

void store(const Draw& draw, const Block& block, uint32_t begin, uint32_t count, ScreenVertex* screen,
           uint8_t* outcodes) {
  const std::byte* vertex = draw.vertex(begin);
  const VertexShape shape = draw.vertices->shape;
  for (uint32_t i = 0; i < count; ++i, vertex += shape.stride) {
    ScreenVertex& to = screen[begin + i];
    to.x = block.fixedX[i];
    to.y = block.fixedY[i];
    to.z = block.sz[i];
    to.rhw = block.rhw[i];
    if (draw.pixel.textured) {
      to.u = read<float>(vertex + shape.uv);
      to.v = read<float>(vertex + shape.uv + 4);
    }
    if (draw.pixel.diffuse) shade(draw.lighting, shape, vertex, to.color);
    outcodes[begin + i] = static_cast<uint8_t>(block.code[i]);
  }
}

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
ClipVertex cutBetween(const ClipVertex& inner, const ClipVertex& outer, float innerDistance,
                      float outerDistance) {
  return between(inner, outer, innerDistance / (innerDistance - outerDistance));
}

/// A place in 1/256 of a pixel; what is no number or too far lands on the border of what fits.
int32_t fixedPoint(float pixels) {
  constexpr float limit = 2 * guardPixels;
  const float inside = cut(pixels, -limit, limit);
  return static_cast<int32_t>(inside * 256 + (inside < 0 ? -0.5f : 0.5f));
}

float finiteOr0(float value) {
  return std::isfinite(value) ? value : 0;
}

}  // namespace

void transformVertices(const Draw& draw, const Viewport& viewport, uint32_t begin, uint32_t end,
                       ScreenVertex* screen, uint8_t* outcodes) {
  Block block;
  for (uint32_t first = begin; first < end; first += blockSize) {
    const uint32_t count = std::min(blockSize, end - first);
    loadPositions(draw, first, count, block);
    transform(draw.toClip, block);
    classify(viewport, block);
    project(viewport, block);
    store(draw, block, first, count, screen, outcodes);
  }
}

ClipVertex clipVertexOf(const Draw& draw, uint32_t index) {
  const std::byte* vertex = draw.vertex(index);
  const VertexShape& shape = draw.vertices->shape;
  const auto p = read<D3DVECTOR>(vertex);
  const auto& m = draw.toClip.m;
  ClipVertex result{};
  result.x = p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0] + m[3][0];
  result.y = p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1] + m[3][1];
  result.z = p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2] + m[3][2];
  result.w = p.x * m[0][3] + p.y * m[1][3] + p.z * m[2][3] + m[3][3];
  if (draw.pixel.textured) {
    result.u = read<float>(vertex + shape.uv);
    result.v = read<float>(vertex + shape.uv + 4);
  }
  if (draw.pixel.diffuse) shade(draw.lighting, shape, vertex, result.color);
  return result;
}

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
      if (da >= 0 && db < 0) corners[kept++] = cutBetween(a, b, da, db);
      if (da < 0 && db >= 0) corners[kept++] = cutBetween(b, a, db, da);
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
    if (d1 < 0)
      first = cutBetween(second, first, d2, d1);
    else if (d2 < 0)
      second = cutBetween(first, second, d1, d2);
  }
  return true;
}

}  // namespace facet
