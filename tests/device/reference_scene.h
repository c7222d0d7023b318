#pragma once

#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "device/reference/device.h"

namespace facet {

/// A vertex as the scenes give it: places in pixels (or in the units of the transforms), everything else
/// optional.
struct SceneVertex {
  float x = 0, y = 0, z = 0.5f;
  uint32_t color = 0xFFFFFFFF;
  float u = 0, v = 0;
  D3DVECTOR normal{0, 0, -1};
};

/// A reference device with a small picture, black, without lighting or culling. Its world transform maps
/// pixels onto the picture, so that tests speak of pixels.
class Scene {
 public:
  explicit Scene(uint32_t width = 16, uint32_t height = 16, uint32_t threads = 1) {
    D3DPRESENT_PARAMETERS parameters;
    parameters.BackBufferWidth = width;
    parameters.BackBufferHeight = height;
    parameters.EnableAutoDepthStencil = true;
    parameters.AutoDepthStencilFormat = D3DFMT_D24S8;
    ReferenceDevice::create(parameters, threads, &device);
    D3DMATRIX pixels;
    pixels.m = {{{2 / float(width), 0, 0, 0}, {0, -2 / float(height), 0, 0}, {0, 0, 1, 0}, {-1, 1, 0, 1}}};
    device->SetTransform(D3DTS_PROJECTION, pixels);
    device->SetRenderState(D3DRS_LIGHTING, 0);
    device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
    device->Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0xFF000000, 1, 0);
  }

  void triangles(std::span<const SceneVertex> vertices) {
    setVertices(vertices);
    device->DrawPrimitive(D3DPT_TRIANGLELIST, 0, static_cast<uint32_t>(vertices.size() / 3));
  }

  void indexed(std::span<const SceneVertex> vertices, std::span<const uint16_t> indices) {
    setVertices(vertices);
    std::shared_ptr<IDirect3DIndexBuffer9> buffer;
    device->CreateIndexBuffer(static_cast<uint32_t>(indices.size() * 2), 0, D3DFMT_INDEX16, D3DPOOL_MANAGED,
                              &buffer);
    void* to;
    buffer->Lock(0, 0, &to, 0);
    std::memcpy(to, indices.data(), indices.size() * 2);
    device->SetIndices(buffer);
    device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, static_cast<uint32_t>(vertices.size()), 0,
                                 static_cast<uint32_t>(indices.size() / 3));
  }

  /// A rectangle of pixels with texture coordinates 0, 0 to 1, 1.
  void rectangle(float left, float top, float right, float bottom, float z = 0.5f,
                 uint32_t color = 0xFFFFFFFF) {
    const SceneVertex corners[] = {{left, top, z, color, 0, 0},
                                   {right, top, z, color, 1, 0},
                                   {left, bottom, z, color, 0, 1},
                                   {right, bottom, z, color, 1, 1}};
    setVertices(corners);
    device->DrawPrimitive(D3DPT_TRIANGLESTRIP, 0, 2);
  }

  void line(SceneVertex from, SceneVertex to) {
    const SceneVertex ends[] = {from, to};
    setVertices(ends);
    device->DrawPrimitive(D3DPT_LINELIST, 0, 1);
  }

  void setVertices(std::span<const SceneVertex> vertices) {
    constexpr uint32_t stride = 36;
    std::shared_ptr<IDirect3DVertexBuffer9> buffer;
    device->CreateVertexBuffer(static_cast<uint32_t>(vertices.size()) * stride, 0, 0x152, D3DPOOL_MANAGED,
                               &buffer);
    void* locked;
    buffer->Lock(0, 0, &locked, 0);
    auto* to = static_cast<std::byte*>(locked);
    for (const SceneVertex& v : vertices) {
      const float position[] = {v.x, v.y, v.z, v.normal.x, v.normal.y, v.normal.z};
      const float uv[] = {v.u, v.v};
      std::memcpy(to, position, 24);
      std::memcpy(to + 24, &v.color, 4);
      std::memcpy(to + 28, uv, 8);
      to += stride;
    }
    device->SetFVF(D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE | D3DFVF_TEX1);
    device->SetStreamSource(0, buffer, 0, stride);
  }

  /// Sets a texture whose levels follow each other in `texels`, the first of `width` x `height`.
  void texture(uint32_t width, uint32_t height, uint32_t levels, const std::vector<uint32_t>& texels) {
    std::shared_ptr<IDirect3DTexture9> created;
    device->CreateTexture(width, height, levels, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &created);
    const uint32_t* from = texels.data();
    for (uint32_t i = 0; i < levels; ++i) {
      D3DSURFACE_DESC desc;
      D3DLOCKED_RECT locked;
      created->GetLevelDesc(i, &desc);
      created->LockRect(i, &locked);
      std::memcpy(locked.pBits, from, size_t{desc.Width} * desc.Height * 4);
      from += size_t{desc.Width} * desc.Height;
    }
    device->SetTexture(0, created);
  }

  void filter(uint32_t minification, uint32_t magnification, uint32_t mip) {
    device->SetSamplerState(0, D3DSAMP_MINFILTER, minification);
    device->SetSamplerState(0, D3DSAMP_MAGFILTER, magnification);
    device->SetSamplerState(0, D3DSAMP_MIPFILTER, mip);
  }

  /// 0xRRGGBB.
  uint32_t pixel(uint32_t x, uint32_t y) { return device->backBuffer()[y * device->width() + x] & 0xFFFFFF; }

  uint32_t coveredPixels() {
    uint32_t count = 0;
    for (const uint32_t color : device->backBuffer()) count += (color & 0xFFFFFF) != 0;
    return count;
  }

  std::shared_ptr<ReferenceDevice> device;
};

}  // namespace facet
