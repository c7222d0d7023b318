#include "tool/render.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <new>
#include <thread>

#include "picture/image.h"
#include "platform/files.h"
#include "platform/output.h"
#include "platform/parallel.h"
#include "render/camera.h"
#include "tool/console.h"
#include "tool/load_model.h"
#include "tool/picture_view.h"
#include "tool/plan.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view standardOutput = "-", outOfMemory = "out of memory";
constexpr ExportFormat pngFormat{"png", "", "*.png", "", nullptr, nullptr};
constexpr const char* modeNames[] = {"wireframe", "lit", "textured"};
constexpr const char* lightNames[] = {"off", "head", "sun"};

int usageError(std::string_view reason) {
  reportFailure("render", reason);
  return exitUsage;
}

/// The place of a name in a table, none for an empty one. The command line has checked the names.
template <class Names>
std::optional<uint8_t> indexOf(const Names& names, std::string_view name) {
  const auto found = std::find(std::begin(names), std::end(names), name);
  if (found == std::end(names)) return {};
  return static_cast<uint8_t>(found - std::begin(names));
}

/// "1280x720"; none unless both sides are from 1 to 16384.
std::optional<std::pair<uint32_t, uint32_t>> parseSize(std::string_view text) {
  const auto side = [](std::string_view digits) -> uint32_t {
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size() && value <= 16384 ? value : 0;
  };
  const size_t cross = text.find('x');
  if (cross == std::string_view::npos) return {};
  const uint32_t width = side(text.substr(0, cross)), height = side(text.substr(cross + 1));
  if (width == 0 || height == 0) return {};
  return std::pair(width, height);
}

PictureSettings settingsOf(const RenderOptions& options, std::pair<uint32_t, uint32_t> size) {
  PictureSettings settings;
  settings.width = size.first;
  settings.height = size.second;
  settings.renderMode = indexOf(modeNames, options.mode);
  settings.lightMode = indexOf(lightNames, options.light);
  settings.environment = options.environment;
  settings.time = options.time;
  settings.filter = static_cast<uint8_t>(options.filter);
  settings.background = static_cast<uint8_t>(options.background);
  if (!options.eye.empty()) settings.eye = {options.eye[0], options.eye[1], options.eye[2]};
  settings.pitch = options.pitch;
  settings.yaw = options.yaw;
  settings.fov = options.fov;
  for (size_t i = 0; i < monitorAspects.size(); ++i)
    if (options.aspect == monitorAspects[i].name) settings.aspectIndex = static_cast<int8_t>(i);
  settings.noDistanceCut = options.noDistanceCut;
  settings.overlay = options.overlay;
  settings.hardware = options.device == "hal";
  return settings;
}

constexpr std::string_view otherPictures[] = {".jpg", ".jpeg", ".bmp",  ".tga", ".dds",
                                              ".gif", ".tif",  ".tiff", ".webp"};

/// The reason why the options do not go together, or an empty text.
std::string contradiction(const RenderOptions& options) {
  const auto finite = [](float value) { return std::isfinite(value); };
  if (!std::ranges::all_of(options.eye, finite) || !finite(options.pitch.value_or(0)) ||
      !finite(options.yaw.value_or(0)) || !finite(options.fov.value_or(0)) || !finite(options.time))
    return "--eye, --pitch, --yaw, --fov and --time take finite numbers";
  if (options.output.empty() == options.folder.empty()) return "give -o FILE.png or --out DIR";
  if (options.turntable > 0 && !options.eye.empty())
    return "--turntable goes around the model, without --eye";
  if (options.output.empty()) return {};
  if (options.models.size() != 1) return "-o takes one model; for more give --out";
  if (options.output == standardOutput) return options.turntable > 1 ? "-o - takes one picture" : "";
  // File managers name thumbnails anyhow; only a name that promises something else is refused.
  const bool other =
      std::ranges::count(otherPictures, lowerExtension(options.output)) != 0 || hasModelName(options.output);
  return other ? "pictures are PNG files; name the output so" : "";
}

/// "ship.png" for a single picture, else "ship-01.png" ...
std::string picturePath(const std::string& path, unsigned number, unsigned count) {
  if (count <= 1) return path;
  const std::string last = std::to_string(count), digits = std::to_string(number);
  const fs::path file = path;
  const std::string name =
      file.stem().string() + "-" + std::string(last.size() - digits.size(), '0') + digits;
  return (file.parent_path() / (name + file.extension().string())).string();
}

