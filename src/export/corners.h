#pragma once

#include <cstdint>

#include "model/model.h"

namespace facet {

/// A corner's vertex as the writers print it: zeros for an index at or above vertexCount.
struct Corner {
  Vertex vertex;
  Vector3 normal;
};

inline Corner cornerAt(const Mesh& mesh, uint16_t index) {
  if (index >= mesh.vertexCount) return {};
  return {mesh.vertices[index], mesh.normals[index]};
}

/// Whole triangles; what is left of a partial one is not written.
inline uint32_t triangleCount(const Mesh& mesh) {
  return mesh.indexCount / 3;
}

inline uint32_t vertexCount(const Mesh& mesh) {
  return mesh.vertexCount;
}
inline uint32_t indexCount(const Mesh& mesh) {
  return mesh.indexCount;
}

/// Calls put(triangle, a, b, c) with the three indices of each triangle in first..end.
template <class Put>
void forTriangles(const Mesh& mesh, uint32_t first, uint32_t end, Put put) {
  for (uint32_t t = first; t < end; ++t) {
    const uint16_t* corners = &mesh.indices[size_t{t} * 3];
    put(t, corners[0], corners[1], corners[2]);
  }
}

/// The texture name of the mesh's material, empty where the model has no such material.
inline std::string_view textureNameOf(const Model& model, const Mesh& mesh) {
  return mesh.materialIndex < model.materials.size() ? model.materials[mesh.materialIndex].textureName
                                                     : std::string_view();
}

}  // namespace facet
