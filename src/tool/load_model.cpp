#include "tool/load_model.h"

#include <filesystem>

#include "commands/configuration.h"
#include "import/materials.h"

namespace facet {

namespace fs = std::filesystem;

BasePaths toolBasePaths(const std::vector<std::string>& given) {
  if (given.empty()) {
    auto configured = readConfigurationFile(std::string(configurationName));
    return configured ? *configured : defaultBasePaths();
  }
  BasePaths paths;
  for (std::string base : given) {
    std::error_code error;
    const bool separated = base.ends_with('/') || base.ends_with('\\');
    if (!separated && fs::is_directory(base, error)) base += '/';
    paths.push_back(std::move(base));
  }
  return paths;
}

ToolLoad loadForTool(const std::string& path, const BasePaths& basePaths, IDirect3DDevice9* device,
                     uint32_t seed) {
  ToolLoad load;
  const TranscriptScope scope(load.transcript);
  std::error_code error;
  const fs::path file = path;
  if (fs::is_directory(file, error)) {
    load.error = "is a folder";
    return load;
  }
  // A picture shown as a model names itself as its texture, which only a rooted path finds.
  const fs::path absolute = fs::absolute(file, error);
  LoadResult result = loadModel(error ? path : absolute.string(), basePaths, device);
  load.model = std::move(result.model);
  load.error = std::move(result.error);
  if (load.model) {
    load.model->name = path;
    drawColors(*load.model, seed);
  }
  return load;
}

}  // namespace facet
