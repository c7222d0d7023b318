#pragma once

#include <string>
#include <vector>

namespace facet {

struct Shortcut {
  std::string keys;    ///< "Up Arrow, W"
  std::string effect;  ///< "Move Forward"
};

/// What every key and the mouse do, in the order of the menus, for people to read.
std::vector<Shortcut> shortcutSheet();

}  // namespace facet
