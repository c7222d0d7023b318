#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <iterator>

#include "export/export.h"
#include "export/modern.h"
#include "platform/files.h"
#include "platform/output.h"
#include "platform/text.h"
#include "tool/batch.h"
#include "tool/console.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

struct ConvertOptions : BatchOptions {
  std::vector<std::string> formats;  ///< --to: names of a table of formats, or "all"
  std::string style = "exact", up, texturesOut = "png";
  float scale = 1;

  bool isModern() const { return style == "modern"; }
};

/// A format of either style.
struct Target {
  const ExportFormat* exact = nullptr;
  const ModernFormat* modern = nullptr;

  std::string_view name() const { return exact != nullptr ? exact->name : modern->name; }
  bool snapsModel() const { return exact != nullptr ? exact->snapsModel : modern->snapsModel; }
  bool operator==(const Target&) const = default;
};
using Targets = std::vector<Target>;

Targets targetsOf(bool modern) {
  Targets targets;
  if (modern)
    for (const ModernFormat& format : modernFormats()) targets.push_back({nullptr, &format});
  else
    for (const ExportFormat& format : exportFormats()) targets.push_back({&format, nullptr});
  return targets;
}

/// "obj, smd ... glb"
std::string formatNames(bool modern) {
  std::string names;
  for (const Target& target : targetsOf(modern))
    names += (names.empty() ? "" : ", ") + std::string(target.name());
  return names;
}

/// The formats that --to or the extension of -o name; or the reason why there are none.
std::string chooseFormats(const ConvertOptions& options, Targets& targets) {
  std::vector<std::string> names = options.formats;
  if (names.empty()) {
    const std::string extension = lowerExtension(options.output);
    if (extension.empty())
      return options.output + " has no extension that tells the format; give --to FORMAT";
    names.push_back(extension.substr(1));
  }
  const Targets all = targetsOf(options.isModern());
  for (const std::string& name : names) {
    const size_t before = targets.size();
    std::ranges::copy_if(all, std::back_inserter(targets), [&](const Target& target) {
      return lowerCase(name) == "all" || lowerCase(name) == target.name();
    });
    if (targets.size() == before)
      return "unknown format '" + name + "' (formats: " + formatNames(options.isModern()) + ")" +
             (findModernFormat(name) != nullptr ? "; --style modern has it" : "");
  }
  // A format that leaves its traces in the model comes after those that would print them.
  std::stable_partition(targets.begin(), targets.end(),
                        [](const Target& target) { return !target.snapsModel(); });
  Targets once;
  for (const Target& target : targets)
    if (!std::ranges::count(once, target)) once.push_back(target);
  targets = std::move(once);
  return {};
}

ModernOptions modernOptions(const ConvertOptions& options) {
  ModernOptions modern;
  if (!options.up.empty()) modern.up = options.up == "z" ? UpAxis::z : UpAxis::y;
  if (options.texturesOut != "png")
    modern.textures = options.texturesOut == "copy" ? TexturesOut::copy : TexturesOut::none;
  return modern;
}

/// The reason why the options do not go together, or an empty text.
std::string contradiction(const ConvertOptions& options, Targets& targets) {
  if (options.output.empty() && options.formats.empty()) return "give -o FILE or --to FORMAT";
  if (!options.output.empty() && !options.folder.empty()) return "give either -o or --out";
  if (!options.isModern() && (!options.up.empty() || options.scale != 1 || options.texturesOut != "png"))
    return "--up, --scale and --textures-out go with --style modern";
  if (!std::isfinite(options.scale) || options.scale <= 0) return "--scale takes a number above 0";
  std::string reason = chooseFormats(options, targets);
  const bool toStream = reason.empty() && options.isModern() && options.output == standardOutput;
  if (toStream && !isOneFile(*targets.front().modern, modernOptions(options)))
    reason = std::string(targets.front().name()) + " is more than one file, -o - takes one: glb or stl";
  if (reason.empty() && !options.output.empty() && (options.models.size() != 1 || targets.size() != 1))
    reason = "-o takes one model and one format; for more give --to and --out";
  return reason;
}

/// One run of the command.
struct Conversion {
  const ConvertOptions& options;
  const Targets& targets;
  Batch& batch;
  PictureStore pictures;
  ModernOptions modern;
  std::atomic<size_t> files = 0;
  std::atomic<uint64_t> triangles = 0, bytes = 0;
  std::atomic<bool> namesTextures = false;  ///< an exact file names textures that were found
};

