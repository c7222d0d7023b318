#include "render/picture_text.h"

#include <array>

namespace facet {

namespace {

constexpr int32_t glyphWidth = 5, glyphHeight = 7, advance = 6;

/// Rows from the top; the highest of the five bits is the leftmost pixel.
struct Glyph {
  char character;
  std::array<uint8_t, glyphHeight> rows;
};

constexpr Glyph glyphs[] = {
    {'0', {0b01110, 0b10001, 0b10001, 0b10001, 0b10001, 0b10001, 0b01110}},
    {'1', {0b00100, 0b01100, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110}},
    {'2', {0b01110, 0b10001, 0b00001, 0b00110, 0b01000, 0b10000, 0b11111}},
    {'3', {0b01110, 0b10001, 0b00001, 0b00110, 0b00001, 0b10001, 0b01110}},
    {'4', {0b00010, 0b00110, 0b01010, 0b10010, 0b11111, 0b00010, 0b00010}},
    {'5', {0b11111, 0b10000, 0b11110, 0b00001, 0b00001, 0b10001, 0b01110}},
    {'6', {0b00110, 0b01000, 0b10000, 0b11110, 0b10001, 0b10001, 0b01110}},
    {'7', {0b11111, 0b00001, 0b00010, 0b00010, 0b00100, 0b00100, 0b00100}},
    {'8', {0b01110, 0b10001, 0b10001, 0b01110, 0b10001, 0b10001, 0b01110}},
    {'9', {0b01110, 0b10001, 0b10001, 0b01111, 0b00001, 0b00010, 0b01100}},
    {'.', {0, 0, 0, 0, 0, 0b01100, 0b01100}},
    {',', {0, 0, 0, 0, 0b00100, 0b00100, 0b01000}},
    {':', {0, 0b01100, 0b01100, 0, 0b01100, 0b01100, 0}},
    {'-', {0, 0, 0, 0b11110, 0, 0, 0}},
    {'(', {0b00010, 0b00100, 0b01000, 0b01000, 0b01000, 0b00100, 0b00010}},
    {')', {0b01000, 0b00100, 0b00010, 0b00010, 0b00010, 0b00100, 0b01000}},
    {'E', {0b11111, 0b10000, 0b10000, 0b11110, 0b10000, 0b10000, 0b11111}},
    {'F', {0b11111, 0b10000, 0b10000, 0b11110, 0b10000, 0b10000, 0b10000}},
    {'I', {0b01110, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110}},
    {'M', {0b10001, 0b11011, 0b10101, 0b10101, 0b10001, 0b10001, 0b10001}},
    {'N', {0b10001, 0b11001, 0b11001, 0b10101, 0b10011, 0b10011, 0b10001}},
    {'O', {0b01110, 0b10001, 0b10001, 0b10001, 0b10001, 0b10001, 0b01110}},
    {'P', {0b11110, 0b10001, 0b10001, 0b11110, 0b10000, 0b10000, 0b10000}},
    {'R', {0b11110, 0b10001, 0b10001, 0b11110, 0b10100, 0b10010, 0b10001}},
    {'S', {0b01111, 0b10000, 0b10000, 0b01110, 0b00001, 0b00001, 0b11110}},
    {'T', {0b11111, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100}},
    {'V', {0b10001, 0b10001, 0b10001, 0b10001, 0b01010, 0b01010, 0b00100}},
    {'a', {0, 0, 0b01110, 0b00001, 0b01111, 0b10001, 0b01111}},
    {'c', {0, 0, 0b01110, 0b10001, 0b10000, 0b10001, 0b01110}},
    {'d', {0b00001, 0b00001, 0b01111, 0b10001, 0b10001, 0b10001, 0b01111}},
    {'e', {0, 0, 0b01110, 0b10001, 0b11111, 0b10000, 0b01110}},
    {'f', {0b00110, 0b01000, 0b11100, 0b01000, 0b01000, 0b01000, 0b01000}},
    {'h', {0b10000, 0b10000, 0b11110, 0b10001, 0b10001, 0b10001, 0b10001}},
    {'i', {0b00100, 0, 0b01100, 0b00100, 0b00100, 0b00100, 0b01110}},
    {'l', {0b01100, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110}},
    {'m', {0, 0, 0b11010, 0b10101, 0b10101, 0b10101, 0b10101}},
    {'n', {0, 0, 0b11110, 0b10001, 0b10001, 0b10001, 0b10001}},
    {'r', {0, 0, 0b10110, 0b11000, 0b10000, 0b10000, 0b10000}},
    {'s', {0, 0, 0b01111, 0b10000, 0b01110, 0b00001, 0b11110}},
    {'t', {0b01000, 0b01000, 0b11100, 0b01000, 0b01000, 0b01001, 0b00110}},
    {'v', {0, 0, 0b10001, 0b10001, 0b10001, 0b01010, 0b00100}},
};

constexpr bool isSet(const Glyph& glyph, int32_t column, int32_t row) {
  return column >= 0 && column < glyphWidth && row >= 0 && row < glyphHeight &&
         (glyph.rows[static_cast<size_t>(row)] >> (glyphWidth - 1 - column) & 1) != 0;
}

constexpr bool isRim(const Glyph& glyph, int32_t column, int32_t row) {
  for (int32_t dy = -1; dy <= 1; ++dy)
    for (int32_t dx = -1; dx <= 1; ++dx)
      if (isSet(glyph, column + dx, row + dy)) return true;
  return false;
}

void setPixel(Picture& picture, int32_t x, int32_t y, D3DCOLOR color) {
  const auto column = static_cast<uint32_t>(x), row = static_cast<uint32_t>(y);  // negative ones lie outside
  if (column >= picture.width || row >= picture.height) return;
  uint8_t* pixel = &picture.pixels[(size_t{row} * picture.width + column) * 4];
  for (size_t i = 0; i < 3; ++i) pixel[i] = static_cast<uint8_t>(color >> (16 - 8 * i));
}

/// Draws the pixels of a text that `isInk` says, one pixel around each glyph included.
template <class IsInk>
void drawGlyphs(Picture& picture, int32_t x, int32_t y, D3DCOLOR color, std::string_view text, IsInk isInk) {
  for (size_t i = 0; i < text.size(); ++i)
    for (const Glyph& glyph : glyphs) {
      if (glyph.character != text[i]) continue;
      for (int32_t row = -1; row <= glyphHeight; ++row)
        for (int32_t column = -1; column <= glyphWidth; ++column)
          if (isInk(glyph, column, row))
            setPixel(picture, x + static_cast<int32_t>(i) * advance + column, y + row, color);
    }
}

}  // namespace

void drawText(Picture& picture, int32_t x, int32_t y, D3DCOLOR color, std::string_view text) {
  constexpr D3DCOLOR dark = 0xFF303030;
  drawGlyphs(picture, x, y, dark, text, isRim);
  drawGlyphs(picture, x, y, color, text, isSet);
}

}  // namespace facet
