#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands/commands.h"
#include "import/load.h"

// The files that the window works with: its configuration, and the models that it opens, steps through and
// saves. Opening closes the model before, loads, sets the window's title and draws. A file that does not load
// leaves the view empty and tells its reason on the status line.

namespace facet {

inline constexpr std::string_view configurationName = "VXMViewer.cfg";

/// How many bytes of a configuration file count.
inline constexpr size_t configurationLimit = 260;

/// What is searched when there is no configuration file: "gamedata\textures\" under the current directory.
BasePaths defaultBasePaths();

/// Base paths from the bytes of a configuration file: texts separated by single NULs, closed by an empty one
/// or by the end. Bytes are taken as they are; a line end would become part of a path.
BasePaths parseConfiguration(std::string_view bytes);

/// The base paths of a configuration file, none when it cannot be opened.
std::optional<BasePaths> readConfigurationFile(const std::string& path);

/// Where the window looks for its configuration file, in this order: beside the last separator of the command
/// line (the quoted program path, a blank, the arguments), whatever that separates, then in the current
/// directory.
std::vector<std::string> configurationPlaces(std::string_view commandLine);

/// The configuration of the window: that of the first place whose file opens; without one, a warning box and
/// the default.
BasePaths readConfiguration(std::string_view commandLine);

/// Opens the file that the command line names, on the first call; otherwise the one chosen in the dialog. The
/// file is loaded while its folder, chosen in the dialog, is the current directory, which is the same as
/// before afterwards. A cancelled dialog changes nothing.
void openModelFile(Viewer& viewer);

/// Opens a file, or the first model file of a folder, that a person pointed at. The folder becomes the one
/// that the next dialog opens in, and is the current directory while the model loads, for relative base
/// paths. `path` is absolute.
void openPath(Viewer& viewer, const std::string& path);

/// Loads the model file at this place among those of the current model's folder, in the order of their names
/// (letter case ignored); any place outside, -1 too, means the last. Where a file does not load, the next
/// ones are tried and then, backwards, the ones before, each once. The view's fileIndex tells the place of
/// the one loaded. A folder without model files changes nothing.
void browseModelFile(Viewer& viewer, int32_t target);

/// Asks where to and writes the model in the format of the chosen file type, whatever extension was typed.
/// The current directory is the same afterwards. Without a model, does nothing.
void saveModelFile(Viewer& viewer);

}  // namespace facet
