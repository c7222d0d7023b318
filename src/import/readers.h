#pragma once

#include "import/load.h"

// One reader for each input format. It gets the file, positioned anywhere, and the model with its modelType
// set, fills meshes and materials (names only) and throws LoadError where a load must end without a model.
// Counts are never believed beyond the bytes that stand behind them.

namespace facet {

using ReadModel = void(ByteSource& file, const LoadContext& context, Model& model);

/// Warns when the file says that it goes on behind its end; `name` stands before the warning.
void warnWhereCutOff(const ByteSource& file, const std::string& name, Model& model);

/// Vantor VXM, versions 3 and 4 as modelType says.
ReadModel readVxm;

/// Vantor editable object.
ReadModel readObject;

/// 4A engine mesh, or model with a list of mesh files that stand beside it. A listed file that cannot be
/// opened ends the load.
ReadModel readModel4a;

/// Orion engine v1 mesh.
ReadModel readOrion;

/// DS2 Engine mesh, in both layouts.
ReadModel readDs2md;

/// A DDS picture as a flat quad of its proportions.
ReadModel readDdsPreview;

}  // namespace facet
