#pragma once

#include <optional>

#include "platform/desktop.h"

class QWidget;

namespace facet {

/// Asks for a file to open, or to save. A name without extension gets the default one when there is no file
/// of that name to open; while saving, that of the chosen type where the type has just one.
std::optional<FileDialogResult> runFileDialog(const FileDialogRequest& request, bool save, QWidget* parent);

}  // namespace facet
