#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "device/device.h"
#include "device/reference/draw.h"

namespace facet {

/// All that the setters of the device store; it starts with Direct3D's defaults. Only sampler 0, texture
/// stage 0, light 0 and stream 0 exist.
struct DeviceState {
  DeviceState();

  uint32_t render(D3DRENDERSTATETYPE state) const { return renderStates[state]; }

  std::array<uint32_t, D3DRS_AMBIENT + 1> renderStates{};
  std::array<uint32_t, D3DSAMP_MAXANISOTROPY + 1> samplerStates{};
  std::array<uint32_t, D3DTSS_ALPHAARG2 + 1> stageStates{};
  D3DMATRIX world, view, projection;
  D3DMATERIAL9 material;
  D3DLIGHT9 light;
  bool lightEnabled = false;
  uint32_t fvf = 0;
  std::shared_ptr<IDirect3DVertexBuffer9> vertices;
  uint32_t vertexOffset = 0, vertexStride = 0;
  std::shared_ptr<IDirect3DIndexBuffer9> indices;
  std::shared_ptr<IDirect3DTexture9> texture;
};

/// What a draw takes from the state: all but its range of vertices and primitives. False when the state lacks
/// a usable vertex buffer. The pool decodes a texture that is new.
bool setUpDraw(const DeviceState& state, WorkerPool& pool, Draw& draw);

/// Where the parts of a vertex of this format lie.
VertexLayout layoutOf(uint32_t fvf, uint32_t stride);

}  // namespace facet
