#include "device/states.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

namespace facet {
namespace {

/// Where a state is kept, and its permitted values as a set of bits; 0 permits all.
struct StateRow {
  uint32_t state;
  uint32_t DeviceStates::*member;
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
    {D3DRS_ZENABLE, &DeviceStates::zEnable, setOf(D3DZB_FALSE, D3DZB_TRUE)},
    {D3DRS_FILLMODE, &DeviceStates::fillMode, setOf(D3DFILL_WIREFRAME, D3DFILL_SOLID)},
    {D3DRS_SHADEMODE, &DeviceStates::shadeMode, setOf(D3DSHADE_FLAT, D3DSHADE_GOURAUD)},
    {D3DRS_ZWRITEENABLE, &DeviceStates::zWriteEnable, anyValue},
    {D3DRS_ALPHATESTENABLE, &DeviceStates::alphaTestEnable, anyValue},
    {D3DRS_SRCBLEND, &DeviceStates::srcBlend, blends},
    {D3DRS_DESTBLEND, &DeviceStates::destBlend, blends},
    {D3DRS_CULLMODE, &DeviceStates::cullMode, setOf(D3DCULL_NONE, D3DCULL_CW, D3DCULL_CCW)},
    {D3DRS_ZFUNC, &DeviceStates::zFunc, comparisons},
    {D3DRS_ALPHAREF, &DeviceStates::alphaRef, anyValue},
    {D3DRS_ALPHAFUNC, &DeviceStates::alphaFunc, comparisons},
    {D3DRS_ALPHABLENDENABLE, &DeviceStates::alphaBlendEnable, anyValue},
    {D3DRS_LIGHTING, &DeviceStates::lighting, anyValue},
    {D3DRS_AMBIENT, &DeviceStates::ambient, anyValue},
};

constexpr StateRow samplerStates[] = {
    {D3DSAMP_ADDRESSU, &DeviceStates::addressU, addresses},
    {D3DSAMP_ADDRESSV, &DeviceStates::addressV, addresses},
    {D3DSAMP_MAGFILTER, &DeviceStates::magFilter, filters},
    {D3DSAMP_MINFILTER, &DeviceStates::minFilter, filters},
    {D3DSAMP_MIPFILTER, &DeviceStates::mipFilter, setOf(D3DTEXF_NONE, D3DTEXF_POINT, D3DTEXF_LINEAR)},
    {D3DSAMP_MAXANISOTROPY, &DeviceStates::maxAnisotropy, anyValue},
};

constexpr StateRow stageStates[] = {
    {D3DTSS_COLOROP, &DeviceStates::colorOp, operations},
    {D3DTSS_COLORARG1, &DeviceStates::colorArg1, arguments},
    {D3DTSS_COLORARG2, &DeviceStates::colorArg2, arguments},
    {D3DTSS_ALPHAOP, &DeviceStates::alphaOp, operations},
    {D3DTSS_ALPHAARG1, &DeviceStates::alphaArg1, arguments},
    {D3DTSS_ALPHAARG2, &DeviceStates::alphaArg2, arguments},
};

HRESULT setState(DeviceStates& states, std::span<const StateRow> rows, uint32_t state, uint32_t value) {
  const auto row = std::ranges::find(rows, state, &StateRow::state);
  if (row == rows.end()) return D3DERR_INVALIDCALL;
  if (row->permitted != anyValue && (value >= 32 || !(row->permitted >> value & 1)))
    return D3DERR_INVALIDCALL;
  states.*row->member = value;
  return D3D_OK;
}

}  // namespace

HRESULT setRenderState(DeviceStates& states, D3DRENDERSTATETYPE state, uint32_t value) {
  return setState(states, renderStates, state, value);
}

HRESULT setSamplerState(DeviceStates& states, uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value) {
  return sampler == 0 ? setState(states, samplerStates, type, value) : D3DERR_INVALIDCALL;
}

HRESULT setTextureStageState(DeviceStates& states, uint32_t stage, D3DTEXTURESTAGESTATETYPE type,
                             uint32_t value) {
  return stage == 0 ? setState(states, stageStates, type, value) : D3DERR_INVALIDCALL;
}

HRESULT setTransform(DeviceStates& states, D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix) {
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

HRESULT setLight(DeviceStates& states, uint32_t index, const D3DLIGHT9& light) {
  if (index != 0 || light.Type != D3DLIGHT_DIRECTIONAL) return D3DERR_INVALIDCALL;
  states.light = light;
  return D3D_OK;
}

HRESULT enableLight(DeviceStates& states, uint32_t index, bool enable) {
  if (index != 0) return D3DERR_INVALIDCALL;
  states.lightEnabled = enable;
  return D3D_OK;
}

D3DCOLORVALUE ambientOf(const DeviceStates& states) {
  const D3DCOLORVALUE light = states.lightEnabled ? states.light.Ambient : D3DCOLORVALUE{};
  const D3DCOLORVALUE &own = states.material.Ambient, &emissive = states.material.Emissive;
  const auto scene = [&](int shift) { return static_cast<float>(states.ambient >> shift & 255) / 255; };
  return {emissive.r + own.r * (scene(16) + light.r), emissive.g + own.g * (scene(8) + light.g),
          emissive.b + own.b * (scene(0) + light.b), 0};
}

D3DVECTOR lightDirection(const DeviceStates& states) {
  if (!states.lightEnabled) return {};
  const D3DVECTOR& v = states.light.Direction;
  const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  return length > 0 ? D3DVECTOR{v.x / length, v.y / length, v.z / length} : D3DVECTOR{};
}

uint32_t vertexBytes(uint32_t fvf) {
  constexpr struct {
    uint32_t flag, bytes;
  } parts[] = {{D3DFVF_XYZ, 12}, {D3DFVF_NORMAL, 12}, {D3DFVF_DIFFUSE, 4}, {D3DFVF_TEX1, 8}};
  uint32_t bytes = 0, rest = fvf;
  for (const auto& part : parts) {
    if (fvf & part.flag) bytes += part.bytes;
    rest &= ~part.flag;
  }
  return (fvf & D3DFVF_XYZ) && rest == 0 ? bytes : 0;
}

}  // namespace facet
