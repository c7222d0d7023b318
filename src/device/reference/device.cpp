#include "device/reference/device.h"

#include <algorithm>

namespace facet {

struct PrimitiveKind {
  D3DPRIMITIVETYPE type;
  Draw::Kind kind;
  uint32_t first, each;  ///< vertices of the first primitive, and of each further one
};

namespace {

constexpr D3DFORMAT depthFormats[] = {D3DFMT_D32,   D3DFMT_D15S1,   D3DFMT_D24S8,
                                      D3DFMT_D24X8, D3DFMT_D24X4S4, D3DFMT_D16};

/// Memory is the machine's own; the figure is what a viewer's textures may well take.
constexpr uint32_t textureMemory = 1u << 30;

bool isPossible(const D3DPRESENT_PARAMETERS& parameters) {
  const auto fits = [](uint32_t size) { return size >= 1 && size <= ReferenceDevice::maximumSurfaceSize; };
  if (!fits(parameters.BackBufferWidth) || !fits(parameters.BackBufferHeight)) return false;
  return !parameters.EnableAutoDepthStencil ||
         std::ranges::count(depthFormats, parameters.AutoDepthStencilFormat) > 0;
}

constexpr PrimitiveKind kinds[] = {
    {D3DPT_LINELIST, Draw::lineList, 2, 2},
    {D3DPT_TRIANGLELIST, Draw::triangleList, 3, 3},
    {D3DPT_TRIANGLESTRIP, Draw::triangleStrip, 3, 1},
};

const PrimitiveKind* kindOf(D3DPRIMITIVETYPE type) {
  const auto* kind = std::ranges::find(kinds, type, &PrimitiveKind::type);
  return kind == std::end(kinds) ? nullptr : kind;
}

/// How many whole primitives `count` vertices or indices make.
uint32_t primitivesOf(const PrimitiveKind& kind, uint64_t count) {
  return count < kind.first ? 0 : static_cast<uint32_t>((count - kind.first) / kind.each + 1);
}

}  // namespace

D3DCAPS9 referenceCaps() {
  return {.MaxTextureWidth = ReferenceDevice::maximumTextureSize,
          .MaxTextureHeight = ReferenceDevice::maximumTextureSize,
          .MaxAnisotropy = 16};
}

HRESULT ReferenceDevice::create(const D3DPRESENT_PARAMETERS& parameters, uint32_t threads,
                                std::shared_ptr<ReferenceDevice>* created) {
  created->reset();
  if (!isPossible(parameters)) return D3DERR_NOTAVAILABLE;
  std::shared_ptr<ReferenceDevice> device(new ReferenceDevice(threads));
  if (const HRESULT result = device->Reset(parameters); result != D3D_OK) return result;
  *created = std::move(device);
  return D3D_OK;
}

std::span<const uint32_t> ReferenceDevice::backBuffer() {
  renderer_.finish();
  return renderer_.surface().color;
}

HRESULT ReferenceDevice::Reset(const D3DPRESENT_PARAMETERS& parameters) {
  if (!isPossible(parameters)) return D3DERR_INVALIDCALL;
  try {
    renderer_.resize(parameters.BackBufferWidth, parameters.BackBufferHeight);
  } catch (const std::bad_alloc&) {
    return D3DERR_OUTOFVIDEOMEMORY;
  }
  state_ = DeviceState();
  state_.renderStates[D3DRS_ZENABLE] = parameters.EnableAutoDepthStencil ? D3DZB_TRUE : D3DZB_FALSE;
  return D3D_OK;
}

HRESULT ReferenceDevice::GetDeviceCaps(D3DCAPS9* caps) {
  *caps = referenceCaps();
  return D3D_OK;
}

uint32_t ReferenceDevice::GetAvailableTextureMem() {
  return textureMemory;
}

HRESULT ReferenceDevice::CreateVertexBuffer(uint32_t length, uint32_t, uint32_t, D3DPOOL,
                                            std::shared_ptr<IDirect3DVertexBuffer9>* created) {
  return createReferenceVertexBuffer(length, created);
}

HRESULT ReferenceDevice::CreateIndexBuffer(uint32_t length, uint32_t, D3DFORMAT format, D3DPOOL,
                                           std::shared_ptr<IDirect3DIndexBuffer9>* created) {
  return createReferenceIndexBuffer(length, format, created);
}

HRESULT ReferenceDevice::CreateTexture(uint32_t width, uint32_t height, uint32_t levels, uint32_t,
                                       D3DFORMAT format, D3DPOOL,
                                       std::shared_ptr<IDirect3DTexture9>* created) {
  return createReferenceTexture(width, height, levels, format, maximumTextureSize, created);
}

HRESULT ReferenceDevice::Clear(uint32_t flags, D3DCOLOR color, float z, uint32_t) {
  if (flags & D3DCLEAR_TARGET) renderer_.clearColor(color);
  if (flags & D3DCLEAR_ZBUFFER) renderer_.clearDepth(z);
  return D3D_OK;
}

HRESULT ReferenceDevice::Present() {
  renderer_.finish();
  return D3D_OK;
}

HRESULT ReferenceDevice::SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix) {
  switch (state) {
    case D3DTS_WORLD:
      state_.world = matrix;
      return D3D_OK;
    case D3DTS_VIEW:
      state_.view = matrix;
      return D3D_OK;
    case D3DTS_PROJECTION:
      state_.projection = matrix;
      return D3D_OK;
  }
  return D3DERR_INVALIDCALL;
}

