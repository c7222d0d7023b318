#pragma once

#include <cstdint>

#include "device/device.h"

// What Direct3D's fixed functions say, for whoever carries them out.

namespace facet {

/// Where the parts of a vertex lie, in bytes from its start; the position comes first. `none` for a part that
/// the format has not.
struct VertexShape {
  static constexpr uint32_t none = UINT32_MAX;
  uint32_t stride = 0;
  uint32_t normal = none, color = none, uv = none;
};

/// The shape of D3DFVF_XYZ and any of D3DFVF_NORMAL, D3DFVF_DIFFUSE and D3DFVF_TEX1.
VertexShape shapeOf(uint32_t fvf);

/// Vertices that `count` primitives take.
uint32_t verticesOf(D3DPRIMITIVETYPE type, uint32_t count);

D3DMATRIX multiply(const D3DMATRIX& a, const D3DMATRIX& b);

/// From the model's space to clip space.
D3DMATRIX clipMatrix(const DeviceState& state);

/// The upper 3 x 3 part turns normals from the model's space to the world's: the inverse of the world
/// transform, transposed. Zero for a matrix without inverse.
D3DMATRIX normalMatrix(const DeviceState& state);

// Lighting is per vertex and in world space: a directional light needs no view. A lit vertex has the colour
//   ambient + diffuse x light x cosine, each channel cut to 0 .. 1, with diffuse's alpha
// where diffuse is the vertex's own colour, or else the material's.

/// What reaches every vertex: the light's ambient part. Its alpha is 0.
D3DCOLORVALUE ambientOf(const DeviceState& state);

/// What the light adds to a vertex that faces it; 0 while it is off.
D3DCOLORVALUE lightOf(const DeviceState& state);

/// Where the light goes, of length 1; 0, 0, 0 while it is off.
D3DVECTOR lightDirection(const DeviceState& state);

}  // namespace facet
