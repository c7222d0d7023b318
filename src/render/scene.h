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
/// colour (wireframe), normal and colour (lit, or shown without its texture) or normal and texture
/// coordinates (textured). A mesh whose buffer cannot be created, or would pass 4 GiB, gets none.
void buildMeshBuffers(ModelView& view);

/// Puts a value back when the scope that changes it ends, however that is.
template <class T>
class Restored {
 public:
  explicit Restored(T& value) : value_(value), before_(value) {}
  ~Restored() { value_ = std::move(before_); }
  Restored(const Restored&) = delete;
  Restored& operator=(const Restored&) = delete;

 private:
  T& value_;
  T before_;
};

/// Whether meshes of a material are drawn where textures are: those that need light not without it, those
/// without a texture only when the settings say so.
bool isShownTextured(const Material& material, const ViewSettings& settings);

/// Whether a material with a texture wants more than to be drawn with it; then both sides are shown.
bool isSpecial(const Material& material);

/// Whether a mesh has buffers and is neither hidden nor cut by distance.
bool isDrawable(const Mesh& mesh);

/// Draws the meshes that are drawable, in their order; with textures, plain ones first. A render mode above 2
/// draws nothing.
void drawModel(const Model& model, const ViewSettings& settings, IDirect3DDevice9& device);

}  // namespace facet
