#pragma once

#include <cstdint>
#include <vector>

#include "device/device.h"
#include "device/gl/gl_context.h"

namespace facet {

/// The back buffer and its depth buffer, apart from any window. Rows count from the top, as in Direct3D.
/// OpenGL's context is current in every call.
class GlTarget {
 public:
  /// D3DERR_NOTAVAILABLE, and the target as before, for sizes and depth formats that the driver refuses.
  HRESULT create(uint32_t width, uint32_t height, D3DFORMAT depth);

  /// Fills the picture with an opaque colour, depths with 1.
  void clear(D3DCOLOR color) const;

  /// Makes drawing go into the back buffer.
  void bind() const;

  /// Stretches the picture over the window's framebuffer.
  void present(const GlContext::Window& window) const;

  /// R, G, B, A bytes, top row first, alpha 255; empty when they cannot be read.
  std::vector<uint8_t> read() const;

  uint32_t width() const { return width_; }
  uint32_t height() const { return height_; }
  void release();

 private:
  uint32_t width_ = 0, height_ = 0;
  uint32_t framebuffer_ = 0, color_ = 0, depth_ = 0;
};

}  // namespace facet
