#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vec.h"

namespace facet::sample {

/// Channels in 0..1, as the screen shows them.
struct Color {
  float r = 0, g = 0, b = 0, a = 1;
};

/// A colour from 0xRRGGBB.
Color hex(uint32_t rgb, float alpha = 1);
Color mix(Color from, Color to, float t);
/// Scales r, g, b and leaves alpha.
Color shaded(Color color, float factor);

/// R, G, B, A bytes, top row first.
struct Picture {
  uint32_t width = 0, height = 0;
  std::vector<uint8_t> rgba;
};

/// Asks for the colour of every pixel; u, v in 0..1 are the pixel's centre, v downwards.
Picture paint(uint32_t width, uint32_t height, const std::function<Color(float u, float v)>& colorAt);

/// The place of (u, v) in a wall of bricks whose rows are shifted by half a brick.
struct Brick {
  int column, row;
  float edge;  ///< distance from the brick's border, 0 at it, in parts of a brick's height
};
Brick brickAt(float u, float v, int columns, int rows);

/// How a picture is stored.
enum class PictureFile { dxt1, dxt5, argbDds, tga, png, bmp };

/// A texture of the scene: its file under gamedata/textures/, in the letter case that the disk shall have.
struct SampleTexture {
  std::string file;
  PictureFile kind;
  Picture picture;
};

std::vector<SampleTexture> buildingTextures();
std::vector<SampleTexture> natureTextures();
std::vector<SampleTexture> propTextures();
std::vector<SampleTexture> effectTextures();
/// The six pictures of the sky box, which fit together without a seam.
std::vector<SampleTexture> skyTextures();

}  // namespace facet::sample
