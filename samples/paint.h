#pragma once

#include <functional>
#include <span>
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

/// How a picture is stored. DDS files get all mip levels.
enum class PictureFile { dxt1, dxt5, argbDds, tga, png, bmp };

/// The bytes of a file of that kind; BMP and, without transparency, TGA hold 24 bits a pixel.
std::string encodePicture(const Picture& picture, PictureFile kind);

/// A texture of the scene: its file under gamedata/textures/, in the letter case that the disk shall have,
/// and the colour at each place of it.
struct Texture {
  const char* file;
  PictureFile kind;
  uint32_t size;  ///< pixels on each side
  Color (*colorAt)(float u, float v);
};
std::span<const Texture> builtTextures();
std::span<const Texture> naturalTextures();

/// One of the six pictures of the sky box, which fit together without a seam: what is seen in the direction
/// of a corner, and how that changes over its width and height.
struct SkyFace {
  const char* file;
  PictureFile kind;
  uint32_t width, height;
  vec3 corner, across, down;
};
std::span<const SkyFace> skyFaces();
Picture paintSky(const SkyFace& face);

}  // namespace facet::sample
