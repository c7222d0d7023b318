#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "import/load.h"

namespace facet {

/// The file that a texture name means: under each base path in turn ".dds", ".tga", ".png", ".bmp"; a name
/// with a drive letter or a leading separator drops the base path for its ".dds" candidate. Names that
/// contain "prop_fake" or "_fuflo" are never looked for. An empty list counts as one empty prefix. The first
/// file that opens for reading is the answer.
std::optional<std::filesystem::path> resolveTextureFile(std::string_view textureName,
                                                        const BasePaths& basePaths, FileFinder& files);

/// The flags of a material that has a texture, from its two names.
uint8_t classifyMaterial(std::string_view textureName, std::string_view shaderName);

/// The last step of a load: finds, loads and shares the textures, classifies the materials, appends the six
/// sky materials and draws the display colours. A texture that the device refuses counts as missing; without
/// a device one whose file holds no picture, unless nothing is decoded.
void loadMaterials(Model& model, const BasePaths& basePaths, FoundTextures& textures, bool decodes = true);

/// Gives each of a loaded model's own materials another display colour: the same for the same seed,
/// everywhere.
void drawColors(Model& model, uint32_t seed);

}  // namespace facet
