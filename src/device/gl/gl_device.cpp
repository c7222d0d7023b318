#include "device/gl/gl_device.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <string>

#include "device/gl/gl_resources.h"

namespace facet {
namespace {

/// What a device on OpenGL's current context can do.
D3DCAPS9 readGlCaps() {
  D3DCAPS9 caps;
  GLint side = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &side);
  caps.MaxTextureWidth = caps.MaxTextureHeight = static_cast<uint32_t>(std::max(side, 0));
  caps.MaxAnisotropy = GlPrograms::largestAnisotropy;
  caps.VertexShaderVersion = 0xFFFE0300;  // OpenGL 3.3 runs on what Direct3D calls shader model 3.0
  caps.PixelShaderVersion = 0xFFFF0300;
  return caps;
}

/// Bytes for textures as the driver of the current context tells them; 512 MiB where it does not.
uint32_t readGlTextureMemory() {
  GLint kib[4] = {512 << 10};
  if (epoxy_has_gl_extension("GL_NVX_gpu_memory_info"))
    glGetIntegerv(GL_GPU_MEMORY_INFO_CURRENT_AVAILABLE_VIDMEM_NVX, kib);
  else if (epoxy_has_gl_extension("GL_ATI_meminfo"))
    glGetIntegerv(GL_TEXTURE_FREE_MEMORY_ATI, kib);
  const uint64_t bytes = uint64_t{static_cast<uint32_t>(kib[0])} << 10;
  return static_cast<uint32_t>(std::min<uint64_t>(bytes, 0xFFF00000));
}

GLenum blendFactor(uint32_t blend) {
  if (blend == D3DBLEND_ZERO) return GL_ZERO;
  if (blend == D3DBLEND_SRCALPHA) return GL_SRC_ALPHA;
  return blend == D3DBLEND_INVSRCALPHA ? GL_ONE_MINUS_SRC_ALPHA : GL_ONE;
}

GLint minFilter(bool linear, uint32_t mip) {
  if (mip == D3DTEXF_POINT) return linear ? GL_LINEAR_MIPMAP_NEAREST : GL_NEAREST_MIPMAP_NEAREST;
  if (mip == D3DTEXF_LINEAR) return linear ? GL_LINEAR_MIPMAP_LINEAR : GL_NEAREST_MIPMAP_LINEAR;
  return linear ? GL_LINEAR : GL_NEAREST;
}

void enable(GLenum capability, bool on) {
  on ? glEnable(capability) : glDisable(capability);
}

/// Hands depth test, blending, culling and fill mode to OpenGL. Pictures are drawn with their top row first,
/// so that OpenGL's rows count as Direct3D's do.
void applyRenderState(const DeviceState& state) {
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LESS);
  glDepthMask(GL_TRUE);
  enable(GL_BLEND, state.alphaBlendEnable);
  glBlendEquation(GL_FUNC_ADD);
  glBlendFunc(blendFactor(state.srcBlend), blendFactor(state.destBlend));

  // Direct3D culls by how a triangle turns on the screen; with the top row first OpenGL sees it mirrored.
  enable(GL_CULL_FACE, state.cullMode != D3DCULL_NONE);
  glFrontFace(GL_CCW);
  glCullFace(GL_BACK);
  glPolygonMode(GL_FRONT_AND_BACK, state.fillMode == D3DFILL_WIREFRAME ? GL_LINE : GL_FILL);
  glProvokingVertex(GL_FIRST_VERTEX_CONVENTION);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);  // the picture stays opaque, whatever is drawn on it
  glLineWidth(1);
  for (const GLenum unused : {GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_DITHER, GL_POLYGON_OFFSET_FILL,
                              GL_FRAMEBUFFER_SRGB, GL_PRIMITIVE_RESTART, GL_PROGRAM_POINT_SIZE})
    glDisable(unused);
}

