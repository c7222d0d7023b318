#pragma once

#include <string>
#include <vector>

namespace facet {

struct TextureOptions {
  std::vector<std::string> files;
  bool json = false;
  std::string output;  ///< PNG to write the one file's first level to, empty for none
};

/// `facetbench texture`: size, format and level count of picture files; the first level as a PNG.
int runTexture(const TextureOptions& options);

}  // namespace facet
