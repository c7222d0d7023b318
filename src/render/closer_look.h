#pragma once

#include "render/view.h"

// What helps to look closer at a model: lines over it, and a checker board in place of its textures.

namespace facet {

/// Draws, over the model, what the settings ask for (wires, boxes, normals), the outline of the selected
/// meshes and the measured distance. Lines that the device refuses are left out.
void drawCloserLook(ModelView& view);

/// Draws the model's meshes with a checker board as their texture, under a light from the eye. Its squares
/// are an eighth of it, in a colour of their own for each row and brighter to the right, so that turned and
/// mirrored textures show.
void drawChecked(ModelView& view, const Vector3& forward);

/// The distance between the two measured points, none unless there are two.
std::optional<float> measuredDistance(const Scene& scene);

/// Meshes were hidden, shown or replaced: forgets the lines and the box made of those seen before.
void visibleMeshesChanged(Scene& scene);

}  // namespace facet