/// The reason why the picture was not written, or an empty text.
std::string writePicture(const Picture& picture, const std::string& path) {
  if (picture.pixels.empty()) return "the device gives no picture";
  const auto png = encodePng(picture.pixels, picture.width, picture.height);
  if (png.empty()) return "cannot make a PNG of it";
  const std::string_view bytes(reinterpret_cast<const char*>(png.data()), png.size());
  if (path == standardOutput) {
    OutputStream out(stdout);
    out.write(bytes);
    return out.error();
  }
  std::error_code error;
  const fs::path folder = fs::path(path).parent_path();
  if (!folder.empty()) fs::create_directories(folder, error);
  OutputFile file(path);
  file.write(bytes);
  return file.commit() ? std::string() : file.error();
}

/// All that the workers of one run share.
struct Run {
  const RenderOptions& options;
  const PictureSettings settings;
  const std::vector<Job> jobs;
  const BasePaths basePaths;
  const bool bar;
  std::atomic<size_t> next = 0, done = 0, failures = 0;
};

void fail(Run& run, std::string_view path, std::string_view reason) {
  reportFailure(path, reason);
  ++run.failures;
}

void drawJob(Run& run, const Job& job, PictureView& view) {
  const Target& target = job.targets.front();
  if (target.isModel) return fail(run, target.path, isModelReason);
  ToolLoad load = loadForTool(job.model.path, run.basePaths, view.device(), run.options.seed);
  if (!load.model) return fail(run, job.model.path, load.error);
  view.show(std::move(load.model));
  const unsigned count = std::max(run.options.turntable, 1u);
  for (unsigned i = 0; i < count && !isInterrupted(); ++i) {
    const std::string path = picturePath(target.path, i + 1, count);
    const float turn = 360.0f * static_cast<float>(i) / static_cast<float>(count);
    const std::string reason = writePicture(view.draw(turn), path);
    if (!reason.empty()) {
      fail(run, path, reason);
    } else if (!run.bar && !run.options.quiet && path != standardOutput) {
      printOut(job.model.path + " -> " + path + "\n");
    }
  }
}

/// Says where the search for a device ended, when not where it was asked to.
bool reportDevice(Run& run, PictureView& view) {
  if (view.device() == nullptr) {
    for (const auto& [text, caption] : view.transcript().messages) reportFailure("render", text);
    ++run.failures;
    return false;
  }
  const std::string& chosen = view.transcript().messages.back().first;
  if (run.settings.hardware && chosen.starts_with("Fallback") && !run.options.quiet)
    reportFailure("render", chosen);
  return true;
}

void drawJobs(Run& run, bool reports) {
  PictureView view(run.settings);
  if (view.device() == nullptr || reports) {
    if (!reportDevice(run, view)) return;
  }
  for (size_t i = run.next++; i < run.jobs.size() && !isInterrupted(); i = run.next++) {
    const std::string& path = run.jobs[i].model.path;
    try {
      drawJob(run, run.jobs[i], view);
    } catch (const std::bad_alloc&) {
      fail(run, path, outOfMemory);
    }
    const size_t done = ++run.done;
    if (run.bar) showProgress(done, run.jobs.size(), fileName(path));
  }
}

void work(Run& run, bool reports) {
  try {
    drawJobs(run, reports);
  } catch (const std::bad_alloc&) {
    fail(run, "render", outOfMemory);
  }
}

}  // namespace

int runRender(const RenderOptions& options, TerminalDesktop& desktop) {
  const auto size = parseSize(options.size);
  if (!size) return usageError("--size takes WxH, each from 1 to 16384");
  const std::string reason = contradiction(options);
  if (!reason.empty()) return usageError(reason);
  desktop.questionAnswer = options.device == "ref" ? IDYES : IDNO;

  size_t failures = 0;
  std::vector<ModelFile> models =
      collectModels(options.models, options.recursive && options.output.empty(), failures);
  std::vector<Job> jobs = options.output.empty()
                              ? planTargets(std::move(models), {&pngFormat}, options.folder)
                              : planTarget(std::move(models), pngFormat, options.output);

  const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
  const size_t wanted = std::min<size_t>(options.jobs != 0 ? options.jobs : cores, jobs.size());
  PictureSettings settings = settingsOf(options, *size);
  settings.threads = static_cast<uint32_t>(std::max<size_t>(cores / std::max<size_t>(wanted, 1), 1));
  const bool bar = errorIsTerminal() && jobs.size() > 1 && !options.quiet;
  Run run{options, settings, std::move(jobs), toolBasePaths(options.textures), bar, {}, {}, failures};

  parallelFor(wanted, [&run](size_t i) { work(run, i == 0); });
  return run.failures == 0 ? exitSuccess : exitFailure;
}

}  // namespace facet
