#pragma once

#include "render/view.h"

// What stands around the model: axes, ground grid and sky box, made once and drawn in every frame.

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

}  // namespace facet
