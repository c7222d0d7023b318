#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "model/model.h"

namespace facet {

/// Pictures as PNG files in memory, and which of them each material shows.
struct EmbeddedImages {
  std::vector<std::vector<std::byte>> files;
  std::vector<std::optional<uint32_t>> ofMaterial;  ///< none where a material's texture cannot be read
};

/// Reads the textures' files, each once and on all cores. A PNG file stands as it is; of other pictures the
/// first level is encoded.
EmbeddedImages embedImages(std::span<const Material> materials);

}  // namespace facet
