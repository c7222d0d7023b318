#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "model/model.h"

namespace facet {

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
