#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tool/terminal_desktop.h"

namespace facet {

/// The words of the command line; empty texts were not given.
struct RenderOptions {
  std::vector<std::string> models;  ///< files, and folders with `recursive`
  std::string output;               ///< -o: a PNG file, or "-" for standard output
  std::string folder;               ///< --out: where the pictures of several models go
  bool recursive = false;
  bool quiet = false;
  unsigned jobs = 0;  ///< models at a time, 0 for one per core
  std::string size = "1280x720";
  std::string mode, light, aspect, device = "ref";
  bool environment = false;
  float time = 12;
  unsigned filter = 5, background = 2;
  std::vector<float> eye;  ///< three numbers, or none
  std::optional<float> pitch, yaw, fov;
  bool noDistanceCut = false;
  unsigned turntable = 0;  ///< pictures around each model, 0 for a single one
  bool overlay = false;
  unsigned seed = 0;
  std::vector<std::string> textures;
};

/// `facetbench render`: draws each model into a PNG. `desktop` is the current one; it answers the device
/// search.
int runRender(const RenderOptions& options, TerminalDesktop& desktop);

}  // namespace facet
