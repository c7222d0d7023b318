#include "import/material_table.h"

namespace facet {

MaterialTable::Entry MaterialTable::findOrAdd(std::string_view textureName, std::string_view shaderName) {
  // Names hold no NUL, so one between them keeps different pairs apart.
  std::string key(textureName);
  key += '\0';
  key += shaderName;
  const auto [entry, added] = indices_.try_emplace(std::move(key), model_.materialCount);
  if (added) {
    Material& material = growArray(model_.materials, model_.materialCount);
    material.textureName = textureName;
    material.shaderName = shaderName;
    ++model_.materialCount;
  }
  return {entry->second, added};
}

}  // namespace facet
