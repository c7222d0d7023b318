#include "render/picture_view.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "picture/image.h"
#include "platform/files.h"
#include "platform/output.h"
#include "render/camera.h"
#include "tool/batch.h"
#include "tool/console.h"

namespace facet {

namespace {

/// The words of the command line; empty texts were not given.
struct RenderOptions : BatchOptions {
  std::string size = "1280x720", mode, light, untextured = "lit", aspect, device = "ref";
  std::vector<float> eye;     ///< three numbers, or none
  std::vector<float> planes;  ///< two numbers, or none
  unsigned turntable = 1;     ///< pictures around each model
  unsigned seed = 0;
  PictureSettings settings;  ///< what the words above do not say
};

/// The place of a name in a table, none for an empty one. The command line has checked the names.
template <class Names>
std::optional<uint8_t> indexOf(const Names& names, std::string_view name) {
  const auto found = std::find(std::begin(names), std::end(names), name);
  if (found == std::end(names)) return {};
  return static_cast<uint8_t>(found - std::begin(names));
}

/// "1280x720"; false unless both sides are from 1 to 16384.
bool parseSize(std::string_view text, PictureSettings& settings) {
  const auto side = [](std::string_view digits) -> uint32_t {
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size() && value <= 16384 ? value : 0;
  };
  const size_t cross = text.find('x');
  if (cross == std::string_view::npos) return false;
  settings.width = side(text.substr(0, cross));
  settings.height = side(text.substr(cross + 1));
  return settings.width != 0 && settings.height != 0;
}

PictureSettings settingsOf(const RenderOptions& options) {
  PictureSettings settings = options.settings;
  parseSize(options.size, settings);
  settings.renderMode = indexOf(renderModeNames, options.mode);
  settings.lightMode = indexOf(lightModeNames, options.light);
  if (!options.eye.empty()) settings.eye = {options.eye[0], options.eye[1], options.eye[2]};
  if (!options.planes.empty()) settings.planes = {options.planes[0], options.planes[1]};
  for (size_t i = 0; i < monitorAspects.size(); ++i)
    if (options.aspect == monitorAspects[i].name) settings.aspectIndex = static_cast<int8_t>(i);
  settings.showUntextured = options.untextured == "lit";
  settings.hardware = options.device == "hal";
  return settings;
}

bool arePlanes(const std::vector<float>& planes, bool parallel) {
  return std::isfinite(planes[0]) && std::isfinite(planes[1]) && planes[0] < planes[1] &&
         (parallel || planes[0] > 0);
}

/// The reason why the options do not go together, or an empty text.
std::string contradiction(const RenderOptions& options) {
  PictureSettings settings = options.settings;
  if (!parseSize(options.size, settings)) return "--size takes WxH, each from 1 to 16384";
  const auto finite = [](float value) { return std::isfinite(value); };
  for (const float number : {settings.pitch.value_or(0), settings.yaw.value_or(0), settings.roll,
                             settings.fov.value_or(0), settings.time, settings.orthoHeight})
    if (!finite(number)) return "angles, --time and --ortho-height take finite numbers";
  if (!std::ranges::all_of(options.eye, finite)) return "--eye takes finite numbers";
  if (options.eye.empty() && (!options.planes.empty() || settings.orthoHeight > 0))
    return "--planes and --ortho-height go with --eye; the whole model is framed without";
  if (!options.eye.empty() && settings.orthographic)
    return "--orthographic frames the whole model; with --eye give --ortho-height";
  if (!options.planes.empty() && !arePlanes(options.planes, settings.orthoHeight > 0))
    return "--planes takes the near plane, above 0 in perspective, and a far one behind it";
  if (options.output.empty() == options.folder.empty()) return "give -o FILE.png or --out DIR";
  if (options.turntable > 1 && !options.eye.empty())
    return "--turntable goes around the model, without --eye";
  if (options.output.empty()) return {};
  if (options.models.size() != 1) return "-o takes one model; for more give --out";
  if (options.output == standardOutput) return options.turntable > 1 ? "-o - takes one picture" : "";
  return pictureNameRefusal(options.output);
}

void draw(const Job& job, const RenderOptions& options, Batch& batch, PictureView& view) {
  std::unique_ptr<Model> model = batch.load(job, view.device(), options.seed);
  if (!model) return;
  for (const std::string& path : job.outputs)
    if (batch.wouldOverwrite(*model, path)) return;
  if (view.show(std::move(model)))
    report(job.model, "is left out whole without light; drawn with --light head");
  for (size_t i = 0; i < job.outputs.size() && !isInterrupted(); ++i) {
    const std::string& path = job.outputs[i];
    const float turn = 360.0f * static_cast<float>(i) / static_cast<float>(job.outputs.size());
    const Picture picture = view.draw(turn);
    const std::string reason = picture.pixels.empty()
                                   ? "the device gives no picture"
                                   : writePng(picture.pixels, picture.width, picture.height, path);
    if (!reason.empty())
      batch.fail(path, reason);
    else
      batch.tell(job.model + " -> " + path + "\n");
  }
}

/// The view that a thread draws with. Where the search for a device ended elsewhere than it was asked to, the
/// first view says so.
std::shared_ptr<PictureView> makeView(const RenderOptions& options, Batch& batch, bool first) {
  Transcript said;
  const TranscriptScope scope(said);
  auto view = std::make_shared<PictureView>(settingsOf(options));
  if (view->device() == nullptr) {
    for (const auto& [text, caption] : said.messages) batch.fail("render", text);
    return nullptr;
  }
  const std::string& chosen = said.messages.back().first;
  if (first && !options.quiet && options.device == "hal" && chosen.starts_with("Fallback"))
    report("render", chosen);
  return view;
}

int runRender(const RenderOptions& options) {
  if (const std::string reason = contradiction(options); !reason.empty()) return usageError("render", reason);
  Batch batch(options);
  batch.plan(std::vector<std::string_view>{"png"}, options.turntable);
  if (const std::string refusal = batch.refusal(); !refusal.empty()) return usageError("render", refusal);

  TerminalDesktop desktop;  // answers the device search
  desktop.questionAnswer = options.device == "ref" ? IDYES : IDNO;
  Desktop* before = setDesktop(&desktop);
  std::atomic<bool> first = true;
  batch.run([&]() -> Batch::Worker {
    const auto view = makeView(options, batch, first.exchange(false));
    if (!view) return {};
    return [&, view](const Job& job) { draw(job, options, batch, *view); };
  });
  setDesktop(before);
  return batch.exitStatus();
}

void addCamera(CLI::App& render, RenderOptions& options) {
  PictureSettings& settings = options.settings;
  render
      .add_option(
          "--eye", options.eye,
          "where the camera stands; without it the whole model is framed: every mesh is drawn, and clip "
          "planes and sky grow with the model")
      ->type_name("X,Y,Z")
      ->delimiter(',')
      ->expected(3)
      ->allow_extra_args(false);
  render.add_option("--pitch", settings.pitch, "degrees; positive looks down (default: 20, with --eye 0)")
      ->type_name("D");
  render.add_option("--yaw", settings.yaw, "degrees; 0 looks along +z (default: 30, with --eye 0)")
      ->type_name("D");
  render
      .add_option("--roll", settings.roll,
                  "degrees, as --overlay tells them; no picture is turned by them (default: 0)")
      ->type_name("D");
  render.add_option("--fov", settings.fov, "degrees from top to bottom (default: 67.5)")
      ->type_name("D")
      ->check(CLI::Range(1.0, 170.0));
  CLI::Option* aspect =
      render
          .add_option("--aspect", options.aspect, "monitor that the picture fills (default: square pixels)")
          ->check(CLI::IsMember({"5:4", "4:3", "3:2", "16:10", "5:3", "16:9"}));
  render
      .add_option("--pixel-aspect", settings.pixelAspect,
                  "width by height of a pixel, without --aspect (default: 1)")
      ->type_name("R")
      ->check(CLI::Range(0.01, 100.0))
      ->excludes(aspect);
  render.add_flag("--orthographic", settings.orthographic, "in parallel projection, without --eye");
  render
      .add_option("--ortho-height", settings.orthoHeight,
                  "with --eye: in parallel projection, this many units from top to bottom")
      ->type_name("UNITS")
      ->check(CLI::PositiveNumber);
  render
      .add_option("--planes", options.planes,
                  "with --eye: the clip planes, and a sky that reaches to the far one (default: 1,350)")
      ->type_name("NEAR,FAR")
      ->delimiter(',')
      ->expected(2)
      ->allow_extra_args(false);
  render.add_flag("--no-distance-cut", settings.noDistanceCut, "with --eye: draw far meshes, too");
  render.add_option("--turntable", options.turntable, "N pictures around the model, OUT-1.png ...")
      ->type_name("N")
      ->check(CLI::Range(1u, 10000u));
}

void addLook(CLI::App& render, RenderOptions& options) {
  PictureSettings& settings = options.settings;
  render
      .add_option("--mode", options.mode,
                  "how to draw (default: textured where there are textures, else lit)")
      ->check(CLI::IsMember({"wireframe", "lit", "textured"}));
  render
      .add_option("--light", options.light,
                  "the light (default: head for --mode lit, sun for textures with --environment, else off)")
      ->check(CLI::IsMember({"off", "head", "sun"}));
  render
      .add_option(
          "--untextured", options.untextured,
          "meshes without a texture among textures: lit draws them in the colours of --mode lit, skip "
          "leaves them out (default: lit)")
      ->check(CLI::IsMember({"lit", "skip"}));
  render.add_flag("--environment", settings.environment, "sky box and light of the hour; no grid, no axes");
  render.add_option("--time", settings.time, "hour of the day (default: 12)")
      ->type_name("HOURS")
      ->check(CLI::Range(0.0, 24.0));
  render.add_option("--filter", settings.filter, "texture filtering, 0 points to 7 anisotropic (default: 5)")
      ->type_name("0-7")
      ->check(CLI::Range(0u, 7u));
  render.add_option("--background", settings.background, "background colour (default: 2, grey)")
      ->type_name("0-21")
      ->check(CLI::Range(0u, 21u));
  render.add_flag("--transparent", settings.transparent,
                  "the model alone, without background, sky, grid and axes");
  render.add_flag("--overlay", settings.overlay, "write frame rate, counts and camera into the picture");
  render.add_option("--seed", options.seed, "of the material colours of --mode lit (default: 0)")
      ->type_name("N");
}

}  // namespace

RunCommand setUpRender(CLI::App& app) {
  const auto options = std::make_shared<RenderOptions>();
  app.add_option("-o,--output", options->output, "the picture to write, - is standard output")
      ->type_name("OUT.png");
  app.add_option("--out", options->folder, "folder for the pictures of several models")->type_name("DIR");
  app.add_option("--size", options->size, "size of the picture (default: 1280x720)")->type_name("WxH");
  addLook(app, *options);
  addCamera(app, *options);
  app.add_option("--device", options->device,
                 "hal: OpenGL, falling back to ref; ref: software (default: ref)")
      ->check(CLI::IsMember({"hal", "ref"}));
  addBatch(app, *options);
  return [options] { return runRender(*options); };
}

}  // namespace facet