/// Leaves OpenGL's context as others who draw with it expect it: with OpenGL's own defaults.
void applyNeutralState() {
  for (const GLenum capability : {GL_DEPTH_TEST, GL_BLEND, GL_CULL_FACE}) glDisable(capability);
  glDepthMask(GL_TRUE);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glFrontFace(GL_CCW);
  glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  glBindSampler(0, 0);
  glBindTexture(GL_TEXTURE_2D, 0);
  glBindVertexArray(0);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
  glUseProgram(0);
}

/// Hands filters and address modes to a sampler object. Anisotropy is not among them: the programs do it.
void applySampler(const DeviceState& state, uint32_t sampler) {
  const GLint wrap = state.address == D3DTADDRESS_CLAMP ? GL_CLAMP_TO_EDGE : GL_REPEAT;
  const bool linear = state.filter != D3DTEXF_POINT;
  glSamplerParameteri(sampler, GL_TEXTURE_WRAP_S, wrap);
  glSamplerParameteri(sampler, GL_TEXTURE_WRAP_T, wrap);
  glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER, minFilter(linear, state.mipFilter));
  glSamplerParameteri(sampler, GL_TEXTURE_MAG_FILTER, linear ? GL_LINEAR : GL_NEAREST);
}

/// Points the attributes of the current vertex array into the buffer that is bound.
void applyShape(const VertexShape& shape) {
  const auto point = [&](GLuint attribute, uint32_t place, GLint components, GLenum type) {
    if (place == VertexShape::none) return glDisableVertexAttribArray(attribute);
    glEnableVertexAttribArray(attribute);
    glVertexAttribPointer(attribute, components, type, type == GL_UNSIGNED_BYTE,
                          static_cast<GLsizei>(shape.stride),
                          reinterpret_cast<const void*>(uintptr_t{place}));  // NOLINT: an offset, says OpenGL
  };
  point(0, 0, 3, GL_FLOAT);
  point(1, shape.normal, 3, GL_FLOAT);
  point(2, shape.color, GL_BGRA, GL_UNSIGNED_BYTE);
  point(3, shape.uv, 2, GL_FLOAT);
}

GLenum primitiveMode(D3DPRIMITIVETYPE type) {
  if (type == D3DPT_LINELIST) return GL_LINES;
  return type == D3DPT_TRIANGLESTRIP ? GL_TRIANGLE_STRIP : GL_TRIANGLES;
}

class GlDevice final : public IDirect3DDevice9 {
 public:
  explicit GlDevice(std::shared_ptr<GlContext> context)
      : session_(std::make_shared<GlSession>(std::move(context))) {}
  GlDevice(const GlDevice&) = delete;
  GlDevice& operator=(const GlDevice&) = delete;

  ~GlDevice() override {
    state.texture.reset();
    if (!current()) return;
    target_.release();
    programs_.release();
    glDeleteVertexArrays(1, &vertexArray_);
    glDeleteSamplers(1, &sampler_);
    session_->sweep();
  }

  HRESULT TestCooperativeLevel() override { return ready() ? D3D_OK : D3DERR_DEVICENOTRESET; }

  HRESULT Reset(const D3DPRESENT_PARAMETERS& parameters) override {
    if (!current()) {  // the context took its objects along
      target_ = {};
      programs_ = {};
      vertexArray_ = sampler_ = 0;
      session_->startGeneration();
      if (!session_->context->restore() || !current()) return D3DERR_DEVICELOST;
    }
    caps_ = readGlCaps();
    whole_ = true;
    if (vertexArray_ == 0) glGenVertexArrays(1, &vertexArray_);
    if (sampler_ == 0) glGenSamplers(1, &sampler_);
    return target_.create(parameters.BackBufferWidth, parameters.BackBufferHeight,
                          parameters.AutoDepthStencilFormat);
  }

  HRESULT GetDeviceCaps(D3DCAPS9* caps) override {
    *caps = caps_;
    return D3D_OK;
  }

  uint32_t GetAvailableTextureMem() override { return current() ? readGlTextureMemory() : 0; }

