#include "device/gl/gl_resources.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>

#include "picture/pixels.h"

namespace facet {
namespace {

/// A format that OpenGL takes as it lies in memory. `swizzle` says which channel goes to red, green, blue and
/// alpha.
struct DirectFormat {
  D3DFORMAT format;
  GLenum internal, layout, type;
  std::array<GLint, 4> swizzle;
};

constexpr std::array<GLint, 4> rgba{GL_RED, GL_GREEN, GL_BLUE, GL_ALPHA};
constexpr std::array<GLint, 4> opaque{GL_RED, GL_GREEN, GL_BLUE, GL_ONE};

constexpr DirectFormat directFormats[] = {
    {D3DFMT_A8R8G8B8, GL_RGBA8, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, rgba},
    {D3DFMT_X8R8G8B8, GL_RGBA8, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, opaque},
    {D3DFMT_R5G6B5, GL_RGB8, GL_RGB, GL_UNSIGNED_SHORT_5_6_5, opaque},
    {D3DFMT_A1R5G5B5, GL_RGB5_A1, GL_BGRA, GL_UNSIGNED_SHORT_1_5_5_5_REV, rgba},
    {D3DFMT_X1R5G5B5, GL_RGB5_A1, GL_BGRA, GL_UNSIGNED_SHORT_1_5_5_5_REV, opaque},
    {D3DFMT_A4R4G4B4, GL_RGBA4, GL_BGRA, GL_UNSIGNED_SHORT_4_4_4_4_REV, rgba},
    {D3DFMT_L8, GL_R8, GL_RED, GL_UNSIGNED_BYTE, {GL_RED, GL_RED, GL_RED, GL_ONE}},
    {D3DFMT_A8L8, GL_RG8, GL_RG, GL_UNSIGNED_BYTE, {GL_RED, GL_RED, GL_RED, GL_GREEN}},
    {D3DFMT_A8, GL_R8, GL_RED, GL_UNSIGNED_BYTE, {GL_ZERO, GL_ZERO, GL_ZERO, GL_RED}},
};

/// What compressed formats are turned into where the driver does not know them.
constexpr DirectFormat decoded{D3DFMT_UNKNOWN, GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, rgba};

/// OpenGL's name of a compressed format; 0 for any other.
GLenum compressedFormat(D3DFORMAT format) {
  if (format == D3DFMT_DXT1) return GL_COMPRESSED_RGBA_S3TC_DXT1_EXT;
  if (format == D3DFMT_DXT2 || format == D3DFMT_DXT3) return GL_COMPRESSED_RGBA_S3TC_DXT3_EXT;
  return format == D3DFMT_DXT4 || format == D3DFMT_DXT5 ? GL_COMPRESSED_RGBA_S3TC_DXT5_EXT : 0;
}

void upload(GLenum target, size_t bytes, const void* contents) {
  glBufferData(target, static_cast<GLsizeiptr>(bytes), contents, GL_STATIC_DRAW);
}

/// The triangles of a list all of whose indices are below `limit`, in their order.
std::vector<uint16_t> trianglesWithin(const std::vector<uint16_t>& indices, uint32_t limit) {
  std::vector<uint16_t> kept;
  for (size_t i = 0; i + 3 <= indices.size(); i += 3) {
    const uint16_t a = indices[i], b = indices[i + 1], c = indices[i + 2];
    if (std::max({a, b, c}) < limit) kept.insert(kept.end(), {a, b, c});
  }
  return kept;
}

}  // namespace

GlSession::~GlSession() {
  if ((!droppedBuffers.empty() || !droppedTextures.empty()) && context->makeCurrent()) sweep();
}

void GlSession::sweep() {
  if (!droppedBuffers.empty())
    glDeleteBuffers(static_cast<GLsizei>(droppedBuffers.size()), droppedBuffers.data());
  if (!droppedTextures.empty())
    glDeleteTextures(static_cast<GLsizei>(droppedTextures.size()), droppedTextures.data());
  droppedBuffers.clear();
  droppedTextures.clear();
}

void GlSession::startGeneration() {
  ++generation;
  droppedBuffers.clear();
  droppedTextures.clear();
}

GlObject::~GlObject() {
  if (exists()) (kind_ == buffer ? session_->droppedBuffers : session_->droppedTextures).push_back(name_);
}

bool GlObject::bind(uint32_t target) {
  const bool isNew = !exists();
  if (isNew) {
    (kind_ == buffer ? glGenBuffers : glGenTextures)(1, &name_);
    generation_ = session_->generation;
  }
  kind_ == buffer ? glBindBuffer(target, name_) : glBindTexture(target, name_);
  return isNew;
}

void GlVertexBuffer::bind() {
  if (object_.bind(GL_ARRAY_BUFFER)) upload(GL_ARRAY_BUFFER, bytes_.size(), bytes_.data());
}

uint32_t GlIndexBuffer::bind(uint32_t vertexCount) {
  if (!object_.bind(GL_ELEMENT_ARRAY_BUFFER) && uploadedFor_ == vertexCount) return uploaded_;
  uploadedFor_ = vertexCount;
  if (std::ranges::all_of(indices_, [&](uint16_t index) { return index < vertexCount; })) {
    uploaded_ = static_cast<uint32_t>(indices_.size() / 3 * 3);
    upload(GL_ELEMENT_ARRAY_BUFFER, indices_.size() * sizeof(uint16_t), indices_.data());
  } else {
    const std::vector<uint16_t> kept = trianglesWithin(indices_, vertexCount);
    uploaded_ = static_cast<uint32_t>(kept.size());
    upload(GL_ELEMENT_ARRAY_BUFFER, kept.size() * sizeof(uint16_t), kept.data());
  }
  return uploaded_;
}

void GlTexture::bind() {
  if (object_.bind(GL_TEXTURE_2D)) upload();
}

void GlTexture::upload() const {
  const GLenum compressed =
      epoxy_has_gl_extension("GL_EXT_texture_compression_s3tc") ? compressedFormat(format_) : 0;
  const auto* row = std::ranges::find(directFormats, format_, &DirectFormat::format);
  const bool asIs = row != std::end(directFormats);
  const DirectFormat& target = asIs ? *row : decoded;

  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, static_cast<GLint>(levels_.size()) - 1);
  glTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, target.swizzle.data());
  for (uint32_t i = 0; i < levels_.size(); ++i) {
    const ImageLevel& level = levels_[i];
    const auto number = static_cast<GLint>(i);
    const auto width = static_cast<GLsizei>(level.width), height = static_cast<GLsizei>(level.height);
    if (compressed) {
      glCompressedTexImage2D(GL_TEXTURE_2D, number, compressed, width, height, 0,
                             static_cast<GLsizei>(level.bytes.size()), level.bytes.data());
    } else if (asIs) {
      glTexImage2D(GL_TEXTURE_2D, number, static_cast<GLint>(target.internal), width, height, 0,
                   target.layout, target.type, level.bytes.data());
    } else {
      std::vector<uint8_t> pixels(size_t{level.width} * level.height * 4);
      decodePixels(format_, level.width, level.height, level.bytes, pixels);
      glTexImage2D(GL_TEXTURE_2D, number, static_cast<GLint>(target.internal), width, height, 0,
                   target.layout, target.type, pixels.data());
    }
  }
}

