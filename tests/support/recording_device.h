#pragma once

#include <cstring>
#include <functional>
#include <memory>
#include <vector>

#include "device/device.h"

namespace facet {

/// What a recording device hands out: the contents as they were given.
struct RecordedVertices final : IDirect3DVertexBuffer9 {
  uint32_t fvf = 0;
  std::vector<std::byte> bytes;
};
struct RecordedIndices final : IDirect3DIndexBuffer9 {
  std::vector<uint16_t> indices;
};
struct RecordedTexture final : IDirect3DTexture9 {
  D3DFORMAT format = D3DFMT_UNKNOWN;
  std::vector<ImageLevel> levels;
};

/// One draw: its state and its geometry.
struct RecordedDraw {
  DeviceState state;
  std::shared_ptr<RecordedVertices> vertices;
  std::shared_ptr<RecordedIndices> indices;  ///< of an indexed draw
  D3DPRIMITIVETYPE type = D3DPT_TRIANGLELIST;
  uint32_t startVertex = 0, primitiveCount = 0;  ///< of a draw without indices
};

/// A device that draws nothing: it holds the draws of the last frame and keeps buffers and textures in
/// memory.
class RecordingDevice : public IDirect3DDevice9 {
 public:
  std::vector<RecordedDraw> draws;  ///< since the last Clear
  D3DCOLOR cleared = 0;             ///< the colour of the last Clear
  size_t clears = 0, presents = 0, resets = 0;

  HRESULT cooperativeLevel = D3D_OK;
  size_t created = 0;               ///< buffers and textures
  size_t creationsLeft = SIZE_MAX;  ///< after these, creators give none
  D3DCAPS9 caps{16384, 16384, 16, 0, 0};
  uint32_t availableTextureMem = 256u << 20;

  /// Buffers and textures that were created and not yet released.
  long liveObjects() const { return live_.use_count() - 1; }

  HRESULT TestCooperativeLevel() override { return cooperativeLevel; }
  HRESULT Reset(const D3DPRESENT_PARAMETERS& parameters) override;
  HRESULT GetDeviceCaps(D3DCAPS9* result) override;
  uint32_t GetAvailableTextureMem() override { return availableTextureMem; }
  std::shared_ptr<IDirect3DVertexBuffer9> CreateVertexBuffer(uint32_t fvf,
                                                             std::vector<std::byte> vertices) override;
  std::shared_ptr<IDirect3DIndexBuffer9> CreateIndexBuffer(std::vector<uint16_t> indices) override;
  std::shared_ptr<IDirect3DTexture9> CreateTexture(D3DFORMAT format, std::vector<ImageLevel> levels) override;
  void Clear(D3DCOLOR color) override;
  void Present() override { ++presents; }
  void DrawPrimitive(D3DPRIMITIVETYPE type, const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                     uint32_t startVertex, uint32_t primitiveCount) override;
  void DrawIndexedPrimitive(const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                            const std::shared_ptr<IDirect3DIndexBuffer9>& indices) override;

 private:
  template <class T>
  std::shared_ptr<T> create();

  std::shared_ptr<int> live_ = std::make_shared<int>();
};

/// What a recording device's vertex buffer holds.
template <class V>
std::vector<V> contents(const std::shared_ptr<IDirect3DVertexBuffer9>& buffer) {
  const std::vector<std::byte>& bytes = static_cast<RecordedVertices&>(*buffer).bytes;
  std::vector<V> vertices(bytes.size() / sizeof(V));
  std::memcpy(static_cast<void*>(vertices.data()), bytes.data(), bytes.size());
  return vertices;
}

/// The root object that hands out recording devices. `createResult` decides which requests succeed.
class RecordingDirect3D : public IDirect3D9 {
 public:
  struct Request {
    D3DDEVTYPE type;
    uint32_t behaviorFlags;
    D3DPRESENT_PARAMETERS parameters;
  };
  std::vector<Request> requests;  ///< each CreateDevice, in order
  std::function<HRESULT(const Request&)> createResult = [](const Request&) { return D3D_OK; };
  D3DDISPLAYMODE displayMode{1280, 720, 60, D3DFMT_X8R8G8B8};
  D3DADAPTER_IDENTIFIER9 identifier;
  D3DCAPS9 caps{16384, 16384, 16, 0, 0};
  std::vector<void*> softwareDevices;  ///< each RegisterSoftwareDevice, in order
  std::shared_ptr<RecordingDevice> device = std::make_shared<RecordingDevice>();  ///< what CreateDevice gives

  HRESULT RegisterSoftwareDevice(void* initialize) override;
  HRESULT GetAdapterDisplayMode(uint32_t adapter, D3DDISPLAYMODE* mode) override;
  HRESULT GetAdapterIdentifier(uint32_t adapter, D3DADAPTER_IDENTIFIER9* result) override;
  HRESULT GetDeviceCaps(uint32_t adapter, D3DDEVTYPE type, D3DCAPS9* result) override;
  HRESULT CreateDevice(uint32_t adapter, D3DDEVTYPE type, void* window, uint32_t behaviorFlags,
                       D3DPRESENT_PARAMETERS* parameters,
                       std::shared_ptr<IDirect3DDevice9>* created) override;
};

}  // namespace facet
