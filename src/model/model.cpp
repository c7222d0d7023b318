#include "model/model.h"

#include <algorithm>

namespace facet {

void failTooManyObjects() {
  messageBox("too many objects", "ASSERT", MB_ICONHAND | MB_SYSTEMMODAL);
  throw LoadError("too many objects");
}

void allocateVertices(Mesh& mesh, uint32_t count) {
  mesh.vertices = std::make_unique_for_overwrite<Vertex[]>(count);
  mesh.normals = std::make_unique_for_overwrite<Vector3[]>(count);
  mesh.vertexCount = count;
  mesh.vertexBuffer = nullptr;
}

void allocateIndices(Mesh& mesh, uint32_t count) {
  mesh.indices = std::make_unique_for_overwrite<uint16_t[]>(count);
  mesh.indexCount = count;
}

std::span<const Material> ownMaterials(const Model& model) {
  const uint32_t count = std::min<uint32_t>(model.materialCount, model.materials.size());
  return {model.materials.data(), count - std::min(count, skyMaterialCount)};
}

void releaseModel(Model& model) {
  // Each owner drops its references; a shared texture ends with its last one.
  model.materials.clear();
  model.meshes.clear();
  model.materialCount = 0;
  model.meshCount = 0;
}

}  // namespace facet
