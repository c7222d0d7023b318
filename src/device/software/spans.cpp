#include "device/software/spans.h"

#include <algorithm>
#include <bit>

// A pixel's way, in Direct3D's order: depth, texture, combination with the vertex colour, alpha test,
// blending. Values are interpolated in double precision from row to row and in single precision within a
// block.

namespace facet {
namespace {

constexpr uint32_t opaque = 0xFF000000;

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

/// Clears the lanes of hidden pixels; false when none is left.
bool testDepth(Block& block, const float* stored) {
  int32_t any = 0;
  for (uint32_t i = 0; i < laneCount; ++i) {
    block.lanes[i] &= -static_cast<int32_t>(block.depth[i] < stored[i]);
    any |= block.lanes[i];
  }
  return any != 0;
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
  return static_cast<uint32_t>(
      static_cast<int32_t>(cut(channel, 0, 1) * 255 + 0.5f));  // NOLINT: what follows is truncation
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

/// value / 255, rounded, for values up to 255 * 255. No step passes 16 bits, of which a processor takes twice
/// as many at once as of 32.
uint16_t by255(uint16_t value) {
  const auto rounded = static_cast<uint16_t>(value + 128);
  return static_cast<uint16_t>(rounded + (rounded >> 8)) >> 8;
}

/// Texture times vertex colour, with the texture's alpha.
Colors modulate(const Colors& texels, const Colors& diffuse) {
  using Channels = std::array<uint8_t, sizeof(Colors)>;
  const auto first = std::bit_cast<Channels>(texels), second = std::bit_cast<Channels>(diffuse);
  Channels products;
  for (size_t i = 0; i < products.size(); ++i)
    products[i] = static_cast<uint8_t>(by255(static_cast<uint16_t>(first[i] * second[i])));
  auto result = std::bit_cast<Colors>(products);
  for (uint32_t i = 0; i < laneCount; ++i) result[i] = (result[i] & ~opaque) | (texels[i] & opaque);
  return result;
}

Colors colorsOf(const PixelState& state, const Attributes& attributes, const Row& row, double offset,
                Block& block) {
  interpolate(row.rhw + attributes.rhw.perX * offset, attributes.rhw.perX, block.w);
  for (float& w : block.w) w = 1 / w;
  if (state.textured) sample(state, attributes, row, offset, block);
  if (state.diffuse) interpolateColor(attributes, row, offset, block);
  if (!state.textured) return block.diffuse;
  return state.diffuse ? modulate(block.texels, block.diffuse) : block.texels;
}

void testAlpha(const PixelState& state, const Colors& colors, Block& block) {
  for (uint32_t i = 0; i < laneCount; ++i)
    if (colors[i] >> 24 <= state.alphaRef) block.lanes[i] = 0;
}

uint32_t factor(D3DBLEND how, uint32_t sourceAlpha) {
  if (how == D3DBLEND_ONE) return 255;
  if (how == D3DBLEND_SRCALPHA) return sourceAlpha;
  return how == D3DBLEND_INVSRCALPHA ? 255 - sourceAlpha : 0;
}

/// `source` blended over `dest`; alpha comes out opaque.
uint32_t blend(const PixelState& state, uint32_t source, uint32_t dest) {
  const uint32_t sourceFactor = factor(state.sourceBlend, source >> 24);
  const uint32_t destFactor = factor(state.destBlend, source >> 24);
  uint32_t result = opaque;
  for (uint32_t bit = 0; bit < 24; bit += 8) {
    const auto part = [bit](uint32_t color, uint32_t share) {
      return uint32_t{by255(static_cast<uint16_t>((color >> bit & 255) * share))};
    };
    result |= std::min(part(source, sourceFactor) + part(dest, destFactor), 255u) << bit;
  }
  return result;
}

uint32_t colorOver(const PixelState& state, uint32_t color, uint32_t stored) {
  return state.blend ? blend(state, color, stored) : color | opaque;
}

void storeColors(const PixelState& state, const Colors& colors, const Block& block, uint32_t* stored) {
  for (uint32_t i = 0; i < laneCount; ++i)
    if (block.lanes[i]) stored[i] = colorOver(state, colors[i], stored[i]);
}

/// Not inlined into the loop over a span's blocks: there GCC unrolls the loops over lanes before it could
/// turn them into steps for several lanes at once.
[[gnu::noinline]] void drawBlock(const PixelState& state, const Attributes& attributes, const Row& row,
                                 double offset, float* depths, uint32_t* colors, int32_t count) {
  Block block;
  for (uint32_t i = 0; i < laneCount; ++i)
    block.lanes[i] = -static_cast<int32_t>(static_cast<int32_t>(i) < count);
  interpolate(row.depth + attributes.depth.perX * offset, attributes.depth.perX, block.depth);
  if (!testDepth(block, depths)) return;
  const Colors result = colorsOf(state, attributes, row, offset, block);
  if (state.alphaTest) testAlpha(state, result, block);
  storeDepth(block, depths);
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
  if (state.textured) {
    row.u = at(attributes.u);
    row.v = at(attributes.v);
  }
  if (state.diffuse && !attributes.flat) std::ranges::transform(attributes.color, row.color, at);
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
  if (state.textured || !attributes.flat) {
    drawSpan(state, attributes, surface, y, x, x);
    return;
  }
  const auto depth = static_cast<float>(valueAt(attributes.depth, x - attributes.x, y - attributes.y));
  float& storedDepth = surface.depthRow(static_cast<uint32_t>(y))[x];
  uint32_t& stored = surface.colorRow(static_cast<uint32_t>(y))[x];
  if (!(depth < storedDepth)) return;
  if (state.alphaTest && attributes.flatColor >> 24 <= state.alphaRef) return;
  storedDepth = depth;
  stored = colorOver(state, attributes.flatColor, stored);
}

uint32_t packColor(const float* color) {
  return byteOf(color[3]) << 24 | byteOf(color[0]) << 16 | byteOf(color[1]) << 8 | byteOf(color[2]);
}

}  // namespace facet
