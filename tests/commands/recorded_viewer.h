#pragma once

#include <map>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "platform/text.h"
#include "support/format_builders.h"
#include "support/recording_desktop.h"
#include "support/recording_device.h"
#include "support/temp_folder.h"

namespace facet {

/// The title of a window without a model, and of one with this model.
inline const std::string emptyTitle = "r_dx9::Facet Bench [x64] 1.0.5@.201312xx";
inline std::string titleOf(const std::string& name) {
  return emptyTitle + " - [" + name + "]";
}

/// What a text must be: the bytes of a file beside these tests.
inline std::string golden(const char* name) {
  return readWholeFile(std::filesystem::path(TESTS_FOLDER) / "commands/golden" / name);
}

/// The settings that commands change, by name.
inline std::map<std::string, std::string> settings(const Viewer& viewer) {
  const ModelView& v = viewer.view;
  std::map<std::string, std::string> texts = {
      {"eye", formatted("%g %g %g", v.camera.eyePosition.x, v.camera.eyePosition.y, v.camera.eyePosition.z)},
      {"clearColor", formatted("%.4f %.4f %.4f %g", v.settings.clearColor[0], v.settings.clearColor[1],
                               v.settings.clearColor[2], v.settings.clearColor[3])}};
  const std::pair<const char*, double> numbers[] = {
      {"renderMode", v.settings.renderMode},
      {"envMode", v.settings.envMode},
      {"lightMode", v.settings.lightMode},
      {"filterMode", v.settings.filterMode},
      {"noDistanceCut", v.settings.noDistanceCut},
      {"backgroundIndex", v.settings.backgroundIndex},
      {"gamma", v.settings.gamma},
      {"pitch", v.camera.pitch},
      {"yaw", v.camera.yaw},
      {"roll", v.camera.roll},
      {"moveSide", v.camera.moveSide},
      {"moveUp", v.camera.moveUp},
      {"moveForward", v.camera.moveForward},
      {"moveSpeed", v.camera.moveSpeed},
      {"fovDegrees", v.camera.fovDegrees},
      {"envTime", v.settings.envTime},
      {"fileIndex", v.scene.fileIndex},
      {"aspectIndex", v.settings.aspectIndex},
      {"buffersBuilt", v.scene.buffersBuilt},
      {"smoothShading", v.settings.smoothShading},
      {"flatShading", v.settings.flatShading},
      {"fullscreen", viewer.fullscreenMode},
      {"showUntextured", v.settings.showUntextured},
      {"searchNear", viewer.searchNear},
  };
  for (const auto& [name, value] : numbers) texts[name] = formatted("%g", value);
  return texts;
}

/// A viewer on a recording device and desktop, in a folder of its own that is the current one.
struct RecordedViewer {
  RecordedViewer() {
    viewer.view.system.p_d3d = direct3d;
    viewer.view.system.p_device = direct3d->device;
    viewer.view.clientWidth = 640;
    viewer.view.clientHeight = 480;
    viewer.view.scene.buffersBuilt = true;
    before_ = settings(viewer);
  }

  RecordingDevice& device() { return *direct3d->device; }
  size_t frames() { return device().presents; }

  /// Writes small model files and loads the one at `index` of their listing.
  void loadFrom(const std::vector<std::string>& names, int32_t index) {
    for (const std::string& name : names) folder.write(name, triangleFile());
    viewer.view.scene.modelPath = folder / names.front();
    browseModelFile(viewer, index);
    forget();
  }

  /// Forgets what happened so far.
  void forget() {
    device().presents = 0;
    desktop.boxes.clear();
    desktop.status.clear();
    desktop.titles.clear();
    desktop.windowCalls.clear();
    before_ = settings(viewer);
  }

  /// The settings that changed: "envTime 0 > 1, ...".
  std::string changes() const {
    std::string text;
    for (const auto& [name, value] : settings(viewer))
      if (value != before_.at(name))
        text += (text.empty() ? "" : ", ") + name + " " + before_.at(name) + " > " + value;
    return text;
  }

  TempFolder folder;
  CurrentFolder here{folder.path()};
  RecordingDesktop desktop;
  std::shared_ptr<RecordingDirect3D> direct3d = std::make_shared<RecordingDirect3D>();
  Viewer viewer;

 private:
  std::map<std::string, std::string> before_;
};

}  // namespace facet
