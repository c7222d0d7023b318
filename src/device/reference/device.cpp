#include "device/reference/device.h"

#include <algorithm>
#include <new>

#include "device/primitive_counts.h"

namespace facet {

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

Draw::Kind kindOf(D3DPRIMITIVETYPE type) {
  if (type == D3DPT_LINELIST) return Draw::lineList;
  return type == D3DPT_TRIANGLESTRIP ? Draw::triangleStrip : Draw::triangleList;
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

/// Runs a step of drawing. When its memory runs out, what waits is dropped and the picture is not whole until
/// the next Reset or clearing.
template <class Step>
HRESULT ReferenceDevice::attempt(Step step) {
  try {
    step();
    return D3D_OK;
  } catch (const std::bad_alloc&) {
    renderer_.dropWaiting();
    whole_ = false;
    return D3DERR_OUTOFVIDEOMEMORY;
  }
}

std::span<const uint32_t> ReferenceDevice::backBuffer() {
  attempt([&] { renderer_.finish(); });
  return whole_ ? renderer_.surface().pixels() : std::span<const uint32_t>();
}

HRESULT ReferenceDevice::Reset(const D3DPRESENT_PARAMETERS& parameters) {
  if (!isPossible(parameters)) return D3DERR_INVALIDCALL;
  whole_ = true;
  state_ = ReferenceState();
  state_.zEnable = parameters.EnableAutoDepthStencil ? D3DZB_TRUE : D3DZB_FALSE;
  return attempt([&] { renderer_.resize(parameters.BackBufferWidth, parameters.BackBufferHeight); });
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
  return attempt([&] {
    renderer_.finish();
    if (flags & D3DCLEAR_TARGET) renderer_.clearColor(color);
    if (flags & D3DCLEAR_ZBUFFER) renderer_.clearDepth(z);
    whole_ = whole_ || (flags & D3DCLEAR_TARGET);
  });
}

HRESULT ReferenceDevice::Present() {
  return attempt([&] { renderer_.finish(); });
}

HRESULT ReferenceDevice::SetFVF(uint32_t fvf) {
  if (vertexBytes(fvf) == 0) return D3DERR_INVALIDCALL;
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
HRESULT ReferenceDevice::draw(Draw& draw, D3DPRIMITIVETYPE type, int64_t firstVertex, uint64_t vertexCount) {
  if (firstVertex < 0 || !setUpDraw(state_, pool_, draw)) return D3DERR_INVALIDCALL;
  draw.kind = kindOf(type);
  draw.vertexOffset = state_.vertexOffset + static_cast<uint64_t>(firstVertex) * draw.shape.stride;
  const uint64_t bytes = draw.vertices->size();
  if (draw.vertexOffset + draw.shape.size > bytes) return D3D_OK;
  const uint64_t held = (bytes - draw.vertexOffset - draw.shape.size) / draw.shape.stride + 1;
  draw.vertexCount = static_cast<uint32_t>(std::min(vertexCount, held));
  if (!draw.indices) draw.primitiveCount = static_cast<uint32_t>(primitivesOf(type, draw.vertexCount));
  if (draw.vertexCount > 0 && draw.primitiveCount > 0) renderer_.add(std::move(draw));
  return D3D_OK;
}

HRESULT ReferenceDevice::DrawPrimitive(D3DPRIMITIVETYPE type, uint32_t startVertex, uint32_t primitiveCount) {
  const uint64_t vertices = verticesOf(type, primitiveCount);
  if (vertices == 0) return D3DERR_INVALIDCALL;
  HRESULT result = D3D_OK;
  const HRESULT memory = attempt([&] {
    Draw waiting;
    result = draw(waiting, type, startVertex, vertices);
  });
  return memory == D3D_OK ? result : memory;
}

HRESULT ReferenceDevice::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, int32_t baseVertex, uint32_t minIndex,
                                              uint32_t vertexCount, uint32_t startIndex,
                                              uint32_t primitiveCount) {
  constexpr uint32_t reach = 1 << 16;  // of an index: more vertices need not be transformed
  const auto* indices = dynamic_cast<const ReferenceIndexBuffer*>(state_.indices.get());
  if (!indices || verticesOf(type, primitiveCount) == 0) return D3DERR_INVALIDCALL;
  HRESULT result = D3D_OK;
  const HRESULT memory = attempt([&] {
    Draw waiting;
    waiting.indices = indices->share();
    waiting.startIndex = startIndex;
    waiting.minIndex = minIndex;
    const uint64_t held = waiting.indices->size() / 2;
    const uint64_t whole = startIndex < held ? primitivesOf(type, held - startIndex) : 0;
    waiting.primitiveCount = static_cast<uint32_t>(std::min<uint64_t>(primitiveCount, whole));
    const uint32_t reached = minIndex < reach ? std::min(vertexCount, reach - minIndex) : 0;
    result = draw(waiting, type, int64_t{baseVertex} + minIndex, reached);
  });
  return memory == D3D_OK ? result : memory;
}

}  // namespace facet
