#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "import/load.h"
#include "model/model.h"
#include "platform/files.h"

// One reader for each input format. It gets the file, positioned anywhere, and the model with its modelType
// set, fills meshes and materials (names only) and throws LoadError where a load must end without a model.
// Counts are never believed beyond the bytes that stand behind them.

// Parts of a mesh as several formats store them, read into arrays that are already allocated. False when the
// file does not hold them.

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

/// vertexCount times x, y, z, in hundredths of a model unit.
bool readScaledPositions(ByteSource& file, Mesh& mesh);

/// vertexCount times x, y, z.
bool readNormals(ByteSource& file, Mesh& mesh);

/// vertexCount times u, v.
bool readTextureCoordinates(ByteSource& file, Mesh& mesh);

/// indexCount 16-bit indices.
bool readIndices(ByteSource& file, Mesh& mesh);

/// For formats without normals: finishing sets those of triangles, the others stay 0, 0, 0.
void clearNormals(Mesh& mesh);

/// A length in hundredths of a model unit, in model units.
inline float fromHundredths(float value) {
  return value / 100.0f;
}

/// Finds a model's materials by their two names in constant time; a reader keeps one for its whole run.
class MaterialTable {
 public:
  explicit MaterialTable(Model& model) : model_(model) {}

  struct Entry {
    uint32_t index;
    bool added;
  };
  /// The first material with exactly these names, or a new one at the end of the model's list.
  Entry findOrAdd(std::string_view textureName, std::string_view shaderName);

 private:
  Model& model_;
  std::unordered_map<std::string, uint32_t> indices_;
};

}  // namespace facet
