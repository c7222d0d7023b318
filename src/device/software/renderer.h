#pragma once

#include <memory>
#include <span>
#include <vector>

#include "device/software/raster.h"

namespace facet {

/// Collects draws and carries them out together: vertices, then primitives, then bands of rows, each step
/// shared out among threads. Within a pixel the order of the draws holds, so the picture does not depend on
/// the threads. add() and finish() may throw std::bad_alloc; the next clear() makes all well again.
class Renderer {
 public:
  /// Gives the picture a size, in black.
  void resize(uint32_t width, uint32_t height);

  /// Forgets what waits and fills the picture with a colour, depths with 1.
  void clear(uint32_t color);
  void add(Draw draw);
  void finish();

  const Surface& surface() const { return surface_; }

 private:
  void dropWaiting();
  void transformAll();
  void drawChunks(std::span<Chunk> chunks);
  ScreenVertices verticesOf(const Draw& draw) const;

  Surface surface_;
  Viewport viewport_;
  std::vector<Draw> draws_;
  size_t vertexCount_ = 0, primitiveCount_ = 0;  ///< of the draws that wait
  std::unique_ptr<ScreenVertex[]> screenVertices_;
  std::unique_ptr<uint8_t[]> outcodes_;
  size_t capacity_ = 0;
  std::vector<Chunk> chunks_;  ///< kept for their memory
};

}  // namespace facet
