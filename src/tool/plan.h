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
  bool isModel = false;  ///< it is one of the models of this run, which nothing is written over
};
inline constexpr std::string_view isModelReason = "is one of the models; choose another name or folder";

struct Job {
  ModelFile model;
  std::vector<Target> targets;
};

/// True for the extensions by which models are taken from a folder.
bool hasModelName(const std::string& path);

/// The files that the words of the command line mean: files as they are, folders by their model files in
/// alphabetical order when `recursive` is set; each file once. What cannot be taken is reported and counted
/// in `failures`.
std::vector<ModelFile> collectModels(const std::vector<std::string>& words, bool recursive, size_t& failures);

/// Gives every model a file name per format under `folder`: its own with the format's extension. Where models
/// would meet in one file, they get their whole name before that ("ship.mesh.obj"), and where they meet
/// still, a number ("ship.vxm-2.obj").
std::vector<Job> planTargets(std::vector<ModelFile> models, const std::vector<const ExportFormat*>& formats,
                             const std::string& folder);

/// The one job of a run that writes its one model to `output`.
std::vector<Job> planTarget(std::vector<ModelFile> models, const ExportFormat& format,
                            const std::string& output);

}  // namespace facet
