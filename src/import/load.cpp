#include "import/load.h"

#include <cstdio>
#include <new>
#include <optional>

#include "import/materials.h"
#include "import/readers.h"
#include "model/finish.h"
#include "platform/text.h"

namespace facet {

namespace {

void readNothing(ByteSource&, const LoadContext&, Model&) {}

/// How a file is recognised: by its first u32 and, where the row has one, by its second. The first row
/// counts.
struct Recognition {
  uint32_t id;
  std::optional<uint32_t> size;
  uint32_t modelType;
  ReadModel* read;
};

constexpr Recognition recognitionTable[] = {
    {0x20534444, {}, modelTypeDds, readDdsPreview},  // "DDS "
    {0x5344000E, {}, modelTypeDs2md, readDs2md},
    {0x7777, {}, modelTypeObject, readObject},
    {1, 44, modelTypeVxm4, readVxm},
    {1, 4, modelTypeVxm3, readVxm},
    {1, 64, modelType4a, readModel4a},
    {1, {}, 0, readNothing},  // a chunked file with an unknown header is an empty model
    {9, {}, modelType4a, readModel4a},
    {257, {}, modelTypeOrion257, readOrion},
    {258, {}, modelTypeOrion258, readOrion},
};

const Recognition& recognise(ByteSource& file) {
  uint32_t head[2];
  if (!file.read(head))
    throw LoadError("too short for a model: " + std::to_string(file.size()) + " bytes, expected at least 8");
  for (const Recognition& row : recognitionTable)
    if (row.id == head[0] && (!row.size || *row.size == head[1])) return row;
  char reason[80];
  std::snprintf(reason, sizeof reason, "not a known model format (first words 0x%08X 0x%08X)", head[0],
                head[1]);
  throw LoadError(reason);
}

/// Material indices below the count, whatever the file says.
void checkMaterials(Model& model) {
  if (model.materialCount == 0 && model.meshCount > 0) {
    growArray(model.materials, 0).shaderName = "default";
    model.materialCount = 1;
  }
  for (Mesh& mesh : model.meshes)
    if (mesh.materialIndex >= model.materialCount) mesh.materialIndex = 0;
}

std::unique_ptr<Model> load(const std::string& path, const BasePaths& basePaths, IDirect3DDevice9* device) {
  FileFinder files;
  std::string whyNot;
  const std::unique_ptr<ByteSource> file = openFile(files.find(path).value_or(path), &whyNot);
  if (!file) throw LoadError("cannot open the file: " + whyNot);

  auto model = std::make_unique<Model>();
  model->device = device;
  const Recognition& row = recognise(*file);
  model->modelType = row.modelType;
  row.read(*file, LoadContext{path, files}, *model);
  warnWhereCutOff(*file, "", *model);
  model->meshes.resize(model->meshCount);
  model->materials.resize(model->materialCount);
  checkMaterials(*model);

  finishModel(*model);
  loadMaterials(*model, basePaths, files);
  statusPrint("Loading complete");
  return model;
}

}  // namespace

void warnWhereCutOff(const ByteSource& file, const std::string& name, Model& model) {
  if (file.claimed() <= file.size()) return;
  model.warnings.push_back(name + "cut off: " + groupedNumber(file.size()) + " of " +
                           groupedNumber(file.claimed()) + " bytes");
}

LoadResult loadModel(const std::string& path, const BasePaths& basePaths, IDirect3DDevice9* device) {
  try {
    return {load(path, basePaths, device), {}};
  } catch (const LoadError& error) {
    return {nullptr, error.what()};
  } catch (const std::bad_alloc&) {
    return {nullptr, "out of memory"};
  }
}

}  // namespace facet
