#pragma once

#include <optional>
#include <string>

namespace facet {

/// Loads a dynamic library by its name, for the life of the process, and looks up one of its exports. None
/// when the library cannot be loaded; a null address when it has no such export.
std::optional<void*> loadLibraryEntry(const std::string& library, const std::string& entry);

}  // namespace facet
