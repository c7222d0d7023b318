#pragma once

#include "model/model.h"
#include "support/format_builders.h"

namespace facet {

/// Builds small models as a load leaves them: bounds, totals, and the six sky materials at the end.
class ModelBuilder {
 public:
  ModelBuilder& material(std::string textureName, std::string shaderName = "default");
  ModelBuilder& mesh(uint32_t materialIndex, const std::vector<BuiltVertex>& vertices,
                     const std::vector<uint16_t>& indices);
  /// Adds builtGrid(cells).
  ModelBuilder& grid(uint32_t materialIndex, uint32_t cells);

  Model build();

 private:
  Model model_;
};

/// One material "stone" and builtTriangle().
Model triangleModel();

}  // namespace facet
