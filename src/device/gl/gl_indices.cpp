#include "device/gl/gl_indices.h"

#include <algorithm>
#include <array>

namespace facet {

bool indicesWithin(std::span<const uint16_t> indices, int64_t low, int64_t high) {
  if (indices.empty()) return true;
  const auto [least, most] = std::ranges::minmax(indices);
  return least >= low && most < high;
}

std::vector<uint16_t> primitivesWithin(D3DPRIMITIVETYPE type, std::span<const uint16_t> indices, int64_t low,
                                       int64_t high) {
  std::vector<uint16_t> kept;
  const size_t corners = type == D3DPT_LINELIST ? 2 : 3;
  const size_t step = type == D3DPT_TRIANGLESTRIP ? 1 : corners;
  for (size_t i = 0; i + corners <= indices.size(); i += step) {
    const auto primitive = indices.subspan(i, corners);
    if (!indicesWithin(primitive, low, high)) continue;
    kept.insert(kept.end(), primitive.begin(), primitive.end());
    // Every second triangle of a strip turns the other way.
    if (type == D3DPT_TRIANGLESTRIP && i % 2 == 1) std::swap(kept[kept.size() - 1], kept[kept.size() - 2]);
  }
  return kept;
}

}  // namespace facet
