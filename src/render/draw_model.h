#pragma once

#include "model/model.h"

namespace facet {

/// The states that a material switched on and that go off again after its mesh.
struct MaterialStates {
  bool alphaTestOn = false, alphaBlendOn = false;
};

/// Switches on what a mesh of these render flags (see import/materials.h) is drawn with.
MaterialStates applyMaterialStates(uint8_t renderFlags, IDirect3DDevice9& device);

/// Draws the meshes that have a vertex buffer and are visible, inside a scene, in their order; with textures,
/// plain ones first. A mesh without index buffer is left out, as is one without texture where textures are
/// drawn. `renderMode` above 2 draws nothing.
void drawModel(const Model& model, uint8_t renderMode, uint8_t lightMode, IDirect3DDevice9& device);

}  // namespace facet
