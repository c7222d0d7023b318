#include "device/software/software_device.h"

#include <algorithm>

#include "platform/parallel.h"

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
  Surface sized;
  sized.width = width;
  sized.height = height;
  sized.color = std::make_unique_for_overwrite<uint32_t[]>(size_t{width} * height);
  sized.depth = std::make_unique_for_overwrite<float[]>(size_t{width + Surface::padding} * height);
  surface_ = std::move(sized);
  clear(0);
  viewport_ = viewportOf(width, height);
}

/// By all threads: a new surface's memory comes page by page, which is most of what a start spends here.
void Renderer::clear(uint32_t color) {
  dropWaiting();
  parallelFor(surface_.height, [&](size_t row) {
    const auto y = static_cast<uint32_t>(row);
    std::fill_n(surface_.colorRow(y), surface_.width, color | 0xFF000000);
    std::fill_n(surface_.depthRow(y), surface_.width + Surface::padding, 1.0f);
  });
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
  for (const Draw& draw : draws_)
    for (uint32_t begin = 0; begin < draw.vertexCount; begin += verticesPerPart)
      parts.push_back({&draw, begin, std::min(draw.vertexCount, begin + verticesPerPart)});
  parallelFor(parts.size(), [&](size_t i) {
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
  parallelFor(chunks.size(), [&](size_t i) {
    assemble(chunks[i], verticesOf(*chunks[i].draw), viewport_, surface_.width, surface_.height);
  });
  parallelFor((surface_.height + bandRows - 1) / bandRows, [&](size_t band) {
    for (const Chunk& chunk : chunks) {
      rasterBand(chunk, verticesOf(*chunk.draw), static_cast<uint32_t>(band), surface_);
    }
  });
}

}  // namespace facet
