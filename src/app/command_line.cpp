#include "app/command_line.h"

#include <filesystem>

namespace facet {

std::string programPath(const std::string& called) {
  if (called.find('/') != called.npos) return called;
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? called : path.string();
}

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
  CommandLine line;
  bool options = true;
  for (size_t i = 1; i < arguments.size() && line.error.empty(); ++i) {
    const std::string& argument = arguments[i];
    if (!options || argument.size() < 2 || argument.front() != '-') {
      if (!line.model.empty()) line.model += ' ';
      line.model += argument;
    } else if (argument == "--") {
      options = false;
    } else if (argument == "--help" || argument == "-h") {
      line.help = true;
    } else if (argument == "--version") {
      line.version = true;
    } else if (argument == "--device" || argument.starts_with("--device=")) {
      const size_t end = argument.find('=');
      const std::string name = end != argument.npos     ? argument.substr(end + 1)
                               : ++i < arguments.size() ? arguments[i]
                                                        : "";
      if (name == "hal")
        line.device = DeviceChoice::hal;
      else if (name == "ref")
        line.device = DeviceChoice::ref;
      else
        line.error = "--device needs hal or ref";
    } else {
      line.error = "there is no option " + argument;
    }
  }
  line.whole = '"' + (arguments.empty() ? std::string() : arguments.front()) + "\" " + line.model;
  return line;
}

std::string commandLineHelp() {
  return "Usage: vxmviewer [--device hal|ref] [MODEL]\n"
         "Shows a model of a game engine: VXM, OBJECT, MSH, MODEL, MESH, DS2MD or DDS.\n"
         "\n"
         "  --device hal|ref  draw with the graphics card, or in software, without being asked\n"
         "  --help            print this and exit\n"
         "  --version         print the version and exit\n"
         "\n"
         "Textures are looked for under the base paths of VXMViewer.cfg: beside the model that is\n"
         "named with its folder (without one, beside the program), else in the current directory;\n"
         "without that file under gamedata/textures/.\n"
         "Inside, Help > Keyboard and mouse lists the keys.\n";
}

}  // namespace facet
