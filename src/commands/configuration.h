#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "import/load.h"

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

}  // namespace facet
