#include "device/reference/state.h"

#include <algorithm>

#include "device/matrix.h"

namespace facet {
namespace {

Lighting lightingOf(const DeviceStates& states) {
  Lighting result;
  result.enabled = states.lighting != 0;
  if (!result.enabled) return result;
  result.base = ambientOf(states);
  result.materialDiffuse = states.material.Diffuse;
  result.directional = states.lightEnabled;
  result.direction = lightDirection(states);
  result.lightDiffuse = states.light.Diffuse;
  result.normalToWorld = normalMatrix(states.world);
  return result;
}

Combine combineOf(uint32_t op, uint32_t first, uint32_t second) {
  return {static_cast<D3DTEXTUREOP>(op), first == D3DTA_TEXTURE, second == D3DTA_TEXTURE};
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

Sampler samplerOf(const DeviceStates& states, const TexelLevels& levels) {
  Sampler sampler;
  sampler.levels = &levels;
  sampler.addressU = static_cast<D3DTEXTUREADDRESS>(states.addressU);
  sampler.addressV = static_cast<D3DTEXTUREADDRESS>(states.addressV);
  sampler.minFilter = static_cast<D3DTEXTUREFILTERTYPE>(states.minFilter);
  sampler.magFilter = static_cast<D3DTEXTUREFILTERTYPE>(states.magFilter);
  sampler.mipFilter = static_cast<D3DTEXTUREFILTERTYPE>(states.mipFilter);
  sampler.maxAnisotropy = std::clamp(states.maxAnisotropy, 1u, 16u);
  const bool mipmapped = sampler.mipFilter != D3DTEXF_NONE && levels.size() > 1;
  sampler.needsLevel =
      mipmapped || sampler.minFilter != sampler.magFilter || sampler.minFilter == D3DTEXF_ANISOTROPIC;
  return sampler;
}

/// White times the texture is the texture.
Combine combineWithWhite(const Combine& how) {
  if (how.op == D3DTOP_MODULATE && how.textureFirst != how.textureSecond)
    return {D3DTOP_SELECTARG1, true, false};
  return how;
}

PixelState pixelStateOf(const DeviceStates& states, bool hasTexture, bool isWhite) {
  PixelState pixel;
  pixel.depthTest = states.zEnable != D3DZB_FALSE;
  pixel.depthWrite = pixel.depthTest && states.zWriteEnable != 0;
  pixel.depthFunc = static_cast<D3DCMPFUNC>(states.zFunc);
  pixel.alphaTest = states.alphaTestEnable != 0;
  pixel.alphaFunc = static_cast<D3DCMPFUNC>(states.alphaFunc);
  pixel.alphaRef = states.alphaRef & 255;
  pixel.blend = states.alphaBlendEnable != 0;
  pixel.sourceBlend = static_cast<D3DBLEND>(states.srcBlend);
  pixel.destBlend = static_cast<D3DBLEND>(states.destBlend);
  pixel.color = combineOf(states.colorOp, states.colorArg1, states.colorArg2);
  pixel.alpha = combineOf(states.alphaOp, states.alphaArg1, states.alphaArg2);
  // A disabled colour operation disables the whole stage.
  if (!hasTexture || pixel.color.op == D3DTOP_DISABLE)
    pixel.color = pixel.alpha = {D3DTOP_DISABLE, false, false};
  if (isWhite) {
    pixel.color = combineWithWhite(pixel.color);
    pixel.alpha = combineWithWhite(pixel.alpha);
  }
  pixel.usesTexture = reads(pixel.color, true) || reads(pixel.alpha, true);
  pixel.usesDiffuse = reads(pixel.color, false) || reads(pixel.alpha, false);
  return pixel;
}

}  // namespace

VertexShape shapeOf(uint32_t fvf, uint32_t stride) {
  VertexShape shape{.stride = stride, .size = 12};
  const auto place = [&](uint32_t flag, uint32_t bytes) {
    if (!(fvf & flag)) return VertexShape::none;
    shape.size += bytes;
    return shape.size - bytes;
  };
  shape.normal = place(D3DFVF_NORMAL, 12);
  shape.color = place(D3DFVF_DIFFUSE, 4);
  shape.uv = place(D3DFVF_TEX1, 8);
  return shape;
}

bool setUpDraw(const ReferenceState& state, WorkerPool& pool, Draw& draw) {
  const auto* buffer = dynamic_cast<const ReferenceVertexBuffer*>(state.vertices.get());
  draw.shape = shapeOf(state.fvf, state.vertexStride);
  if (!buffer || !(state.fvf & D3DFVF_XYZ) || draw.shape.stride < draw.shape.size) return false;
  draw.vertices = buffer->share();

  draw.toClip = multiply(multiply(state.world, state.view), state.projection);
  draw.lighting = lightingOf(state);
  draw.cull = static_cast<D3DCULL>(state.cullMode);
  draw.wireframe = state.fillMode == D3DFILL_WIREFRAME;
  draw.flat = state.shadeMode == D3DSHADE_FLAT;

  auto* texture = dynamic_cast<ReferenceTexture*>(state.texture.get());
  const bool isWhite = !draw.lighting.enabled && draw.shape.color == VertexShape::none;
  draw.pixel = pixelStateOf(state, texture && draw.shape.uv != VertexShape::none, isWhite);
  if (draw.pixel.usesTexture) {
    draw.texels = texture->texels(pool);
    draw.pixel.sampler = samplerOf(state, *draw.texels);
  }
  return true;
}

}  // namespace facet
