#pragma once

#include <utility>

#include "model/model.h"
#include "render/view.h"

namespace facet {

/// Sets the device's material for the render mode and gives every mesh a new vertex buffer: position, then
/// colour (wireframe), normal and colour (lit) or normal and texture coordinates (textured). A mesh whose
/// buffer cannot be created, or would pass 4 GiB, gets none.
void buildMeshBuffers(ModelView& view);

/// Puts a device's state back when the drawing that changed it is done, however that ends.
class StateScope {
 public:
  explicit StateScope(IDirect3DDevice9& device) : device_(device), before_(device.state) {}
  ~StateScope() { device_.state = std::move(before_); }
  StateScope(const StateScope&) = delete;
  StateScope& operator=(const StateScope&) = delete;

 private:
  IDirect3DDevice9& device_;
  DeviceState before_;
};

/// Draws the meshes that have a vertex buffer and are visible, in their order; with textures, plain ones
/// first. A mesh without index buffer is left out, as is one without texture where textures are drawn.
/// `renderMode` above 2 draws nothing.
void drawModel(const Model& model, uint8_t renderMode, uint8_t lightMode, IDirect3DDevice9& device);

}  // namespace facet
