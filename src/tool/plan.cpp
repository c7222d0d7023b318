#include "tool/plan.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "platform/files.h"
#include "platform/text.h"
#include "tool/console.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

/// What is taken from a folder. Pictures are not: there they are the models' textures.
constexpr std::string_view modelExtensions[] = {".vxm", ".object", ".msh", ".mesh", ".model", ".ds2md"};

/// The reason why the folder could not be listed whole, or an empty text.
std::string collectFolder(const fs::path& folder, std::vector<ModelFile>& models) {
  std::vector<fs::path> files;
  std::error_code error, ignored;
  constexpr auto options = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator entry(folder, options, error), end; !error && entry != end;
       entry.increment(error))
    if (entry->is_regular_file(ignored) && hasModelName(entry->path().string()))
      files.push_back(entry->path());
  std::sort(files.begin(), files.end());
  for (const fs::path& file : files)
    models.push_back({file.string(), file.parent_path().lexically_relative(folder).string()});
  if (error) return "cannot list the folder: " + error.message();
  return files.empty() ? "no model files in this folder" : "";
}

/// The same text for all names of one file.
std::string fileKey(const fs::path& path) {
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(path, error);
  return (error ? path : resolved).string();
}

void dropRepeated(std::vector<ModelFile>& models) {
  std::set<std::string> known;
  std::erase_if(models, [&](const ModelFile& model) { return !known.insert(fileKey(model.path)).second; });
}

void markModels(std::vector<Job>& jobs) {
  std::set<std::string> models;
  for (const Job& job : jobs) models.insert(fileKey(job.model.path));
  for (Job& job : jobs)
    for (Target& target : job.targets) target.isModel = models.contains(fileKey(target.path));
}

/// Where the results of each model go, without the extensions. No two are the same, whatever the letter case.
std::vector<fs::path> placesOf(const std::vector<ModelFile>& models, const fs::path& folder) {
  const auto key = [](const fs::path& place) { return lowerCase(place.string()); };
  const auto place = [&](const ModelFile& model, const fs::path& name) {
    return (folder / model.subfolder / name).lexically_normal();
  };
  std::map<std::string, int> users;
  for (const ModelFile& model : models) ++users[key(place(model, fs::path(model.path).stem()))];

  std::vector<fs::path> places;
  std::set<std::string> taken;
  for (const ModelFile& model : models) {
    const fs::path path = model.path, byStem = place(model, path.stem());
    const fs::path name = users[key(byStem)] > 1 ? place(model, path.filename()) : byStem;
    fs::path free = name;
    for (int number = 2; !taken.insert(key(free)).second; ++number)
      free = name.string() + "-" + std::to_string(number);
    places.push_back(std::move(free));
  }
  return places;
}

}  // namespace

bool hasModelName(const std::string& path) {
  const std::string extension = lowerExtension(path);
  return std::find(std::begin(modelExtensions), std::end(modelExtensions), extension) !=
         std::end(modelExtensions);
}

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
  dropRepeated(models);
  return models;
}

std::vector<Job> planTargets(std::vector<ModelFile> models, const std::vector<const ExportFormat*>& formats,
                             const std::string& folder) {
  const std::vector<fs::path> places = placesOf(models, folder);
  std::vector<Job> jobs;
  for (size_t i = 0; i < models.size(); ++i) {
    Job job{std::move(models[i]), {}};
    for (const ExportFormat* format : formats)
      job.targets.push_back({format, places[i].string() + "." + std::string(format->name)});
    jobs.push_back(std::move(job));
  }
  markModels(jobs);
  return jobs;
}

std::vector<Job> planTarget(std::vector<ModelFile> models, const ExportFormat& format,
                            const std::string& output) {
  std::vector<Job> jobs;
  for (ModelFile& model : models) jobs.push_back({std::move(model), {{&format, output}}});
  markModels(jobs);
  return jobs;
}

}  // namespace facet
