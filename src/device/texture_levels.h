#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "device/device.h"

namespace facet {

/// The memory of a texture: its levels in the texture's own format, rows without gaps.
class TextureLevels {
 public:
  struct Level {
    uint32_t width, height;
    std::vector<std::byte> bytes;
  };

  /// `format` is a readable one, sizes are above 0, `levels` is 1 .. fullLevelCount().
  TextureLevels(uint32_t width, uint32_t height, uint32_t levels, D3DFORMAT format);

  D3DFORMAT format() const { return format_; }
  uint32_t count() const { return static_cast<uint32_t>(levels_.size()); }
  const std::vector<Level>& all() const { return levels_; }

  /// The operations of IDirect3DTexture9.
  HRESULT describe(uint32_t level, D3DSURFACE_DESC* desc) const;
  HRESULT lock(uint32_t level, D3DLOCKED_RECT* locked);
  HRESULT unlock(uint32_t level) const { return level < count() ? D3D_OK : D3DERR_INVALIDCALL; }

 private:
  D3DFORMAT format_;
  std::vector<Level> levels_;
};

}  // namespace facet