// The back buffer.

namespace {

/// Depth formats and what holds them at OpenGL, which knows no stencils of 4 bits or 1.
struct DepthFormat {
  D3DFORMAT format;
  GLenum internal;
  GLint bits;
};

constexpr DepthFormat depthFormats[] = {
    {D3DFMT_D32, GL_DEPTH_COMPONENT32, 32},
    {D3DFMT_D24X8, GL_DEPTH_COMPONENT24, 24},
    {D3DFMT_D24S8, GL_DEPTH24_STENCIL8, 24},
    {D3DFMT_D16, GL_DEPTH_COMPONENT16, 16},
};

/// Makes a renderbuffer of the current framebuffer.
GLuint attach(GLenum point, GLenum internal, GLsizei width, GLsizei height) {
  GLuint name = 0;
  glGenRenderbuffers(1, &name);
  glBindRenderbuffer(GL_RENDERBUFFER, name);
  glRenderbufferStorage(GL_RENDERBUFFER, internal, width, height);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, point, GL_RENDERBUFFER, name);
  return name;
}

/// A driver may give fewer bits than asked for.
bool hasDepthBits(GLint bits) {
  GLint given = 0;
  glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_DEPTH_SIZE, &given);
  return given >= bits;
}

}  // namespace

HRESULT GlTarget::create(uint32_t width, uint32_t height, D3DFORMAT depth) {
  const auto* row = std::ranges::find(depthFormats, depth, &DepthFormat::format);
  GLint largest = 0;
  glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &largest);
  const uint32_t limit = static_cast<uint32_t>(std::max(largest, 0));
  if (width == 0 || height == 0 || width > limit || height > limit || row == std::end(depthFormats))
    return D3DERR_NOTAVAILABLE;

  GlTarget made;
  made.width_ = width;
  made.height_ = height;
  glGenFramebuffers(1, &made.framebuffer_);
  glBindFramebuffer(GL_FRAMEBUFFER, made.framebuffer_);
  const auto w = static_cast<GLsizei>(width), h = static_cast<GLsizei>(height);
  made.color_ = attach(GL_COLOR_ATTACHMENT0, GL_RGBA8, w, h);
  const bool stencil = depth == D3DFMT_D24S8;
  made.depth_ = attach(stencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT, row->internal, w, h);
  const bool good =
      hasDepthBits(row->bits) && glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  if (!good) {
    made.release();
    return D3DERR_NOTAVAILABLE;
  }
  release();
  *this = made;
  clear(0);
  return D3D_OK;
}

