#include "commands/statistics_log.h"

#include "platform/output.h"
#include "platform/text.h"

namespace facet {

namespace {

constexpr const char* logName = "object.log";

constexpr uint32_t estimatedSides[] = {256, 512, 1024};

}  // namespace

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
  for (const uint32_t side : estimatedSides) {
    log += formatted("RGB texture %ux%u memory use %9u bytes\n", side, side, count * (side * side * 3));
    log += formatted("RGBA texture %ux%u memory use %9u bytes\n", side, side, count * (side * side * 4));
  }
  log += "-- done --\n";
  return log;
}

bool writeStatisticsLog(const Model& model, const BasePaths& basePaths) {
  OutputFile file(logName);
  if (!file.isOpen()) return false;
  file.write(statisticsLog(model, basePaths));
  if (!file.commit()) statusPrint("%s: %s", logName, file.error().c_str());
  messageBox("object.log created", "Statistics", MB_OK | MB_ICONINFORMATION | MB_SYSTEMMODAL);
  return true;
}

}  // namespace facet
