#include "device/software/software_device.h"

#include <algorithm>
#include <new>

#include "device/software/spans.h"
#include "picture/pixels.h"
#include "platform/parallel.h"

namespace facet {

namespace {

constexpr uint32_t largestSide = 16384;

constexpr D3DFORMAT depthFormats[] = {D3DFMT_D32,   D3DFMT_D15S1,   D3DFMT_D24S8,
                                      D3DFMT_D24X8, D3DFMT_D24X4S4, D3DFMT_D16};

bool isPossible(const D3DPRESENT_PARAMETERS& parameters) {
  const auto fits = [](uint32_t side) { return side >= 1 && side <= largestSide; };
  return fits(parameters.BackBufferWidth) && fits(parameters.BackBufferHeight) &&
         std::ranges::count(depthFormats, parameters.AutoDepthStencilFormat) > 0;
}

Lighting lightingOf(const DeviceState& state) {
  if (!state.lighting) return {};
  return {.enabled = true,
          .direction = lightDirection(state),
          .normalToWorld = normalMatrix(state),
          .ambient = ambientOf(state),
          .light = lightOf(state),
          .material = state.material.Diffuse};
}

PixelState pixelStateOf(const DeviceState& state, const VertexShape& shape) {
  PixelState pixel;
  pixel.alphaTest = state.alphaTestEnable;
  pixel.alphaRef = state.alphaRef;
  pixel.blend = state.alphaBlendEnable;
  pixel.sourceBlend = state.srcBlend;
  pixel.destBlend = state.destBlend;
  pixel.textured = state.texture && shape.uv != VertexShape::none;
  if (!pixel.textured) return pixel;
  // Vertices without colour and light are white, and white times the texture is the texture.
  const bool isWhite = !state.lighting && shape.color == VertexShape::none;
  pixel.diffuse = state.colorOp == D3DTOP_MODULATE && !isWhite;
  const TexelLevels& levels = static_cast<SoftwareTexture&>(*state.texture).texels();
  pixel.sampler = {&levels, state.address, state.filter, state.mipFilter};
  pixel.sampler.needsLevel =
      (state.mipFilter != D3DTEXF_NONE && levels.size() > 1) || state.filter == D3DTEXF_ANISOTROPIC;
  return pixel;
}

}  // namespace

/// Decodes strips of rows on all threads. Their height is a multiple of 4, so blocks are never cut.
const TexelLevels& SoftwareTexture::texels() {
  if (levels_.empty()) return texels_;
  constexpr uint32_t stripRows = 64;
  struct Strip {
    const ImageLevel* from;
    TexelLevel* to;
    uint32_t row;
  };
  std::vector<Strip> strips;
  TexelLevels decoded(levels_.size());
  for (size_t i = 0; i < levels_.size(); ++i) {
    const ImageLevel& level = levels_[i];
    decoded[i] = {level.width, level.height, std::vector<uint32_t>(size_t{level.width} * level.height)};
    for (uint32_t row = 0; row < level.height; row += stripRows) strips.push_back({&level, &decoded[i], row});
  }
  parallelFor(strips.size(), [&](size_t i) {
    const auto& [from, to, row] = strips[i];
    const uint32_t rows = std::min(stripRows, from->height - row);
    const std::span texels(to->texels.data() + size_t{row} * from->width, size_t{rows} * from->width);
    const auto bytes =
        std::span(from->bytes)
            .subspan(levelBytes(format_, from->width, row), levelBytes(format_, from->width, rows));
    decodePixels(format_, from->width, rows, bytes,
                 {reinterpret_cast<uint8_t*>(texels.data()), texels.size_bytes()});
    for (uint32_t& texel : texels) texel = (texel & 0xFF00FF00) | (texel >> 16 & 0xFF) | (texel & 0xFF) << 16;
  });
  texels_ = std::move(decoded);
  levels_ = {};
  return texels_;
}

D3DCAPS9 softwareCaps() {
  return {
      .MaxTextureWidth = largestSide, .MaxTextureHeight = largestSide, .MaxAnisotropy = maximumAnisotropy};
}

HRESULT SoftwareDevice::create(const D3DPRESENT_PARAMETERS& parameters,
                               std::shared_ptr<IDirect3DDevice9>* created) {
  auto device = std::make_shared<SoftwareDevice>();
  const HRESULT result = device->Reset(parameters);
  if (result == D3D_OK) *created = std::move(device);
  return result;
}

std::span<const uint32_t> SoftwareDevice::backBuffer() const {
  return whole_ ? renderer_.surface().pixels() : std::span<const uint32_t>();
}

HRESULT SoftwareDevice::Reset(const D3DPRESENT_PARAMETERS& parameters) {
  if (!isPossible(parameters)) return D3DERR_NOTAVAILABLE;
  try {
    renderer_.resize(parameters.BackBufferWidth, parameters.BackBufferHeight);
  } catch (const std::bad_alloc&) {
    return D3DERR_OUTOFVIDEOMEMORY;
  }
  whole_ = true;
  return D3D_OK;
}

HRESULT SoftwareDevice::GetDeviceCaps(D3DCAPS9* caps) {
  *caps = softwareCaps();
  return D3D_OK;
}

void SoftwareDevice::Clear(D3DCOLOR color) {
  whole_ = false;
  renderer_.clear(color);
}

void SoftwareDevice::Present() {
  renderer_.finish();
  whole_ = true;
}

/// What a draw takes from the state.
Draw SoftwareDevice::drawOf(const std::shared_ptr<IDirect3DVertexBuffer9>& vertices) const {
  Draw draw;
  draw.vertices = std::static_pointer_cast<const SoftwareVertexBuffer>(vertices);
  draw.texture = state.texture;
  draw.toClip = clipMatrix(state);
  draw.lighting = lightingOf(state);
  draw.cull = state.cullMode;
  draw.wireframe = state.fillMode == D3DFILL_WIREFRAME;
  draw.flat = state.shadeMode == D3DSHADE_FLAT;
  draw.pixel = pixelStateOf(state, draw.vertices->shape);
  return draw;
}

void SoftwareDevice::DrawPrimitive(D3DPRIMITIVETYPE type,
                                   const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                                   uint32_t startVertex, uint32_t primitiveCount) {
  Draw draw = drawOf(vertices);
  draw.type = type;
  draw.firstVertex = startVertex;
  draw.vertexCount = verticesOf(type, primitiveCount);
  draw.primitiveCount = primitiveCount;
  renderer_.add(std::move(draw));
}

void SoftwareDevice::DrawIndexedPrimitive(const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                                          const std::shared_ptr<IDirect3DIndexBuffer9>& indices) {
  constexpr size_t reach = 1 << 16;  // of an index: more vertices need not be transformed
  Draw draw = drawOf(vertices);
  draw.indices = std::static_pointer_cast<const SoftwareIndexBuffer>(indices);
  draw.vertexCount =
      static_cast<uint32_t>(std::min(draw.vertices->bytes.size() / draw.vertices->shape.stride, reach));
  draw.primitiveCount = static_cast<uint32_t>(draw.indices->indices.size() / 3);
  renderer_.add(std::move(draw));
}

}  // namespace facet
