#pragma once

#include <cstdint>
#include <string>

#include "commands/viewer.h"

// Ways to a model: the open dialog, the command line, dropping, and stepping through a folder. Each closes
// the model before, loads, sets the window's title and draws. A file that does not load leaves the view empty
// and tells its reason on the status line.

namespace facet {

/// Opens the file that the command line names, on the first call; otherwise the one chosen in the dialog. The
/// file is loaded while its folder, chosen in the dialog, is the current directory, which is the same as
/// before afterwards. A cancelled dialog changes nothing.
void openModelFile(Viewer& viewer);

/// Opens a file, or the first model file of a folder, that a person pointed at. The folder becomes the one that
/// the next dialog opens in, and is the current directory while the model loads, for relative base paths.
/// `path` is absolute.
void openPath(Viewer& viewer, const std::string& path);

/// Loads the model file at this place among those of the current model's folder, in the order of their names
/// (letter case ignored); any place outside, -1 too, means the last. Where a file does not load, the next
/// ones are tried and then, backwards, the ones before, each once. The view's fileIndex tells the place of
/// the one loaded. A folder without model files changes nothing.
void browseModelFile(Viewer& viewer, int32_t target);

}  // namespace facet
