#pragma once

#include "device/device.h"

namespace facet {

inline constexpr D3DMATRIX identityMatrix{{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}};

D3DMATRIX multiply(const D3DMATRIX& a, const D3DMATRIX& b);

/// The upper 3 x 3 part that turns normals: the inverse, transposed. Zero for a matrix without inverse.
D3DMATRIX normalMatrix(const D3DMATRIX& matrix);

}  // namespace facet
