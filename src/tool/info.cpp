#include "tool/info.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "platform/text.h"
#include "tool/console.h"
#include "tool/load_model.h"

namespace facet {

namespace {

using Json = nlohmann::ordered_json;

std::string hex(const char* format, uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

Json toJson(const Vector3& v) {
  return Json::array({v.x, v.y, v.z});
}

/// The beginnings of a mesh's arrays, for --details.
void addDetails(Json& document, const Mesh& mesh) {
  Json vertices = Json::array(), normals = Json::array(), indices = Json::array();
  for (uint32_t i = 0; i < std::min(mesh.vertexCount, 3u); ++i) {
    const Vertex& v = mesh.vertices[i];
    vertices.push_back({v.x, v.y, v.z, v.u, v.v});
    normals.push_back(toJson(mesh.normals[i]));
  }
  for (uint32_t i = 0; i < std::min(mesh.indexCount, 6u); ++i) indices.push_back(mesh.indices[i]);
  document["firstVertices"] = std::move(vertices);
  document["firstNormals"] = std::move(normals);
  document["firstIndices"] = std::move(indices);
}

Json toJson(const Mesh& mesh, const Model& model, bool details) {
  const Material& material = model.materials[mesh.materialIndex];
  Json document = {
      {"vertexCount", mesh.vertexCount},
      {"indexCount", mesh.indexCount},
      {"materialIndex", mesh.materialIndex},
      {"texture", utf8FromBytes(material.textureName)},
      {"shader", utf8FromBytes(material.shaderName)},
      {"boundsMin", toJson(mesh.boundsMin)},
      {"boundsMax", toJson(mesh.boundsMax)},
      {"center", toJson(mesh.center)},
      {"radius", mesh.radius},
      {"visibility", mesh.visibility},
  };
  if (details) addDetails(document, mesh);
  return document;
}

Json toJson(const Material& material) {
  return {
      {"texture", utf8FromBytes(material.textureName)},
      {"shader", utf8FromBytes(material.shaderName)},
      {"hasTexture", material.hasTexture},
      {"renderFlags", material.renderFlags},
      {"file", material.textureFile.empty() ? Json() : Json(utf8FromPath(material.textureFile))},
  };
}

/// One document as text. Long lists go in element by element: as a tree they would take many times the memory
/// of the model.
class JsonText {
 public:
  void add(const char* key, const Json& value) { (begin(key) += value.dump()); }

  template <class List, class ToJson>
  void addList(const char* key, const List& list, ToJson toJsonOf) {
    std::string& text = begin(key) += '[';
    const char* separator = "";
    for (const auto& element : list) {
      text += separator + toJsonOf(element).dump();
      separator = ",";
    }
    text += ']';
  }

  std::string line() const { return text_ + "}\n"; }

 private:
  std::string& begin(const char* key) {
    text_ += text_.empty() ? "{" : ",";
    return text_ += Json(key).dump() + ":";
  }
  std::string text_;
};

std::span<const Material> skyMaterials(const Model& model) {
  return std::span(model.materials).subspan(ownMaterials(model).size());
}

std::string jsonLine(const std::string& path, const ToolLoad& load, bool details) {
  JsonText document;
  document.add("path", utf8FromPath(path));
  if (load.model) {
    const Model& model = *load.model;
    const auto materialJson = [](const Material& material) { return toJson(material); };
    document.add("modelType", hex("0x%04X", model.modelType));
    document.add("center", toJson(model.center));
    document.add("totalVertices", model.totalVertices);
    document.add("totalIndices", model.totalIndices);
    document.addList("meshes", model.meshes, [&](const Mesh& mesh) { return toJson(mesh, model, details); });
    document.addList("materials", ownMaterials(model), materialJson);
    document.addList("skyMaterials", skyMaterials(model), materialJson);
  } else {
    document.add("error", utf8FromPath(load.error));
  }
  document.addList("status", load.transcript.status,
                   [](const std::string& line) { return Json(utf8FromBytes(line)); });
  document.addList("messages", load.transcript.messages, [](const auto& message) {
    return Json{{"text", utf8FromBytes(message.first)}, {"caption", utf8FromBytes(message.second)}};
  });
  return document.line();
}

struct TypeName {
  uint32_t modelType;
  const char* name;
};
constexpr TypeName typeNames[] = {
    {modelTypeVxm3, "Vantor VXM, version 3"},
    {modelTypeVxm4, "Vantor VXM, version 4"},
    {modelType4a, "4A engine model or mesh"},
    {modelTypeObject, "Vantor editable object"},
    {modelTypeOrion257, "Orion engine v1 mesh"},
    {modelTypeOrion258, "Orion engine v1 mesh"},
    {modelTypeDds, "DDS texture"},
    {modelTypeDs2md, "DS2 Engine mesh"},
};

std::string typeName(uint32_t modelType) {
  const auto* row = std::find_if(std::begin(typeNames), std::end(typeNames),
                                 [&](const TypeName& type) { return type.modelType == modelType; });
  return row == std::end(typeNames) ? "chunked file without a known header" : row->name;
}

std::string meshLine(size_t number, const Mesh& mesh) {
  char text[160];
  std::snprintf(text, sizeof text, "  %5zu  %9s vertices  %9s triangles  material %u\n", number,
                groupedNumber(mesh.vertexCount).c_str(), groupedNumber(mesh.indexCount / 3).c_str(),
                mesh.materialIndex);
  return text;
}

std::string meshDetails(const Mesh& mesh) {
  char text[320];
  std::snprintf(text, sizeof text, "         box %g %g %g to %g %g %g, radius %g%s\n", mesh.boundsMin.x,
                mesh.boundsMin.y, mesh.boundsMin.z, mesh.boundsMax.x, mesh.boundsMax.y, mesh.boundsMax.z,
                mesh.radius, mesh.visibility == 2 ? ", never culled" : "");
  return text;
}

std::string materialLine(size_t number, const Material& material) {
  const std::string found = material.textureFile.empty() ? "not found" : material.textureFile;
  return hex("  %5u  flags ", static_cast<uint32_t>(number)) + hex("0x%02X", material.renderFlags) + "  '" +
         material.textureName + "' '" + material.shaderName + "': " + found + "\n";
}

std::string describe(const std::string& path, const ToolLoad& load, bool details) {
  const Model& model = *load.model;
  const auto materials = ownMaterials(model);
  char center[128];
  std::snprintf(center, sizeof center, "%.2f, %.2f, %.2f", model.center.x, model.center.y, model.center.z);
  std::string text = path + ": " + typeName(model.modelType) + hex(" (0x%04X)", model.modelType) + "\n";
  text += "  center " + std::string(center) + "\n";
  text += "  meshes " + groupedNumber(model.meshCount) + ": " + groupedNumber(model.totalVertices) +
          " vertices, " + groupedNumber(model.totalIndices / 3) + " triangles\n";
  for (size_t i = 0; i < model.meshes.size(); ++i) {
    text += meshLine(i, model.meshes[i]);
    if (details) text += meshDetails(model.meshes[i]);
  }
  text += "  materials " + groupedNumber(materials.size()) + "\n";
  for (size_t i = 0; i < materials.size(); ++i) text += materialLine(i, materials[i]);
  size_t skies = 0;
  for (const Material& sky : skyMaterials(model)) skies += sky.hasTexture;
  text += "  sky maps found: " + std::to_string(skies) + " of " + std::to_string(skyMaterialCount) + "\n";
  return text;
}

}  // namespace

int runInfo(const InfoOptions& options) {
  const BasePaths basePaths = toolBasePaths(options.textures);
  int status = exitSuccess;
  for (const std::string& path : options.models) {
    const ToolLoad load = loadForTool(path, basePaths);
    if (options.json) printOut(jsonLine(path, load, options.details));
    if (!load.model) {
      reportFailure(path, load.error);
      status = exitFailure;
    } else if (!options.json) {
      printOut(describe(path, load, options.details));
    }
  }
  return status;
}

}  // namespace facet
