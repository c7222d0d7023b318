#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "device/device.h"

namespace facet {

/// Vertices that `count` primitives take; 0 for a type that device.h does not name.
uint64_t verticesOf(D3DPRIMITIVETYPE type, uint64_t count);

/// Primitives that `vertices` suffice for.
uint64_t primitivesOf(D3DPRIMITIVETYPE type, uint64_t vertices);

/// True when each index lies in low .. high - 1.
bool indicesWithin(std::span<const uint16_t> indices, int64_t low, int64_t high);

/// The primitives all of whose indices lie in low .. high - 1, as a list of triangles or lines that keeps
/// order, winding and first vertex.
std::vector<uint16_t> primitivesWithin(D3DPRIMITIVETYPE type, std::span<const uint16_t> indices, int64_t low,
                                       int64_t high);

}  // namespace facet
