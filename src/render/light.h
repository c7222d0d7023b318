#pragma once

#include "render/view.h"

namespace facet {

/// Sets and switches on light 0, or switches it off where the modes want none. `forward` is the view
/// direction.
void setLight(ModelView& view, const Vector3& forward);

}  // namespace facet
