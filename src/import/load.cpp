#include "import/load.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <optional>

#include "import/readers.h"
#include "model/model.h"
#include "platform/text.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

void readNothing(ByteSource&, const LoadContext&, Model&) {}

/// How a file is recognised: by its first u32 and, where the row has one, by its second. The first row
/// counts.
struct Recognition {
  uint32_t id;
  std::optional<uint32_t> size;
  uint32_t modelType;
  ReadModel* read;
  std::string_view name;
};

constexpr Recognition recognitionTable[] = {
    {0x20534444, {}, modelTypeDds, readDdsPreview, "DDS texture"},  // "DDS "
    {0x5344000E, {}, modelTypeDs2md, readDs2md, "DS2 Engine mesh"},
    {0x7777, {}, modelTypeObject, readObject, "Vantor editable object"},
    {1, 44, modelTypeVxm4, readVxm, "Vantor VXM, version 4"},
    {1, 4, modelTypeVxm3, readVxm, "Vantor VXM, version 3"},
    {1, 64, modelType4a, readModel4a, "4A engine model or mesh"},
    {1, {}, 0, readNothing, "chunked file without a known header"},  // is an empty model
    {9, {}, modelType4a, readModel4a, "4A engine model or mesh"},
    {257, {}, modelTypeOrion257, readOrion, "Orion engine v1 mesh"},
    {258, {}, modelTypeOrion258, readOrion, "Orion engine v1 mesh"},
};

constexpr ModelFileType fileTypes[] = {
    {"Vantor SDK mesh (*.VXM,*.OBJECT)", "*.vxm;*.object"},
    {"Orion engine v1 mesh (*.MSH)", "*.msh"},
    {"4A engine mesh (*.MODEL,*.MESH)", "*.model;*.mesh"},
    {"DS2 Engine mesh (*.DS2MD)", "*.ds2md"},
    {"DirectDraw surface (*.DDS)", "*.dds"},
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

std::unique_ptr<Model> load(const std::string& path, const BasePaths& basePaths, const LoadOptions& options) {
  FileFinder files;
  std::string whyNot;
  const fs::path found = files.find(path).value_or(path);
  const std::unique_ptr<ByteSource> file = openFile(found, &whyNot);
  if (!file) throw LoadError("cannot open the file: " + whyNot);

  file->watch(options.progress, 0, readingShare);
  auto model = std::make_unique<Model>();
  model->device = options.device;
  model->images = options.images;
  const Recognition& row = recognise(*file);
  model->modelType = row.modelType;
  row.read(*file, LoadContext{path, files, options.progress}, *model);
  warnWhereCutOff(*file, "", *model);
  model->meshes.resize(model->meshCount);
  model->materials.resize(model->materialCount);
  checkMaterials(*model);

  finishModel(*model);
  TextureSearch ownSearch;
  std::error_code error;
  loadMaterials(*model, basePaths, options.textures ? *options.textures : ownSearch,
                fs::absolute(found, error).parent_path(), options);
  statusPrint("Loading complete");
  return model;
}

}  // namespace

void warnWhereCutOff(const ByteSource& file, const std::string& name, Model& model) {
  if (file.claimed() <= file.size()) return;
  model.warnings.push_back(name + "cut off: " + groupedNumber(file.size()) + " of " +
                           groupedNumber(file.claimed()) + " bytes");
}

LoadResult loadModel(const std::string& path, const BasePaths& basePaths, const LoadOptions& options) {
  try {
    return {load(path, basePaths, options), {}};
  } catch (const LoadError& error) {
    return {nullptr, error.what()};
  } catch (const Cancelled& cancelled) {
    return {nullptr, cancelled.what(), true};
  } catch (const std::bad_alloc&) {
    return {nullptr, "out of memory"};
  }
}

std::span<const ModelFileType> modelFileTypes() {
  return fileTypes;
}

std::string_view modelTypeName(uint32_t modelType) {
  return std::ranges::find(recognitionTable, modelType, &Recognition::modelType)->name;
}

bool hasModelExtension(std::string_view path) {
  const std::string extension = lowerExtension(path);
  return !extension.empty() && extension != ".dds" &&
         (";" + std::string(allModelPatterns) + ";").find(";*" + extension + ";") != std::string::npos;
}

}  // namespace facet
