#include "device/gl/gl_device.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <new>

#include "device/create_object.h"
#include "device/gl/gl_adapter.h"
#include "device/gl/gl_buffers.h"
#include "device/gl/gl_indices.h"
#include "device/gl/gl_program.h"
#include "device/gl/gl_session.h"
#include "device/gl/gl_states.h"
#include "device/gl/gl_target.h"
#include "device/gl/gl_texture.h"
#include "device/gl/gl_vertices.h"
#include "device/primitive_counts.h"
#include "picture/pixels.h"

namespace facet {
namespace {

constexpr uint32_t largestStride = 2048;  ///< what any driver takes at least

GLenum primitiveMode(D3DPRIMITIVETYPE type) {
  switch (type) {
    case D3DPT_LINELIST:
      return GL_LINES;
    case D3DPT_TRIANGLESTRIP:
      return GL_TRIANGLE_STRIP;
    default:
      return GL_TRIANGLES;
  }
}

class GlDevice final : public IDirect3DDevice9 {
 public:
  explicit GlDevice(std::shared_ptr<GlContext> context)
      : session_(std::make_shared<GlSession>(std::move(context))) {}
  GlDevice(const GlDevice&) = delete;
  GlDevice& operator=(const GlDevice&) = delete;
  ~GlDevice() override;

  HRESULT TestCooperativeLevel() override { return ready() ? D3D_OK : D3DERR_DEVICENOTRESET; }
  HRESULT Reset(const D3DPRESENT_PARAMETERS& parameters) override;
  HRESULT GetDeviceCaps(D3DCAPS9* caps) override;
  uint32_t GetAvailableTextureMem() override;

  HRESULT CreateVertexBuffer(uint32_t length, uint32_t usage, uint32_t fvf, D3DPOOL pool,
                             std::shared_ptr<IDirect3DVertexBuffer9>* created) override;
  HRESULT CreateIndexBuffer(uint32_t length, uint32_t usage, D3DFORMAT format, D3DPOOL pool,
                            std::shared_ptr<IDirect3DIndexBuffer9>* created) override;
  HRESULT CreateTexture(uint32_t width, uint32_t height, uint32_t levels, uint32_t usage, D3DFORMAT format,
                        D3DPOOL pool, std::shared_ptr<IDirect3DTexture9>* created) override;

  HRESULT BeginScene() override { return D3D_OK; }
  HRESULT Clear(uint32_t flags, D3DCOLOR color, float z, uint32_t stencil) override;
  HRESULT EndScene() override { return D3D_OK; }
  HRESULT Present() override;

  HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix) override {
    return setTransform(states_, state, matrix);
  }
  HRESULT SetRenderState(D3DRENDERSTATETYPE state, uint32_t value) override {
    return setRenderState(states_, state, value);
  }
  HRESULT SetSamplerState(uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value) override {
    return setSamplerState(states_, sampler, type, value);
  }
  HRESULT SetTextureStageState(uint32_t stage, D3DTEXTURESTAGESTATETYPE type, uint32_t value) override {
    return setTextureStageState(states_, stage, type, value);
  }
  HRESULT SetMaterial(const D3DMATERIAL9& material) override {
    states_.material = material;
    return D3D_OK;
  }
  HRESULT SetLight(uint32_t index, const D3DLIGHT9& light) override {
    return setLight(states_, index, light);
  }
  HRESULT LightEnable(uint32_t index, bool enable) override { return enableLight(states_, index, enable); }

  HRESULT SetFVF(uint32_t fvf) override;
  HRESULT SetStreamSource(uint32_t stream, std::shared_ptr<IDirect3DVertexBuffer9> buffer, uint32_t offset,
                          uint32_t stride) override;
  HRESULT SetIndices(std::shared_ptr<IDirect3DIndexBuffer9> buffer) override;
  HRESULT SetTexture(uint32_t stage, std::shared_ptr<IDirect3DTexture9> texture) override;

  HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, uint32_t startVertex, uint32_t primitiveCount) override;
  HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, int32_t baseVertex, uint32_t minIndex,
                               uint32_t vertexCount, uint32_t startIndex, uint32_t primitiveCount) override;

  std::vector<uint8_t> readBackBuffer() { return ready() ? target_.read() : std::vector<uint8_t>(); }

 private:
  bool current() { return session_->context->makeCurrent(); }
  bool ready() { return current() && target_.width() > 0; }
  HRESULT createTarget(D3DPRESENT_PARAMETERS parameters);
  void forgetObjects();
  void releaseObjects();
  template <class Step>
  HRESULT attempt(Step step);
  HRESULT prepareDraw();
  uint32_t vertexLimit() const;

  std::shared_ptr<GlSession> session_;
  D3DCAPS9 caps_;
  DeviceStates states_;
  uint32_t fvf_ = 0;
  std::shared_ptr<GlVertexBuffer> vertices_;
  uint32_t streamOffset_ = 0, streamStride_ = 0;
  std::shared_ptr<GlIndexBuffer> indices_;
  std::shared_ptr<GlTexture> texture_;

  // Objects of the current context.
  GlTarget target_;
  GlPrograms programs_;
  uint32_t vertexArray_ = 0, sampler_ = 0;
};

GlDevice::~GlDevice() {
  vertices_.reset();
  indices_.reset();
  texture_.reset();
  if (!current()) return;
  releaseObjects();
  session_->sweep();
}

void GlDevice::forgetObjects() {
  target_ = {};
  programs_ = {};
  vertexArray_ = sampler_ = 0;
  session_->startGeneration();
}

void GlDevice::releaseObjects() {
  target_.release();
  programs_.release();
  glDeleteVertexArrays(1, &vertexArray_);
  glDeleteSamplers(1, &sampler_);
}

HRESULT GlDevice::createTarget(D3DPRESENT_PARAMETERS parameters) {
  if (parameters.BackBufferWidth == 0 || parameters.BackBufferHeight == 0) {
    const GlContext::Window window = session_->context->window().value_or(GlContext::Window());
    parameters.BackBufferWidth = window.width;
    parameters.BackBufferHeight = window.height;
  }
  const D3DFORMAT depth =
      parameters.EnableAutoDepthStencil ? parameters.AutoDepthStencilFormat : D3DFMT_UNKNOWN;
  if (parameters.EnableAutoDepthStencil && depth == D3DFMT_UNKNOWN) return D3DERR_NOTAVAILABLE;
  return target_.create(parameters.BackBufferWidth, parameters.BackBufferHeight, depth);
}

HRESULT GlDevice::Reset(const D3DPRESENT_PARAMETERS& parameters) {
  if (!current()) {
    forgetObjects();
    if (!session_->context->restore() || !current()) return D3DERR_DEVICELOST;
  }
  caps_ = readGlCaps();
  states_ = {};
  states_.zEnable = parameters.EnableAutoDepthStencil ? D3DZB_TRUE : D3DZB_FALSE;
  fvf_ = 0;
  vertices_.reset();
  indices_.reset();
  texture_.reset();
  if (vertexArray_ == 0) glGenVertexArrays(1, &vertexArray_);
  if (sampler_ == 0) glGenSamplers(1, &sampler_);
  return createTarget(parameters);
}

HRESULT GlDevice::GetDeviceCaps(D3DCAPS9* caps) {
  if (!caps) return D3DERR_INVALIDCALL;
  *caps = caps_;
  return D3D_OK;
}

uint32_t GlDevice::GetAvailableTextureMem() {
  return current() ? readGlTextureMemory() : 0;
}

HRESULT GlDevice::CreateVertexBuffer(uint32_t length, uint32_t, uint32_t, D3DPOOL,
                                     std::shared_ptr<IDirect3DVertexBuffer9>* created) {
  created->reset();
  if (length == 0) return D3DERR_INVALIDCALL;
  return createObject<GlVertexBuffer>(created, session_, length);
}

HRESULT GlDevice::CreateIndexBuffer(uint32_t length, uint32_t, D3DFORMAT format, D3DPOOL,
                                    std::shared_ptr<IDirect3DIndexBuffer9>* created) {
  created->reset();
  if (length == 0 || format != D3DFMT_INDEX16) return D3DERR_INVALIDCALL;
  return createObject<GlIndexBuffer>(created, session_, length);
}

