#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "model/model.h"

namespace facet {

/// Pictures as PNG files in memory, and which of them each material shows.
struct EmbeddedImages {
  std::vector<std::shared_ptr<const std::vector<std::byte>>> files;
  std::vector<std::optional<uint32_t>> ofMaterial;  ///< none where a material's texture cannot be read
};

/// Reads the files of the model's textures, each once and on all cores. A PNG file stands as it is; of other
/// pictures the first level is encoded.
EmbeddedImages embedImages(const Model& model);

}  // namespace facet
