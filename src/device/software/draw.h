#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "device/device.h"
#include "device/fixed_function.h"

// What a draw call leaves behind until it is carried out: its buffers and what follows from the state. And
// the surface that it is carried out on.

namespace facet {

// Pixels of a row are worked on in blocks. Every step is a loop over the lanes of a block, so that the
// compiler can take several at once. That it does only where no comparison hides in the branch of another.
inline constexpr uint32_t laneCount = 8;

/// The colours of a block, 0xAARRGGBB.
using Colors = std::array<uint32_t, laneCount>;

/// `value` cut to low .. high; what is no number becomes `low`.
inline float cut(float value, float low, float high) {
  const float raised = value > low ? value : low;
  return raised < high ? raised : high;
}

struct SoftwareVertexBuffer final : IDirect3DVertexBuffer9 {
  SoftwareVertexBuffer(uint32_t fvf, std::vector<std::byte> vertices)
      : shape(shapeOf(fvf)), bytes(std::move(vertices)) {}
  const VertexShape shape;
  const std::vector<std::byte> bytes;
};

struct SoftwareIndexBuffer final : IDirect3DIndexBuffer9 {
  explicit SoftwareIndexBuffer(std::vector<uint16_t> list) : indices(std::move(list)) {}
  const std::vector<uint16_t> indices;
};

/// One decoded level: rows of 0xAARRGGBB without gaps.
struct TexelLevel {
  uint32_t width = 0, height = 0;
  std::vector<uint32_t> texels;
};
using TexelLevels = std::vector<TexelLevel>;

/// A texture in its own format until it is first drawn with: many never are.
class SoftwareTexture final : public IDirect3DTexture9 {
 public:
  SoftwareTexture(D3DFORMAT format, std::vector<ImageLevel> levels)
      : format_(format), levels_(std::move(levels)) {}

  /// The levels for sampling; they live as long as the texture. Not to be called by two threads at once.
  const TexelLevels& texels();
  void PreLoad() override { texels(); }

 private:
  D3DFORMAT format_;
  std::vector<ImageLevel> levels_;  ///< none once they are decoded
  TexelLevels texels_;
};

/// Fixed-function lighting: what the vertices of a draw have in common.
struct Lighting {
  bool enabled = false;     ///< otherwise the vertex colour, or white
  D3DVECTOR direction;      ///< of the light, of length 1
  D3DMATRIX normalToWorld;  ///< its upper 3 x 3 part
  D3DCOLORVALUE ambient, light;
  D3DCOLORVALUE material;  ///< for vertices without colour
};

struct Sampler {
  const TexelLevels* levels = nullptr;
  D3DTEXTUREADDRESS address = D3DTADDRESS_WRAP;
  D3DTEXTUREFILTERTYPE filter = D3DTEXF_POINT, mipFilter = D3DTEXF_NONE;
  bool needsLevel = false;  ///< false when every pixel is taken from level 0
};

/// How a pixel comes to its colour. Where neither is set it is the texture's, and where both are the colour
/// is the product of the two and the alpha the texture's.
struct PixelState {
  bool textured = false;
  bool diffuse = true;  ///< the vertex colour counts
  Sampler sampler;      ///< when textured
  bool alphaTest = false;
  uint32_t alphaRef = 0;
  bool blend = false;
  D3DBLEND sourceBlend = D3DBLEND_ONE, destBlend = D3DBLEND_ZERO;
};

struct Draw {
  std::shared_ptr<const SoftwareVertexBuffer> vertices;
  std::shared_ptr<const SoftwareIndexBuffer> indices;  ///< none: the vertices are taken in turn
  std::shared_ptr<const IDirect3DTexture9> texture;    ///< keeps what the sampler points at
  D3DPRIMITIVETYPE type = D3DPT_TRIANGLELIST;
  uint32_t firstVertex = 0, vertexCount = 0;  ///< the range of vertices that indices count in
  uint32_t primitiveCount = 0;

  D3DMATRIX toClip;  ///< from the model's space
  Lighting lighting;
  D3DCULL cull = D3DCULL_CCW;
  bool wireframe = false, flat = false;
  PixelState pixel;

  size_t firstScreenVertex = 0;  ///< place of the range among all transformed vertices

  const std::byte* vertex(uint32_t index) const {
    return vertices->bytes.data() + (size_t{firstVertex} + index) * vertices->shape.stride;
  }
};

/// The surface that is drawn on. Depth rows are longer than the picture, so that whole blocks of pixels can
/// be read and written back at the right edge.
struct Surface {
  static constexpr uint32_t padding = laneCount;
  uint32_t width = 0, height = 0;
  std::unique_ptr<uint32_t[]> color;  ///< 0xAARRGGBB, rows without gaps
  std::unique_ptr<float[]> depth;     ///< rows of width + padding

  float* depthRow(uint32_t y) { return depth.get() + size_t{y} * (width + padding); }
  uint32_t* colorRow(uint32_t y) { return color.get() + size_t{y} * width; }
  std::span<const uint32_t> pixels() const { return {color.get(), size_t{width} * height}; }
};

}  // namespace facet
