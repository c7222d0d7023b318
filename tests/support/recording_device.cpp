#include "support/recording_device.h"

#include <algorithm>
#include <iterator>

#include "device/reference/resources.h"

namespace facet {
namespace {

void append(std::vector<double>& values, const D3DCOLORVALUE& color) {
  values.insert(values.end(), {color.r, color.g, color.b, color.a});
}

void append(std::vector<double>& values, const D3DVECTOR& vector) {
  values.insert(values.end(), {vector.x, vector.y, vector.z});
}

}  // namespace

void PrintTo(const DeviceCall& call, std::ostream* out) {
  *out << call.name << '(';
  const char* separator = "";
  for (const double value : call.values) {
    *out << separator << value;
    separator = ", ";
  }
  if (call.object) *out << separator << call.object;
  *out << ')';
}

std::vector<DeviceCall> RecordingDevice::callsOf(std::string_view name) const {
  std::vector<DeviceCall> found;
  std::ranges::copy_if(calls, std::back_inserter(found),
                       [&](const DeviceCall& call) { return call.name == name; });
  return found;
}

HRESULT RecordingDevice::record(std::string_view name, std::vector<double> values, const void* object) {
  calls.push_back({std::string(name), std::move(values), object});
  const auto result = results.find(name);
  if (result == results.end()) return D3D_OK;
  if (const auto spared = failAfter.find(name); spared != failAfter.end() && spared->second > 0) {
    --spared->second;
    return D3D_OK;
  }
  return result->second;
}

HRESULT RecordingDevice::TestCooperativeLevel() {
  return record("TestCooperativeLevel");
}

HRESULT RecordingDevice::Reset(const D3DPRESENT_PARAMETERS& parameters) {
  return record("Reset", {double(parameters.BackBufferWidth), double(parameters.BackBufferHeight)});
}

HRESULT RecordingDevice::GetDeviceCaps(D3DCAPS9* result) {
  *result = caps;
  return record("GetDeviceCaps");
}

uint32_t RecordingDevice::GetAvailableTextureMem() {
  record("GetAvailableTextureMem");
  return availableTextureMem;
}

HRESULT RecordingDevice::CreateVertexBuffer(uint32_t length, uint32_t usage, uint32_t fvf, D3DPOOL pool,
                                            std::shared_ptr<IDirect3DVertexBuffer9>* created) {
  created->reset();
  HRESULT result = record("CreateVertexBuffer", {double(length), double(usage), double(fvf), double(pool)});
  if (result != D3D_OK) return result;
  result = createReferenceVertexBuffer(length, created);
  if (result == D3D_OK) *created = counted(*created);
  return result;
}

HRESULT RecordingDevice::CreateIndexBuffer(uint32_t length, uint32_t usage, D3DFORMAT format, D3DPOOL pool,
                                           std::shared_ptr<IDirect3DIndexBuffer9>* created) {
  created->reset();
  HRESULT result = record("CreateIndexBuffer", {double(length), double(usage), double(format), double(pool)});
  if (result != D3D_OK) return result;
  result = createReferenceIndexBuffer(length, format, created);
  if (result == D3D_OK) *created = counted(*created);
  return result;
}

HRESULT RecordingDevice::CreateTexture(uint32_t width, uint32_t height, uint32_t levels, uint32_t usage,
                                       D3DFORMAT format, D3DPOOL pool,
                                       std::shared_ptr<IDirect3DTexture9>* created) {
  created->reset();
  HRESULT result = record("CreateTexture", {double(width), double(height), double(levels), double(usage),
                                            double(format), double(pool)});
  if (result != D3D_OK) return result;
  result = createReferenceTexture(width, height, levels, format, caps.MaxTextureWidth, created);
  if (result == D3D_OK) *created = counted(*created);
  return result;
}

HRESULT RecordingDevice::BeginScene() {
  return record("BeginScene");
}

HRESULT RecordingDevice::Clear(uint32_t flags, D3DCOLOR color, float z, uint32_t stencil) {
  return record("Clear", {double(flags), double(color), z, double(stencil)});
}

HRESULT RecordingDevice::EndScene() {
  return record("EndScene");
}

HRESULT RecordingDevice::Present() {
  return record("Present");
}

HRESULT RecordingDevice::SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix) {
  std::vector<double> values{double(state)};
  for (const auto& row : matrix.m) values.insert(values.end(), row.begin(), row.end());
  return record("SetTransform", std::move(values));
}

