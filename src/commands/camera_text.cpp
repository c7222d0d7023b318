#include <charconv>
#include <cmath>
#include <optional>

#include "commands/looking.h"
#include "render/camera.h"

namespace facet {

namespace {

/// The shortest digits that give the same number again.
std::string exact(float value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

/// One option of the camera, of one to three numbers; the first and last values that it takes.
struct CameraOption {
  std::string_view name;
  std::vector<float> (*get)(const ModelView& view);  ///< empty: left out, as it is what goes without saying
  void (*set)(Camera& camera, const float* numbers);
  size_t numbers;
  float least, most;
};

constexpr float anything = 1e30f;

const CameraOption cameraTable[] = {
    {"--eye",
     [](const ModelView& v) {
       return std::vector{v.camera.eyePosition.x, v.camera.eyePosition.y, v.camera.eyePosition.z};
     },
     [](Camera& c, const float* n) {
       c.eyePosition = {n[0], n[1], n[2]};
     },
     3, -anything, anything},
    {"--pitch", [](const ModelView& v) { return std::vector{v.camera.pitch}; },
     [](Camera& c, const float* n) { c.pitch = *n; }, 1, -anything, anything},
    {"--yaw", [](const ModelView& v) { return std::vector{v.camera.yaw}; },
     [](Camera& c, const float* n) { c.yaw = *n; }, 1, -anything, anything},
    {"--roll",
     [](const ModelView& v) {
       return v.camera.roll == 0 ? std::vector<float>() : std::vector{v.camera.roll};
     },
     [](Camera& c, const float* n) { c.roll = *n; }, 1, -anything, anything},
    {"--fov", [](const ModelView& v) { return std::vector{v.camera.fovDegrees}; },
     [](Camera& c, const float* n) { c.fovDegrees = *n; }, 1, 1, 170},
    {"--ortho-height",
     [](const ModelView& v) {
       return v.camera.orthoHeight > 0 ? std::vector{v.camera.orthoHeight} : std::vector<float>();
     },
     [](Camera& c, const float* n) { c.orthoHeight = *n; }, 1, 0, anything},
    {"--planes",
     [](const ModelView& v) {
       const bool usual = v.camera.nearZ == nearPlane && v.camera.farZ == farPlane;
       return usual ? std::vector<float>() : std::vector{v.camera.nearZ, v.camera.farZ};
     },
     [](Camera& c, const float* n) {
       c.nearZ = n[0];
       c.farZ = n[1];
     },
     2, -anything, anything},
};

/// The next word of a command line, and the rest without it. A '=' ends a word, too.
std::string_view takeWord(std::string_view& text) {
  constexpr std::string_view between = " \t\r\n=\"'";
  text.remove_prefix(std::min(text.find_first_not_of(between), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(between));
  text.remove_prefix(word.size());
  return word;
}

/// Numbers with commas between them, as many as the option has and within its limits.
std::optional<std::vector<float>> numbersOf(const CameraOption& option, std::string_view word) {
  std::vector<float> numbers;
  const char *at = word.data(), *end = at + word.size();
  while (true) {
    float value = 0;
    const auto [stop, error] = std::from_chars(at, end, value);
    if (error != std::errc() || !(value >= option.least && value <= option.most)) return {};
    numbers.push_back(value);
    if (stop == end) break;
    if (*stop != ',') return {};
    at = stop + 1;
  }
  if (numbers.size() != option.numbers) return {};
  return numbers;
}

}  // namespace

std::string cameraOptions(const ModelView& view) {
  const ViewSettings& settings = view.settings;
  std::string text;
  for (const CameraOption& option : cameraTable) {
    std::string numbers;
    for (const float value : option.get(view)) numbers += (numbers.empty() ? "" : ",") + exact(value);
    if (!numbers.empty()) text += std::string(option.name) + '=' + numbers + ' ';
  }
  const float client = static_cast<float>(view.clientWidth) / static_cast<float>(view.clientHeight);
  const float pixelAspect = viewAspect(view) / client;
  if (std::fabs(pixelAspect - 1) > 1e-5f) text += "--pixel-aspect=" + exact(pixelAspect) + ' ';
  text += "--size=" + std::to_string(view.clientWidth) + 'x' + std::to_string(view.clientHeight);
  text += std::string(" --mode=") + renderModeNames[settings.renderMode] +
          " --light=" + lightModeNames[settings.lightMode];
  text += std::string(" --untextured=") + (settings.showUntextured ? "lit" : "skip");
  text += " --filter=" + std::to_string(settings.filterMode) +
          " --background=" + std::to_string(settings.backgroundIndex);
  if (settings.envMode || settings.envTime != 12) text += " --time=" + exact(settings.envTime);
  if (settings.envMode) text += " --environment";
  if (settings.noDistanceCut) text += " --no-distance-cut";
  return text;
}

std::string applyCameraOptions(ModelView& view, std::string_view text) {
  Camera camera = view.camera;
  camera.nearZ = nearPlane;
  camera.farZ = farPlane;
  camera.orthoHeight = 0;
  bool placed = false, cut = true;
  while (!text.empty()) {
    const std::string_view name = takeWord(text);
    for (const CameraOption& option : cameraTable) {
      if (name != option.name) continue;
      const std::string_view word = takeWord(text);
      const auto numbers = numbersOf(option, word);
      if (!numbers)
        return std::string(name) + " takes " + std::to_string(option.numbers) +
               (option.numbers == 1 ? " number" : " numbers") + ", not \"" + std::string(word.substr(0, 40)) +
               '"';
      option.set(camera, numbers->data());
      placed |= name == "--eye";
    }
    cut &= name != "--no-distance-cut";
  }
  if (!placed) return "there is no camera in it: copy one here first, or options with --eye=X,Y,Z";
  if (!(camera.nearZ < camera.farZ) || (camera.orthoHeight == 0 && camera.nearZ <= 0))
    return "--planes takes a near plane, above 0 in perspective, and a far one behind it";
  view.camera = camera;
  if (!cut) view.settings.noDistanceCut = true;
  setProjection(view);
  return {};
}

}  // namespace facet
