#include "tool/tool.h"

#include <CLI/CLI.hpp>
#include <new>

#include "tool/console.h"
#include "tool/convert.h"
#include "tool/info.h"
#include "tool/log.h"
#include "tool/render.h"
#include "tool/terminal_desktop.h"
#include "tool/texture.h"

namespace facet {

namespace {

void addTextures(CLI::App& command, std::vector<std::string>& textures) {
  command
      .add_option(
          "--textures", textures,
          "where textures are looked for, in the order given; a text put before each texture's name, a "
          "folder gets its separator (default: VXMViewer.cfg here, else gamedata/textures/)")
      ->type_name("BASE")
      ->allow_extra_args(false);
}

/// What commands share that work through many models.
template <class Options>
void addBatch(CLI::App& command, Options& options) {
  command.add_flag("-r,--recursive", options.recursive, "take the models of folders; their tree is kept");
  command.add_option("-j,--jobs", options.jobs, "models at a time (default: one per core)")
      ->type_name("N")
      ->check(CLI::Range(1u, 1024u));
  command.add_flag("-q,--quiet", options.quiet, "say nothing but failures");
}

template <class Options>
struct Command {
  CLI::App* app;
  Options options;
};

void addConvert(CLI::App& app, Command<ConvertOptions>& command) {
  command.app = app.add_subcommand("convert", "Write models in other formats");
  CLI::App& convert = *command.app;
  ConvertOptions& options = command.options;
  convert.add_option("models", options.models, "model files, and folders with --recursive")
      ->required()
      ->type_name("MODEL");
  convert
      .add_option("-o,--output", options.output,
                  "the file to write; its extension is the format, - is standard output")
      ->type_name("FILE");
  convert
      .add_option("--to", options.formats,
                  "formats to write: obj, smd, ase, pov, dae, dxf, stl, ms3d, vxm, glb or all")
      ->delimiter(',')
      ->type_name("FORMAT")
      ->allow_extra_args(false);
  convert.add_option("--out", options.folder, "folder for the results (default: the current one)")
      ->type_name("DIR");
  addTextures(convert, options.textures);
  addBatch(convert, options);
  convert.footer(
      "Examples:\n"
      "  facetbench convert ship.vxm -o ship.obj\n"
      "  facetbench convert ship.vxm house.object --to obj,stl --out converted\n"
      "  facetbench convert models --recursive --to all --out converted\n"
      "  facetbench convert ship.vxm --to stl -o - | head");
}

void addInfo(CLI::App& app, Command<InfoOptions>& command) {
  command.app = app.add_subcommand("info", "Tell what models hold");
  CLI::App& info = *command.app;
  info.add_option("models", command.options.models, "model files")->required()->type_name("MODEL");
  info.add_flag("--json", command.options.json, "one JSON document a line for each model");
  info.add_flag("--details", command.options.details, "more of each mesh");
  addTextures(info, command.options.textures);
  info.footer(
      "Examples:\n"
      "  facetbench info ship.vxm\n"
      "  facetbench info --json --details *.vxm | jq .totalVertices\n"
      "  facetbench info ship.vxm --textures /games/mod/textures --textures /games/base/textures");
}

void addTexture(CLI::App& app, Command<TextureOptions>& command) {
  command.app = app.add_subcommand("texture", "Tell about picture files, and turn one into a PNG");
  CLI::App& texture = *command.app;
  texture.add_option("files", command.options.files, "DDS, TGA, PNG and BMP files")
      ->required()
      ->type_name("FILE");
  texture.add_flag("--json", command.options.json, "one JSON document a line for each file");
  texture.add_option("-o,--output", command.options.output, "write the first level of the one file as a PNG")
      ->type_name("OUT.png");
  texture.footer(
      "Examples:\n"
      "  facetbench texture brick.dds\n"
      "  facetbench texture brick.dds -o brick.png");
}

void addLog(CLI::App& app, Command<LogOptions>& command) {
  command.app = app.add_subcommand("log", "Write the statistics log of a model");
  CLI::App& log = *command.app;
  log.add_option("model", command.options.model, "model file")->required()->type_name("MODEL");
  log.add_option("-o,--output", command.options.output, "file for the log (default: standard output)")
      ->type_name("FILE");
  addTextures(log, command.options.textures);
  log.footer(
      "Examples:\n"
      "  facetbench log ship.vxm\n"
      "  facetbench log ship.vxm -o object.log");
}

void addCamera(CLI::App& render, RenderOptions& options) {
  render
      .add_option(
          "--eye", options.eye,
          "where the camera stands; without it the whole model is framed: every mesh is drawn, and clip "
          "planes and sky grow with the model")
      ->type_name("X,Y,Z")
      ->delimiter(',')
      ->expected(3)
      ->allow_extra_args(false);
  render.add_option("--pitch", options.pitch, "degrees; positive looks down (default: 20, with --eye 0)")
      ->type_name("D");
  render.add_option("--yaw", options.yaw, "degrees; 0 looks along +z (default: 30, with --eye 0)")
      ->type_name("D");
  render.add_option("--fov", options.fov, "degrees from top to bottom (default: 67.5)")
      ->type_name("D")
      ->check(CLI::Range(1.0, 170.0));
  render.add_option("--aspect", options.aspect, "monitor that the picture fills (default: square pixels)")
      ->check(CLI::IsMember({"5:4", "4:3", "3:2", "16:10", "5:3", "16:9"}));
  render.add_flag("--no-distance-cut", options.noDistanceCut, "with --eye: draw far meshes, too");
  render.add_option("--turntable", options.turntable, "N pictures around the model, OUT-1.png ...")
      ->type_name("N")
      ->check(CLI::Range(1u, 10000u));
}

void addLook(CLI::App& render, RenderOptions& options) {
  render
      .add_option("--mode", options.mode,
                  "how to draw (default: textured where there are textures, else lit)")
      ->check(CLI::IsMember({"wireframe", "lit", "textured"}));
  render
      .add_option("--light", options.light,
                  "the light (default: head for --mode lit, sun for textures with --environment, else off)")
      ->check(CLI::IsMember({"off", "head", "sun"}));
  render.add_flag("--environment", options.environment, "sky box and light of the hour; no grid, no axes");
  render.add_option("--time", options.time, "hour of the day (default: 12)")
      ->type_name("HOURS")
      ->check(CLI::Range(0.0, 24.0));
  render.add_option("--filter", options.filter, "texture filtering, 0 points to 7 anisotropic (default: 5)")
      ->type_name("0-7")
      ->check(CLI::Range(0u, 7u));
  render.add_option("--background", options.background, "background colour (default: 2, grey)")
      ->type_name("0-21")
      ->check(CLI::Range(0u, 21u));
  render.add_flag("--overlay", options.overlay, "write frame rate, counts and camera into the picture");
  render.add_option("--seed", options.seed, "of the material colours of --mode lit (default: 0)")
      ->type_name("N");
}

void addRender(CLI::App& app, Command<RenderOptions>& command) {
  command.app = app.add_subcommand("render", "Draw models into PNG pictures");
  CLI::App& render = *command.app;
  RenderOptions& options = command.options;
  render.add_option("models", options.models, "model files, and folders with --recursive")
      ->required()
      ->type_name("MODEL");
  render.add_option("-o,--output", options.output, "the picture to write, - is standard output")
      ->type_name("OUT.png");
  render.add_option("--out", options.folder, "folder for the pictures of several models")->type_name("DIR");
  render.add_option("--size", options.size, "size of the picture (default: 1280x720)")->type_name("WxH");
  addLook(render, options);
  addCamera(render, options);
  render
      .add_option("--device", options.device,
                  "hal: OpenGL, falling back to ref; ref: software (default: ref)")
      ->check(CLI::IsMember({"hal", "ref"}));
  addTextures(render, options.textures);
  addBatch(render, options);
  render.footer(
      "Examples:\n"
      "  facetbench render ship.vxm -o ship.png\n"
      "  facetbench render ship.vxm -o ship.png --environment --light sun --time 7 --size 1920x1080\n"
      "  facetbench render ship.vxm -o ship.png --turntable 36\n"
      "  facetbench render models --recursive --out pictures --mode lit");
}

}  // namespace

int runTool(int argc, const char* const* argv) {
  CLI::App app("Facet Bench: looks into models of game engines and writes them in other formats.",
               "facetbench");
  app.set_version_flag("--version", "facetbench " FACET_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 all well, 1 some input failed, 2 wrong usage.\n"
      "Examples:\n"
      "  facetbench info ship.vxm\n"
      "  facetbench convert ship.vxm -o ship.obj\n"
      "  facetbench render ship.vxm -o ship.png\n"
      "`facetbench COMMAND --help` tells more.");
  Command<ConvertOptions> convert;
  Command<InfoOptions> info;
  Command<TextureOptions> texture;
  Command<LogOptions> log;
  Command<RenderOptions> render;
  addConvert(app, convert);
  addInfo(app, info);
  addTexture(app, texture);
  addLog(app, log);
  addRender(app, render);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? exitSuccess : exitUsage;
  }

  TerminalDesktop desktop;
  setDesktop(&desktop);
  int status = exitUsage;
  try {
    if (*convert.app) status = runConvert(convert.options);
    if (*info.app) status = runInfo(info.options);
    if (*texture.app) status = runTexture(texture.options);
    if (*log.app) status = runLog(log.options);
    if (*render.app) status = runRender(render.options, desktop);
  } catch (const std::bad_alloc&) {
    std::fputs("facetbench: out of memory\n", stderr);
    status = exitFailure;
  }
  setDesktop(nullptr);
  if (std::fflush(stdout) != 0) {
    reportFailure("standard output", "cannot write");
    status = exitFailure;
  }
  return status;
}

}  // namespace facet
