#pragma once

#include <string>
#include <vector>

#include "export/export.h"

namespace facet {

/// One model file of a conversion, and the folder under --out that its results go to.
struct ModelFile {
  std::string path;
  std::string subfolder;  ///< "" or a relative folder: a folder of the command line keeps its tree
};

/// A result that one model file shall be written to.
struct Target {
  const ExportFormat* format;
  std::string path;
};

struct Job {
  ModelFile model;
  std::vector<Target> targets;
};

/// The files that the words of the command line mean: files as they are, folders by their model files in
/// alphabetical order when `recursive` is set. What cannot be taken is reported and counted in `failures`.
std::vector<ModelFile> collectModels(const std::vector<std::string>& words, bool recursive, size_t& failures);

/// Gives every model a file name per format under `folder`: its own with the format's extension, and with its
/// whole name before that ("ship.mesh.obj") where models of different formats would meet in one file.
std::vector<Job> planTargets(std::vector<ModelFile> models, const std::vector<const ExportFormat*>& formats,
                             const std::string& folder);

}  // namespace facet
