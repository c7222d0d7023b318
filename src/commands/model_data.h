#pragma once

#include "model/model.h"
#include "platform/desktop.h"

namespace facet {

/// A model, its materials (those of the sky included) and its meshes with their figures, as texts.
ListAndTree modelData(const Model& model);

/// Shows the dialog of a model's data.
void showModelData(const Model& model);

}  // namespace facet
