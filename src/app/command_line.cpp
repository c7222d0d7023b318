#include "app/command_line.h"

#include <filesystem>
#include <optional>

namespace facet {

namespace {

std::optional<DeviceChoice> deviceChoice(const std::string& name) {
  if (name == "hal") return DeviceChoice::hal;
  if (name == "ref") return DeviceChoice::ref;
  return {};
}

void setDevice(CommandLine& line, const std::string& name) {
  line.device = deviceChoice(name);
  if (!line.device) line.error = "--device needs hal or ref";
}

}  // namespace

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
    } else if (argument == "--device") {
      setDevice(line, ++i < arguments.size() ? arguments[i] : "");
    } else if (argument.starts_with("--device=")) {
      setDevice(line, argument.substr(std::string("--device=").size()));
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
