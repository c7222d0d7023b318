#pragma once

#include <cstring>
#include <span>
#include <vector>

#include "device/device.h"

// Small things to draw with, the same on every device.

namespace facet {

struct ColorVertex {
  static constexpr uint32_t fvf = D3DFVF_XYZ | D3DFVF_DIFFUSE;
  float x, y, z;
  D3DCOLOR color;
};
struct LitVertex {
  static constexpr uint32_t fvf = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE;
  float x, y, z, nx, ny, nz;
  D3DCOLOR color;
};
struct TexturedVertex {
  static constexpr uint32_t fvf = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_TEX1;
  float x, y, z, nx, ny, nz, u, v;
};

inline D3DPRESENT_PARAMETERS backBuffer(uint32_t width, uint32_t height, D3DFORMAT depth = D3DFMT_D24X8) {
  D3DPRESENT_PARAMETERS result;
  result.BackBufferWidth = width;
  result.BackBufferHeight = height;
  result.BackBufferFormat = D3DFMT_X8R8G8B8;
  result.Windowed = result.EnableAutoDepthStencil = true;
  result.AutoDepthStencilFormat = depth;
  return result;
}

template <class Buffer, class T>
void fillBuffer(Buffer& buffer, std::span<const T> content) {
  void* data = nullptr;
  if (buffer.Lock(0, 0, &data, 0) != D3D_OK) return;
  std::memcpy(data, content.data(), content.size_bytes());
  buffer.Unlock();
}

template <class Vertex>
std::shared_ptr<IDirect3DVertexBuffer9> makeVertices(IDirect3DDevice9& device,
                                                     const std::vector<Vertex>& vertices) {
  std::shared_ptr<IDirect3DVertexBuffer9> buffer;
  device.CreateVertexBuffer(static_cast<uint32_t>(vertices.size() * sizeof(Vertex)), D3DUSAGE_WRITEONLY,
                            Vertex::fvf, D3DPOOL_MANAGED, &buffer);
  if (buffer) fillBuffer(*buffer, std::span(vertices));
  return buffer;
}

inline std::shared_ptr<IDirect3DIndexBuffer9> makeIndices(IDirect3DDevice9& device,
                                                          const std::vector<uint16_t>& indices) {
  std::shared_ptr<IDirect3DIndexBuffer9> buffer;
  device.CreateIndexBuffer(static_cast<uint32_t>(indices.size() * 2), D3DUSAGE_WRITEONLY, D3DFMT_INDEX16,
                           D3DPOOL_MANAGED, &buffer);
  if (buffer) fillBuffer(*buffer, std::span(indices));
  return buffer;
}

/// A texture of 32-bit texels; `texel(level, x, y)` gives 0xAARRGGBB.
template <class Texel>
std::shared_ptr<IDirect3DTexture9> makeTexture(IDirect3DDevice9& device, uint32_t width, uint32_t height,
                                               uint32_t levels, Texel texel) {
  std::shared_ptr<IDirect3DTexture9> texture;
  if (device.CreateTexture(width, height, levels, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &texture) != D3D_OK)
    return nullptr;
  for (uint32_t level = 0; level < texture->GetLevelCount(); ++level) {
    D3DSURFACE_DESC desc;
    D3DLOCKED_RECT locked;
    texture->GetLevelDesc(level, &desc);
    texture->LockRect(level, &locked);
    for (uint32_t y = 0; y < desc.Height; ++y) {
      for (uint32_t x = 0; x < desc.Width; ++x) {
        const uint32_t value = texel(level, x, y);
        std::memcpy(static_cast<std::byte*>(locked.pBits) + y * locked.Pitch + x * 4, &value, 4);
      }
    }
    texture->UnlockRect(level);
  }
  return texture;
}

template <class Vertex>
HRESULT drawVertices(IDirect3DDevice9& device, D3DPRIMITIVETYPE type, const std::vector<Vertex>& vertices,
                     uint32_t primitives) {
  device.SetFVF(Vertex::fvf);
  device.SetStreamSource(0, makeVertices(device, vertices), 0, sizeof(Vertex));
  return device.DrawPrimitive(type, 0, primitives);
}

}  // namespace facet
