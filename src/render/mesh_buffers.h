#pragma once

#include "render/view.h"

namespace facet {

/// Sets the device's material for the render mode and gives every mesh a new vertex buffer: position, then
/// colour (wireframe), normal and colour (lit) or normal and texture coordinates (textured). A mesh whose
/// buffer cannot be created, or would pass 4 GiB, gets none.
void buildMeshBuffers(ModelView& view);

}  // namespace facet
