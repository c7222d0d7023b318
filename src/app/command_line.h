#pragma once

#include <optional>
#include <string>
#include <vector>

namespace facet {

/// Answers the question for a software renderer beforehand.
enum class DeviceChoice { hal, ref };

/// What the program was called with.
struct CommandLine {
  std::optional<DeviceChoice> device;
  std::string model;                  ///< the arguments that are no options, blanks between them; often empty
  std::string whole;                  ///< the quoted program path, a blank, `model`
  std::vector<std::string> textures;  ///< base paths that stand for those of the configuration file
  bool searchNear = true;             ///< also look for textures near the model

  /// Set where the program has only this to say (help, its version, wrong usage) and ends.
  std::optional<int> exitStatus;
  std::string answer;  ///< for standard output, or for standard error where the status is not 0
};

/// The program's own path: as it was called, or where it lies when it was called by its name alone.
std::string programPath(const std::string& called);

/// `arguments` begins with the program's own path.
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

}  // namespace facet
