#pragma once

#include <filesystem>

namespace facet::sample {

/// Writes the sample scene into a folder, which is made when it is missing. Both throw std::runtime_error
/// naming the file that could not be written.

/// The scene in every input format, and the configuration file that names its texture folders.
void writeSampleModels(const std::filesystem::path& folder);

/// The textures and sky maps, under gamedata/textures.
void writeSampleTextures(const std::filesystem::path& folder);

}  // namespace facet::sample
