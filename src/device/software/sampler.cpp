#include "device/software/spans.h"

#include <algorithm>
#include <bit>
#include <cmath>

// Only fetching texels goes lane by lane. Integers are signed where floats become integers: that is what
// processors convert to.

namespace facet {
namespace {

using Floats = float[laneCount];
using Integers = int32_t[laneCount];

/// Beyond this a coordinate has no fraction worth the name; it also keeps conversions to integers in range.
constexpr float farCoordinate = 1 << 22;

/// The level of each lane.
struct LaneLevels {
  const TexelLevel* level[laneCount];
  Floats width, height;

  void set(uint32_t lane, const TexelLevel& chosen) {
    level[lane] = &chosen;
    width[lane] = static_cast<float>(chosen.width);
    height[lane] = static_cast<float>(chosen.height);
  }
};

float floorOf(float value) {
  const auto truncated = static_cast<int32_t>(value);
  return static_cast<float>(truncated - static_cast<int32_t>(static_cast<float>(truncated) > value));
}

/// Coordinates brought into 0 .. 1; what is no number becomes 0.
void address(const Floats& values, D3DTEXTUREADDRESS mode, Floats& inside) {
  if (mode == D3DTADDRESS_CLAMP) {
    for (uint32_t i = 0; i < laneCount; ++i) inside[i] = cut(values[i], 0, 1);
    return;
  }
  for (uint32_t i = 0; i < laneCount; ++i) {
    const float bounded = cut(values[i], -farCoordinate, farCoordinate);
    inside[i] = bounded - floorOf(bounded);
  }
}

/// Coordinates of a block in 0 .. 1.
struct Inside {
  Floats u, v;
};

Inside addressed(const Sampler& sampler, const Floats& u, const Floats& v) {
  Inside inside;
  address(u, sampler.address, inside.u);
  address(v, sampler.address, inside.v);
  return inside;
}

void nearestIndices(const Floats& inside, const Floats& sizes, Integers& indices) {
  for (uint32_t i = 0; i < laneCount; ++i) {
    const float place = inside[i] * sizes[i], last = sizes[i] - 1;
    indices[i] = static_cast<int32_t>(place < last ? place : last);
  }
}

void nearestTexels(const Sampler&, const LaneLevels& levels, const Inside& at, const Integers& lanes,
                   Colors& texels) {
  Integers columns, rows;
  nearestIndices(at.u, levels.width, columns);
  nearestIndices(at.v, levels.height, rows);
  for (uint32_t i = 0; i < laneCount; ++i) {
    if (!lanes[i]) continue;
    const TexelLevel& level = *levels.level[i];
    texels[i] = level.texels[static_cast<size_t>(rows[i]) * level.width + static_cast<size_t>(columns[i])];
  }
}

/// Two of the four channels of each lane. Products of a channel and a weight stay within 16 bits, of which a
/// processor takes twice as many at once as of 32.
using ChannelPairs = std::array<uint16_t, size_t{2} * laneCount>;

ChannelPairs mixPairs(const Colors& a, const Colors& b, const Colors& weights) {
  const auto from = std::bit_cast<ChannelPairs>(a), to = std::bit_cast<ChannelPairs>(b),
             share = std::bit_cast<ChannelPairs>(weights);
  ChannelPairs mixed;
  for (size_t i = 0; i < mixed.size(); ++i)
    mixed[i] = static_cast<uint16_t>(from[i] * (256 - share[i]) + to[i] * share[i] + 128);
  return mixed;
}

/// a + (b - a) * t / 256 for each of the four channels of each lane.
Colors mixTexels(const Colors& a, const Colors& b, const Colors& t) {
  constexpr uint32_t odd = 0x00FF00FF;
  Colors lowA, lowB, highA, highB, weights, mixed;
  for (uint32_t i = 0; i < laneCount; ++i) {
    lowA[i] = a[i] & odd;
    lowB[i] = b[i] & odd;
    highA[i] = a[i] >> 8 & odd;
    highB[i] = b[i] >> 8 & odd;
    weights[i] = t[i] | t[i] << 16;
  }
  const auto low = std::bit_cast<Colors>(mixPairs(lowA, lowB, weights));
  const auto high = std::bit_cast<Colors>(mixPairs(highA, highB, weights));
  for (uint32_t i = 0; i < laneCount; ++i) mixed[i] = (low[i] >> 8 & odd) | (high[i] & ~odd);
  return mixed;
}

/// The two texels between which each coordinate lies, and how near it is to the second, of 256.
struct Between {
  Integers first, second;
  Colors weight;
};

void linearIndices(const Floats& inside, const Floats& sizes, D3DTEXTUREADDRESS mode, Between& between) {
  const bool wraps = mode != D3DTADDRESS_CLAMP;
  for (uint32_t i = 0; i < laneCount; ++i) {
    const float place = inside[i] * sizes[i] - 0.5f, below = floorOf(place), last = sizes[i] - 1;
    const float above = below + 1;
    const float beforeFirst = wraps ? last : 0.0f, afterLast = wraps ? 0.0f : last;
    const float first = below < last ? below : last;
    between.first[i] = static_cast<int32_t>(below < 0 ? beforeFirst : first);
    between.second[i] = static_cast<int32_t>(above > last ? afterLast : above);
    between.weight[i] = static_cast<uint32_t>(static_cast<int32_t>((place - below) * 256));
  }
}

void linearTexels(const Sampler& sampler, const LaneLevels& levels, const Inside& at, const Integers& lanes,
                  Colors& texels) {
  Between x, y;
  linearIndices(at.u, levels.width, sampler.address, x);
  linearIndices(at.v, levels.height, sampler.address, y);
  Colors corners[4] = {};
  for (uint32_t i = 0; i < laneCount; ++i) {
    if (!lanes[i]) continue;
    const TexelLevel& level = *levels.level[i];
    const uint32_t* top = level.texels.data() + static_cast<size_t>(y.first[i]) * level.width;
    const uint32_t* bottom = level.texels.data() + static_cast<size_t>(y.second[i]) * level.width;
    corners[0][i] = top[x.first[i]];
    corners[1][i] = top[x.second[i]];
    corners[2][i] = bottom[x.first[i]];
    corners[3][i] = bottom[x.second[i]];
  }
  const Colors mixed = mixTexels(mixTexels(corners[0], corners[1], x.weight),
                                 mixTexels(corners[2], corners[3], x.weight), y.weight);
  for (uint32_t i = 0; i < laneCount; ++i) texels[i] = lanes[i] ? mixed[i] : texels[i];
}

void texelsOf(const Sampler& sampler, const LaneLevels& levels, D3DTEXTUREFILTERTYPE filter, const Inside& at,
              const Integers& lanes, Colors& texels) {
  (filter == D3DTEXF_POINT ? nearestTexels : linearTexels)(sampler, levels, at, lanes, texels);
}

/// Texels at levels of detail: 0 is the first level, larger ones are coarser.
void texelsAtDetail(const Sampler& sampler, D3DTEXTUREFILTERTYPE filter, const Floats& details,
                    const Floats& u, const Floats& v, const Integers& lanes, Colors& texels) {
  const TexelLevels& all = *sampler.levels;
  const float last = sampler.mipFilter == D3DTEXF_NONE ? 0.0f : static_cast<float>(all.size() - 1);
  const bool mixes = sampler.mipFilter == D3DTEXF_LINEAR;
  LaneLevels fine, coarse;
  Integers mixed;
  Colors weights;
  bool anyMixed = false;
  for (uint32_t i = 0; i < laneCount; ++i) {
    const float detail = cut(details[i], 0, last);
    const auto level = static_cast<size_t>(static_cast<int32_t>(mixes ? detail : detail + 0.5f));
    weights[i] = mixes ? static_cast<uint32_t>((detail - static_cast<float>(level)) * 256) : 0;
    fine.set(i, all[level]);
    coarse.set(i, all[weights[i] ? level + 1 : level]);
    mixed[i] = weights[i] ? lanes[i] : 0;
    anyMixed |= mixed[i] != 0;
  }
  const Inside at = addressed(sampler, u, v);
  texelsOf(sampler, fine, filter, at, lanes, texels);
  if (!anyMixed) return;
  Colors second = {};
  texelsOf(sampler, coarse, filter, at, mixed, second);
  const Colors both = mixTexels(texels, second, weights);
  for (uint32_t i = 0; i < laneCount; ++i) texels[i] = mixed[i] ? both[i] : texels[i];
}

/// The base-2 logarithm of a number above 0, to about 0.00002, the same on every machine.
float approximateLog2(float value) {
  const auto bits = std::bit_cast<int32_t>(value);
  const auto exponent = static_cast<float>((bits >> 23) - 127);
  const float mantissa = std::bit_cast<float>((bits & 0x7FFFFF) | 0x3F800000);
  const float t = (mantissa - 1) / (mantissa + 1), t2 = t * t;
  return exponent + 2.885390082f * t * (1 + t2 * (1.0f / 3 + t2 * (1.0f / 5 + t2 * (1.0f / 7))));
}

/// How each pixel lies on the first level: the lengths of its two sides in texels, squared.
struct Footprints {
  Floats alongX, alongY;
};

void squaredLengths(const TexelLevel& level, const Floats& du, const Floats& dv, Floats& lengths) {
  const auto width = static_cast<float>(level.width), height = static_cast<float>(level.height);
  for (uint32_t i = 0; i < laneCount; ++i) {
    const float x = du[i] * width, y = dv[i] * height;
    const float length = x * x + y * y;
    const float bounded = length < 1e30f ? length : 1e30f;  // what is no number or endless counts as far away
    lengths[i] = bounded > 1e-30f ? bounded : 1e-30f;
  }
}

/// How many samples each pixel takes along its longer side, and at which level of detail. The shorter side
/// counts as a texel at least: there is no finer level, and an enlarged texture needs no more than one
/// sample.
struct Spread {
  Integers count;
  Floats details, du, dv;
};

Spread spreadOf(const TextureCoordinates& at, const Footprints& sizes) {
  constexpr auto mostSamples = static_cast<float>(maximumAnisotropy);
  Spread spread;
  for (uint32_t i = 0; i < laneCount; ++i) {
    const bool xIsLonger = sizes.alongX[i] > sizes.alongY[i];
    const float longer = std::sqrt(xIsLonger ? sizes.alongX[i] : sizes.alongY[i]);
    const float shorter = std::sqrt(std::max(xIsLonger ? sizes.alongY[i] : sizes.alongX[i], 1.0f));
    const float ratio = std::min(longer / shorter, mostSamples);
    const auto whole = static_cast<int32_t>(ratio);
    spread.count[i] = std::max(whole + (ratio - static_cast<float>(whole) > 1e-3f ? 1 : 0), 1);
    spread.details[i] = approximateLog2(longer / static_cast<float>(spread.count[i]));
    spread.du[i] = xIsLonger ? at.dudx[i] : at.dudy[i];
    spread.dv[i] = xIsLonger ? at.dvdx[i] : at.dvdy[i];
  }
  return spread;
}

/// Averages samples along the longer side of each footprint, so that the level follows the shorter one.
void anisotropicTexels(const Sampler& sampler, const TextureCoordinates& at, const Footprints& sizes,
                       const Integers& lanes, Colors& texels) {
  const Spread spread = spreadOf(at, sizes);
  uint32_t sums[4][laneCount] = {};
  for (int32_t step = 0;; ++step) {
    Integers active;
    bool any = false;
    Floats u, v;
    for (uint32_t i = 0; i < laneCount; ++i) {
      active[i] = step < spread.count[i] ? lanes[i] : 0;
      any |= active[i] != 0;
      const float offset = (static_cast<float>(step) + 0.5f) / static_cast<float>(spread.count[i]) - 0.5f;
      u[i] = at.u[i] + spread.du[i] * offset;
      v[i] = at.v[i] + spread.dv[i] * offset;
    }
    if (!any) break;
    Colors samples = {};
    texelsAtDetail(sampler, D3DTEXF_LINEAR, spread.details, u, v, active, samples);
    for (uint32_t channel = 0; channel < 4; ++channel)
      for (uint32_t i = 0; i < laneCount; ++i)
        sums[channel][i] += active[i] ? samples[i] >> channel * 8 & 255 : 0;
  }
  for (uint32_t i = 0; i < laneCount; ++i) {
    if (!lanes[i]) continue;
    const auto count = static_cast<uint32_t>(spread.count[i]);
    texels[i] = 0;
    for (uint32_t channel = 0; channel < 4; ++channel)
      texels[i] |= (sums[channel][i] + count / 2) / count << channel * 8;
  }
}

void leveledTexels(const Sampler& sampler, const TextureCoordinates& at, const Integers& lanes,
                   Colors& texels) {
  Footprints sizes;
  squaredLengths(sampler.levels->front(), at.dudx, at.dvdx, sizes.alongX);
  squaredLengths(sampler.levels->front(), at.dudy, at.dvdy, sizes.alongY);
  if (sampler.filter == D3DTEXF_ANISOTROPIC) {
    anisotropicTexels(sampler, at, sizes, lanes, texels);
    return;
  }
  Floats details;
  for (uint32_t i = 0; i < laneCount; ++i) {
    details[i] =
        0.5f * approximateLog2(sizes.alongX[i] > sizes.alongY[i] ? sizes.alongX[i] : sizes.alongY[i]);
  }
  texelsAtDetail(sampler, sampler.filter, details, at.u, at.v, lanes, texels);
}

}  // namespace

void sampleTexture(const Sampler& sampler, const TextureCoordinates& at, const int32_t (&lanes)[laneCount],
                   Colors& texels) {
  if (sampler.needsLevel) {
    leveledTexels(sampler, at, lanes, texels);
    return;
  }
  LaneLevels first;
  for (uint32_t i = 0; i < laneCount; ++i) first.set(i, sampler.levels->front());
  texelsOf(sampler, first, sampler.filter, addressed(sampler, at.u, at.v), lanes, texels);
}

}  // namespace facet
