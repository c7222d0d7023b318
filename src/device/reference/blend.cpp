#include "device/reference/blend.h"

#include <algorithm>
#include <bit>

namespace facet {
namespace {

constexpr uint32_t opaque = 0xFF000000;

/// value / 255, rounded, for values up to 255 * 255. No step passes 16 bits, of which a processor takes twice
/// as many at once as of 32.
uint16_t by255(uint16_t value) {
  const auto rounded = static_cast<uint16_t>(value + 128);
  return static_cast<uint16_t>(rounded + (rounded >> 8)) >> 8;
}

/// The product of each channel, doubled when `shift` is 1.
Colors modulate(const Colors& a, const Colors& b, uint32_t shift) {
  using Channels = std::array<uint8_t, sizeof(Colors)>;
  const auto first = std::bit_cast<Channels>(a), second = std::bit_cast<Channels>(b);
  Channels result;
  for (size_t i = 0; i < result.size(); ++i) {
    const uint16_t product = by255(static_cast<uint16_t>(first[i] * second[i]));
    result[i] = static_cast<uint8_t>(std::min(product << shift, 255));
  }
  return std::bit_cast<Colors>(result);
}

Colors apply(const Combine& how, const Colors& texels, const Colors& diffuse) {
  const Colors &first = how.textureFirst ? texels : diffuse, &second = how.textureSecond ? texels : diffuse;
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

Colors combine(const PixelState& state, const Colors& texels, const Colors& diffuse) {
  Colors result = apply(state.color, texels, diffuse);
  const Colors alphas = apply(state.alpha, texels, diffuse);
  for (uint32_t i = 0; i < laneCount; ++i) result[i] = (result[i] & ~opaque) | (alphas[i] & opaque);
  return result;
}

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

}  // namespace facet
