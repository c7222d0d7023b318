#include "tool/plan.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "platform/files.h"
#include "tool/console.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

/// What is taken from a folder. Pictures are not: there they are the models' textures.
constexpr std::string_view modelExtensions[] = {".vxm", ".object", ".msh", ".mesh", ".model", ".ds2md"};

bool isModelName(const std::string& path) {
  const std::string extension = lowerExtension(path);
  return std::find(std::begin(modelExtensions), std::end(modelExtensions), extension) !=
         std::end(modelExtensions);
}

/// The reason why the folder could not be listed whole, or an empty text.
std::string collectFolder(const fs::path& folder, std::vector<ModelFile>& models) {
  std::vector<fs::path> files;
  std::error_code error, ignored;
  constexpr auto options = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator entry(folder, options, error), end; !error && entry != end;
       entry.increment(error))
    if (entry->is_regular_file(ignored) && isModelName(entry->path().string()))
      files.push_back(entry->path());
  std::sort(files.begin(), files.end());
  for (const fs::path& file : files)
    models.push_back({file.string(), file.parent_path().lexically_relative(folder).string()});
  if (error) return "cannot list the folder: " + error.message();
  return files.empty() ? "no model files in this folder" : "";
}

}  // namespace

std::vector<ModelFile> collectModels(const std::vector<std::string>& words, bool recursive,
                                     size_t& failures) {
  std::vector<ModelFile> models;
  for (const std::string& word : words) {
    std::error_code error;
    if (!fs::is_directory(word, error)) {
      models.push_back({word, ""});
      continue;
    }
    const std::string reason =
        recursive ? collectFolder(word, models) : "is a folder (--recursive takes its models)";
    if (!reason.empty()) {
      reportFailure(word, reason);
      ++failures;
    }
  }
  return models;
}

std::vector<Job> planTargets(std::vector<ModelFile> models, const std::vector<const ExportFormat*>& formats,
                             const std::string& folder) {
  const auto place = [&](const ModelFile& model) { return fs::path(folder) / model.subfolder; };
  const auto stem = [](const ModelFile& model) { return fs::path(model.path).stem().string(); };
  const auto key = [&](const ModelFile& model) { return lowerCase((place(model) / stem(model)).string()); };
  std::map<std::string, int> users;
  for (const ModelFile& model : models) ++users[key(model)];

  std::vector<Job> jobs;
  for (ModelFile& model : models) {
    const std::string name = users[key(model)] > 1 ? fs::path(model.path).filename().string() : stem(model);
    Job job;
    for (const ExportFormat* format : formats) {
      const fs::path file = place(model) / (name + "." + std::string(format->name));
      job.targets.push_back({format, file.lexically_normal().string()});
    }
    job.model = std::move(model);
    jobs.push_back(std::move(job));
  }
  return jobs;
}

}  // namespace facet
