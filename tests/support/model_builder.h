#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/model.h"

namespace facet {

/// A vertex as tests write it down.
struct BuiltVertex {
  float x, y, z;
  float nx = 0, ny = 1, nz = 0;
  float u = 0, v = 0;
};

/// Builds small models as a load leaves them: bounds, totals, and the six sky materials at the end.
class ModelBuilder {
 public:
  ModelBuilder& material(std::string textureName, std::string shaderName = "default");
  ModelBuilder& mesh(uint32_t materialIndex, const std::vector<BuiltVertex>& vertices,
                     const std::vector<uint16_t>& indices);

  /// Adds a square of `cells` x `cells` cells with two triangles each; all values differ from vertex to
  /// vertex.
  ModelBuilder& grid(uint32_t materialIndex, uint32_t cells);

  Model build();

 private:
  Model model_;
};

/// One material "stone", one mesh of three vertices: a triangle in which every number differs.
Model triangleModel();

}  // namespace facet
