#pragma once

#include <algorithm>

#include "model/model.h"
#include "support/format_builders.h"

namespace facet {

/// Builds small models as a load leaves them: bounds, totals, and the six sky materials at the end.
class ModelBuilder {
 public:
  ModelBuilder& material(std::string textureName, std::string shaderName = "default") {
    Material& material = growArray(model_.materials, model_.materialCount++);
    material.textureName = std::move(textureName);
    material.shaderName = std::move(shaderName);
    material.color = {0.5F, 0.625F, 0.75F, 1.0F};
    return *this;
  }

  ModelBuilder& mesh(uint32_t materialIndex, const std::vector<BuiltVertex>& vertices,
                     const std::vector<uint16_t>& indices) {
    Mesh& mesh = growArray(model_.meshes, model_.meshCount++);
    mesh.materialIndex = materialIndex;
    allocateVertices(mesh, static_cast<uint32_t>(vertices.size()));
    for (size_t i = 0; i < vertices.size(); ++i) {
      const BuiltVertex& v = vertices[i];
      mesh.vertices[i] = {v.x, v.y, v.z, v.u, v.v};
      mesh.normals[i] = {v.nx, v.ny, v.nz};
    }
    allocateIndices(mesh, static_cast<uint32_t>(indices.size()));
    std::ranges::copy(indices, mesh.indices.get());
    computeBounds(mesh);
    model_.totalVertices += mesh.vertexCount;
    model_.totalIndices += mesh.indexCount;
    return *this;
  }
  ModelBuilder& mesh(uint32_t materialIndex, const BuiltMesh& built) {
    return mesh(materialIndex, built.vertices, built.indices);
  }
  ModelBuilder& grid(uint32_t materialIndex, uint32_t cells) { return mesh(materialIndex, builtGrid(cells)); }

  Model build() {
    for (uint32_t n = 0; n < skyMaterialCount; ++n)
      material("sky\\sky" + std::to_string(n)).model_.materials.back().color = {};
    model_.modelType = modelTypeVxm4;
    return std::exchange(model_, {});
  }

 private:
  Model model_;
};

/// One material "stone" and builtTriangle().
inline Model triangleModel() {
  return ModelBuilder().material("stone").mesh(0, builtTriangle()).build();
}

}  // namespace facet
