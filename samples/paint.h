#pragma once

#include <functional>
#include <string>
#include <vector>

#include "noise.h"

namespace facet::sample {

/// Red, green, blue and alpha in 0..1, as the screen shows them.
using Color = glm::vec4;

/// A colour from 0xRRGGBB.
Color hex(uint32_t rgb, float alpha = 1);
/// `t` below 0 counts as 0, above 1 as 1.
Color mix(Color from, Color to, float t);
/// Scales red, green and blue, and leaves alpha.
Color shaded(Color color, float factor);

/// R, G, B, A bytes, top row first.
struct Picture {
  uint32_t width = 0, height = 0;
  std::vector<uint8_t> rgba;
};

/// Asks for the colour of every pixel; u, v in 0..1 are the pixel's centre, v downwards.
Picture paint(uint32_t width, uint32_t height, const std::function<Color(float u, float v)>& colorAt);

/// The bytes of a file: "bmp", "png", "tga", or a DDS file with all mip levels of pixels in "argb", "dxt1" or
/// "dxt5". BMP and, without transparency, TGA hold 24 bits a pixel.
std::string encodePicture(const Picture& picture, std::string_view kind);

/// Paints all textures of the scene and the six pictures of the sky box, which fit together without a seam.
/// Each goes to `write` with its file's name under gamedata/textures, in the letter case that the disk shall
/// have.
void paintTextures(const std::function<void(const char* file, const std::string& bytes)>& write);

}  // namespace facet::sample
