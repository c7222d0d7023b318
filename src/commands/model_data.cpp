#include "commands/model_data.h"

#include "platform/text.h"
#include "render/color.h"

namespace facet {

namespace {

std::string vectorText(const char* name, const Vector3& v) {
  return formatted("%s %.2f, %.2f, %.2f", name, v.x, v.y, v.z);
}

TextTree leaf(std::string text) {
  return {std::move(text), false, {}};
}

TextTree materialItem(uint32_t index, const Material& material) {
  TextTree item =
      leaf(formatted("#%03u (%s, %s) ID: %03u, flags: 0x%02X", index, material.textureName.c_str(),
                     material.shaderName.c_str(), material.hasTexture, material.renderFlags));
  item.children = {leaf(formatted("Color: 0x%08X", packColor(material.color)))};
  return item;
}

TextTree meshItem(uint32_t index, const Mesh& mesh) {
  TextTree item = leaf(formatted("#%05u (v: %u, i: %u, mNum :%03u), visible = %u", index, mesh.vertexCount,
                                 mesh.indexCount, mesh.materialIndex, mesh.visibility));
  item.children = {leaf(vectorText("Center", mesh.center)), leaf(vectorText("BBoxMin", mesh.boundsMin)),
                   leaf(vectorText("BBoxMax", mesh.boundsMax)), leaf(formatted("Radius %.2f", mesh.radius))};
  return item;
}

TextTree sceneItem(const Model& model) {
  TextTree item = leaf(formatted("Scene (v: %u, i: %u, meshes: %u, materials: %u)", model.totalVertices,
                                 model.totalIndices, model.meshCount, model.materialCount));
  const std::string type = formatted("Type 0x%04X", model.modelType);
  item.children = {leaf(vectorText((type + " Center").c_str(), model.center))};
  return item;
}

}  // namespace

ListAndTree modelData(const Model& model) {
  std::vector<std::string> list = {"LIST_ROOT", "Materials"};
  TextTree materials{"Materials", true, {}};
  for (uint32_t i = 0; i < model.materialCount; ++i) {
    materials.children.push_back(materialItem(i, model.materials[i]));
    list.push_back(materials.children.back().text);
  }
  TextTree meshes = leaf("Meshes");
  for (uint32_t j = 0; j < model.meshCount; ++j) meshes.children.push_back(meshItem(j, model.meshes[j]));

  TextTree modelItem{formatted("Model '%s'", model.name.c_str()), true, {}};
  modelItem.children.push_back(std::move(materials));
  modelItem.children.push_back(std::move(meshes));
  modelItem.children.push_back(sceneItem(model));
  TextTree root{"TREE_ROOT", true, {}};
  root.children.push_back(std::move(modelItem));
  return {"VXMViewer - ModelData", std::move(list), std::move(root)};
}

void showModelData(const Model& model) {
  if (Desktop* desktop = currentDesktop()) desktop->showListAndTree(modelData(model));
}

}  // namespace facet
