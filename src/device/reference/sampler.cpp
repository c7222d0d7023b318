#include "device/reference/sampler.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace facet {
namespace {

/// Beyond this a coordinate has no fraction worth the name; it also keeps conversions to integers in range.
constexpr float farCoordinate = 1 << 22;

float bounded(float value) {
  return value > -farCoordinate ? (value < farCoordinate ? value : farCoordinate) : -farCoordinate;
}

float floorOf(float value) {
  const auto truncated = static_cast<float>(static_cast<int32_t>(value));
  return truncated - (truncated > value ? 1.0f : 0.0f);
}

/// A coordinate brought into 0 .. 1.
float addressed(float value, D3DTEXTUREADDRESS mode) {
  const float inside = bounded(value);
  if (mode == D3DTADDRESS_CLAMP) return inside > 0 ? (inside < 1 ? inside : 1.0f) : 0.0f;
  return inside - floorOf(inside);
}

/// a + (b - a) * t / 256 for each of the four channels.
uint32_t mixTexels(uint32_t a, uint32_t b, uint32_t t) {
  constexpr uint32_t odd = 0x00FF00FF;
  const uint32_t low = ((a & odd) * (256 - t) + (b & odd) * t + 0x00800080) >> 8 & odd;
  const uint32_t high = ((a >> 8 & odd) * (256 - t) + (b >> 8 & odd) * t + 0x00800080) & ~odd;
  return low | high;
}

uint32_t nearestTexel(const Sampler& sampler, const TexelLevel& level, float u, float v) {
  const float x = addressed(u, sampler.addressU) * static_cast<float>(level.width);
  const float y = addressed(v, sampler.addressV) * static_cast<float>(level.height);
  const auto column = std::min(static_cast<uint32_t>(x), level.width - 1);
  const auto row = std::min(static_cast<uint32_t>(y), level.height - 1);
  return level.texels[size_t{row} * level.width + column];
}

/// The two texels between which a coordinate lies, and how near it is to the second, of 256.
struct Between {
  uint32_t first, second, weight;
};

Between between(float coordinate, uint32_t size, D3DTEXTUREADDRESS mode) {
  const float place = addressed(coordinate, mode) * static_cast<float>(size) - 0.5f;
  const float below = floorOf(place);
  const auto first = static_cast<int32_t>(below), last = static_cast<int32_t>(size) - 1;
  const auto weight = static_cast<uint32_t>((place - below) * 256);
  const bool wraps = mode == D3DTADDRESS_WRAP;
  const int32_t a = first < 0 ? (wraps ? last : 0) : std::min(first, last);
  const int32_t b = first + 1 > last ? (wraps ? 0 : last) : first + 1;
  return {static_cast<uint32_t>(a), static_cast<uint32_t>(b), weight};
}

uint32_t linearTexel(const Sampler& sampler, const TexelLevel& level, float u, float v) {
  const Between x = between(u, level.width, sampler.addressU);
  const Between y = between(v, level.height, sampler.addressV);
  const uint32_t* top = level.texels.data() + size_t{y.first} * level.width;
  const uint32_t* bottom = level.texels.data() + size_t{y.second} * level.width;
  return mixTexels(mixTexels(top[x.first], top[x.second], x.weight),
                   mixTexels(bottom[x.first], bottom[x.second], x.weight), y.weight);
}

uint32_t texelOf(const Sampler& sampler, const TexelLevel& level, D3DTEXTUREFILTERTYPE filter, float u,
                 float v) {
  return filter == D3DTEXF_POINT || filter == D3DTEXF_NONE ? nearestTexel(sampler, level, u, v)
                                                           : linearTexel(sampler, level, u, v);
}

/// A texel at a level of detail: 0 is the first level, larger ones are coarser.
uint32_t texelAtDetail(const Sampler& sampler, D3DTEXTUREFILTERTYPE filter, float detail, float u, float v) {
  const TexelLevels& levels = *sampler.levels;
  const auto last = static_cast<float>(levels.size() - 1);
  if (sampler.mipFilter == D3DTEXF_NONE || !(detail > 0) || last == 0)
    return texelOf(sampler, levels[0], filter, u, v);
  const float inside = std::min(detail, last);
  if (sampler.mipFilter == D3DTEXF_POINT) {
    return texelOf(sampler, levels[static_cast<size_t>(inside + 0.5f)], filter, u, v);
  }
  const auto level = static_cast<size_t>(inside);
  const auto weight = static_cast<uint32_t>((inside - static_cast<float>(level)) * 256);
  const uint32_t fine = texelOf(sampler, levels[level], filter, u, v);
  if (weight == 0) return fine;
  return mixTexels(fine, texelOf(sampler, levels[level + 1], filter, u, v), weight);
}

/// How one pixel lies on the first level: the lengths of its two sides in texels, squared.
struct Footprint {
  float alongX, alongY;
};

Footprint footprint(const Sampler& sampler, const TextureCoordinates& at, uint32_t lane) {
  const auto width = static_cast<float>(sampler.levels->front().width);
  const auto height = static_cast<float>(sampler.levels->front().height);
  const auto squared = [&](float du, float dv) {
    const float x = du * width, y = dv * height;
    const float length = x * x + y * y;
    return length < 1e30f ? length : 1e30f;  // what is no number or endless counts as far away
  };
  return {squared(at.dudx[lane], at.dvdx[lane]), squared(at.dudy[lane], at.dvdy[lane])};
}

/// Averages samples along the longer side of the footprint, so that the level follows the shorter one.
uint32_t anisotropicTexel(const Sampler& sampler, const TextureCoordinates& at, const Footprint& size,
                          uint32_t lane) {
  const bool xIsLonger = size.alongX > size.alongY;
  const float longer = std::sqrt(std::max(size.alongX, size.alongY));
  const float shorter = std::max(std::sqrt(std::min(size.alongX, size.alongY)), 1e-6f);
  const float ratio = std::min(longer / shorter, static_cast<float>(sampler.maxAnisotropy));
  const auto count = static_cast<uint32_t>(std::max(std::ceil(ratio - 1e-3f), 1.0f));
  const float detail = longer > 0 ? approximateLog2(longer / static_cast<float>(count)) : 0;
  const float du = xIsLonger ? at.dudx[lane] : at.dudy[lane], dv = xIsLonger ? at.dvdx[lane] : at.dvdy[lane];
  uint32_t sums[4] = {};
  for (uint32_t i = 0; i < count; ++i) {
    const float offset = (static_cast<float>(i) + 0.5f) / static_cast<float>(count) - 0.5f;
    const uint32_t texel =
        texelAtDetail(sampler, D3DTEXF_LINEAR, detail, at.u[lane] + du * offset, at.v[lane] + dv * offset);
    for (uint32_t channel = 0; channel < 4; ++channel) sums[channel] += texel >> channel * 8 & 255;
  }
  uint32_t result = 0;
  for (uint32_t channel = 0; channel < 4; ++channel) {
    result |= (sums[channel] + count / 2) / count << channel * 8;
  }
  return result;
}

uint32_t leveledTexel(const Sampler& sampler, const TextureCoordinates& at, uint32_t lane) {
  const Footprint size = footprint(sampler, at, lane);
  const float larger = std::max(size.alongX, size.alongY);
  const float detail = larger > 0 ? 0.5f * approximateLog2(larger) : 0;
  const D3DTEXTUREFILTERTYPE filter = detail > 0 ? sampler.minFilter : sampler.magFilter;
  if (filter == D3DTEXF_ANISOTROPIC && detail > 0) return anisotropicTexel(sampler, at, size, lane);
  return texelAtDetail(sampler, filter, detail, at.u[lane], at.v[lane]);
}

}  // namespace

float approximateLog2(float value) {
  const auto bits = std::bit_cast<uint32_t>(value);
  const auto exponent = static_cast<float>(static_cast<int32_t>(bits >> 23) - 127);
  const float mantissa = std::bit_cast<float>((bits & 0x7FFFFF) | 0x3F800000);
  const float t = (mantissa - 1) / (mantissa + 1), t2 = t * t;
  return exponent + 2.885390082f * t * (1 + t2 * (1.0f / 3 + t2 * (1.0f / 5 + t2 * (1.0f / 7))));
}

void sampleTexture(const Sampler& sampler, const TextureCoordinates& at, const int32_t* lanes,
                   uint32_t* texels) {
  const TexelLevel& first = sampler.levels->front();
  const bool nearest = sampler.minFilter == D3DTEXF_POINT || sampler.minFilter == D3DTEXF_NONE;
  for (uint32_t i = 0; i < laneCount; ++i) {
    if (!lanes[i]) continue;
    texels[i] = sampler.needsLevel ? leveledTexel(sampler, at, i)
                : nearest          ? nearestTexel(sampler, first, at.u[i], at.v[i])
                                   : linearTexel(sampler, first, at.u[i], at.v[i]);
  }
}

}  // namespace facet
