#include "device/fixed_function.h"

#include <cmath>

namespace facet {

VertexShape shapeOf(uint32_t fvf) {
  VertexShape shape{.stride = 12};
  const auto place = [&](uint32_t flag, uint32_t bytes) {
    if (!(fvf & flag)) return VertexShape::none;
    shape.stride += bytes;
    return shape.stride - bytes;
  };
  shape.normal = place(D3DFVF_NORMAL, 12);
  shape.color = place(D3DFVF_DIFFUSE, 4);
  shape.uv = place(D3DFVF_TEX1, 8);
  return shape;
}

uint32_t verticesOf(D3DPRIMITIVETYPE type, uint32_t count) {
  if (type == D3DPT_TRIANGLESTRIP) return count + 2;
  return count * (type == D3DPT_LINELIST ? 2 : 3);
}

D3DMATRIX multiply(const D3DMATRIX& a, const D3DMATRIX& b) {
  D3DMATRIX result;
  for (size_t row = 0; row < 4; ++row) {
    for (size_t column = 0; column < 4; ++column) {
      float sum = 0;
      for (size_t i = 0; i < 4; ++i) sum += a.m[row][i] * b.m[i][column];
      result.m[row][column] = sum;
    }
  }
  return result;
}

D3DMATRIX clipMatrix(const DeviceState& state) {
  return multiply(multiply(state.world, state.view), state.projection);
}

D3DMATRIX normalMatrix(const DeviceState& state) {
  const auto& m = state.world.m;
  D3DMATRIX result;
  for (size_t row = 0; row < 3; ++row) {
    const size_t r1 = (row + 1) % 3, r2 = (row + 2) % 3;
    for (size_t column = 0; column < 3; ++column) {
      const size_t c1 = (column + 1) % 3, c2 = (column + 2) % 3;
      result.m[row][column] = m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
    }
  }
  const float determinant = m[0][0] * result.m[0][0] + m[0][1] * result.m[0][1] + m[0][2] * result.m[0][2];
  const float scale = determinant != 0 ? 1 / determinant : 0;
  for (auto& row : result.m)
    for (float& value : row) value *= scale;
  return result;
}

D3DCOLORVALUE ambientOf(const DeviceState& state) {
  if (!state.lightEnable) return {};
  const D3DCOLORVALUE &light = state.light.Ambient, &own = state.material.Ambient;
  return {own.r * light.r, own.g * light.g, own.b * light.b, 0};
}

D3DCOLORVALUE lightOf(const DeviceState& state) {
  return state.lightEnable ? state.light.Diffuse : D3DCOLORVALUE{};
}

D3DVECTOR lightDirection(const DeviceState& state) {
  if (!state.lightEnable) return {};
  const D3DVECTOR& v = state.light.Direction;
  const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  return length > 0 ? D3DVECTOR{v.x / length, v.y / length, v.z / length} : D3DVECTOR{};
}

}  // namespace facet
