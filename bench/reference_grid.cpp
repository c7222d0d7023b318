#include "reference_grid.h"

#include <cmath>

namespace facet {

namespace {

/// A height field of `columns` x `rows` vertices in which all values differ.
void addGrid(Model& model, uint32_t columns, uint32_t rows) {
  Mesh& mesh = growArray(model.meshes, model.meshCount++);
  allocateVertices(mesh, columns * rows);
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const auto x = static_cast<float>(i % columns), z = static_cast<float>(i / columns);
    const float height = 8 * std::sin(x * 0.11F) * std::cos(z * 0.07F) + static_cast<float>(model.meshCount);
    mesh.vertices[i] = {x * 0.37F - 40, height, z * 0.41F - 40, x / static_cast<float>(columns),
                        z / static_cast<float>(rows)};
    const float slopeX = std::cos(x * 0.11F), slopeZ = std::sin(z * 0.07F);
    const float length = std::sqrt(slopeX * slopeX + 1 + slopeZ * slopeZ);
    mesh.normals[i] = {-slopeX / length, 1 / length, slopeZ / length};
  }
  allocateIndices(mesh, (columns - 1) * (rows - 1) * 6);
  uint16_t* index = mesh.indices.get();
  for (uint32_t row = 0; row + 1 < rows; ++row) {
    for (uint32_t column = 0; column + 1 < columns; ++column) {
      const uint32_t a = row * columns + column;
      for (const uint32_t corner : {a, a + columns, a + 1, a + 1, a + columns, a + columns + 1})
        *index++ = static_cast<uint16_t>(corner);
    }
  }
  mesh.materialIndex = 0;
  model.totalVertices += mesh.vertexCount;
  model.totalIndices += mesh.indexCount;
}

}  // namespace

Model gridModel(uint32_t meshes, uint32_t columns, uint32_t rows) {
  Model model;
  for (uint32_t i = 0; i < 1 + skyMaterialCount; ++i)
    growArray(model.materials, model.materialCount++).textureName = "bench\\grid";
  for (uint32_t m = 0; m < meshes; ++m) addGrid(model, columns, rows);
  return model;
}

}  // namespace facet
