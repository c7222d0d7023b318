#pragma once

#include <string>
#include <vector>

namespace facet {

struct LogOptions {
  std::string model;
  std::vector<std::string> textures;
  std::string output;  ///< empty for standard output
};

/// `facetbench log`: the statistics log of a model.
int runLog(const LogOptions& options);

}  // namespace facet
