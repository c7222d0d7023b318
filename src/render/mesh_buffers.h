#pragma once

#include "render/view.h"

namespace facet {

/// The vertices of a render mode.
struct VertexLayout {
  uint32_t stride;  ///< bytes
  uint32_t fvf;
};
inline constexpr VertexLayout vertexLayouts[] = {
    {16, D3DFVF_XYZ | D3DFVF_DIFFUSE},
    {28, D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE},
    {32, D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_TEX1},
};

/// Sets the scene's material for the render mode and gives every mesh a new vertex buffer in the mode's
/// layout. A mesh whose buffer cannot be created, or would pass 4 GiB, gets none.
void buildMeshBuffers(ModelView& view);

}  // namespace facet
