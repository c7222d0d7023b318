#include "tool/batch.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <new>
#include <set>

#include "commands/commands.h"
#include "import/load.h"
#include "picture/image.h"
#include "platform/files.h"
#include "platform/output.h"
#include "platform/parallel.h"
#include "platform/system.h"
#include "platform/text.h"
#include "tool/console.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

/// The same text for all names of one file, or of one place where there is no file yet.
std::string fileKey(const fs::path& path) {
  if (const auto id = fileId(path))
    return "\n" + std::to_string(id->device) + "," + std::to_string(id->number);
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(path, error);
  return (error ? path.lexically_normal() : resolved).string();
}

/// Devices and pipes take bytes again and again.
bool isPlace(const std::string& path) {
  std::error_code error;
  return path != standardOutput && (!fs::exists(path, error) || fs::is_regular_file(path, error));
}

bool canBeTexture(const std::string& path) {
  constexpr std::string_view extensions[] = {".dds", ".tga", ".png", ".bmp", ".mesh"};
  std::error_code error;
  return std::ranges::count(extensions, lowerExtension(path)) != 0 && fs::exists(path, error);
}

/// What a loaded model was made of besides its own file.
std::vector<std::string> filesOf(const Model& model) {
  std::vector<std::string> files = model.listedFiles;
  for (const Material& material : model.materials)
    if (!material.textureFile.empty()) files.push_back(material.textureFile);
  return files;
}

/// Where the results of each model go, without the extensions. No two are the same, whatever the letter case.
std::vector<fs::path> placesOf(const std::vector<Job>& jobs, const fs::path& folder) {
  const auto key = [](const fs::path& place) { return lowerCase(place.string()); };
  const auto place = [&](const Job& job, const fs::path& name) {
    return (folder / job.subfolder / name).lexically_normal();
  };
  std::map<std::string, int> users;
  for (const Job& job : jobs) ++users[key(place(job, fs::path(job.model).stem()))];

  std::vector<fs::path> places;
  std::set<std::string> taken;
  for (const Job& job : jobs) {
    const fs::path path = job.model, byStem = place(job, path.stem());
    const fs::path name = users[key(byStem)] > 1 ? place(job, path.filename()) : byStem;
    fs::path free = name;
    for (int number = 2; !taken.insert(key(free)).second; ++number)
      free = name.string() + "-" + std::to_string(number);
    places.push_back(std::move(free));
  }
  return places;
}

/// "ship.png" for a single file, else "ship-01.png" ...
std::string numbered(const std::string& path, unsigned number, unsigned count) {
  if (count <= 1) return path;
  const std::string last = std::to_string(count), digits = std::to_string(number);
  const fs::path file = path;
  const std::string name =
      file.stem().string() + "-" + std::string(last.size() - digits.size(), '0') + digits;
  return (file.parent_path() / (name + file.extension().string())).string();
}

}  // namespace

void addBatch(CLI::App& app, BatchOptions& options) {
  app.add_option("models", options.models, "model files, and folders with --recursive")
      ->required()
      ->type_name("MODEL");
  addTextures(app, options);
  app.add_flag("-r,--recursive", options.recursive, "take the models of folders; their tree is kept");
  app.add_option("-j,--jobs", options.jobs, "models at a time (default: one per core)")
      ->type_name("N")
      ->check(CLI::Range(1u, 1024u));
  app.add_flag("-q,--quiet", options.quiet, "say nothing but warnings and failures");
}

BasePaths toolBasePaths(const std::vector<std::string>& given) {
  if (given.empty()) {
    auto configured = readConfigurationFile(std::string(configurationName));
    return configured ? *configured : defaultBasePaths();
  }
  return basePathsOf(given);
}

