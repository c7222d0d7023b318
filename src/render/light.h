#pragma once

#include "render/view.h"

namespace facet {

/// The colours of the textured modes by the hour: `level` is 0.7 at noon and falls to 0.1 at midnight.
struct Daylight {
  float level;
  D3DCOLORVALUE diffuse;
};
Daylight daylight(float envTime);

/// Sets and switches on light 0, or switches it off where the modes want none. `forward` is the view
/// direction.
void setLight(ModelView& view, const Vector3& forward);

}  // namespace facet
