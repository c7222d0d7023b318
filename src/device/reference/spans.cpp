#include "device/reference/spans.h"

#include <algorithm>
#include <cstring>

#include "device/reference/blend.h"
#include "device/reference/sampler.h"

namespace facet {
namespace {

/// The gradients of one row, as values at its first pixel; those that the state uses.
struct Row {
  double depth, rhw, u, v, color[4];
};

/// A run of up to laneCount pixels; `lanes` is -1 where a pixel is still to be drawn.
struct Block {
  int32_t lanes[laneCount];
  float depth[laneCount];
  float w[laneCount];
  Colors texels, diffuse;
};

void interpolate(double start, double step, float* values) {
  const auto first = static_cast<float>(start), change = static_cast<float>(step);
  for (uint32_t i = 0; i < laneCount; ++i) values[i] = first + change * static_cast<float>(i);
}

template <class Compare>
bool compareDepths(Block& block, const float* stored, Compare compare) {
  int32_t any = 0;
  for (uint32_t i = 0; i < laneCount; ++i) {
    block.lanes[i] &= -static_cast<int32_t>(compare(block.depth[i], stored[i]));
    any |= block.lanes[i];
  }
  return any != 0;
}

/// Clears the lanes of hidden pixels; false when none is left.
bool testDepth(D3DCMPFUNC function, Block& block, const float* stored) {
  switch (function) {
    case D3DCMP_LESS:
      return compareDepths(block, stored, [](float a, float b) { return a < b; });
    case D3DCMP_LESSEQUAL:
      return compareDepths(block, stored, [](float a, float b) { return a <= b; });
    default:
      return compareDepths(block, stored, [=](float a, float b) { return passes(function, a, b); });
  }
}

void storeDepth(const Block& block, float* stored) {
  for (uint32_t i = 0; i < laneCount; ++i) stored[i] = block.lanes[i] ? block.depth[i] : stored[i];
}

/// How a texture coordinate changes along one screen axis, from the gradients of u / w and 1 / w.
void derive(const Gradient& coordinate, const Gradient& rhw, bool alongX, const float* values, const float* w,
            float* result) {
  const auto change = static_cast<float>(alongX ? coordinate.perX : coordinate.perY);
  const auto rhwChange = static_cast<float>(alongX ? rhw.perX : rhw.perY);
  for (uint32_t i = 0; i < laneCount; ++i) result[i] = (change - values[i] * rhwChange) * w[i];
}

void sample(const PixelState& state, const Attributes& attributes, const Row& row, double offset,
            Block& block) {
  TextureCoordinates at;
  interpolate(row.u + attributes.u.perX * offset, attributes.u.perX, at.u);
  interpolate(row.v + attributes.v.perX * offset, attributes.v.perX, at.v);
  for (uint32_t i = 0; i < laneCount; ++i) {
    at.u[i] *= block.w[i];
    at.v[i] *= block.w[i];
  }
  if (state.sampler.needsLevel) {
    derive(attributes.u, attributes.rhw, true, at.u, block.w, at.dudx);
    derive(attributes.v, attributes.rhw, true, at.v, block.w, at.dvdx);
    derive(attributes.u, attributes.rhw, false, at.u, block.w, at.dudy);
    derive(attributes.v, attributes.rhw, false, at.v, block.w, at.dvdy);
  }
  block.texels = {};
  sampleTexture(state.sampler, at, block.lanes, block.texels);
}

/// A channel 0..1 as 0..255.
uint32_t byteOf(float channel) {
  return static_cast<uint32_t>(static_cast<int32_t>(cut(channel, 0, 1) * 255 + 0.5f));
}

void interpolateColor(const Attributes& attributes, const Row& row, double offset, Block& block) {
  if (attributes.flat) {
    block.diffuse.fill(attributes.flatColor);
    return;
  }
  float channels[4][laneCount];
  for (uint32_t channel = 0; channel < 4; ++channel) {
    const Gradient& gradient = attributes.color[channel];
    interpolate(row.color[channel] + gradient.perX * offset, gradient.perX, channels[channel]);
  }
  const auto& [red, green, blue, alpha] = channels;
  for (uint32_t i = 0; i < laneCount; ++i) {
    const float w = block.w[i];
    block.diffuse[i] = byteOf(alpha[i] * w) << 24 | byteOf(red[i] * w) << 16 | byteOf(green[i] * w) << 8 |
                       byteOf(blue[i] * w);
  }
}

bool isPlainTexture(const PixelState& state) {
  return state.color.op == D3DTOP_SELECTARG1 && state.color.textureFirst &&
         state.alpha.op == D3DTOP_SELECTARG1 && state.alpha.textureFirst;
}

Colors colorsOf(const PixelState& state, const Attributes& attributes, const Row& row, double offset,
                Block& block) {
  interpolate(row.rhw + attributes.rhw.perX * offset, attributes.rhw.perX, block.w);
  for (float& w : block.w) w = 1 / w;
  if (state.usesTexture) sample(state, attributes, row, offset, block);
  if (state.usesDiffuse) interpolateColor(attributes, row, offset, block);
  if (!state.usesTexture) return block.diffuse;
  return isPlainTexture(state) ? block.texels : combine(state, block.texels, block.diffuse);
}

void testAlpha(const PixelState& state, const Colors& colors, Block& block) {
  for (uint32_t i = 0; i < laneCount; ++i) {
    if (block.lanes[i] && !passes(state.alphaFunc, colors[i] >> 24, state.alphaRef)) block.lanes[i] = 0;
  }
}

uint32_t colorOver(const PixelState& state, uint32_t color, uint32_t stored) {
  return state.blend ? blend(state, color, stored) : color | 0xFF000000;
}

void storeColors(const PixelState& state, const Colors& colors, const Block& block, uint32_t* stored) {
  for (uint32_t i = 0; i < laneCount; ++i) {
    if (block.lanes[i]) stored[i] = colorOver(state, colors[i], stored[i]);
  }
}

/// Not inlined into the loop over a span's blocks: there GCC unrolls the loops over lanes before it could
/// turn them into steps for several lanes at once.
[[gnu::noinline]] void drawBlock(const PixelState& state, const Attributes& attributes, const Row& row,
                                 double offset, float* depths, uint32_t* colors, int32_t count) {
  Block block;
  for (uint32_t i = 0; i < laneCount; ++i)
    block.lanes[i] = -static_cast<int32_t>(static_cast<int32_t>(i) < count);
  interpolate(row.depth + attributes.depth.perX * offset, attributes.depth.perX, block.depth);
  if (state.depthTest && !testDepth(state.depthFunc, block, depths)) return;
  const Colors result = colorsOf(state, attributes, row, offset, block);
  if (state.alphaTest) testAlpha(state, result, block);
  if (state.depthWrite) storeDepth(block, depths);
  storeColors(state, result, block, colors);
}

double valueAt(const Gradient& gradient, double dx, double dy) {
  return gradient.start + gradient.perX * dx + gradient.perY * dy;
}

Row rowAt(const PixelState& state, const Attributes& attributes, double x, double y) {
  const auto at = [dx = x - attributes.x, dy = y - attributes.y](const Gradient& gradient) {
    return valueAt(gradient, dx, dy);
  };
  Row row;
  row.depth = at(attributes.depth);
  row.rhw = at(attributes.rhw);
  if (state.usesTexture) {
    row.u = at(attributes.u);
    row.v = at(attributes.v);
  }
  if (state.usesDiffuse && !attributes.flat) std::ranges::transform(attributes.color, row.color, at);
  return row;
}

}  // namespace

void drawSpan(const PixelState& state, const Attributes& attributes, Surface& surface, int32_t y,
              int32_t first, int32_t last) {
  const Row row = rowAt(state, attributes, first, y);
  float* depths = surface.depthRow(static_cast<uint32_t>(y));
  uint32_t* colors = surface.colorRow(static_cast<uint32_t>(y));
  for (int32_t x = first; x <= last; x += static_cast<int32_t>(laneCount)) {
    const int32_t count = std::min(last - x + 1, static_cast<int32_t>(laneCount));
    drawBlock(state, attributes, row, x - first, depths + x, colors + x, count);
  }
}

void drawPixel(const PixelState& state, const Attributes& attributes, Surface& surface, int32_t x,
               int32_t y) {
  if (state.usesTexture || !attributes.flat) {
    drawSpan(state, attributes, surface, y, x, x);
    return;
  }
  const auto depth = static_cast<float>(valueAt(attributes.depth, x - attributes.x, y - attributes.y));
  float& storedDepth = surface.depthRow(static_cast<uint32_t>(y))[x];
  uint32_t& stored = surface.colorRow(static_cast<uint32_t>(y))[x];
  if (state.depthTest && !passes(state.depthFunc, depth, storedDepth)) return;
  if (state.alphaTest && !passes(state.alphaFunc, attributes.flatColor >> 24, state.alphaRef)) return;
  if (state.depthWrite) storedDepth = depth;
  stored = colorOver(state, attributes.flatColor, stored);
}

uint32_t packColor(const float* color) {
  return byteOf(color[3]) << 24 | byteOf(color[0]) << 16 | byteOf(color[1]) << 8 | byteOf(color[2]);
}

}  // namespace facet