namespace {

/// "2 of 26 textures missing: hull, build\\door; --textures BASE tells where they are ...", or an empty text.
std::string missingTexturesLine(const Model& model) {
  constexpr size_t most = 5;
  const auto& missing = model.missingTextures;
  if (missing.empty()) return {};
  std::string line = missingTexturesCount(model) + ": ";
  for (size_t i = 0; i < std::min(missing.size(), most); ++i) {
    const bool found = missing[i].reason != "not found";
    line += (i == 0 ? "" : ", ") + missing[i].name + (found ? " (" + missing[i].reason + ")" : "");
  }
  if (missing.size() > most) line += " and " + std::to_string(missing.size() - most) + " more";
  return line + "; --textures BASE tells where they are, info --json where they were looked for";
}

}  // namespace

ToolLoad loadForTool(const std::string& path, const BasePaths& basePaths, const LoadOptions& options,
                     uint32_t seed) {
  ToolLoad load;
  const TranscriptScope scope(load.transcript);
  std::error_code error;
  // A picture shown as a model names itself as its texture, which only a rooted path finds.
  const fs::path absolute = fs::absolute(path, error);
  LoadResult result = loadModel(error ? path : absolute.string(), basePaths, options);
  load.model = std::move(result.model);
  load.error = std::move(result.error);
  if (load.model) {
    load.model->name = path;
    drawColors(*load.model, seed);
    for (const std::string& warning : load.model->warnings) report(path, warning);
    if (const std::string line = missingTexturesLine(*load.model); !line.empty()) report(path, line);
  }
  return load;
}

Batch::Batch(const BatchOptions& options)
    : options_(options),
      basePaths_(toolBasePaths(options.textures)),
      textures_(std::make_shared<TextureSearch>(!options.noSearch)) {
  collect();
  bar_ = errorIsTerminal() && jobs_.size() > 1 && !options.quiet;
}

/// The files that the words of the command line mean: files as they are, folders by their model files in
/// alphabetical order; each file once.
void Batch::collect() {
  for (const std::string& word : options_.models) {
    std::error_code error;
    if (!fs::is_directory(word, error)) {
      jobs_.push_back({word, "", {}});
    } else if (!options_.recursive) {
      fail(word, "is a folder (--recursive takes its models)");
    } else {
      const size_t before = jobs_.size(), failuresBefore = failures_;
      collectFolder(word);
      if (jobs_.size() == before && failures_ == failuresBefore) fail(word, "no model files in this folder");
    }
  }
  std::set<std::string> known;
  std::erase_if(jobs_, [&](const Job& job) { return !known.insert(fileKey(job.model)).second; });
}

void Batch::collectFolder(const std::string& folder) {
  std::vector<std::string> files;
  std::vector<fs::path> folders = {folder};
  while (!folders.empty()) {
    const fs::path current = folders.back();
    folders.pop_back();
    std::vector<FolderEntry> entries;
    if (const std::error_code error = listFolder(current, entries))
      fail(current.string(), "cannot be entered: " + error.message());
    for (const FolderEntry& entry : entries) {
      if (entry.kind == FolderEntry::folder) folders.push_back(current / entry.name);
      if (entry.kind == FolderEntry::file && hasModelExtension(entry.name))
        files.push_back((current / entry.name).string());
    }
  }
  std::ranges::sort(files, {}, [](const std::string& file) { return fs::path(file); });
  for (const std::string& file : files)
    jobs_.push_back({file, fs::path(file).parent_path().lexically_relative(folder).string(), {}});
}

void Batch::plan(std::span<const std::string_view> extensions, unsigned count) {
  const std::vector<fs::path> places = placesOf(jobs_, options_.folder);
  for (size_t i = 0; i < jobs_.size(); ++i)
    for (const std::string_view extension : extensions) {
      std::string path = options_.output;
      if (path.empty())
        path = places[i].string() + "." + std::string(extension);
      else if (extension != extensions.front())
        path = fs::path(path).replace_extension(extension).string();
      for (unsigned n = 1; n <= count; ++n) jobs_[i].outputs.push_back(numbered(path, n, count));
    }
}

