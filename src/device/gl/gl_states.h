#pragma once

#include "device/device.h"

namespace facet {

/// All states of a device, with Direct3D's values. A new one holds Direct3D's defaults.
struct GlStates {
  uint32_t zEnable = D3DZB_TRUE, zWriteEnable = 1, zFunc = D3DCMP_LESSEQUAL;
  uint32_t fillMode = D3DFILL_SOLID, shadeMode = D3DSHADE_GOURAUD, cullMode = D3DCULL_CCW;
  uint32_t alphaTestEnable = 0, alphaFunc = D3DCMP_ALWAYS, alphaRef = 0;
  uint32_t alphaBlendEnable = 0, srcBlend = D3DBLEND_ONE, destBlend = D3DBLEND_ZERO;
  uint32_t lighting = 1;
  D3DCOLOR ambient = 0;

  uint32_t addressU = D3DTADDRESS_WRAP, addressV = D3DTADDRESS_WRAP;
  uint32_t magFilter = D3DTEXF_POINT, minFilter = D3DTEXF_POINT, mipFilter = D3DTEXF_NONE;
  uint32_t maxAnisotropy = 1;

  uint32_t colorOp = D3DTOP_MODULATE, colorArg1 = D3DTA_TEXTURE, colorArg2 = D3DTA_CURRENT;
  uint32_t alphaOp = D3DTOP_SELECTARG1, alphaArg1 = D3DTA_TEXTURE, alphaArg2 = D3DTA_CURRENT;

  D3DMATRIX view = identity(), projection = identity(), world = identity();
  D3DMATERIAL9 material;
  D3DLIGHT9 light;
  bool lightEnabled = false;

  static D3DMATRIX identity();
};

/// Set one state. D3DERR_INVALIDCALL, and nothing set, for states and values beyond those that device.h
/// names. There is one sampler and one texture stage, number 0.
HRESULT setRenderState(GlStates& states, D3DRENDERSTATETYPE state, uint32_t value);
HRESULT setSamplerState(GlStates& states, uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value);
HRESULT setTextureStageState(GlStates& states, uint32_t stage, D3DTEXTURESTAGESTATETYPE type, uint32_t value);
HRESULT setTransform(GlStates& states, D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix);

/// Hands depth test, blending, culling and fill mode to OpenGL's current context. Pictures are drawn with
/// their top row first, so that OpenGL's rows count as Direct3D's do.
void applyRenderStates(const GlStates& states);

/// Leaves OpenGL's context as others who draw with it expect it: with OpenGL's own defaults.
void applyNeutralStates();

/// Hands filters and address modes to an OpenGL sampler object. Anisotropy is not among them: the programs do
/// it.
void applySamplerStates(const GlStates& states, uint32_t sampler);

}  // namespace facet
