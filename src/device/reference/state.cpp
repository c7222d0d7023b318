#include "device/reference/state.h"

#include <algorithm>
#include <cmath>

#include "device/reference/transform_light.h"

namespace facet {
namespace {

D3DMATRIX identity() {
  D3DMATRIX matrix;
  for (size_t i = 0; i < 4; ++i) matrix.m[i][i] = 1;
  return matrix;
}

D3DCOLORVALUE colorValue(D3DCOLOR color) {
  const auto channel = [color](int shift) { return static_cast<float>(color >> shift & 255) / 255; };
  return {channel(16), channel(8), channel(0), channel(24)};
}

D3DVECTOR normalized(const D3DVECTOR& v) {
  const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  return length > 0 ? D3DVECTOR{v.x / length, v.y / length, v.z / length} : v;
}

Lighting lightingOf(const DeviceState& state) {
  Lighting result;
  result.enabled = state.render(D3DRS_LIGHTING) != 0;
  if (!result.enabled) return result;
  const D3DCOLORVALUE global = colorValue(state.render(D3DRS_AMBIENT));
  const D3DCOLORVALUE light = state.lightEnabled ? state.light.Ambient : D3DCOLORVALUE{};
  const D3DMATERIAL9& material = state.material;
  result.base = {material.Emissive.r + material.Ambient.r * (global.r + light.r),
                 material.Emissive.g + material.Ambient.g * (global.g + light.g),
                 material.Emissive.b + material.Ambient.b * (global.b + light.b), 0};
  result.materialDiffuse = material.Diffuse;
  result.directional = state.lightEnabled && state.light.Type == D3DLIGHT_DIRECTIONAL;
  result.direction = normalized(state.light.Direction);
  result.lightDiffuse = state.light.Diffuse;
  result.normalToWorld = normalMatrix(state.world);
  return result;
}

Combine combineOf(const DeviceState& state, D3DTEXTURESTAGESTATETYPE op, D3DTEXTURESTAGESTATETYPE first,
                  D3DTEXTURESTAGESTATETYPE second) {
  return {static_cast<D3DTEXTUREOP>(state.stageStates[op]), state.stageStates[first] == D3DTA_TEXTURE,
          state.stageStates[second] == D3DTA_TEXTURE};
}

/// True when the result needs the texture, or else the vertex colour.
bool reads(const Combine& how, bool texture) {
  const bool first = how.textureFirst == texture, second = how.textureSecond == texture;
  switch (how.op) {
    case D3DTOP_SELECTARG1:
      return first;
    case D3DTOP_SELECTARG2:
      return second;
    case D3DTOP_MODULATE:
    case D3DTOP_MODULATE2X:
      return first || second;
    default:
      return !texture;
  }
}

Sampler samplerOf(const DeviceState& state, const TexelLevels& levels) {
  const auto get = [&](D3DSAMPLERSTATETYPE type) { return state.samplerStates[type]; };
  Sampler sampler;
  sampler.levels = &levels;
  sampler.addressU = static_cast<D3DTEXTUREADDRESS>(get(D3DSAMP_ADDRESSU));
  sampler.addressV = static_cast<D3DTEXTUREADDRESS>(get(D3DSAMP_ADDRESSV));
  sampler.minFilter = static_cast<D3DTEXTUREFILTERTYPE>(get(D3DSAMP_MINFILTER));
  sampler.magFilter = static_cast<D3DTEXTUREFILTERTYPE>(get(D3DSAMP_MAGFILTER));
  sampler.mipFilter = static_cast<D3DTEXTUREFILTERTYPE>(get(D3DSAMP_MIPFILTER));
  sampler.maxAnisotropy = std::clamp(get(D3DSAMP_MAXANISOTROPY), 1u, 16u);
  const bool mipmapped = sampler.mipFilter != D3DTEXF_NONE && levels.size() > 1;
  sampler.needsLevel =
      mipmapped || sampler.minFilter != sampler.magFilter || sampler.minFilter == D3DTEXF_ANISOTROPIC;
  return sampler;
}

PixelState pixelStateOf(const DeviceState& state, bool hasTexture) {
  PixelState pixel;
  pixel.depthTest = state.render(D3DRS_ZENABLE) != D3DZB_FALSE;
  pixel.depthWrite = pixel.depthTest && state.render(D3DRS_ZWRITEENABLE) != 0;
  pixel.depthFunc = static_cast<D3DCMPFUNC>(state.render(D3DRS_ZFUNC));
  pixel.alphaTest = state.render(D3DRS_ALPHATESTENABLE) != 0;
  pixel.alphaFunc = static_cast<D3DCMPFUNC>(state.render(D3DRS_ALPHAFUNC));
  pixel.alphaRef = state.render(D3DRS_ALPHAREF) & 255;
  pixel.blend = state.render(D3DRS_ALPHABLENDENABLE) != 0;
  pixel.sourceBlend = static_cast<D3DBLEND>(state.render(D3DRS_SRCBLEND));
  pixel.destBlend = static_cast<D3DBLEND>(state.render(D3DRS_DESTBLEND));
  pixel.color = combineOf(state, D3DTSS_COLOROP, D3DTSS_COLORARG1, D3DTSS_COLORARG2);
  pixel.alpha = combineOf(state, D3DTSS_ALPHAOP, D3DTSS_ALPHAARG1, D3DTSS_ALPHAARG2);
  // A disabled colour operation disables the whole stage.
  if (!hasTexture || pixel.color.op == D3DTOP_DISABLE)
    pixel.color = pixel.alpha = {D3DTOP_DISABLE, false, false};
  pixel.usesTexture = reads(pixel.color, true) || reads(pixel.alpha, true);
  pixel.usesDiffuse = reads(pixel.color, false) || reads(pixel.alpha, false);
  return pixel;
}

}  // namespace

DeviceState::DeviceState() : world(identity()), view(identity()), projection(identity()) {
  renderStates[D3DRS_ZENABLE] = D3DZB_TRUE;
  renderStates[D3DRS_FILLMODE] = D3DFILL_SOLID;
  renderStates[D3DRS_SHADEMODE] = D3DSHADE_GOURAUD;
  renderStates[D3DRS_ZWRITEENABLE] = 1;
  renderStates[D3DRS_SRCBLEND] = D3DBLEND_ONE;
  renderStates[D3DRS_DESTBLEND] = D3DBLEND_ZERO;
  renderStates[D3DRS_CULLMODE] = D3DCULL_CCW;
  renderStates[D3DRS_ZFUNC] = D3DCMP_LESSEQUAL;
  renderStates[D3DRS_ALPHAFUNC] = D3DCMP_ALWAYS;
  renderStates[D3DRS_LIGHTING] = 1;
  samplerStates[D3DSAMP_ADDRESSU] = samplerStates[D3DSAMP_ADDRESSV] = D3DTADDRESS_WRAP;
  samplerStates[D3DSAMP_MAGFILTER] = samplerStates[D3DSAMP_MINFILTER] = D3DTEXF_POINT;
  samplerStates[D3DSAMP_MAXANISOTROPY] = 1;
  stageStates[D3DTSS_COLOROP] = D3DTOP_MODULATE;
  stageStates[D3DTSS_COLORARG1] = stageStates[D3DTSS_ALPHAARG1] = D3DTA_TEXTURE;
  stageStates[D3DTSS_COLORARG2] = stageStates[D3DTSS_ALPHAARG2] = D3DTA_CURRENT;
  stageStates[D3DTSS_ALPHAOP] = D3DTOP_SELECTARG1;
}

VertexLayout layoutOf(uint32_t fvf, uint32_t stride) {
  VertexLayout layout{.stride = stride, .size = 12};
  const auto place = [&](uint32_t flag, uint32_t bytes) {
    if (!(fvf & flag)) return VertexLayout::none;
    layout.size += bytes;
    return layout.size - bytes;
  };
  layout.normal = place(D3DFVF_NORMAL, 12);
  layout.color = place(D3DFVF_DIFFUSE, 4);
  layout.uv = place(D3DFVF_TEX1, 8);
  return layout;
}

bool setUpDraw(const DeviceState& state, WorkerPool& pool, Draw& draw) {
  const auto* buffer = dynamic_cast<const ReferenceVertexBuffer*>(state.vertices.get());
  draw.layout = layoutOf(state.fvf, state.vertexStride);
  if (!buffer || !(state.fvf & D3DFVF_XYZ) || draw.layout.stride < draw.layout.size) return false;
  draw.vertices = buffer->share();

  draw.toClip = multiply(multiply(state.world, state.view), state.projection);
  draw.lighting = lightingOf(state);
  draw.cull = static_cast<D3DCULL>(state.render(D3DRS_CULLMODE));
  draw.wireframe = state.render(D3DRS_FILLMODE) == D3DFILL_WIREFRAME;
  draw.flat = state.render(D3DRS_SHADEMODE) == D3DSHADE_FLAT;

  auto* texture = dynamic_cast<ReferenceTexture*>(state.texture.get());
  draw.pixel = pixelStateOf(state, texture && draw.layout.uv != VertexLayout::none);
  if (draw.pixel.usesTexture) {
    draw.texels = texture->texels(pool);
    draw.pixel.sampler = samplerOf(state, *draw.texels);
  }
  return true;
}

}  // namespace facet
