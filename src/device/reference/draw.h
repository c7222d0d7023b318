#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "device/device.h"
#include "device/reference/lanes.h"
#include "device/reference/resources.h"

// What a draw call leaves behind until it is carried out: its inputs and all the state that it depends on.

namespace facet {

/// Where the parts of a vertex lie; `none` for a part that the format has not.
struct VertexShape {
  static constexpr uint32_t none = UINT32_MAX;
  uint32_t stride = 0, size = 0;  ///< size: bytes of one vertex that are read
  uint32_t normal = none, color = none, uv = none;
};

/// Fixed-function lighting: what the vertices of a draw have in common.
struct Lighting {
  bool enabled = false;  ///< otherwise the vertex colour, or white
  bool directional = false;
  D3DVECTOR direction;      ///< of the light, of length 1
  D3DMATRIX normalToWorld;  ///< its upper 3 x 3 part
  D3DCOLORVALUE base;       ///< emission and ambient light
  D3DCOLORVALUE lightDiffuse;
  D3DCOLORVALUE materialDiffuse;  ///< for vertices without colour
};

struct Sampler {
  const TexelLevels* levels = nullptr;
  D3DTEXTUREADDRESS addressU = D3DTADDRESS_WRAP, addressV = D3DTADDRESS_WRAP;
  D3DTEXTUREFILTERTYPE minFilter = D3DTEXF_POINT, magFilter = D3DTEXF_POINT, mipFilter = D3DTEXF_NONE;
  uint32_t maxAnisotropy = 1;
  bool needsLevel = false;  ///< false when every pixel is taken from level 0 by the same filter
};

/// How colour or alpha comes from texture and vertex.
struct Combine {
  D3DTEXTUREOP op = D3DTOP_SELECTARG1;
  bool textureFirst = false,
       textureSecond = false;  ///< which argument is the texture; else the vertex colour
};

struct PixelState {
  bool depthTest = false, depthWrite = false;
  D3DCMPFUNC depthFunc = D3DCMP_LESSEQUAL;
  bool alphaTest = false;
  D3DCMPFUNC alphaFunc = D3DCMP_ALWAYS;
  uint32_t alphaRef = 0;
  bool blend = false;
  D3DBLEND sourceBlend = D3DBLEND_ONE, destBlend = D3DBLEND_ZERO;
  Combine color, alpha;
  bool usesTexture = false, usesDiffuse = false;
  Sampler sampler;
};

/// A vertex on the screen: pixel (0, 0) has its centre at 0, 0. Positions count in 1/256 of a pixel.
struct ScreenVertex {
  int32_t x, y;
  float z, rhw;  ///< depth 0..1 and 1 / w
  float u, v;
  float color[4];  ///< r, g, b, a in 0..1
};

struct Draw {
  enum Kind : uint8_t { triangleList, triangleStrip, lineList };
  Kind kind = triangleList;
  SharedBytes::Pointer vertices, indices;  ///< without indices the vertices are taken in turn
  uint64_t vertexOffset = 0;               ///< of the first vertex of the range, in bytes
  uint32_t vertexCount = 0;                ///< in the range; primitives that reach beyond it are not drawn
  uint32_t startIndex = 0;                 ///< first index
  uint32_t minIndex = 0;                   ///< index of the first vertex of the range
  uint32_t primitiveCount = 0;
  VertexShape shape;

  D3DMATRIX toClip;  ///< from the model's space
  Lighting lighting;
  D3DCULL cull = D3DCULL_CCW;
  bool wireframe = false, flat = false;
  PixelState pixel;
  std::shared_ptr<const TexelLevels> texels;  ///< keeps what the sampler points at

  size_t firstScreenVertex = 0;  ///< place of the range among all transformed vertices
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
