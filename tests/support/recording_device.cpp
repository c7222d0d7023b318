#include "support/recording_device.h"

#include <utility>

namespace facet {

/// An object that is tied to the count of live ones; none when the device has created enough.
template <class T>
std::shared_ptr<T> RecordingDevice::create() {
  if (creationsLeft == 0) return nullptr;
  --creationsLeft;
  ++created;
  return {new T, [live = live_](T* object) { delete object; }};
}

HRESULT RecordingDevice::Reset(const D3DPRESENT_PARAMETERS&) {
  ++resets;
  return D3D_OK;
}

HRESULT RecordingDevice::GetDeviceCaps(D3DCAPS9* result) {
  *result = caps;
  return D3D_OK;
}

std::shared_ptr<IDirect3DVertexBuffer9> RecordingDevice::CreateVertexBuffer(uint32_t fvf,
                                                                            std::vector<std::byte> vertices) {
  const auto buffer = create<RecordedVertices>();
  if (!buffer) return nullptr;
  buffer->fvf = fvf;
  buffer->bytes = std::move(vertices);
  return buffer;
}

std::shared_ptr<IDirect3DIndexBuffer9> RecordingDevice::CreateIndexBuffer(std::vector<uint16_t> indices) {
  const auto buffer = create<RecordedIndices>();
  if (buffer) buffer->indices = std::move(indices);
  return buffer;
}

std::shared_ptr<IDirect3DTexture9> RecordingDevice::CreateTexture(D3DFORMAT format,
                                                                  std::vector<ImageLevel> levels) {
  const auto texture = create<RecordedTexture>();
  if (!texture) return nullptr;
  texture->format = format;
  texture->levels = std::move(levels);
  return texture;
}

void RecordingDevice::Clear(D3DCOLOR color) {
  draws.clear();
  cleared = color;
  ++clears;
}

void RecordingDevice::DrawPrimitive(D3DPRIMITIVETYPE type,
                                    const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                                    uint32_t startVertex, uint32_t primitiveCount) {
  draws.push_back({state, std::static_pointer_cast<RecordedVertices>(vertices), nullptr, type, startVertex,
                   primitiveCount});
}

void RecordingDevice::DrawIndexedPrimitive(const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                                           const std::shared_ptr<IDirect3DIndexBuffer9>& indices) {
  draws.push_back({state, std::static_pointer_cast<RecordedVertices>(vertices),
                   std::static_pointer_cast<RecordedIndices>(indices)});
}

HRESULT RecordingDirect3D::RegisterSoftwareDevice(void* initialize) {
  softwareDevices.push_back(initialize);
  return D3D_OK;
}

HRESULT RecordingDirect3D::GetAdapterDisplayMode(uint32_t, D3DDISPLAYMODE* mode) {
  *mode = displayMode;
  return D3D_OK;
}

HRESULT RecordingDirect3D::GetAdapterIdentifier(uint32_t, D3DADAPTER_IDENTIFIER9* result) {
  *result = identifier;
  return D3D_OK;
}

HRESULT RecordingDirect3D::GetDeviceCaps(uint32_t, D3DDEVTYPE, D3DCAPS9* result) {
  *result = caps;
  return D3D_OK;
}

HRESULT RecordingDirect3D::CreateDevice(uint32_t, D3DDEVTYPE type, void*, uint32_t behaviorFlags,
                                        D3DPRESENT_PARAMETERS* parameters,
                                        std::shared_ptr<IDirect3DDevice9>* created) {
  created->reset();
  requests.push_back({type, behaviorFlags, *parameters});
  const HRESULT result = createResult(requests.back());
  if (result == D3D_OK) *created = device;
  return result;
}

}  // namespace facet
