#include "commands/commands.h"

#include <algorithm>
#include <cmath>

#include "platform/output.h"
#include "platform/text.h"
#include "render/view.h"

namespace facet {

// The display.

namespace {

/// Word `index` of a number, from the lowest.
uint32_t word(uint64_t value, int index = 0) {
  return static_cast<uint32_t>(value >> (16 * index)) & 0xFFFF;
}

}  // namespace

float nextGamma(float gamma) {
  const float next = gamma + 0.1f;
  return next > 3.0f ? 1.0f : next;
}

GammaRamp rampOfGamma(float gamma) {
  GammaRamp ramp;
  for (size_t i = 0; i < ramp.red.size(); ++i) {
    const auto x = static_cast<float>(static_cast<double>(i) / 255);
    const float value = std::min(std::pow(x, 1.0f / gamma) * 255.0f, 65535.0f);
    const auto entry = static_cast<uint16_t>(static_cast<uint32_t>(value) << 8);
    ramp.red[i] = ramp.green[i] = ramp.blue[i] = entry;
  }
  return ramp;
}

std::string systemInformation(IDirect3D9& direct3D, IDirect3DDevice9& device) {
  D3DADAPTER_IDENTIFIER9 adapter;
  direct3D.GetAdapterIdentifier(D3DADAPTER_DEFAULT, &adapter);
  D3DCAPS9 hardware, reference, current;
  direct3D.GetDeviceCaps(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, &hardware);
  direct3D.GetDeviceCaps(D3DADAPTER_DEFAULT, D3DDEVTYPE_REF, &reference);
  device.GetDeviceCaps(&current);
  const uint64_t version = adapter.DriverVersion;
  return formatted(
      "Driver:%s\rLib:%s (%u.%u.%u.%u)\rPCIID:%04X.%04X.%08X.%04X\r"
      "VS:%03X, PS:%03X (HW %03X:%03X, SW %03X:%03X)\rMax.tex.: %ux%u, aniso.: %d\rTexture mem: %u bytes",
      adapter.Description.c_str(), adapter.Driver.c_str(), word(version, 3), word(version, 2),
      word(version, 1), word(version), adapter.VendorId, adapter.DeviceId, adapter.SubSysId, adapter.Revision,
      word(current.VertexShaderVersion), word(current.PixelShaderVersion), word(hardware.VertexShaderVersion),
      word(hardware.PixelShaderVersion), word(reference.VertexShaderVersion),
      word(reference.PixelShaderVersion), current.MaxTextureWidth, current.MaxTextureHeight,
      static_cast<int>(current.MaxAnisotropy), device.GetAvailableTextureMem());
}

// The model's data.

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

// Missing textures.

namespace {

/// The first lines, and how many more there are.
template <class LineOf>
std::string firstLines(size_t count, size_t most, LineOf lineOf) {
  std::string text;
  for (size_t i = 0; i < std::min(count, most); ++i) text += (i == 0 ? "" : "\n") + lineOf(i);
  return count > most ? text + "\nand " + std::to_string(count - most) + " more" : text;
}

}  // namespace

std::string missingTexturesDetails(const Model& model) {
  const auto& missing = model.missingTextures;
  const auto& places = model.texturePlaces;
  if (missing.empty()) return {};
  return firstLines(missing.size(), 20,
                    [&](size_t i) { return missing[i].name + ": " + missing[i].reason; }) +
         "\n\nLooked for in\n" + firstLines(places.size(), 10, [&](size_t i) { return places[i]; });
}

// The statistics log.

std::string statisticsLog(const Model& model, const BasePaths& basePaths) {
  const auto materials = ownMaterials(model);
  const auto count = static_cast<uint32_t>(materials.size());
  std::string log = "-- init --\n";
  log += formatted("model name '%s'\n", model.name.c_str());
  log += formatted("model type 0x%04X\n", model.modelType);
  log += formatted("base path to textures '%s'\n", basePaths.empty() ? "" : basePaths.front().c_str());
  log += formatted("center %f, %f, %f\n", model.center.x, model.center.y, model.center.z);
  log += formatted("meshes %u ( verts %u, indices %u tris %u )\nmaterials %u\n", model.meshCount,
                   model.totalVertices, model.totalIndices, model.totalIndices / 3, count);
  for (uint32_t i = 0; i < count; ++i) {
    const Material& material = materials[i];
    log += formatted("[%03u] 0x%02X, '%s', '%s'", i, material.renderFlags, material.textureName.c_str(),
                     material.shaderName.c_str());
    if (material.hasTexture != 0)
      log += formatted(" - OK (%03u)\n", material.hasTexture);
    else
      log += " - NOT FOUND\n";
  }
  log += "- memory -\n";
  log += formatted("vertices memory use %u bytes\n", model.totalVertices * 32);
  log += formatted("indices memory use %u bytes\n", model.totalIndices * 2);
  for (const uint32_t side : {256u, 512u, 1024u}) {
    log += formatted("RGB texture %ux%u memory use %9u bytes\n", side, side, count * (side * side * 3));
    log += formatted("RGBA texture %ux%u memory use %9u bytes\n", side, side, count * (side * side * 4));
  }
  log += "-- done --\n";
  return log;
}

bool writeStatisticsLog(const Model& model, const BasePaths& basePaths) {
  constexpr char logName[] = "object.log";
  OutputFile file(logName);
  if (!file.isOpen()) return false;
  file.write(statisticsLog(model, basePaths));
  if (!file.commit()) statusPrint("%s: %s", logName, file.error().c_str());
  messageBox("object.log created", "Statistics", MB_OK | MB_ICONINFORMATION | MB_SYSTEMMODAL);
  return true;
}

}  // namespace facet
