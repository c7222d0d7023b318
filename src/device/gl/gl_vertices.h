#pragma once

#include <cstdint>

namespace facet {

/// Bytes of one vertex of a format made of D3DFVF_XYZ, D3DFVF_NORMAL, D3DFVF_DIFFUSE and D3DFVF_TEX1; 0 for
/// any other format.
uint32_t vertexBytes(uint32_t fvf);

/// Points the attributes of the current vertex array into the buffer that is bound.
void applyVertexFormat(uint32_t fvf, uint32_t offset, uint32_t stride);

}  // namespace facet
