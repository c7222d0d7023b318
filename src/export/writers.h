#pragma once

#include <string>

#include "export/export.h"

// One writer for each output format, and the reasons of those that do not take every model.

namespace facet {

WriteModel exportObj, exportSmd, exportAse, exportPov, exportDae, exportDxf, exportStl, exportMs3d, exportVxm,
    exportGlb;

/// Counts are 16 bits wide.
std::string refuseMs3d(const Model& model);

/// A visual needs a mesh, and sizes are 32 bits wide.
std::string refuseVxm(const Model& model);

}  // namespace facet
