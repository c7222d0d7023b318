#pragma once

#include "commands/viewer.h"

namespace facet {

/// Asks where to and writes the model in the format of the chosen file type, whatever extension was typed.
/// The current directory is the same afterwards. Without a model, does nothing.
void saveModelFile(Viewer& viewer);

}  // namespace facet
