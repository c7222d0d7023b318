#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "device/device.h"

namespace facet {

/// True when each index lies in low .. high - 1.
bool indicesWithin(std::span<const uint16_t> indices, int64_t low, int64_t high);

/// The primitives all of whose indices lie in low .. high - 1, as a list of triangles or lines that keeps
/// order, winding and first vertex.
std::vector<uint16_t> primitivesWithin(D3DPRIMITIVETYPE type, std::span<const uint16_t> indices, int64_t low,
                                       int64_t high);

}  // namespace facet
