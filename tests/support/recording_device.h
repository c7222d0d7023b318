#pragma once

#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "device/device.h"

namespace facet {

/// One call of a device operation.
struct DeviceCall {
  std::string name;  ///< "SetRenderState"
  std::vector<double>
      values;  ///< the numbers in parameter order; matrices, materials and lights member by member
  const void* object = nullptr;  ///< the buffer or texture that was handed over

  bool operator==(const DeviceCall&) const = default;
};
void PrintTo(const DeviceCall& call, std::ostream* out);

/// A device that draws nothing: it holds the calls in order and hands out buffers and textures in memory.
class RecordingDevice : public IDirect3DDevice9 {
 public:
  /// Every call in order. Lock and Unlock are not recorded.
  std::vector<DeviceCall> calls;

  /// What an operation of this name returns instead of D3D_OK; a creator then creates nothing. With
  /// `failAfter[name]` = n the first n calls still succeed.
  std::map<std::string, HRESULT, std::less<>> results;
  std::map<std::string, uint32_t, std::less<>> failAfter;

  D3DCAPS9 caps{16384, 16384, 16, 0, 0};
  uint32_t availableTextureMem = 256u << 20;

  /// Buffers and textures that were created and not yet released.
  long liveObjects() const { return live_.use_count() - 1; }

  /// The calls of one name, in order.
  std::vector<DeviceCall> callsOf(std::string_view name) const;

  HRESULT TestCooperativeLevel() override;
  HRESULT Reset(const D3DPRESENT_PARAMETERS& parameters) override;
  HRESULT GetDeviceCaps(D3DCAPS9* result) override;
  uint32_t GetAvailableTextureMem() override;
  HRESULT CreateVertexBuffer(uint32_t length, uint32_t usage, uint32_t fvf, D3DPOOL pool,
                             std::shared_ptr<IDirect3DVertexBuffer9>* created) override;
  HRESULT CreateIndexBuffer(uint32_t length, uint32_t usage, D3DFORMAT format, D3DPOOL pool,
                            std::shared_ptr<IDirect3DIndexBuffer9>* created) override;
  HRESULT CreateTexture(uint32_t width, uint32_t height, uint32_t levels, uint32_t usage, D3DFORMAT format,
                        D3DPOOL pool, std::shared_ptr<IDirect3DTexture9>* created) override;
  HRESULT BeginScene() override;
  HRESULT Clear(uint32_t flags, D3DCOLOR color, float z, uint32_t stencil) override;
  HRESULT EndScene() override;
  HRESULT Present() override;
  HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix) override;
  HRESULT SetRenderState(D3DRENDERSTATETYPE state, uint32_t value) override;
  HRESULT SetSamplerState(uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value) override;
  HRESULT SetTextureStageState(uint32_t stage, D3DTEXTURESTAGESTATETYPE type, uint32_t value) override;
  HRESULT SetMaterial(const D3DMATERIAL9& material) override;
  HRESULT SetLight(uint32_t index, const D3DLIGHT9& light) override;
  HRESULT LightEnable(uint32_t index, bool enable) override;
  HRESULT SetFVF(uint32_t fvf) override;
  HRESULT SetStreamSource(uint32_t stream, std::shared_ptr<IDirect3DVertexBuffer9> buffer, uint32_t offset,
                          uint32_t stride) override;
  HRESULT SetIndices(std::shared_ptr<IDirect3DIndexBuffer9> buffer) override;
  HRESULT SetTexture(uint32_t stage, std::shared_ptr<IDirect3DTexture9> texture) override;
  HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, uint32_t startVertex, uint32_t primitiveCount) override;
  HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, int32_t baseVertex, uint32_t minIndex,
                               uint32_t vertexCount, uint32_t startIndex, uint32_t primitiveCount) override;

 private:
  HRESULT record(std::string_view name, std::vector<double> values = {}, const void* object = nullptr);

  /// Ties an object to the count of live ones.
  template <class T>
  std::shared_ptr<T> counted(std::shared_ptr<T> object) {
    T* raw = object.get();
    return {raw, [object = std::move(object), live = live_](T*) {}};
  }

  std::shared_ptr<int> live_ = std::make_shared<int>();
};

/// The root object that hands out recording devices. `createResult` decides which requests succeed.
class RecordingDirect3D : public IDirect3D9 {
 public:
  struct Request {
    uint32_t adapter;
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
