#include "tool/convert.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <optional>
#include <set>
#include <thread>

#include "platform/files.h"
#include "platform/parallel.h"
#include "platform/text.h"
#include "tool/console.h"
#include "tool/load_model.h"
#include "tool/plan.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view standardOutput = "-";

/// What all workers add to.
struct Totals {
  std::atomic<size_t> failures = 0, files = 0, done = 0;
  std::atomic<uint64_t> triangles = 0, bytes = 0;
};

/// A wrong use of the command's options: one line, then exit status 2.
int usageError(std::string_view reason) {
  reportFailure("convert", reason);
  return exitUsage;
}

/// The save dialog's nine formats and what the tool has beyond them.
std::vector<const ExportFormat*> allFormats() {
  std::vector<const ExportFormat*> formats;
  for (const ExportFormat& format : exportFormats()) formats.push_back(&format);
  formats.push_back(findExportFormat("glb"));
  return formats;
}

std::string knownFormats() {
  std::string names;
  for (const ExportFormat* format : allFormats())
    names += (names.empty() ? "" : ", ") + std::string(format->name);
  return names;
}

/// The formats that --to or the extension of -o name; none after an error that was reported.
std::optional<std::vector<const ExportFormat*>> chosenFormats(const ConvertOptions& options) {
  std::vector<std::string> names = options.formats;
  if (names.empty()) {
    const std::string extension = lowerExtension(options.output);
    if (extension.empty()) {
      usageError(options.output + " has no extension that tells the format; give --to FORMAT");
      return {};
    }
    names.push_back(extension.substr(1));
  }
  std::vector<const ExportFormat*> formats;
  const auto choose = [&](const ExportFormat* format) {
    if (!std::ranges::count(formats, format)) formats.push_back(format);
  };
  for (const std::string& name : names) {
    if (name == "all") {
      std::ranges::for_each(allFormats(), choose);
      continue;
    }
    const ExportFormat* format = findExportFormat(name);
    if (format == nullptr) {
      usageError("unknown format '" + name + "' (formats: " + knownFormats() + ")");
      return {};
    }
    choose(format);
  }
  // A format that leaves its traces in the model comes after those that would print them.
  std::ranges::stable_partition(formats, [](const ExportFormat* format) { return !format->snapsModel; });
  return formats;
}

/// Writes to standard output, under the name that a file of the model would have.
std::string writeToStandardOutput(const ExportFormat& format, const Job& job, Model& model, uint64_t& bytes) {
  if (format.refusal != nullptr) {
    std::string reason = format.refusal(model);
    if (!reason.empty()) return reason;
  }
  OutputStream out(stdout);
  try {
    format.write(model, fs::path(job.model.path).stem().string() + "." + std::string(format.name), out);
  } catch (const std::exception& error) {
    return error.what();
  }
  bytes = out.bytesWritten();
  return out.error();
}

/// The reason why the target was not written, or an empty text.
std::string writeTarget(const Target& target, const Job& job, Model& model, uint64_t& bytes) {
  if (target.path == standardOutput) return writeToStandardOutput(*target.format, job, model, bytes);
  if (target.isModel) return std::string(isModelReason);
  std::error_code error;
  const fs::path folder = fs::path(target.path).parent_path();
  if (!folder.empty()) fs::create_directories(folder, error);
  ExportResult result = exportModel(*target.format, target.path, model);
  bytes = result.bytes;
  return result.error;
}

void runJob(const Job& job, const ConvertOptions& options, const BasePaths& basePaths, bool lines,
            Totals& totals) {
  const ToolLoad load = loadForTool(job.model.path, basePaths);
  if (!load.model) {
    reportFailure(job.model.path, load.error);
    ++totals.failures;
    return;
  }
  for (const Target& target : job.targets) {
    if (isInterrupted()) return;
    uint64_t bytes = 0;
    const std::string reason = writeTarget(target, job, *load.model, bytes);
    if (!reason.empty()) {
      reportFailure(target.path, reason);
      ++totals.failures;
      continue;
    }
    ++totals.files;
    totals.bytes += bytes;
    totals.triangles += load.model->totalIndices / 3;
    if (lines && !options.quiet)
      printOut(job.model.path + " -> " + target.path + " (" + byteSize(bytes) + ")\n");
  }
}

void runJobs(const std::vector<Job>& jobs, const ConvertOptions& options, bool toStandardOutput,
             Totals& totals) {
  const BasePaths basePaths = toolBasePaths(options.textures);
  const bool bar = errorIsTerminal() && jobs.size() > 1 && !options.quiet;
  const bool lines = !bar && !toStandardOutput;
  std::atomic<size_t> next = 0;
  const auto work = [&](size_t) {
    for (size_t i = next++; i < jobs.size() && !isInterrupted(); i = next++) {
      runJob(jobs[i], options, basePaths, lines, totals);
      const size_t done = ++totals.done;
      if (bar) showProgress(done, jobs.size(), fileName(jobs[i].model.path));
    }
  };
  const size_t cores = options.jobs != 0 ? options.jobs : std::max(1u, std::thread::hardware_concurrency());
  parallelFor(std::min(cores, jobs.size()), work);
}

std::string summary(const Totals& totals, double seconds) {
  char speed[64];
  std::snprintf(speed, sizeof speed, " in %.2f s (%.1f MB/s)", seconds,
                static_cast<double>(totals.bytes) / 1e6 / std::max(seconds, 1e-9));
  return "wrote " + groupedNumber(totals.files) + (totals.files == 1 ? " file, " : " files, ") +
         groupedNumber(totals.triangles) + " triangles, " + byteSize(totals.bytes) + speed + "\n";
}

}  // namespace

int runConvert(const ConvertOptions& options) {
  if (options.output.empty() && options.formats.empty()) return usageError("give -o FILE or --to FORMAT");
  if (!options.output.empty() && !options.folder.empty()) return usageError("give either -o or --out");
  const auto formats = chosenFormats(options);
  if (!formats) return exitUsage;
  if (!options.output.empty() && (options.models.size() != 1 || formats->size() != 1))
    return usageError("-o takes one model and one format; for more give --to and --out");

  const auto start = std::chrono::steady_clock::now();
  Totals totals;
  size_t failures = 0;
  std::vector<ModelFile> models =
      collectModels(options.models, options.recursive && options.output.empty(), failures);
  totals.failures = failures;
  const std::vector<Job> jobs = options.output.empty()
                                    ? planTargets(std::move(models), *formats, options.folder)
                                    : planTarget(std::move(models), *formats->front(), options.output);

  const bool toStandardOutput = options.output == standardOutput;
  runJobs(jobs, options, toStandardOutput, totals);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  if (!options.quiet && !toStandardOutput && totals.files > 0) printOut(summary(totals, seconds.count()));
  return totals.failures == 0 ? exitSuccess : exitFailure;
}

}  // namespace facet
