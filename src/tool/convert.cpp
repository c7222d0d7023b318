#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <optional>

#include "export/export.h"
#include "platform/files.h"
#include "platform/output.h"
#include "platform/text.h"
#include "tool/batch.h"
#include "tool/console.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

struct ConvertOptions : BatchOptions {
  std::vector<std::string> formats;  ///< --to: names of the export table, or "all"
};

/// "obj, smd ... glb"
std::string formatNames() {
  std::string names;
  for (const ExportFormat& format : exportFormats())
    names += (names.empty() ? "" : ", ") + std::string(format.name);
  return names;
}

using Formats = std::vector<const ExportFormat*>;

/// The formats that --to or the extension of -o name; or the reason why there are none.
std::string chooseFormats(const ConvertOptions& options, Formats& formats) {
  std::vector<std::string> names = options.formats;
  if (names.empty()) {
    const std::string extension = lowerExtension(options.output);
    if (extension.empty())
      return options.output + " has no extension that tells the format; give --to FORMAT";
    names.push_back(extension.substr(1));
  }
  const auto choose = [&](const ExportFormat* format) {
    if (!std::ranges::count(formats, format)) formats.push_back(format);
  };
  for (const std::string& name : names) {
    if (lowerCase(name) == "all") {
      for (const ExportFormat& format : exportFormats()) choose(&format);
      continue;
    }
    const ExportFormat* format = findExportFormat(name);
    if (format == nullptr) return "unknown format '" + name + "' (formats: " + formatNames() + ")";
    choose(format);
  }
  // A format that leaves its traces in the model comes after those that would print them.
  std::stable_partition(formats.begin(), formats.end(),
                        [](const ExportFormat* format) { return !format->snapsModel; });
  return {};
}

/// The reason why the options do not go together, or an empty text.
std::string contradiction(const ConvertOptions& options, Formats& formats) {
  if (options.output.empty() && options.formats.empty()) return "give -o FILE or --to FORMAT";
  if (!options.output.empty() && !options.folder.empty()) return "give either -o or --out";
  std::string reason = chooseFormats(options, formats);
  if (reason.empty() && !options.output.empty() && (options.models.size() != 1 || formats.size() != 1))
    reason = "-o takes one model and one format; for more give --to and --out";
  return reason;
}

/// What all workers add to.
struct Totals {
  std::atomic<size_t> files = 0;
  std::atomic<uint64_t> triangles = 0, bytes = 0;
};

/// Writes to standard output under the name that a file of the model would have, else to the file.
ExportResult writeTarget(const ExportFormat& format, const std::string& path, const Job& job, Model& model) {
  if (path == standardOutput) {
    OutputStream out(stdout);
    const std::string name = fs::path(job.model).stem().string() + "." + std::string(format.name);
    return exportModel(format, name, model, out);
  }
  makeFolderOf(path);
  return exportModel(format, path, model);
}

void convert(const Job& job, const Formats& formats, Batch& batch, Totals& totals) {
  LoadOptions options;
  options.decodesTextures = std::ranges::any_of(formats, &ExportFormat::holdsPictures);
  const std::unique_ptr<Model> model = batch.load(job, options);
  for (size_t i = 0; model && i < job.outputs.size() && !isInterrupted(); ++i) {
    const std::string& path = job.outputs[i];
    if (batch.wouldOverwrite(*model, path)) continue;
    const ExportResult result = writeTarget(*formats[i], path, job, *model);
    if (!result.error.empty()) {
      batch.fail(path, result.error);
      continue;
    }
    ++totals.files;
    totals.bytes += result.bytes;
    totals.triangles += model->totalIndices / 3;
    batch.tell(job.model + " -> " + path + " (" + byteSize(result.bytes) + ")\n");
  }
}

std::string summary(const Totals& totals, double seconds) {
  return "wrote " + groupedNumber(totals.files) + (totals.files == 1 ? " file, " : " files, ") +
         groupedNumber(totals.triangles) + " triangles, " + byteSize(totals.bytes) +
         formatted(" in %.2f s (%.1f MB/s)\n", seconds,
                   static_cast<double>(totals.bytes) / 1e6 / std::max(seconds, 1e-9));
}

int runConvert(const ConvertOptions& options) {
  Formats formats;
  const std::string reason = contradiction(options, formats);
  if (!reason.empty()) return usageError("convert", reason);

  const auto start = std::chrono::steady_clock::now();
  Batch batch(options);
  std::vector<std::string_view> extensions;
  for (const ExportFormat* format : formats) extensions.push_back(format->name);
  batch.plan(extensions);
  if (const std::string refusal = batch.refusal(); !refusal.empty()) return usageError("convert", refusal);

  Totals totals;
  batch.run([&] { return [&](const Job& job) { convert(job, formats, batch, totals); }; });
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  if (!options.quiet && options.output != standardOutput && totals.files > 0)
    printOut(summary(totals, seconds.count()));
  return batch.exitStatus();
}

}  // namespace

RunCommand setUpConvert(CLI::App& app) {
  const auto options = std::make_shared<ConvertOptions>();
  app.add_option("-o,--output", options->output,
                 "the file to write; its extension is the format, - is standard output")
      ->type_name("FILE");
  app.add_option("--to", options->formats, "formats to write: " + formatNames() + " or all")
      ->delimiter(',')
      ->type_name("FORMAT")
      ->allow_extra_args(false);
  app.add_option("--out", options->folder, "folder for the results (default: the current one)")
      ->type_name("DIR");
  addBatch(app, *options);
  return [options] { return runConvert(*options); };
}

}  // namespace facet
