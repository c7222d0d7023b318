#pragma once

#include <cstdint>

namespace facet {

/// Points the attributes of the current vertex array into the buffer that is bound.
void applyVertexFormat(uint32_t fvf, uint32_t offset, uint32_t stride);

}  // namespace facet