  std::shared_ptr<IDirect3DVertexBuffer9> CreateVertexBuffer(uint32_t fvf,
                                                             std::vector<std::byte> vertices) override {
    return std::make_shared<GlVertexBuffer>(session_, fvf, std::move(vertices));
  }
  std::shared_ptr<IDirect3DIndexBuffer9> CreateIndexBuffer(std::vector<uint16_t> indices) override {
    return std::make_shared<GlIndexBuffer>(session_, std::move(indices));
  }
  std::shared_ptr<IDirect3DTexture9> CreateTexture(D3DFORMAT format,
                                                   std::vector<ImageLevel> levels) override {
    return std::make_shared<GlTexture>(session_, format, std::move(levels));
  }

  void Clear(D3DCOLOR color) override {
    whole_ = false;
    if (ready()) target_.clear(color);
  }

  void Present() override {
    if (!ready()) return;
    whole_ = true;
    session_->sweep();
    const std::optional<GlContext::Window> window = session_->context->window();
    if (!window) return;
    target_.present(*window);
    applyNeutralState();
    session_->context->presented();
  }

  void DrawPrimitive(D3DPRIMITIVETYPE type, const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                     uint32_t startVertex, uint32_t primitiveCount) override {
    if (!prepareDraw(static_cast<GlVertexBuffer&>(*vertices))) return;
    glDrawArrays(primitiveMode(type), static_cast<GLint>(startVertex),
                 static_cast<GLsizei>(verticesOf(type, primitiveCount)));
  }

  void DrawIndexedPrimitive(const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                            const std::shared_ptr<IDirect3DIndexBuffer9>& indices) override {
    auto& own = static_cast<GlVertexBuffer&>(*vertices);
    if (!prepareDraw(own)) return;
    const uint32_t count = static_cast<GlIndexBuffer&>(*indices).bind(own.count());
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(count), GL_UNSIGNED_SHORT, nullptr);
  }

  std::vector<uint8_t> readBackBuffer() {
    return whole_ && ready() ? target_.read() : std::vector<uint8_t>();
  }

 private:
  bool current() { return session_->context->makeCurrent(); }
  bool ready() { return current() && target_.width() > 0; }

  /// False when there is nothing to draw with: a lost context, or a driver that refuses the program.
  bool prepareDraw(GlVertexBuffer& vertices) {
    if (!ready()) return false;
    target_.bind();
    if (!programs_.use(state, vertices.shape(), target_.width(), target_.height())) return false;
    applyRenderState(state);
    glActiveTexture(GL_TEXTURE0);
    if (state.texture) {
      static_cast<GlTexture&>(*state.texture).bind();
      applySampler(state, sampler_);
      glBindSampler(0, sampler_);
    }
    glBindVertexArray(vertexArray_);
    vertices.bind();
    applyShape(vertices.shape());
    return true;
  }

  std::shared_ptr<GlSession> session_;
  D3DCAPS9 caps_;
  bool whole_ = false;  ///< the picture is a frame's from Clear to Present

  // Objects of the current context.
  GlTarget target_;
  GlPrograms programs_;
  uint32_t vertexArray_ = 0, sampler_ = 0;
};

}  // namespace

HRESULT describeGlAdapter(GlContext& context, D3DADAPTER_IDENTIFIER9* identifier, D3DCAPS9* caps) {
  if (!context.makeCurrent()) return D3DERR_NOTAVAILABLE;
  const auto text = [](GLenum name) {
    const auto* value = reinterpret_cast<const char*>(glGetString(name));
    return std::string(value ? value : "");
  };
  *identifier = {};
  identifier->Description = text(GL_RENDERER);
  identifier->Driver = text(GL_VENDOR) + ", OpenGL " + text(GL_VERSION);
  GLint major = 0, minor = 0;
  glGetIntegerv(GL_MAJOR_VERSION, &major);
  glGetIntegerv(GL_MINOR_VERSION, &minor);
  identifier->DriverVersion =
      uint64_t{static_cast<uint32_t>(major)} << 48 | uint64_t{static_cast<uint32_t>(minor)} << 32;
  *caps = readGlCaps();
  return D3D_OK;
}

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
