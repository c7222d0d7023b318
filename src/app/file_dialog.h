#pragma once

#include <optional>

#include "platform/desktop.h"

class QWidget;

namespace facet {

/// Asks for a file to open, or to save. While saving, a name without extension gets that of the chosen type
/// where the type has just one, else the default one; an existing file is asked about.
std::optional<FileDialogResult> runFileDialog(const FileDialogRequest& request, bool save, QWidget* parent);

}  // namespace facet
