#include "device_bench.h"

#include <cstdlib>
#include <ostream>
#include <stdexcept>
#include <thread>

#include "bench.h"
#include "device/software/software_device.h"
#include "landscape.h"
#include "platform/files.h"
#include "platform/parallel.h"
#include "platform/system.h"
#include "render/filtering.h"
#include "render/picture_view.h"
#include "sample.h"
#include "support/picture_difference.h"
#include "tool/batch.h"

namespace facet {

namespace {

/// The desktop while a view lives; it answers whether the reference device is wanted.
class DesktopScope {
 public:
  explicit DesktopScope(bool reference) {
    desktop_.questionAnswer = reference ? IDYES : IDNO;
    setDesktop(&desktop_);
  }
  ~DesktopScope() { setDesktop(nullptr); }
  DesktopScope(const DesktopScope&) = delete;
  DesktopScope& operator=(const DesktopScope&) = delete;

 private:
  TerminalDesktop desktop_;
};

/// A view of one model on one device.
class Shown {
 public:
  Shown(const PictureSettings& settings, const std::string& path, const BasePaths& textures)
      : desktop_(!settings.hardware), view_(settings) {
    const bool reference = dynamic_cast<SoftwareDevice*>(view_.device()) != nullptr;
    if (reference == settings.hardware) throw std::runtime_error("there is no OpenGL device here");
    std::srand(0);  // of the colours that materials get
    ToolLoad load = loadForTool(path, textures, view_.device());
    if (!load.model) throw std::runtime_error(path + ": " + load.error);
    view_.show(std::move(load.model));
  }
  Picture draw() { return view_.draw(0); }
  double frameTime() {
    draw();
    return bestOf(7, [&] { draw(); });
  }

 private:
  DesktopScope desktop_;
  PictureView view_;
};

/// How many cores' worth of work this machine has to give at the moment: others may be using it.
double coresAtHand() {
  const auto spin = [](size_t) {
    volatile uint32_t state = 1;
    for (int i = 0; i < 50'000'000; ++i) state = state * 1664525 + 1013904223;
  };
  const size_t cores = std::max(std::thread::hardware_concurrency(), 1u);
  const double one = bestOf(3, [&] { spin(0); });
  return static_cast<double>(cores) * one / bestOf(3, [&] { parallelFor(cores, spin); });
}

PictureSettings texturedWith(uint8_t filter) {
  PictureSettings settings;
  settings.renderMode = renderTextured;
  settings.filter = filter;
  return settings;
}

/// One row of the table: how a scene is drawn.
struct Look {
  std::string name;
  PictureSettings settings;
};

std::vector<Look> looks() {
  PictureSettings plain;
  plain.renderMode = renderWireframe;
  std::vector<Look> result = {{"wireframe, grid", plain}};
  plain.renderMode = renderLit;
  result.push_back({"lit, grid", plain});
  for (uint8_t filter = 0; filter < filterModes.size(); ++filter) {
    PictureSettings settings = texturedWith(filter);
    result.push_back({"filter " + std::to_string(filter), settings});
    settings.environment = true;  // which brings the sun
    result.push_back({"filter " + std::to_string(filter) + ", light and sky", settings});
  }
  return result;
}

void benchScene(std::ostream& out, const char* name, const std::string& model, const BasePaths& textures) {
  out << "| " << name
      << ", frame of 1280 x 720 | reference, 1 thread | all threads | speed-up | OpenGL | reference / OpenGL "
         "|\n|---|---|---|---|---|---|\n";
  for (auto [look, settings] : looks()) {
    const double all = Shown(settings, model, textures).frameTime();
    setThreadCount(1);
    const double one = Shown(settings, model, textures).frameTime();
    setThreadCount(0);
    settings.hardware = true;
    const double openGl = Shown(settings, model, textures).frameTime();
    out << "| " << look << " | " << one * 1e3 << " ms | " << all * 1e3 << " ms | " << one / all << " | "
        << openGl * 1e3 << " ms | " << all / openGl << " |\n"
        << std::flush;
  }
}

struct Worst {
  double value = 0;
  std::string model;

  void take(double other, std::string_view name) {
    if (other > value) *this = {other, std::string(name)};
  }
};

void compareIn(std::ostream& out, const std::string& name, PictureSettings settings,
               const std::vector<ModelFile>& models, const BasePaths& textures) {
  Worst mean, share;
  for (const ModelFile& model : models) {
    settings.hardware = false;
    const Picture reference = Shown(settings, model.path, textures).draw();
    settings.hardware = true;
    const PictureDifference apart =
        differenceOf(reference.pixels, Shown(settings, model.path, textures).draw().pixels);
    mean.take(apart.mean, fileName(model.path));
    share.take(apart.share, fileName(model.path));
  }
  out << "| " << name << " | " << mean.value << " | " << mean.model << " | " << share.value * 100 << " % | "
      << share.model << " |\n"
      << std::flush;
}

}  // namespace

void benchFrames(std::ostream& out) {
  preferLargePages();  // as the tool does: else taking memory for each picture would count most
  const BenchFolder folder;
  sample::writeSampleModels(folder / "sample");
  sample::writeSampleTextures(folder / "sample");
  out << "Independent loops on all cores do " << coresAtHand() << " times the work of one.\n\n";
  benchScene(out, "the sample", folder / "sample/lighthouse.object",
             toolBasePaths({folder / "sample/gamedata/textures"}));
  out << '\n';
  const Landscape landscape{"2 million triangles", 4, 250};
  writeLandscapeVxm(landscape, folder / "land.vxm");
  writeGroundTexture(folder / "ground.tga");
  benchScene(out, landscape.name, folder / "land.vxm", toolBasePaths({folder / ""}));
}

void compareDevices(std::ostream& out, const std::string& folder, const std::vector<std::string>& bases) {
  size_t unreadable = 0;
  const std::vector<ModelFile> models = collectModels({folder}, true, unreadable);
  const BasePaths textures = toolBasePaths(bases);
  out << "| " << models.size() << " models | worst mean difference | of | worst share off by more than 16 | "
      << "of |\n|---|---|---|---|---|\n";
  PictureSettings settings;
  settings.renderMode = renderWireframe;
  compareIn(out, "wireframe", settings, models, textures);
  settings.renderMode = renderLit;
  compareIn(out, "lit", settings, models, textures);
  for (uint8_t filter = 0; filter < filterModes.size(); ++filter) {
    compareIn(out, "textured, filter " + std::to_string(filter), texturedWith(filter), models, textures);
  }
  settings = texturedWith(7);
  settings.environment = true;
  compareIn(out, "environment, filter 7", settings, models, textures);
}

}  // namespace facet
