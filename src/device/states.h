#pragma once

#include <cstdint>

#include "device/device.h"
#include "device/matrix.h"

namespace facet {

/// What the setters of every device keep, with Direct3D's values. A new one holds Direct3D's defaults.
struct DeviceStates {
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

  D3DMATRIX view = identityMatrix, projection = identityMatrix, world = identityMatrix;
  D3DMATERIAL9 material;
  D3DLIGHT9 light;
  bool lightEnabled = false;
};

/// Set one state. D3DERR_INVALIDCALL, and nothing set, for states and values beyond those that device.h
/// names. There is one sampler, one texture stage and one light, number 0; lights are directional.
HRESULT setRenderState(DeviceStates& states, D3DRENDERSTATETYPE state, uint32_t value);
HRESULT setSamplerState(DeviceStates& states, uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value);
HRESULT setTextureStageState(DeviceStates& states, uint32_t stage, D3DTEXTURESTAGESTATETYPE type,
                             uint32_t value);
HRESULT setTransform(DeviceStates& states, D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix);
HRESULT setLight(DeviceStates& states, uint32_t index, const D3DLIGHT9& light);
HRESULT enableLight(DeviceStates& states, uint32_t index, bool enable);

/// What reaches a vertex from everywhere: emission and the ambient light. Its alpha is 0.
D3DCOLORVALUE ambientOf(const DeviceStates& states);

/// Where the enabled light goes, of length 1; 0, 0, 0 without one.
D3DVECTOR lightDirection(const DeviceStates& states);

/// Bytes of one vertex of a format made of D3DFVF_XYZ, D3DFVF_NORMAL, D3DFVF_DIFFUSE and D3DFVF_TEX1; 0 for
/// any other format.
uint32_t vertexBytes(uint32_t fvf);

}  // namespace facet