HRESULT ReferenceDevice::SetRenderState(D3DRENDERSTATETYPE state, uint32_t value) {
  if (state >= state_.renderStates.size()) return D3DERR_INVALIDCALL;
  state_.renderStates[state] = value;
  return D3D_OK;
}

HRESULT ReferenceDevice::SetSamplerState(uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value) {
  if (sampler != 0 || type >= state_.samplerStates.size()) return D3DERR_INVALIDCALL;
  state_.samplerStates[type] = value;
  return D3D_OK;
}

HRESULT ReferenceDevice::SetTextureStageState(uint32_t stage, D3DTEXTURESTAGESTATETYPE type, uint32_t value) {
  if (stage != 0 || type >= state_.stageStates.size()) return D3DERR_INVALIDCALL;
  state_.stageStates[type] = value;
  return D3D_OK;
}

HRESULT ReferenceDevice::SetMaterial(const D3DMATERIAL9& material) {
  state_.material = material;
  return D3D_OK;
}

HRESULT ReferenceDevice::SetLight(uint32_t index, const D3DLIGHT9& light) {
  if (index != 0) return D3DERR_INVALIDCALL;
  state_.light = light;
  return D3D_OK;
}

HRESULT ReferenceDevice::LightEnable(uint32_t index, bool enable) {
  if (index != 0) return D3DERR_INVALIDCALL;
  state_.lightEnabled = enable;
  return D3D_OK;
}

HRESULT ReferenceDevice::SetFVF(uint32_t fvf) {
  state_.fvf = fvf;
  return D3D_OK;
}

HRESULT ReferenceDevice::SetStreamSource(uint32_t stream, std::shared_ptr<IDirect3DVertexBuffer9> buffer,
                                         uint32_t offset, uint32_t stride) {
  if (stream != 0) return D3DERR_INVALIDCALL;
  state_.vertices = std::move(buffer);
  state_.vertexOffset = offset;
  state_.vertexStride = stride;
  return D3D_OK;
}

HRESULT ReferenceDevice::SetIndices(std::shared_ptr<IDirect3DIndexBuffer9> buffer) {
  state_.indices = std::move(buffer);
  return D3D_OK;
}

HRESULT ReferenceDevice::SetTexture(uint32_t stage, std::shared_ptr<IDirect3DTexture9> texture) {
  if (stage != 0) return D3DERR_INVALIDCALL;
  state_.texture = std::move(texture);
  return D3D_OK;
}

/// Adds a draw from `firstVertex` on, cut to the vertices that the buffer holds. A draw without indices gets
/// as many primitives as these make, one with indices has its own number already.
HRESULT ReferenceDevice::draw(Draw& draw, int64_t firstVertex, uint64_t vertexCount,
                              const PrimitiveKind& kind) {
  if (firstVertex < 0 || !setUpDraw(state_, pool_, draw)) return D3DERR_INVALIDCALL;
  draw.kind = kind.kind;
  draw.vertexOffset = state_.vertexOffset + static_cast<uint64_t>(firstVertex) * draw.layout.stride;
  const uint64_t bytes = draw.vertices->size();
  if (draw.vertexOffset + draw.layout.size > bytes) return D3D_OK;
  const uint64_t held = (bytes - draw.vertexOffset - draw.layout.size) / draw.layout.stride + 1;
  draw.vertexCount = static_cast<uint32_t>(std::min(vertexCount, held));
  if (!draw.indices) draw.primitiveCount = primitivesOf(kind, draw.vertexCount);
  if (draw.vertexCount > 0 && draw.primitiveCount > 0) renderer_.add(std::move(draw));
  return D3D_OK;
}

HRESULT ReferenceDevice::DrawPrimitive(D3DPRIMITIVETYPE type, uint32_t startVertex, uint32_t primitiveCount) {
  const PrimitiveKind* kind = kindOf(type);
  if (!kind || primitiveCount == 0) return D3DERR_INVALIDCALL;
  Draw waiting;
  return draw(waiting, startVertex, kind->first + uint64_t{primitiveCount - 1} * kind->each, *kind);
}

HRESULT ReferenceDevice::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, int32_t baseVertex, uint32_t minIndex,
                                              uint32_t vertexCount, uint32_t startIndex,
                                              uint32_t primitiveCount) {
  const PrimitiveKind* kind = kindOf(type);
  const auto* indices = dynamic_cast<const ReferenceIndexBuffer*>(state_.indices.get());
  if (!kind || !indices || primitiveCount == 0) return D3DERR_INVALIDCALL;
  Draw waiting;
  waiting.indices = indices->share();
  waiting.startIndex = startIndex;
  waiting.minIndex = minIndex;
  const uint64_t held = waiting.indices->size() / 2;
  waiting.primitiveCount =
      startIndex < held ? std::min(primitiveCount, primitivesOf(*kind, held - startIndex)) : 0;
  return draw(waiting, int64_t{baseVertex} + minIndex, vertexCount, *kind);
}

}  // namespace facet
