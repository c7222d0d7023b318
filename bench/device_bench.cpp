// Frames of both devices, and how far their pictures are apart.

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

/// The desktop while a view lives; it answers whether the software device is wanted.
class DesktopScope {
 public:
  explicit DesktopScope(bool software) {
    desktop_.questionAnswer = software ? IDYES : IDNO;
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
    const bool software = dynamic_cast<SoftwareDevice*>(view_.device()) != nullptr;
    if (software == settings.hardware) throw std::runtime_error("there is no OpenGL device here");
    ToolLoad load = loadForTool(path, textures, view_.device());
    if (!load.model) throw std::runtime_error(path + ": " + load.error);
    view_.show(std::move(load.model));
  }
  Picture draw() { return view_.draw(0); }

 private:
  DesktopScope desktop_;
  PictureView view_;
};

/// One row of the tables: how a scene is drawn.
struct Look {
  std::string name;
  PictureSettings settings;
};

/// Both modes without textures, and every filter, plain and in the environment, which brings sun and sky.
std::vector<Look> looks() {
  std::vector<Look> result;
  const auto add = [&](const std::string& name, uint8_t mode, uint8_t filter, bool environment) {
    Look& look = result.emplace_back();
    look.name = name;
    look.settings.renderMode = mode;
    look.settings.filter = filter;
    look.settings.environment = environment;
  };
  add("wireframe, grid", renderWireframe, 0, false);
  add("lit, grid", renderLit, 0, false);
  for (uint8_t filter = 0; filter < filterModes.size(); ++filter) {
    add("filter " + std::to_string(filter), renderTextured, filter, false);
    add("filter " + std::to_string(filter) + ", light and sky", renderTextured, filter, true);
  }
  return result;
}

double frameTime(const PictureSettings& settings, const std::string& model, const BasePaths& textures) {
  Shown shown(settings, model, textures);
  shown.draw();
  return bestOf(7, [&] { shown.draw(); });
}

void benchScene(const std::string& name, const std::string& model, const BasePaths& textures) {
  printHead(name + ", frame of 1280 x 720", "software, 1 thread, ms", "all threads, ms", "speed-up",
            "OpenGL, ms", "software / OpenGL");
  for (auto [look, settings] : looks()) {
    const double all = frameTime(settings, model, textures);
    setThreadCount(1);
    const double one = frameTime(settings, model, textures);
    setThreadCount(0);
    settings.hardware = true;
    const double openGl = frameTime(settings, model, textures);
    printRow(look, one, all, one / all, openGl, all / openGl);
  }
}

struct Worst {
  double value = 0;
  std::string model = {};

  void take(double other, const std::string& path) {
    if (other > value) *this = {other, std::string(fileName(path))};
  }
};

}  // namespace

void benchFrames() {
  preferLargePages();  // as the tool does: else taking memory for each picture would count most
  const BenchFolder folder;
  sample::writeSampleModels(folder / "sample");
  sample::writeSampleTextures(folder / "sample");
  benchScene("the sample", folder / "sample/lighthouse.object",
             toolBasePaths({folder / "sample/gamedata/textures"}));
  writeVxm(landscape2M, folder / "land.vxm");
  writeGroundTexture(folder / "ground.tga");
  benchScene(landscape2M.name, folder / "land.vxm", toolBasePaths({folder / ""}));
}

void compareDevices(const std::string& folder, const std::vector<std::string>& textures) {
  BatchOptions options;
  options.models = {folder};
  options.recursive = true;
  const Batch models(options);
  const BasePaths bases = toolBasePaths(textures);
  printHead(std::to_string(models.jobs().size()) + " models", "worst mean difference", "of",
            "worst share off by more than 16, %", "of");
  for (auto [look, settings] : looks()) {
    Worst mean, share;
    for (const Job& job : models.jobs()) {
      settings.hardware = false;
      const Picture software = Shown(settings, job.model, bases).draw();
      settings.hardware = true;
      const PictureDifference apart =
          differenceOf(software.pixels, Shown(settings, job.model, bases).draw().pixels);
      mean.take(apart.mean, job.model);
      share.take(apart.share * 100, job.model);
    }
    printRow(look, mean.value, mean.model, share.value, share.model);
  }
}

}  // namespace facet
