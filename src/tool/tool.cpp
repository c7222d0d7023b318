#include "tool/batch.h"

#include <algorithm>
#include <new>
#include <numeric>

#include "tool/console.h"

namespace facet {

namespace {

struct ToolCommand {
  const char* name;
  const char* summary;
  RunCommand (*setUp)(CLI::App& app);
  const char* examples;
};

constexpr ToolCommand toolCommands[] = {
    {"convert", "Write models in other formats", setUpConvert,
     "  facetbench convert ship.vxm -o ship.obj\n"
     "  facetbench convert ship.vxm house.object --to obj,stl --out converted\n"
     "  facetbench convert models --recursive --to all --out converted\n"
     "  facetbench convert ship.vxm --style modern --to glb,obj --out for-blender\n"
     "  facetbench convert ship.vxm --to stl -o - | head"},
    {"info", "Tell what models hold", setUpInfo,
     "  facetbench info ship.vxm\n"
     "  facetbench info --json --details *.vxm | jq .totalVertices\n"
     "  facetbench info ship.vxm --textures /games/mod/textures --textures /games/base/textures"},
    {"texture", "Tell about picture files, and turn one into a PNG", setUpTexture,
     "  facetbench texture brick.dds\n"
     "  facetbench texture brick.dds -o brick.png"},
    {"log", "Write the statistics log of a model", setUpLog,
     "  facetbench log ship.vxm\n"
     "  facetbench log ship.vxm -o object.log"},
    {"render", "Draw models into PNG pictures", setUpRender,
     "  facetbench render ship.vxm -o ship.png\n"
     "  facetbench render ship.vxm -o ship.png --environment --light sun --time 7 --size 1920x1080\n"
     "  facetbench render ship.vxm -o ship.png --turntable 36\n"
     "  facetbench render models --recursive --out pictures --mode lit"},
};

/// How many letters must be added, dropped or changed to make one word of the other.
size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i + 1);
    for (size_t k = 0; k < b.size(); ++k) {
      const size_t changed = diagonal + (a[i] == b[k] ? 0 : 1);
      diagonal = row[k + 1];
      row[k + 1] = std::min({changed, row[k] + 1, diagonal + 1});
    }
  }
  return row.back();
}

/// The line about a first word that is no command, empty where it is one or an option.
std::string unknownCommand(std::string_view word) {
  if (word.starts_with('-')) return {};
  const ToolCommand* nearest = nullptr;
  size_t least = word.size() / 2 + 1;
  for (const ToolCommand& command : toolCommands) {
    const size_t distance = editDistance(word, command.name);
    if (distance == 0) return {};
    if (distance < least) nearest = &command, least = distance;
  }
  std::string line = "unknown command " + std::string(word);
  if (nearest != nullptr) return line + "; did you mean " + nearest->name + "?";
  line += "; the commands are";
  for (const ToolCommand& command : toolCommands) line += std::string(" ") + command.name;
  return line;
}

/// Runs the command that was parsed.
int runParsed(const std::vector<std::pair<CLI::App*, RunCommand>>& commands) {
  TerminalDesktop desktop;
  Desktop* before = setDesktop(&desktop);
  int status = exitUsage;
  try {
    for (const auto& [app, run] : commands)
      if (*app) status = run();
  } catch (const std::bad_alloc&) {
    std::fputs("facetbench: out of memory\n", stderr);
    status = exitFailure;
  }
  setDesktop(before);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    report("standard output", "cannot write");
    std::clearerr(stdout);
    status = exitFailure;
  }
  return status;
}

}  // namespace

void addTextures(CLI::App& app, TextureOptions& options) {
  app.add_option(
         "--textures", options.textures,
         "where textures are looked for: one base each time, in the order given; a text put before each "
         "texture's name, a folder gets its separator (default: VXMViewer.cfg here, else "
         "gamedata/textures/)")
      ->type_name("BASE")
      ->allow_extra_args(false);
  app.add_flag("--no-search", options.noSearch,
               "look under these bases alone, not near the model: in its folder and those above, and in "
               "textures/ and gamedata/textures/ there");
}

int usageError(std::string_view command, std::string_view reason) {
  report(command, reason);
  return exitUsage;
}

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
  std::vector<std::pair<CLI::App*, RunCommand>> commands;
  for (const ToolCommand& command : toolCommands) {
    CLI::App* sub = app.add_subcommand(command.name, command.summary);
    sub->footer(std::string("Examples:\n") + command.examples);
    commands.emplace_back(sub, command.setUp(*sub));
  }
  if (argc < 2) {
    printOut(app.help());
    return exitUsage;
  }
  if (const std::string reason = unknownCommand(argv[1]); !reason.empty()) {
    std::fprintf(stderr, "facetbench: %s\n", reason.c_str());
    return exitUsage;
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? exitSuccess : exitUsage;
  }
  return runParsed(commands);
}

}  // namespace facet
