#pragma once

#include <utility>

#include "render/view.h"

// What a frame draws: the model, and what stands around it, axes, ground grid and sky box, made once.

namespace facet {

/// The three axes, from -1 to 5 each; none when the buffer cannot be created.
void buildAxes(ModelView& view);

/// Lines a unit apart from -20 to 20, a hundredth below y = 0.
void buildGrid(ModelView& view);

/// Ten quads: four walls of twice `height` around the centre, in halves, a top and a bottom.
void buildSkyBox(ModelView& view, const Vector3& center, float width, float height, float depth);

/// Draws the sky around the eye, turned by the hour. A model with fewer than six materials has no sky.
void drawSkyBox(ModelView& view);

void drawGridAndAxes(ModelView& view);

/// Sets and switches on light 0, or switches it off where the modes want none. `forward` is the view
/// direction.
void setLight(ModelView& view, const Vector3& forward);

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