/// Writes to standard output under the name that a file of the model would have, else to the file.
ModernResult writeTarget(const Target& target, const std::string& path, const Job& job, Model& model,
                         Conversion& run) {
  OutputStream out(stdout);
  const std::string name = fs::path(job.model).stem().string() + "." + std::string(target.name());
  const bool toStream = path == standardOutput;
  if (!toStream) makeFolderOf(path);
  if (target.modern != nullptr)
    return toStream ? exportModern(*target.modern, name, model, run.modern, out)
                    : exportModern(*target.modern, path, model, run.modern, run.pictures);
  ExportResult exact =
      toStream ? exportModel(*target.exact, name, model, out) : exportModel(*target.exact, path, model);
  if (exact.error.empty() && model.texturesFound > 0 && (target.name() == "obj" || target.name() == "dae"))
    run.namesTextures = true;
  return {exact.bytes, std::move(exact.error), {}, {path}};
}

void convert(const Job& job, Conversion& run) {
  Batch& batch = run.batch;
  LoadOptions options;
  options.decodesTextures = std::ranges::any_of(run.targets, [](const Target& target) {
    return target.exact != nullptr && target.exact->holdsPictures;
  });
  const std::unique_ptr<Model> model = batch.load(job, options);
  if (model && run.options.scale != 1) scaleModel(*model, run.options.scale);
  for (size_t i = 0; model && i < run.targets.size() && !isInterrupted(); ++i) {
    const std::string& path = job.outputs[i];
    if (batch.wouldOverwrite(*model, path)) continue;
    const ModernResult result = writeTarget(run.targets[i], path, job, *model, run);
    for (const std::string& warning : result.warnings) report(job.model, warning);
    if (!result.error.empty()) {
      batch.fail(path, result.error);
      continue;
    }
    run.files += result.files.size();
    run.bytes += result.bytes;
    run.triangles += model->totalIndices / 3;
    batch.tell(job.model + " -> " + path + " (" + byteSize(result.bytes) + ")\n");
  }
}

std::string summary(const Conversion& totals, double seconds) {
  return "wrote " + groupedNumber(totals.files) + (totals.files == 1 ? " file, " : " files, ") +
         groupedNumber(totals.triangles) + " triangles, " + byteSize(totals.bytes) +
         formatted(" in %.2f s (%.1f MB/s)\n", seconds,
                   static_cast<double>(totals.bytes) / 1e6 / std::max(seconds, 1e-9));
}

int runConvert(const ConvertOptions& options) {
  Targets targets;
  const std::string reason = contradiction(options, targets);
  if (!reason.empty()) return usageError("convert", reason);

  const auto start = std::chrono::steady_clock::now();
  Batch batch(options);
  std::vector<std::string_view> extensions;
  for (const Target& target : targets) extensions.push_back(target.name());
  for (const Target& target : targets)
    if (target.modern != nullptr && !target.modern->companion.empty())
      extensions.push_back(target.modern->companion);
  batch.plan(extensions);
  if (const std::string refusal = batch.refusal(); !refusal.empty()) return usageError("convert", refusal);

  const fs::path folder =
      options.output.empty() ? fs::path(options.folder) : fs::path(options.output).parent_path();
  Conversion run{options, targets, batch, PictureStore(folder / "textures"), modernOptions(options)};
  batch.run([&] { return [&](const Job& job) { convert(job, run); }; });
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  if (options.quiet || options.output == standardOutput || run.files == 0) return batch.exitStatus();
  printOut(summary(run, seconds.count()));
  if (run.namesTextures)
    printOut(
        "exact OBJ and DAE name textures as the model does; --style modern writes them for other programs to "
        "find\n");
  return batch.exitStatus();
}

}  // namespace

RunCommand setUpConvert(CLI::App& app) {
  const auto options = std::make_shared<ConvertOptions>();
  app.add_option("-o,--output", options->output,
                 "the file to write; its extension is the format, - is standard output")
      ->type_name("FILE");
  app.add_option("--to", options->formats,
                 "formats to write: " + formatNames(false) + " or all; with --style modern " +
                     formatNames(true) + " or all")
      ->delimiter(',')
      ->type_name("FORMAT")
      ->allow_extra_args(false);
  app.add_option("--out", options->folder, "folder for the results (default: the current one)")
      ->type_name("DIR");
  app.add_option(
         "--style", options->style,
         "exact: what Save As of the viewer writes; modern: with names, and with textures that Blender and "
         "others find (default: exact)")
      ->check(CLI::IsMember({"exact", "modern"}));
  app.add_option(
         "--textures-out", options->texturesOut,
         "modern: pictures in textures/ beside the output, as PNG, as they are, or none (default: png)")
      ->check(CLI::IsMember({"png", "copy", "none"}));
  app.add_option("--up", options->up, "modern: the axis that points up (default: z for stl, else y)")
      ->check(CLI::IsMember({"y", "z"}));
  app.add_option("--scale", options->scale, "modern: factor of all sizes (default: 1)")->type_name("N");
  addBatch(app, *options);
  return [options] { return runConvert(*options); };
}

}  // namespace facet
