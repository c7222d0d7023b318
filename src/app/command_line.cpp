#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <sstream>

namespace facet {

std::string programPath(const std::string& called) {
  if (called.find('/') != called.npos) return called;
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? called : path.string();
}

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
  constexpr int exitUsage = 2;
  CommandLine line;
  std::string device;
  std::vector<std::string> words;
  bool noSearch = false;
  CLI::App app("Shows a model of a game engine: VXM, OBJECT, MSH, MODEL, MESH, DS2MD or DDS.", "vxmviewer");
  app.add_option("MODEL", words, "the model or a folder of models; blanks need no quotation marks")
      ->type_name("");
  app.add_option("--device", device, "draw with the graphics card, or in software, without being asked")
      ->check(CLI::IsMember({"hal", "ref"}));
  app.add_option("--textures", line.textures,
                 "where textures are looked for, instead of what VXMViewer.cfg says; may be given again")
      ->type_name("BASE")
      ->allow_extra_args(false);
  app.add_flag("--no-search", noSearch, "look for textures there alone, not near the model");
  app.set_version_flag("--version", "vxmviewer " FACET_VERSION);
  app.footer(
      "Textures are looked for under the base paths of VXMViewer.cfg: beside the model that is named with\n"
      "its folder (without one, beside the program), else in the current directory; without that file under\n"
      "gamedata/textures/. What is not there is taken from near the model. Inside, Help > Keyboard and "
      "mouse\n"
      "lists the keys.");
  try {
    app.parse(std::vector(arguments.rbegin(), arguments.rend() - (arguments.empty() ? 0 : 1)));
  } catch (const CLI::ParseError& error) {
    std::ostringstream answer;
    line.exitStatus = app.exit(error, answer, answer) == 0 ? 0 : exitUsage;
    line.answer = answer.str();
  }
  if (!device.empty()) line.device = device == "hal" ? DeviceChoice::hal : DeviceChoice::ref;
  line.searchNear = !noSearch;
  line.model = CLI::detail::join(words, " ");
  line.whole = '"' + (arguments.empty() ? std::string() : arguments.front()) + "\" " + line.model;
  return line;
}

}  // namespace facet
