#include "export/modern.h"

#include <algorithm>
#include <array>

#include "platform/text.h"

namespace facet {

namespace {

constexpr std::array<ModernFormat, 5> formats{{
    {"glb", "glTF binary with textures inside (*.glb)", "", UpAxis::y, true, true, writeModernGlb},
    {"gltf", "glTF with buffer and textures beside it (*.gltf)", "bin", UpAxis::y, true, false,
     writeModernGltf},
    {"dae", "COLLADA with textures (*.dae)", "", UpAxis::y, true, false, writeModernDae},
    {"stl", "Stereolithography, binary (*.stl)", "", UpAxis::z, false, false, writeModernStl},
    {"obj", "Wavefront OBJ with material library and textures (*.obj)", "mtl", UpAxis::y, true, false,
     writeModernObj, true},
}};

}  // namespace

std::span<const ModernFormat> modernFormats() {
  return formats;
}

const ModernFormat* findModernFormat(std::string_view name) {
  const auto found = std::ranges::find(formats, lowerCase(name), &ModernFormat::name);
  return found == formats.end() ? nullptr : &*found;
}

}  // namespace facet
