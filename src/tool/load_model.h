#pragma once

#include <string>
#include <vector>

#include "import/load.h"
#include "tool/terminal_desktop.h"

namespace facet {

/// Base paths as the command line gives them: a folder gets its separator. Without any, the configuration
/// file of the current directory, else the default.
BasePaths toolBasePaths(const std::vector<std::string>& given);

/// One model of the command line, and what its load said.
struct ToolLoad {
  std::unique_ptr<Model> model;  ///< its name is the path as it was given
  std::string error;
  Transcript transcript;
};
/// With a device the model gets its buffers and textures. Its display colours depend on the seed alone.
ToolLoad loadForTool(const std::string& path, const BasePaths& basePaths, IDirect3DDevice9* device = nullptr,
                     uint32_t seed = 0);

}  // namespace facet
