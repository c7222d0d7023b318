#pragma once

#include <cstdint>

#include "device/software/draw.h"

namespace facet {

/// Most samples that anisotropic filtering takes.
inline constexpr uint32_t maximumAnisotropy = 16;

/// Texture coordinates of a block, and how they change from pixel to pixel (read only when the sampler needs
/// a level). Any value is allowed, infinities included.
struct TextureCoordinates {
  float u[laneCount], v[laneCount];
  float dudx[laneCount], dvdx[laneCount], dudy[laneCount], dvdy[laneCount];
};

/// The texture's colours as 0xAARRGGBB where `lanes` is not 0.
void sampleTexture(const Sampler& sampler, const TextureCoordinates& at, const int32_t (&lanes)[laneCount],
                   Colors& texels);

}  // namespace facet
