#pragma once

#include <memory>
#include <span>
#include <vector>

#include "device/reference/primitives.h"
#include "device/reference/worker_pool.h"

namespace facet {

/// Collects draws and carries them out together: vertices, then primitives, then bands of rows, each step
/// shared out among threads. Within a pixel the order of the draws holds, so the picture does not depend on
/// the threads. Throws std::bad_alloc when memory runs out; drawing may go on after dropWaiting().
class Renderer {
 public:
  explicit Renderer(WorkerPool& pool) : pool_(pool) {}

  /// Gives the picture a size and forgets what waits.
  void resize(uint32_t width, uint32_t height);
  void add(Draw draw);
  void finish();
  void dropWaiting();

  /// Clear what is there; draws that wait still come.
  void clearColor(uint32_t color);
  void clearDepth(float depth);

  const Surface& surface() const { return surface_; }

 private:
  void transformAll();
  void drawChunks(std::span<Chunk> chunks);
  ScreenVertices verticesOf(const Draw& draw) const;

  WorkerPool& pool_;
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
