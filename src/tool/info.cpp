#include <nlohmann/json.hpp>

#include <algorithm>
#include <tuple>

#include "commands/commands.h"
#include "platform/text.h"
#include "tool/batch.h"
#include "tool/console.h"

namespace facet {

namespace {

using Json = nlohmann::ordered_json;

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
    document.add("modelType", formatted("0x%04X", model.modelType));
    document.add("center", toJson(model.center));
    document.add("totalVertices", model.totalVertices);
    document.add("totalIndices", model.totalIndices);
    document.addList("meshes", model.meshes, [&](const Mesh& mesh) { return toJson(mesh, model, details); });
    document.addList("materials", ownMaterials(model), materialJson);
    document.addList("skyMaterials", skyMaterials(model), materialJson);
    const auto line = [](const std::string& text) { return Json(utf8FromPath(text)); };
    document.addList("warnings", model.warnings, line);
    document.addList("missingTextures", model.missingTextures, [](const MissingTexture& missing) {
      return Json{{"texture", utf8FromBytes(missing.name)}, {"reason", utf8FromPath(missing.reason)}};
    });
    document.addList("texturePlaces", model.texturePlaces, line);
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

std::string meshLine(size_t number, const Mesh& mesh) {
  return formatted("  %5zu  %9s vertices  %9s triangles  material %u\n", number,
                   groupedNumber(mesh.vertexCount).c_str(), groupedNumber(mesh.indexCount / 3).c_str(),
                   mesh.materialIndex);
}

std::string meshDetails(const Mesh& mesh) {
  const auto& [low, high] = std::tie(mesh.boundsMin, mesh.boundsMax);
  return formatted("         box %g %g %g to %g %g %g, radius %g%s\n", low.x, low.y, low.z, high.x, high.y,
                   high.z, mesh.radius, mesh.visibility == 2 ? ", never culled" : "");
}

std::string materialLine(size_t number, const Material& material) {
  const std::string found = material.textureFile.empty() ? "not found" : material.textureFile;
  return formatted("  %5zu  flags 0x%02X  '", number, material.renderFlags) + material.textureName + "' '" +
         material.shaderName + "': " + found + "\n";
}

std::string describe(const std::string& path, const ToolLoad& load, bool details) {
  const Model& model = *load.model;
  const auto materials = ownMaterials(model);
  std::string text = path + ": " + std::string(modelTypeName(model.modelType)) +
                     formatted(" (0x%04X)", model.modelType) + "\n";
  text += formatted("  center %.2f, %.2f, %.2f\n", model.center.x, model.center.y, model.center.z);
  text += "  meshes " + groupedNumber(model.meshCount) + ": " + groupedNumber(model.totalVertices) +
          " vertices, " + groupedNumber(model.totalIndices / 3) + " triangles\n";
  for (size_t i = 0; i < model.meshes.size(); ++i) {
    text += meshLine(i, model.meshes[i]);
    if (details) text += meshDetails(model.meshes[i]);
  }
  text += "  materials " + groupedNumber(materials.size()) + "\n";
  for (size_t i = 0; i < materials.size(); ++i) text += materialLine(i, materials[i]);
  text += "  textures found: " + std::to_string(model.texturesFound) + " of " +
          std::to_string(model.texturesNamed) + "\n";
  size_t skies = 0;
  for (const Material& sky : skyMaterials(model)) skies += sky.hasTexture;
  text += "  sky maps found: " + std::to_string(skies) + " of " + std::to_string(skyMaterialCount) + "\n";
  return text;
}

struct InfoOptions : TextureOptions {
  std::vector<std::string> models;
  bool json = false, details = false;
};

int runInfo(const InfoOptions& options) {
  const BasePaths basePaths = toolBasePaths(options.textures);
  LoadOptions loading;
  loading.images = std::make_shared<ImageCache>();
  loading.textures = std::make_shared<TextureSearch>(!options.noSearch);
  int status = exitSuccess;
  for (const std::string& path : options.models) {
    const ToolLoad load = loadForTool(path, basePaths, loading);
    if (options.json) printOut(jsonLine(path, load, options.details));
    if (!load.model) {
      report(path, load.error);
      status = exitFailure;
    } else if (!options.json) {
      printOut(describe(path, load, options.details));
    }
  }
  return status;
}

}  // namespace

RunCommand setUpInfo(CLI::App& app) {
  const auto options = std::make_shared<InfoOptions>();
  app.add_option("models", options->models, "model files")->required()->type_name("MODEL");
  app.add_flag("--json", options->json, "one JSON document a line for each model");
  app.add_flag("--details", options->details, "more of each mesh");
  addTextures(app, *options);
  return [options] { return runInfo(*options); };
}

namespace {

int runLog(const BatchOptions& options) {
  Batch batch(options);
  if (!options.output.empty()) batch.plan(std::vector<std::string_view>{"log"});
  if (const std::string refusal = batch.refusal(); !refusal.empty()) return usageError("log", refusal);
  batch.run([&] {
    return [&](const Job& job) {
      const std::unique_ptr<Model> model = batch.load(job, {});
      if (!model) return;
      const std::string log = statisticsLog(*model, batch.basePaths());
      const std::string path = job.outputs.empty() ? std::string(standardOutput) : job.outputs.front();
      if (batch.wouldOverwrite(*model, path)) return;
      const std::string reason = writeBytes(log, path);
      if (!reason.empty()) batch.fail(path, reason);
    };
  });
  return batch.exitStatus();
}

}  // namespace

RunCommand setUpLog(CLI::App& app) {
  const auto options = std::make_shared<BatchOptions>();
  options->models.resize(1);
  app.add_option("model", options->models.front(), "model file")->required()->type_name("MODEL");
  app.add_option("-o,--output", options->output, "file for the log (default: standard output)")
      ->type_name("FILE");
  addTextures(app, *options);
  return [options] { return runLog(*options); };
}

}  // namespace facet