HRESULT GlDevice::CreateTexture(uint32_t width, uint32_t height, uint32_t levels, uint32_t, D3DFORMAT format,
                                D3DPOOL, std::shared_ptr<IDirect3DTexture9>* created) {
  created->reset();
  const uint32_t full = fullLevelCount(width, height);
  if (width == 0 || height == 0 || width > caps_.MaxTextureWidth || height > caps_.MaxTextureHeight ||
      levels > full) {
    return D3DERR_INVALIDCALL;
  }
  if (!findPixelFormat(format)) return D3DERR_NOTAVAILABLE;
  return createObject<GlTexture>(created, session_, width, height, levels ? levels : full, format);
}

HRESULT GlDevice::Clear(uint32_t flags, D3DCOLOR color, float z, uint32_t) {
  if (!ready()) return D3DERR_DEVICELOST;
  target_.bind();
  applyRenderStates(states_);
  glDepthMask(GL_TRUE);
  const auto channel = [&](uint32_t shift) { return static_cast<float>(color >> shift & 0xFF) / 255; };
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glClearColor(channel(16), channel(8), channel(0), 1);
  glClearDepth(z);
  GLbitfield buffers = 0;
  if (flags & D3DCLEAR_TARGET) buffers |= GL_COLOR_BUFFER_BIT;
  if (flags & D3DCLEAR_ZBUFFER) buffers |= GL_DEPTH_BUFFER_BIT;
  glClear(buffers);
  return D3D_OK;
}

HRESULT GlDevice::Present() {
  if (!ready()) return D3DERR_DEVICELOST;
  session_->sweep();
  const std::optional<GlContext::Window> window = session_->context->window();
  if (!window) return D3D_OK;
  target_.present(*window);
  applyNeutralStates();
  session_->context->presented();
  return D3D_OK;
}

HRESULT GlDevice::SetFVF(uint32_t fvf) {
  if (vertexBytes(fvf) == 0) return D3DERR_INVALIDCALL;
  fvf_ = fvf;
  return D3D_OK;
}

HRESULT GlDevice::SetStreamSource(uint32_t stream, std::shared_ptr<IDirect3DVertexBuffer9> buffer,
                                  uint32_t offset, uint32_t stride) {
  auto own = std::dynamic_pointer_cast<GlVertexBuffer>(buffer);
  const bool foreign = buffer && !(own && own->storage().belongsTo(session_));
  if (stream != 0 || foreign || stride > largestStride) return D3DERR_INVALIDCALL;
  vertices_ = std::move(own);
  streamOffset_ = offset;
  streamStride_ = stride;
  return D3D_OK;
}

HRESULT GlDevice::SetIndices(std::shared_ptr<IDirect3DIndexBuffer9> buffer) {
  auto own = std::dynamic_pointer_cast<GlIndexBuffer>(buffer);
  if (buffer && !(own && own->storage().belongsTo(session_))) return D3DERR_INVALIDCALL;
  indices_ = std::move(own);
  return D3D_OK;
}

HRESULT GlDevice::SetTexture(uint32_t stage, std::shared_ptr<IDirect3DTexture9> texture) {
  auto own = std::dynamic_pointer_cast<GlTexture>(texture);
  if (stage != 0 || (texture && !(own && own->belongsTo(session_)))) return D3DERR_INVALIDCALL;
  texture_ = std::move(own);
  return D3D_OK;
}

/// Vertices that the stream holds whole.
uint32_t GlDevice::vertexLimit() const {
  const uint32_t bytes = vertexBytes(fvf_);
  if (!vertices_ || bytes == 0 || streamStride_ < bytes) return 0;
  const uint64_t size = vertices_->storage().size();
  if (uint64_t{streamOffset_} + bytes > size) return 0;
  return static_cast<uint32_t>((size - streamOffset_ - bytes) / streamStride_ + 1);
}

