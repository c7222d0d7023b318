#include "device/reference/renderer.h"

#include <algorithm>

#include "device/reference/raster.h"
#include "device/reference/transform_light.h"

namespace facet {
namespace {

/// Sizes of the parts of a job: large enough to be worth a thread's while, small enough to stay in its cache.
constexpr uint32_t verticesPerPart = 2048, primitivesPerChunk = 2048;
/// Chunks that are assembled before their bands are drawn.
constexpr size_t chunksAtOnce = 32;
/// Draws wait until this many vertices or primitives are together.
constexpr size_t waitingVertices = 1 << 17, waitingPrimitives = 1 << 18;

struct VertexPart {
  const Draw* draw;
  uint32_t begin, end;
};

}  // namespace

void Renderer::resize(uint32_t width, uint32_t height) {
  dropWaiting();
  Surface sized;
  sized.width = width;
  sized.height = height;
  sized.color = std::make_unique_for_overwrite<uint32_t[]>(size_t{width} * height);
  sized.depth = std::make_unique_for_overwrite<float[]>(size_t{width + Surface::padding} * height);
  surface_ = std::move(sized);
  clearColor(0);  // by all threads, which is most of the time that a start spends on the device
  clearDepth(1.0f);
  viewport_ = viewportOf(width, height);
}

void Renderer::dropWaiting() {
  draws_.clear();
  vertexCount_ = primitiveCount_ = 0;
}

void Renderer::add(Draw draw) {
  draw.firstScreenVertex = vertexCount_;
  vertexCount_ += draw.vertexCount;
  primitiveCount_ += draw.primitiveCount;
  draws_.push_back(std::move(draw));
  if (vertexCount_ >= waitingVertices || primitiveCount_ >= waitingPrimitives) finish();
}

void Renderer::finish() {
  if (draws_.empty()) return;
  transformAll();
  size_t used = 0;
  const auto drawUsed = [&] {
    drawChunks(std::span(chunks_).first(used));
    used = 0;
  };
  for (const Draw& draw : draws_) {
    for (uint32_t begin = 0; begin < draw.primitiveCount; begin += primitivesPerChunk) {
      if (used == chunks_.size()) chunks_.emplace_back();
      chunks_[used].draw = &draw;
      chunks_[used].begin = begin;
      chunks_[used].end = std::min(draw.primitiveCount, begin + primitivesPerChunk);
      if (++used == chunksAtOnce) drawUsed();
    }
  }
  drawUsed();
  dropWaiting();
}

void Renderer::transformAll() {
  if (capacity_ < vertexCount_) {
    capacity_ = 0;
    screenVertices_ = std::make_unique_for_overwrite<ScreenVertex[]>(vertexCount_);
    outcodes_ = std::make_unique_for_overwrite<uint8_t[]>(vertexCount_);
    capacity_ = vertexCount_;
  }
  std::vector<VertexPart> parts;
  for (const Draw& draw : draws_) {
    for (uint32_t begin = 0; begin < draw.vertexCount; begin += verticesPerPart) {
      parts.push_back({&draw, begin, std::min(draw.vertexCount, begin + verticesPerPart)});
    }
  }
  pool_.run(parts.size(), [&](size_t i) {
    const VertexPart& part = parts[i];
    transformVertices(*part.draw, viewport_, part.begin, part.end,
                      &screenVertices_[part.draw->firstScreenVertex],
                      &outcodes_[part.draw->firstScreenVertex]);
  });
}

ScreenVertices Renderer::verticesOf(const Draw& draw) const {
  return {screenVertices_.get() + draw.firstScreenVertex, outcodes_.get() + draw.firstScreenVertex};
}

void Renderer::drawChunks(std::span<Chunk> chunks) {
  if (chunks.empty()) return;
  pool_.run(chunks.size(), [&](size_t i) {
    assemble(chunks[i], verticesOf(*chunks[i].draw), viewport_, surface_.width, surface_.height);
  });
  pool_.run((surface_.height + bandRows - 1) / bandRows, [&](size_t band) {
    for (const Chunk& chunk : chunks) {
      rasterBand(chunk, verticesOf(*chunk.draw), static_cast<uint32_t>(band), surface_);
    }
  });
}

void Renderer::clearColor(uint32_t color) {
  pool_.run(surface_.height, [&](size_t y) {
    std::fill_n(surface_.colorRow(static_cast<uint32_t>(y)), surface_.width, color | 0xFF000000);
  });
}

void Renderer::clearDepth(float depth) {
  pool_.run(surface_.height, [&](size_t y) {
    std::fill_n(surface_.depthRow(static_cast<uint32_t>(y)), surface_.width + Surface::padding, depth);
  });
}

}  // namespace facet
