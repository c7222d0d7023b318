#include "render/picture_text.h"

#include <stb_easy_font.h>

#include <algorithm>
#include <string>

namespace facet {

namespace {

/// Fills the pixels from left, top up to but not including right, bottom, as far as the picture has them.
void fill(Picture& picture, int64_t left, int64_t top, int64_t right, int64_t bottom, D3DCOLOR color) {
  right = std::min<int64_t>(right, picture.width);
  bottom = std::min<int64_t>(bottom, picture.height);
  for (int64_t y = std::max<int64_t>(top, 0); y < bottom; ++y)
    for (int64_t x = std::max<int64_t>(left, 0); x < right; ++x)
      for (int64_t i = 0; i < 3; ++i)
        picture.pixels[static_cast<size_t>((y * picture.width + x) * 4 + i)] =
            static_cast<uint8_t>(color >> (16 - 8 * i));
}

}  // namespace

void drawText(Picture& picture, int32_t x, int32_t y, D3DCOLOR color, std::string_view text) {
  struct Corner {
    float x, y, z;
    uint32_t color;
  };
  constexpr size_t cornersOfCharacter = 128;  // at most
  constexpr D3DCOLOR dark = 0xFF303030;
  std::string line(text);
  std::vector<Corner> corners(cornersOfCharacter * (line.size() + 1));
  const int quads = stb_easy_font_print(static_cast<float>(x), static_cast<float>(y), line.data(), nullptr,
                                        corners.data(), static_cast<int>(corners.size() * sizeof(Corner)));
  for (const int rim : {1, 0})
    for (int quad = 0; quad < quads; ++quad) {
      const Corner &first = corners[4 * static_cast<size_t>(quad)], &opposite = (&first)[2];
      fill(picture, static_cast<int64_t>(first.x) - rim, static_cast<int64_t>(first.y) - rim,
           static_cast<int64_t>(opposite.x) + rim, static_cast<int64_t>(opposite.y) + rim,
           rim != 0 ? dark : color);
    }
}

}  // namespace facet
