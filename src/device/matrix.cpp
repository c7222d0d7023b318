#include "device/matrix.h"

#include <cstddef>

namespace facet {

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

D3DMATRIX normalMatrix(const D3DMATRIX& matrix) {
  const auto& m = matrix.m;
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
  for (auto& row : result.m) {
    for (float& value : row) value *= scale;
  }
  return result;
}

}  // namespace facet
