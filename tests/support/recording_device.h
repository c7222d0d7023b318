#pragma once

#include <cstring>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "device/device.h"

namespace facet {

/// What a recording device hands out: the contents as they were given.
struct RecordedVertices final : IDirect3DVertexBuffer9 {
  RecordedVertices(uint32_t format, std::vector<std::byte> given) : fvf(format), bytes(std::move(given)) {}
  uint32_t fvf;
  std::vector<std::byte> bytes;
};
struct RecordedIndices final : IDirect3DIndexBuffer9 {
  explicit RecordedIndices(std::vector<uint16_t> given) : indices(std::move(given)) {}
  std::vector<uint16_t> indices;
};
struct RecordedTexture final : IDirect3DTexture9 {
  RecordedTexture(D3DFORMAT f, std::vector<ImageLevel> given) : format(f), levels(std::move(given)) {}
  D3DFORMAT format;
  std::vector<ImageLevel> levels;
};

/// One draw: its state and its geometry.
struct RecordedDraw {
  DeviceState state;
  std::shared_ptr<IDirect3DVertexBuffer9> vertices;
  std::shared_ptr<IDirect3DIndexBuffer9> indices;  ///< of an indexed draw
  D3DPRIMITIVETYPE type = D3DPT_TRIANGLELIST;
  uint32_t startVertex = 0, primitiveCount = 0;  ///< of a draw without indices
};

/// A device that draws nothing and holds the draws of the last frame.
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
  HRESULT Reset(const D3DPRESENT_PARAMETERS&) override {
    ++resets;
    return D3D_OK;
  }
  HRESULT GetDeviceCaps(D3DCAPS9* result) override {
    *result = caps;
    return D3D_OK;
  }
  uint32_t GetAvailableTextureMem() override { return availableTextureMem; }
  std::shared_ptr<IDirect3DVertexBuffer9> CreateVertexBuffer(uint32_t fvf,
                                                             std::vector<std::byte> vertices) override {
    return create<RecordedVertices>(fvf, std::move(vertices));
  }
  std::shared_ptr<IDirect3DIndexBuffer9> CreateIndexBuffer(std::vector<uint16_t> indices) override {
    return create<RecordedIndices>(std::move(indices));
  }
  std::shared_ptr<IDirect3DTexture9> CreateTexture(D3DFORMAT format,
                                                   std::vector<ImageLevel> levels) override {
    return create<RecordedTexture>(format, std::move(levels));
  }
  void Clear(D3DCOLOR color) override {
    draws.clear();
    cleared = color;
    ++clears;
  }
  void Present() override { ++presents; }
  void DrawPrimitive(D3DPRIMITIVETYPE type, const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                     uint32_t startVertex, uint32_t primitiveCount) override {
    draws.push_back({state, vertices, nullptr, type, startVertex, primitiveCount});
  }
  void DrawIndexedPrimitive(const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                            const std::shared_ptr<IDirect3DIndexBuffer9>& indices) override {
    draws.push_back({state, vertices, indices});
  }

 private:
  /// An object that is tied to the count of live ones; none when the device has created enough.
  template <class T, class... Parts>
  std::shared_ptr<T> create(Parts... parts) {
    if (creationsLeft == 0) return nullptr;
    --creationsLeft;
    ++created;
    return {new T(std::move(parts)...), [live = live_](T* object) { delete object; }};
  }

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
  D3DADAPTER_IDENTIFIER9 identifier;
  D3DCAPS9 hardwareCaps, referenceCaps;
  std::vector<void*> softwareDevices;  ///< each RegisterSoftwareDevice, in order
  std::shared_ptr<RecordingDevice> device = std::make_shared<RecordingDevice>();  ///< what CreateDevice gives

  HRESULT RegisterSoftwareDevice(void* initialize) override {
    softwareDevices.push_back(initialize);
    return D3D_OK;
  }
  HRESULT GetAdapterDisplayMode(uint32_t, D3DDISPLAYMODE* mode) override {
    *mode = {1280, 720, 60, D3DFMT_X8R8G8B8};
    return D3D_OK;
  }
  HRESULT GetAdapterIdentifier(uint32_t, D3DADAPTER_IDENTIFIER9* result) override {
    *result = identifier;
    return D3D_OK;
  }
  HRESULT GetDeviceCaps(uint32_t adapter, D3DDEVTYPE type, D3DCAPS9* result) override {
    if (adapter == D3DADAPTER_DEFAULT) *result = type == D3DDEVTYPE_HAL ? hardwareCaps : referenceCaps;
    return D3D_OK;
  }
  HRESULT CreateDevice(uint32_t, D3DDEVTYPE type, void*, uint32_t behaviorFlags,
                       D3DPRESENT_PARAMETERS* parameters,
                       std::shared_ptr<IDirect3DDevice9>* result) override {
    result->reset();
    requests.push_back({type, behaviorFlags, *parameters});
    const HRESULT answer = createResult(requests.back());
    if (answer == D3D_OK) *result = device;
    return answer;
  }
};

}  // namespace facet