void GlTarget::clear(D3DCOLOR color) const {
  const auto channel = [&](uint32_t shift) { return static_cast<float>(color >> shift & 0xFF) / 255; };
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  glDisable(GL_SCISSOR_TEST);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glDepthMask(GL_TRUE);
  glClearColor(channel(16), channel(8), channel(0), 1);
  glClearDepth(1);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void GlTarget::bind() const {
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  glViewport(0, 0, static_cast<GLsizei>(width_), static_cast<GLsizei>(height_));
}

void GlTarget::present(const GlContext::Window& window) const {
  glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, window.framebuffer);
  glDisable(GL_SCISSOR_TEST);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glBlitFramebuffer(0, 0, static_cast<GLint>(width_), static_cast<GLint>(height_), 0,
                    static_cast<GLint>(window.height), static_cast<GLint>(window.width), 0,
                    GL_COLOR_BUFFER_BIT, GL_LINEAR);
  glBindFramebuffer(GL_FRAMEBUFFER, window.framebuffer);
}

std::vector<uint8_t> GlTarget::read() const {
  std::vector<uint8_t> pixels(size_t{width_} * height_ * 4);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glPixelStorei(GL_PACK_ROW_LENGTH, 0);
  glReadPixels(0, 0, static_cast<GLsizei>(width_), static_cast<GLsizei>(height_), GL_RGBA, GL_UNSIGNED_BYTE,
               pixels.data());
  // The picture is opaque, so a last byte that stayed 0 tells that nothing was read.
  if (!pixels.empty() && pixels.back() == 0) pixels.clear();
  return pixels;
}

void GlTarget::release() {
  glDeleteFramebuffers(1, &framebuffer_);
  glDeleteRenderbuffers(1, &color_);
  glDeleteRenderbuffers(1, &depth_);
  *this = {};
}

}  // namespace facet
