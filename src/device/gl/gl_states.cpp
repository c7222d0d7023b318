#include "device/gl/gl_states.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <span>

namespace facet {
namespace {

/// Where a state is kept, and its permitted values as a set of bits; 0 permits all.
struct StateRow {
  uint32_t state;
  uint32_t GlStates::*member;
  uint32_t permitted;
};

template <class... Values>
constexpr uint32_t setOf(Values... values) {
  return ((1u << values) | ...);
}

constexpr uint32_t anyValue = 0;
constexpr uint32_t comparisons = 0x1FE;
constexpr uint32_t blends = setOf(D3DBLEND_ZERO, D3DBLEND_ONE, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA);
constexpr uint32_t addresses = setOf(D3DTADDRESS_WRAP, D3DTADDRESS_CLAMP);
constexpr uint32_t filters = setOf(D3DTEXF_NONE, D3DTEXF_POINT, D3DTEXF_LINEAR, D3DTEXF_ANISOTROPIC);
constexpr uint32_t operations =
    setOf(D3DTOP_DISABLE, D3DTOP_SELECTARG1, D3DTOP_SELECTARG2, D3DTOP_MODULATE, D3DTOP_MODULATE2X);
constexpr uint32_t arguments = setOf(D3DTA_DIFFUSE, D3DTA_CURRENT, D3DTA_TEXTURE);

constexpr StateRow renderStates[] = {
    {D3DRS_ZENABLE, &GlStates::zEnable, setOf(D3DZB_FALSE, D3DZB_TRUE)},
    {D3DRS_FILLMODE, &GlStates::fillMode, setOf(D3DFILL_POINT, D3DFILL_WIREFRAME, D3DFILL_SOLID)},
    {D3DRS_SHADEMODE, &GlStates::shadeMode, setOf(D3DSHADE_FLAT, D3DSHADE_GOURAUD)},
    {D3DRS_ZWRITEENABLE, &GlStates::zWriteEnable, anyValue},
    {D3DRS_ALPHATESTENABLE, &GlStates::alphaTestEnable, anyValue},
    {D3DRS_SRCBLEND, &GlStates::srcBlend, blends},
    {D3DRS_DESTBLEND, &GlStates::destBlend, blends},
    {D3DRS_CULLMODE, &GlStates::cullMode, setOf(D3DCULL_NONE, D3DCULL_CW, D3DCULL_CCW)},
    {D3DRS_ZFUNC, &GlStates::zFunc, comparisons},
    {D3DRS_ALPHAREF, &GlStates::alphaRef, anyValue},
    {D3DRS_ALPHAFUNC, &GlStates::alphaFunc, comparisons},
    {D3DRS_ALPHABLENDENABLE, &GlStates::alphaBlendEnable, anyValue},
    {D3DRS_LIGHTING, &GlStates::lighting, anyValue},
    {D3DRS_AMBIENT, &GlStates::ambient, anyValue},
};

constexpr StateRow samplerStates[] = {
    {D3DSAMP_ADDRESSU, &GlStates::addressU, addresses},
    {D3DSAMP_ADDRESSV, &GlStates::addressV, addresses},
    {D3DSAMP_MAGFILTER, &GlStates::magFilter, filters},
    {D3DSAMP_MINFILTER, &GlStates::minFilter, filters},
    {D3DSAMP_MIPFILTER, &GlStates::mipFilter, setOf(D3DTEXF_NONE, D3DTEXF_POINT, D3DTEXF_LINEAR)},
    {D3DSAMP_MAXANISOTROPY, &GlStates::maxAnisotropy, anyValue},
};

constexpr StateRow stageStates[] = {
    {D3DTSS_COLOROP, &GlStates::colorOp, operations},    {D3DTSS_COLORARG1, &GlStates::colorArg1, arguments},
    {D3DTSS_COLORARG2, &GlStates::colorArg2, arguments}, {D3DTSS_ALPHAOP, &GlStates::alphaOp, operations},
    {D3DTSS_ALPHAARG1, &GlStates::alphaArg1, arguments}, {D3DTSS_ALPHAARG2, &GlStates::alphaArg2, arguments},
};

HRESULT setState(GlStates& states, std::span<const StateRow> rows, uint32_t state, uint32_t value) {
  const auto row = std::ranges::find(rows, state, &StateRow::state);
  if (row == rows.end()) return D3DERR_INVALIDCALL;
  if (row->permitted != anyValue && (value >= 32 || !(row->permitted >> value & 1)))
    return D3DERR_INVALIDCALL;
  states.*row->member = value;
  return D3D_OK;
}

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

D3DMATRIX GlStates::identity() {
  D3DMATRIX result;
  for (size_t i = 0; i < 4; ++i) result.m[i][i] = 1;
  return result;
}

HRESULT setRenderState(GlStates& states, D3DRENDERSTATETYPE state, uint32_t value) {
  return setState(states, renderStates, state, value);
}

HRESULT setSamplerState(GlStates& states, uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value) {
  return sampler == 0 ? setState(states, samplerStates, type, value) : D3DERR_INVALIDCALL;
}

HRESULT setTextureStageState(GlStates& states, uint32_t stage, D3DTEXTURESTAGESTATETYPE type,
                             uint32_t value) {
  return stage == 0 ? setState(states, stageStates, type, value) : D3DERR_INVALIDCALL;
}

HRESULT setTransform(GlStates& states, D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix) {
  switch (state) {
    case D3DTS_VIEW:
      states.view = matrix;
      return D3D_OK;
    case D3DTS_PROJECTION:
      states.projection = matrix;
      return D3D_OK;
    case D3DTS_WORLD:
      states.world = matrix;
      return D3D_OK;
  }
  return D3DERR_INVALIDCALL;
}

void applyRenderStates(const GlStates& states) {
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
  constexpr GLenum fills[] = {GL_POINT, GL_LINE, GL_FILL};
  glPolygonMode(GL_FRONT_AND_BACK, fills[states.fillMode - D3DFILL_POINT]);
  glProvokingVertex(GL_FIRST_VERTEX_CONVENTION);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glLineWidth(1);
  for (const GLenum unused : {GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_DITHER, GL_POLYGON_OFFSET_FILL,
                              GL_FRAMEBUFFER_SRGB, GL_PRIMITIVE_RESTART, GL_PROGRAM_POINT_SIZE}) {
    glDisable(unused);
  }
}

void applyNeutralStates() {
  for (const GLenum capability : {GL_DEPTH_TEST, GL_BLEND, GL_CULL_FACE}) glDisable(capability);
  glDepthMask(GL_TRUE);
  glFrontFace(GL_CCW);
  glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  glBindSampler(0, 0);
  glBindTexture(GL_TEXTURE_2D, 0);
  glBindVertexArray(0);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
  glUseProgram(0);
}

void applySamplerStates(const GlStates& states, uint32_t sampler) {
  const auto wrap = [](uint32_t mode) { return mode == D3DTADDRESS_CLAMP ? GL_CLAMP_TO_EDGE : GL_REPEAT; };
  glSamplerParameteri(sampler, GL_TEXTURE_WRAP_S, wrap(states.addressU));
  glSamplerParameteri(sampler, GL_TEXTURE_WRAP_T, wrap(states.addressV));
  glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER,
                      minFilter(states.minFilter >= D3DTEXF_LINEAR, states.mipFilter));
  glSamplerParameteri(sampler, GL_TEXTURE_MAG_FILTER,
                      states.magFilter >= D3DTEXF_LINEAR ? GL_LINEAR : GL_NEAREST);
}

}  // namespace facet
