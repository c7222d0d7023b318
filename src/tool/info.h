#pragma once

#include <string>
#include <vector>

namespace facet {

struct InfoOptions {
  std::vector<std::string> models;
  std::vector<std::string> textures;
  bool json = false;
  bool details = false;
};

/// `facetbench info`: tells what each model holds, for a reader or as one JSON document a line.
int runInfo(const InfoOptions& options);

}  // namespace facet
