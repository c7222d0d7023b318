#include "model/model.h"

#include <algorithm>

#include "platform/parallel.h"

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

unsigned usefulThreads(const Model& model) {
  constexpr uint64_t perThread = 50'000;  // with less to do a further thread costs more than it brings
  const uint64_t elements = uint64_t{model.totalVertices} + model.totalIndices;
  return static_cast<unsigned>(std::clamp<uint64_t>(elements / perThread, 1, threadCount()));
}

void releaseModel(Model& model) {
  // Each owner drops its references; a shared texture ends with its last one.
  model.materials.clear();
  model.meshes.clear();
  model.materialCount = 0;
  model.meshCount = 0;
}

}  // namespace facet
