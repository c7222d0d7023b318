#include "support/model_builder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace facet {

namespace {

void setBounds(Mesh& mesh) {
  if (mesh.vertexCount == 0) return;
  const Vertex& first = mesh.vertices[0];
  Vector3 low{first.x, first.y, first.z}, high = low;
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const Vertex& v = mesh.vertices[i];
    low = {std::min(low.x, v.x), std::min(low.y, v.y), std::min(low.z, v.z)};
    high = {std::max(high.x, v.x), std::max(high.y, v.y), std::max(high.z, v.z)};
  }
  mesh.boundsMin = low;
  mesh.boundsMax = high;
  mesh.center = {(low.x + high.x) * 0.5F, (low.y + high.y) * 0.5F, (low.z + high.z) * 0.5F};
  mesh.radius = std::hypot(high.x - low.x, high.y - low.y, high.z - low.z) * 0.5F;
}

}  // namespace

ModelBuilder& ModelBuilder::material(std::string textureName, std::string shaderName) {
  Material& material = growArray(model_.materials, model_.materialCount++);
  material.textureName = std::move(textureName);
  material.shaderName = std::move(shaderName);
  material.color = {0.5F, 0.625F, 0.75F, 1.0F};
  return *this;
}

ModelBuilder& ModelBuilder::mesh(uint32_t materialIndex, const std::vector<BuiltVertex>& vertices,
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
  setBounds(mesh);
  model_.totalVertices += mesh.vertexCount;
  model_.totalIndices += mesh.indexCount;
  return *this;
}

ModelBuilder& ModelBuilder::grid(uint32_t materialIndex, uint32_t cells) {
  const uint32_t side = cells + 1;
  std::vector<BuiltVertex> vertices;
  for (uint32_t i = 0; i < side * side; ++i) {
    const auto x = static_cast<float>(i % side), z = static_cast<float>(i / side);
    const float slope = static_cast<float>(i) / static_cast<float>(side * side);
    const float up = std::sqrt(1 - slope * slope);
    vertices.push_back(
        {x, slope * 3, z, slope, up, 0, x / static_cast<float>(cells), z / static_cast<float>(cells)});
  }
  std::vector<uint16_t> indices;
  for (uint32_t row = 0; row < cells; ++row) {
    for (uint32_t column = 0; column < cells; ++column) {
      const auto a = static_cast<uint16_t>(row * side + column);
      const auto below = static_cast<uint16_t>(a + side);
      for (const int corner : {a + 0, below + 0, a + 1, a + 1, below + 0, below + 1})
        indices.push_back(static_cast<uint16_t>(corner));
    }
  }
  return mesh(materialIndex, vertices, indices);
}

Model ModelBuilder::build() {
  for (uint32_t n = 0; n < skyMaterialCount; ++n) {
    Material& sky = growArray(model_.materials, model_.materialCount++);
    sky.textureName = "sky\\sky" + std::to_string(n);
    sky.shaderName = "default";
  }
  model_.modelType = modelTypeVxm4;
  return std::exchange(model_, {});
}

Model triangleModel() {
  return ModelBuilder()
      .material("stone")
      .mesh(0,
            {{1, 2, 3, 0, 1, 0, 0.25F, 0.125F},
             {4, 5, 6, 1, 0, 0, 0.5F, 0.25F},
             {7, 8, 10, 0, 0, 1, 0.75F, 1.0F}},
            {0, 1, 2})
      .build();
}

}  // namespace facet
