#include "paint.h"

namespace facet::sample {

namespace {

uint8_t toByte(float channel) {
  return uint8_t(std::lround(clamp01(channel) * 255));
}

}  // namespace

Color hex(uint32_t rgb, float alpha) {
  return {float(rgb >> 16 & 255) / 255, float(rgb >> 8 & 255) / 255, float(rgb & 255) / 255, alpha};
}

Color mix(Color from, Color to, float t) {
  t = clamp01(t);
  return {mix(from.r, to.r, t), mix(from.g, to.g, t), mix(from.b, to.b, t), mix(from.a, to.a, t)};
}

Color shaded(Color color, float factor) {
  return {color.r * factor, color.g * factor, color.b * factor, color.a};
}

Picture paint(uint32_t width, uint32_t height, const std::function<Color(float u, float v)>& colorAt) {
  Picture picture{width, height, {}};
  picture.rgba.reserve(size_t{width} * height * 4);
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      Color c = colorAt((float(x) + 0.5f) / float(width), (float(y) + 0.5f) / float(height));
      for (float channel : {c.r, c.g, c.b, c.a}) picture.rgba.push_back(toByte(channel));
    }
  }
  return picture;
}

Brick brickAt(float u, float v, int columns, int rows) {
  float y = v * float(rows);
  int row = int(std::floor(y));
  float x = u * float(columns) + 0.5f * float(row & 1);
  int column = int(std::floor(x));
  float inRow = y - float(row), inColumn = x - float(column);
  float aspect = float(rows) / float(columns);
  float edge = std::min(std::min(inRow, 1 - inRow), std::min(inColumn, 1 - inColumn) * aspect);
  return {column % columns, row, edge};
}

}  // namespace facet::sample
