#pragma once

#include <string>
#include <vector>

namespace facet {

struct ConvertOptions {
  std::vector<std::string> models;   ///< files, and folders with `recursive`
  std::string output;                ///< -o: a file, or "-" for standard output; empty without
  std::vector<std::string> formats;  ///< --to: names of the export table, or "all"
  std::string folder;                ///< --out: where results go, empty for the current directory
  std::vector<std::string> textures;
  bool recursive = false;
  bool quiet = false;
  unsigned jobs = 0;  ///< files at a time, 0 for one per core
};

/// `facetbench convert`: writes each model in each of the formats.
int runConvert(const ConvertOptions& options);

}  // namespace facet
