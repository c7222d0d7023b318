#pragma once

#include <cstdint>
#include <memory>

#include "device/device.h"
#include "device/reference/draw.h"
#include "device/states.h"

namespace facet {

/// All that the setters of the device store.
struct ReferenceState : DeviceStates {
  uint32_t fvf = 0;
  std::shared_ptr<IDirect3DVertexBuffer9> vertices;
  uint32_t vertexOffset = 0, vertexStride = 0;
  std::shared_ptr<IDirect3DIndexBuffer9> indices;
  std::shared_ptr<IDirect3DTexture9> texture;
};

/// What a draw takes from the state: all but its range of vertices and primitives. False when the state lacks
/// a usable vertex buffer. The pool decodes a texture that is new. Throws std::bad_alloc.
bool setUpDraw(const ReferenceState& state, WorkerPool& pool, Draw& draw);

/// Where the parts of a vertex of this format lie.
VertexShape shapeOf(uint32_t fvf, uint32_t stride);

}  // namespace facet
