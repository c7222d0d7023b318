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

/// A value that changes evenly over the screen.
struct Gradient {
  double start = 0;  ///< at the reference point
  double perX = 0, perY = 0;
};

/// What changes within a primitive. All but depth and rhw are divided by w, unless the primitive is flat:
/// then its one colour is `flatColor`.
struct Attributes {
  double x = 0, y = 0;  ///< the reference point in pixels
  Gradient depth, rhw, u, v, color[4];
  bool flat = false;
  uint32_t flatColor = 0;  ///< 0xAARRGGBB
};

/// Draws pixels `first` .. `last` of row `y`: depth test, texture, combination, alpha test, blending.
void drawSpan(const PixelState& state, const Attributes& attributes, Surface& surface, int32_t y,
              int32_t first, int32_t last);

/// The same for one pixel, which is quick where it is flat and has no texture.
void drawPixel(const PixelState& state, const Attributes& attributes, Surface& surface, int32_t x, int32_t y);

/// Colour channels 0..1 as 0xAARRGGBB.
uint32_t packColor(const float* color);

}  // namespace facet
