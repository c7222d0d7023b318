#include "device/reference/transform_light.h"

#include <algorithm>
#include <cmath>
#include <cstring>

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

const std::byte* vertexAt(const Draw& draw, uint32_t index) {
  return draw.vertices->data() + draw.vertexOffset + uint64_t{index} * draw.shape.stride;
}

template <class T>
T read(const std::byte* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

D3DCOLORVALUE vertexColor(const Draw& draw, const std::byte* vertex, const D3DCOLORVALUE& otherwise) {
  if (draw.shape.color == VertexShape::none) return otherwise;
  const auto color = read<uint32_t>(vertex + draw.shape.color);
  const auto channel = [color](int shift) { return static_cast<float>(color >> shift & 255) / 255; };
  return {channel(16), channel(8), channel(0), channel(24)};
}

void shade(const Draw& draw, const std::byte* vertex, float* color) {
  const Lighting& light = draw.lighting;
  if (!light.enabled) {
    const D3DCOLORVALUE plain = vertexColor(draw, vertex, {1, 1, 1, 1});
    std::ranges::copy(std::array{plain.r, plain.g, plain.b, plain.a}, color);
    return;
  }
  const D3DCOLORVALUE diffuse = vertexColor(draw, vertex, light.materialDiffuse);
  float level = 0;
  if (light.directional && draw.shape.normal != VertexShape::none) {
    const auto n = read<D3DVECTOR>(vertex + draw.shape.normal);
    const auto& m = light.normalToWorld.m;
    const D3DVECTOR w{n.x * m[0][0] + n.y * m[1][0] + n.z * m[2][0],
                      n.x * m[0][1] + n.y * m[1][1] + n.z * m[2][1],
                      n.x * m[0][2] + n.y * m[1][2] + n.z * m[2][2]};
    const float facing = -(w.x * light.direction.x + w.y * light.direction.y + w.z * light.direction.z);
    level = facing > 0 ? facing : 0;
  }
  color[0] = cut(light.base.r + diffuse.r * light.lightDiffuse.r * level, 0, 1);
  color[1] = cut(light.base.g + diffuse.g * light.lightDiffuse.g * level, 0, 1);
  color[2] = cut(light.base.b + diffuse.b * light.lightDiffuse.b * level, 0, 1);
  color[3] = cut(diffuse.a, 0, 1);
}

void loadPositions(const Draw& draw, uint32_t begin, uint32_t count, Block& block) {
  const std::byte* vertex = vertexAt(draw, begin);
  for (uint32_t i = 0; i < count; ++i, vertex += draw.shape.stride) {
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
  const std::byte* vertex = vertexAt(draw, begin);
  for (uint32_t i = 0; i < count; ++i, vertex += draw.shape.stride) {
    ScreenVertex& to = screen[begin + i];
    to.x = block.fixedX[i];
    to.y = block.fixedY[i];
    to.z = block.sz[i];
    to.rhw = block.rhw[i];
    if (draw.pixel.usesTexture) {
      to.u = read<float>(vertex + draw.shape.uv);
      to.v = read<float>(vertex + draw.shape.uv + 4);
    }
    if (draw.pixel.usesDiffuse) shade(draw, vertex, to.color);
    outcodes[begin + i] = static_cast<uint8_t>(block.code[i]);
  }
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
  const std::byte* vertex = vertexAt(draw, index);
  const auto p = read<D3DVECTOR>(vertex);
  const auto& m = draw.toClip.m;
  ClipVertex result{};
  result.x = p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0] + m[3][0];
  result.y = p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1] + m[3][1];
  result.z = p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2] + m[3][2];
  result.w = p.x * m[0][3] + p.y * m[1][3] + p.z * m[2][3] + m[3][3];
  if (draw.pixel.usesTexture) {
    result.u = read<float>(vertex + draw.shape.uv);
    result.v = read<float>(vertex + draw.shape.uv + 4);
  }
  if (draw.pixel.usesDiffuse) shade(draw, vertex, result.color);
  return result;
}

}  // namespace facet
