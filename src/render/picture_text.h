#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "device/device.h"

namespace facet {

/// R, G, B, A bytes, top row first.
struct Picture {
  uint32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;
};

/// Writes a line of text with its top left corner at a place, in ASCII letters some 7 pixels high, on a
/// dark rim. What does not fit is cut off.
void drawText(Picture& picture, int32_t x, int32_t y, D3DCOLOR color, std::string_view text);

}  // namespace facet
