#include "device/gl/gl_target.h"

#include <epoxy/gl.h>

#include <algorithm>

namespace facet {
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
