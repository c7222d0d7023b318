// Frames of both devices, and how far their pictures are apart.

#include "bench.h"
#include "device/software/software_device.h"
#include "platform/files.h"
#include "platform/parallel.h"
#include "platform/system.h"
#include "render/picture_view.h"
#include "render/view.h"
#include "sample.h"
#include "support/picture_difference.h"
#include "tool/batch.h"

namespace facet {

namespace {

/// The settings, after the current desktop has learnt what to answer when the view asks for a device.
const PictureSettings& asked(const PictureSettings& settings) {
  static TerminalDesktop desktop;
  desktop.questionAnswer = settings.hardware ? IDNO : IDYES;
  setDesktop(&desktop);
  return settings;
}

/// A view of one model on one device.
class Shown {
 public:
  Shown(const PictureSettings& settings, const std::string& path, const BasePaths& textures)
      : view_(asked(settings)) {
    const bool software = dynamic_cast<SoftwareDevice*>(view_.device()) != nullptr;
    if (software == settings.hardware) throw std::runtime_error("there is no OpenGL device here");
    ToolLoad load = loadForTool(path, textures, view_.device());
    if (!load.model) throw std::runtime_error(path + ": " + load.error);
    view_.show(std::move(load.model));
  }
  Picture draw() { return view_.draw(0); }

 private:
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

}  // namespace

void benchFrames() {
  preferLargePages();  // as the tool does: else taking memory for each picture would count most
  const TempFolder folder;
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
  printHead(std::to_string(models.jobs().size()) + " models", "worst mean difference",
            "worst share off by more than 16, %", "of");
  for (auto [look, settings] : looks()) {
    double mean = 0, share = 0;
    std::string of;
    for (const Job& job : models.jobs()) {
      settings.hardware = false;
      const Picture software = Shown(settings, job.model, bases).draw();
      settings.hardware = true;
      const Picture openGl = Shown(settings, job.model, bases).draw();
      const PictureDifference apart = differenceOf(software.pixels, openGl.pixels);
      mean = std::max(mean, apart.mean);
      if (apart.share >= share) of = fileName(job.model);
      share = std::max(share, apart.share);
    }
    printRow(look, mean, share * 100, of);
  }
}

}  // namespace facet
