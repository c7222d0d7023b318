#include "device/reference/blend.h"

#include <algorithm>

namespace facet {
namespace {

constexpr uint32_t opaque = 0xFF000000;

/// value / 255, rounded, for values up to 255 * 255.
uint32_t by255(uint32_t value) {
  const uint32_t rounded = value + 128;
  return (rounded + (rounded >> 8)) >> 8;
}

/// The product of each channel, doubled when `shift` is 1.
uint32_t modulate(uint32_t a, uint32_t b, uint32_t shift) {
  uint32_t result = 0;
  for (uint32_t bit = 0; bit < 32; bit += 8) {
    result |= std::min(by255((a >> bit & 255) * (b >> bit & 255)) << shift, 255u) << bit;
  }
  return result;
}

uint32_t apply(const Combine& how, uint32_t texel, uint32_t diffuse) {
  const uint32_t first = how.textureFirst ? texel : diffuse, second = how.textureSecond ? texel : diffuse;
  switch (how.op) {
    case D3DTOP_SELECTARG1:
      return first;
    case D3DTOP_SELECTARG2:
      return second;
    case D3DTOP_MODULATE:
      return modulate(first, second, 0);
    case D3DTOP_MODULATE2X:
      return modulate(first, second, 1);
    default:
      return diffuse;
  }
}

uint32_t factor(D3DBLEND how, uint32_t sourceAlpha) {
  switch (how) {
    case D3DBLEND_ONE:
      return 255;
    case D3DBLEND_SRCALPHA:
      return sourceAlpha;
    case D3DBLEND_INVSRCALPHA:
      return 255 - sourceAlpha;
    default:
      return 0;
  }
}

}  // namespace

uint32_t combine(const PixelState& state, uint32_t texel, uint32_t diffuse) {
  return (apply(state.color, texel, diffuse) & ~opaque) | (apply(state.alpha, texel, diffuse) & opaque);
}

uint32_t blend(const PixelState& state, uint32_t source, uint32_t dest) {
  const uint32_t sourceFactor = factor(state.sourceBlend, source >> 24);
  const uint32_t destFactor = factor(state.destBlend, source >> 24);
  uint32_t result = opaque;
  for (uint32_t bit = 0; bit < 24; bit += 8) {
    const uint32_t sum =
        by255((source >> bit & 255) * sourceFactor) + by255((dest >> bit & 255) * destFactor);
    result |= std::min(sum, 255u) << bit;
  }
  return result;
}

}  // namespace facet