HRESULT RecordingDevice::SetRenderState(D3DRENDERSTATETYPE state, uint32_t value) {
  return record("SetRenderState", {double(state), double(value)});
}

HRESULT RecordingDevice::SetSamplerState(uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value) {
  return record("SetSamplerState", {double(sampler), double(type), double(value)});
}

HRESULT RecordingDevice::SetTextureStageState(uint32_t stage, D3DTEXTURESTAGESTATETYPE type, uint32_t value) {
  return record("SetTextureStageState", {double(stage), double(type), double(value)});
}

HRESULT RecordingDevice::SetMaterial(const D3DMATERIAL9& material) {
  std::vector<double> values;
  for (const auto& color : {material.Diffuse, material.Ambient, material.Specular, material.Emissive}) {
    append(values, color);
  }
  values.push_back(material.Power);
  return record("SetMaterial", std::move(values));
}

HRESULT RecordingDevice::SetLight(uint32_t index, const D3DLIGHT9& light) {
  std::vector<double> values{double(index), double(light.Type)};
  for (const auto& color : {light.Diffuse, light.Specular, light.Ambient}) append(values, color);
  append(values, light.Position);
  append(values, light.Direction);
  return record("SetLight", std::move(values));
}

HRESULT RecordingDevice::LightEnable(uint32_t index, bool enable) {
  return record("LightEnable", {double(index), double(enable)});
}

HRESULT RecordingDevice::SetFVF(uint32_t fvf) {
  return record("SetFVF", {double(fvf)});
}

HRESULT RecordingDevice::SetStreamSource(uint32_t stream, std::shared_ptr<IDirect3DVertexBuffer9> buffer,
                                         uint32_t offset, uint32_t stride) {
  return record("SetStreamSource", {double(stream), double(offset), double(stride)}, buffer.get());
}

HRESULT RecordingDevice::SetIndices(std::shared_ptr<IDirect3DIndexBuffer9> buffer) {
  return record("SetIndices", {}, buffer.get());
}

HRESULT RecordingDevice::SetTexture(uint32_t stage, std::shared_ptr<IDirect3DTexture9> texture) {
  return record("SetTexture", {double(stage)}, texture.get());
}

HRESULT RecordingDevice::DrawPrimitive(D3DPRIMITIVETYPE type, uint32_t startVertex, uint32_t primitiveCount) {
  return record("DrawPrimitive", {double(type), double(startVertex), double(primitiveCount)});
}

HRESULT RecordingDevice::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, int32_t baseVertex, uint32_t minIndex,
                                              uint32_t vertexCount, uint32_t startIndex,
                                              uint32_t primitiveCount) {
  return record("DrawIndexedPrimitive", {double(type), double(baseVertex), double(minIndex),
                                         double(vertexCount), double(startIndex), double(primitiveCount)});
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

HRESULT RecordingDirect3D::CreateDevice(uint32_t adapter, D3DDEVTYPE type, void*, uint32_t behaviorFlags,
                                        D3DPRESENT_PARAMETERS* parameters,
                                        std::shared_ptr<IDirect3DDevice9>* created) {
  created->reset();
  requests.push_back({adapter, type, behaviorFlags, *parameters});
  const HRESULT result = createResult(requests.back());
  if (result == D3D_OK) *created = device;
  return result;
}

}  // namespace facet