/// Runs a step of drawing; when its memory runs out, it draws nothing.
template <class Step>
HRESULT GlDevice::attempt(Step step) {
  try {
    return step();
  } catch (const std::bad_alloc&) {
    return D3DERR_OUTOFVIDEOMEMORY;
  }
}

HRESULT GlDevice::prepareDraw() {
  if (!ready()) return D3DERR_DEVICELOST;
  target_.bind();
  if (!programs_.use(states_, fvf_, texture_ != nullptr, target_.width(), target_.height()))
    return D3DERR_NOTAVAILABLE;
  applyRenderStates(states_);
  glActiveTexture(GL_TEXTURE0);
  if (texture_) {
    texture_->bind();
    applySamplerStates(states_, sampler_);
    glBindSampler(0, sampler_);
  }
  glBindVertexArray(vertexArray_);
  vertices_->storage().bind(GL_ARRAY_BUFFER);
  applyVertexFormat(fvf_, streamOffset_, streamStride_);
  return D3D_OK;
}

HRESULT GlDevice::DrawPrimitive(D3DPRIMITIVETYPE type, uint32_t startVertex, uint32_t primitiveCount) {
  const uint32_t limit = vertexLimit();
  if (limit == 0 || verticesOf(type, 1) == 0) return D3DERR_INVALIDCALL;
  const uint64_t held = startVertex < limit ? primitivesOf(type, limit - startVertex) : 0;
  const uint64_t count = verticesOf(type, std::min<uint64_t>(primitiveCount, held));
  if (count == 0) return D3D_OK;
  return attempt([&] {
    const HRESULT result = prepareDraw();
    if (result == D3D_OK)
      glDrawArrays(primitiveMode(type), static_cast<GLint>(startVertex), static_cast<GLsizei>(count));
    return result;
  });
}

HRESULT GlDevice::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, int32_t baseVertex, uint32_t minIndex,
                                       uint32_t vertexCount, uint32_t startIndex, uint32_t primitiveCount) {
  const int64_t limit = vertexLimit();
  if (limit == 0 || !indices_ || verticesOf(type, 1) == 0) return D3DERR_INVALIDCALL;
  const uint64_t stored = indices_->storage().size() / sizeof(uint16_t);
  const uint64_t held = startIndex < stored ? primitivesOf(type, stored - startIndex) : 0;
  const uint64_t count = verticesOf(type, std::min<uint64_t>(primitiveCount, held));
  const IndexRange range{type, startIndex, static_cast<uint32_t>(count),
                         std::max<int64_t>(minIndex, -int64_t{baseVertex}),
                         std::min<int64_t>(int64_t{minIndex} + vertexCount, limit - baseVertex)};
  if (count == 0) return D3D_OK;
  return attempt([&] {
    const HRESULT result = prepareDraw();
    if (result != D3D_OK) return result;
    const GlIndexBuffer::Elements elements = indices_->bind(range, session_);
    if (elements.count == 0) return D3D_OK;
    const auto* first = reinterpret_cast<const void*>(uintptr_t{elements.start} * sizeof(uint16_t));
    glDrawElementsBaseVertex(primitiveMode(elements.type), static_cast<GLsizei>(elements.count),
                             GL_UNSIGNED_SHORT, first, baseVertex);
    return D3D_OK;
  });
}

}  // namespace

HRESULT createGlDevice(std::shared_ptr<GlContext> context, const D3DPRESENT_PARAMETERS& parameters,
                       std::shared_ptr<IDirect3DDevice9>* created) {
  created->reset();
  if (!context || !context->makeCurrent() || epoxy_gl_version() < 33) return D3DERR_NOTAVAILABLE;
  auto device = std::make_shared<GlDevice>(std::move(context));
  const HRESULT result = device->Reset(parameters);
  if (result == D3D_OK) *created = std::move(device);
  return result;
}

std::vector<uint8_t> readGlBackBuffer(IDirect3DDevice9& device) {
  auto* own = dynamic_cast<GlDevice*>(&device);
  return own ? own->readBackBuffer() : std::vector<uint8_t>();
}

}  // namespace facet
