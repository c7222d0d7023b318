#include "device/gl/gl_states.h"

#include <epoxy/gl.h>

namespace facet {
namespace {

/// OpenGL's comparisons follow each other in Direct3D's order.
GLenum comparison(uint32_t func) {
  return GL_NEVER + func - D3DCMP_NEVER;
}

GLenum blendFactor(uint32_t blend) {
  switch (blend) {
    case D3DBLEND_ZERO:
      return GL_ZERO;
    case D3DBLEND_SRCALPHA:
      return GL_SRC_ALPHA;
    case D3DBLEND_INVSRCALPHA:
      return GL_ONE_MINUS_SRC_ALPHA;
    default:
      return GL_ONE;
  }
}

GLint minFilter(bool linear, uint32_t mip) {
  switch (mip) {
    case D3DTEXF_POINT:
      return linear ? GL_LINEAR_MIPMAP_NEAREST : GL_NEAREST_MIPMAP_NEAREST;
    case D3DTEXF_LINEAR:
      return linear ? GL_LINEAR_MIPMAP_LINEAR : GL_NEAREST_MIPMAP_LINEAR;
    default:
      return linear ? GL_LINEAR : GL_NEAREST;
  }
}

void enable(GLenum capability, bool on) {
  on ? glEnable(capability) : glDisable(capability);
}

}  // namespace

void applyRenderStates(const DeviceStates& states) {
  enable(GL_DEPTH_TEST, states.zEnable);
  glDepthFunc(comparison(states.zFunc));
  glDepthMask(states.zWriteEnable ? GL_TRUE : GL_FALSE);
  enable(GL_BLEND, states.alphaBlendEnable);
  glBlendEquation(GL_FUNC_ADD);
  glBlendFunc(blendFactor(states.srcBlend), blendFactor(states.destBlend));

  // Direct3D culls by how a triangle turns on the screen; with the top row first OpenGL sees it mirrored.
  enable(GL_CULL_FACE, states.cullMode != D3DCULL_NONE);
  glFrontFace(states.cullMode == D3DCULL_CCW ? GL_CCW : GL_CW);
  glCullFace(GL_BACK);
  glPolygonMode(GL_FRONT_AND_BACK, states.fillMode == D3DFILL_WIREFRAME ? GL_LINE : GL_FILL);
  glProvokingVertex(GL_FIRST_VERTEX_CONVENTION);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);  // the picture stays opaque, whatever is drawn on it
  glLineWidth(1);
  for (const GLenum unused : {GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_DITHER, GL_POLYGON_OFFSET_FILL,
                              GL_FRAMEBUFFER_SRGB, GL_PRIMITIVE_RESTART, GL_PROGRAM_POINT_SIZE}) {
    glDisable(unused);
  }
}

void applyNeutralStates() {
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

void applySamplerStates(const DeviceStates& states, uint32_t sampler) {
  const auto wrap = [](uint32_t mode) { return mode == D3DTADDRESS_CLAMP ? GL_CLAMP_TO_EDGE : GL_REPEAT; };
  glSamplerParameteri(sampler, GL_TEXTURE_WRAP_S, wrap(states.addressU));
  glSamplerParameteri(sampler, GL_TEXTURE_WRAP_T, wrap(states.addressV));
  glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER,
                      minFilter(states.minFilter >= D3DTEXF_LINEAR, states.mipFilter));
  glSamplerParameteri(sampler, GL_TEXTURE_MAG_FILTER,
                      states.magFilter >= D3DTEXF_LINEAR ? GL_LINEAR : GL_NEAREST);
}

}  // namespace facet