std::string Batch::refusal() const {
  std::vector<std::string> inputs, outputs;
  if (options_.textures.empty()) inputs.emplace_back(configurationName);
  for (const Job& job : jobs_) {
    inputs.push_back(job.model);
    outputs.insert(outputs.end(), job.outputs.begin(), job.outputs.end());
  }
  std::string reason = overwritten(inputs, outputs);
  if (!reason.empty() || jobs_.size() == 1 || std::ranges::none_of(outputs, canBeTexture)) return reason;
  // Pictures are to replace pictures that are there: none of them may be a texture that a later model needs.
  for (const Job& job : jobs_) {
    LoadOptions lookUp;
    lookUp.decodesTextures = false;
    lookUp.textures = textures_;
    Transcript unheard;
    const TranscriptScope scope(unheard);
    const LoadResult result = loadModel(job.model, basePaths_, lookUp);
    if (result.model) std::ranges::copy(filesOf(*result.model), std::back_inserter(inputs));
  }
  return overwritten(inputs, outputs);
}

void Batch::run(const std::function<Worker()>& makeWorker) {
  std::atomic<size_t> next = 0;
  const auto work = [&](size_t) {
    const Worker worker = makeWorker();
    for (size_t i = next++; worker && i < jobs_.size() && !isInterrupted(); i = next++) {
      try {
        worker(jobs_[i]);
      } catch (const std::bad_alloc&) {
        fail(jobs_[i].model, "out of memory");
      }
      const size_t done = ++done_;
      if (bar_) showProgress(done, jobs_.size(), fileName(jobs_[i].model));
    }
  };
  const size_t wanted = options_.jobs != 0 ? options_.jobs : threadCount();
  parallelFor(std::min({wanted, threadCount(), jobs_.size()}), work);
}

std::unique_ptr<Model> Batch::load(const Job& job, LoadOptions options, uint32_t seed) {
  options.images = images_;
  options.textures = textures_;
  ToolLoad load = loadForTool(job.model, basePaths_, options, seed);
  if (!load.model) fail(job.model, load.error);
  return std::move(load.model);
}

bool Batch::wouldOverwrite(const Model& model, const std::string& path) {
  if (!canBeTexture(path) || overwritten(filesOf(model), {&path, 1}).empty()) return false;
  fail(path, "belongs to the model; choose another name or folder");
  return true;
}

void Batch::fail(std::string_view path, std::string_view reason) {
  report(path, reason);
  ++failures_;
}

void Batch::tell(const std::string& line) {
  if (!bar_ && !options_.quiet && options_.output != standardOutput) printOut(line);
}

int Batch::exitStatus() const {
  return failures_ == 0 ? exitSuccess : exitFailure;
}

std::string overwritten(std::span<const std::string> inputs, std::span<const std::string> outputs) {
  std::map<std::string, bool> isInput;  // by key; false: an output
  for (const std::string& input : inputs) isInput.emplace(fileKey(input), true);
  for (const std::string& output : outputs) {
    if (!isPlace(output)) continue;
    const auto [known, isNew] = isInput.emplace(fileKey(output), false);
    if (isNew) continue;
    return output + (known->second ? ": is an input of this run; choose another name or folder"
                                   : ": two results would have this name; choose another");
  }
  return {};
}

std::string writeBytes(std::string_view bytes, const std::string& path) {
  if (path == standardOutput) {
    OutputStream out(stdout);
    out.write(bytes);
    return out.error();
  }
  makeFolderOf(path);
  OutputFile file(path);
  file.write(bytes);
  return file.commit() ? std::string() : file.error();
}

std::string writePng(std::span<const uint8_t> pixels, uint32_t width, uint32_t height,
                     const std::string& path) {
  const auto png = encodePng(pixels, width, height);
  if (png.empty()) return "cannot make a PNG of it";
  return writeBytes({reinterpret_cast<const char*>(png.data()), png.size()}, path);
}

std::string pictureNameRefusal(const std::string& path) {
  constexpr std::string_view others[] = {".jpg", ".jpeg", ".bmp",  ".tga", ".dds",
                                         ".gif", ".tif",  ".tiff", ".webp"};
  const bool other = std::ranges::count(others, lowerExtension(path)) != 0 || hasModelExtension(path);
  return other ? "pictures are PNG files; name the output so" : "";
}

}  // namespace facet
