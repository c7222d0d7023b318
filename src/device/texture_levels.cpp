#include "device/texture_levels.h"

#include <algorithm>

#include "picture/pixels.h"

namespace facet {

TextureLevels::TextureLevels(uint32_t width, uint32_t height, uint32_t levels, D3DFORMAT format)
    : format_(format) {
  for (uint32_t i = 0; i < levels; ++i) {
    const uint32_t w = std::max(width >> i, 1u), h = std::max(height >> i, 1u);
    levels_.push_back({w, h, std::vector<std::byte>(levelBytes(format, w, h))});
  }
}

HRESULT TextureLevels::describe(uint32_t level, D3DSURFACE_DESC* desc) const {
  if (!desc || level >= count()) return D3DERR_INVALIDCALL;
  *desc = {format_, levels_[level].width, levels_[level].height};
  return D3D_OK;
}

HRESULT TextureLevels::lock(uint32_t level, D3DLOCKED_RECT* locked) {
  if (!locked || level >= count()) return D3DERR_INVALIDCALL;
  *locked = {static_cast<uint32_t>(rowBytes(format_, levels_[level].width)), levels_[level].bytes.data()};
  return D3D_OK;
}

}  // namespace facet
