#pragma once

#include <string>

#include "render/view.h"

namespace facet {

/// A view and what its commands remember from one to the next. Whoever hosts the view owns this record, and
/// has set the view's device up before the first command.
struct Viewer {
  ModelView view;
  std::string commandLine;        ///< the program's arguments as one text: the model to open first, or empty
  bool commandLineUsed = false;   ///< the first openModelFile has been
  std::string lastOpenDirectory;  ///< of the last file or folder that was opened or dropped
  std::string lastSaveDirectory;  ///< of the last accepted save dialog
  bool fullscreenMode = false;
};

}  // namespace facet
