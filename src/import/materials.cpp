#include "import/materials.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <unordered_map>

#include "device/texture.h"
#include "platform/byte_source.h"

namespace facet {

namespace {

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

constexpr std::string_view textureExtensions[] = {".dds", ".tga", ".png", ".bmp"};

/// What the textures of one load are made with.
struct TextureLoad {
  IDirect3DDevice9* device;
  uint32_t maxTextureWidth;  // bounds both dimensions
  const BasePaths& basePaths;
  FileFinder& files;
};

TextureLoad beginTextures(const Model& model, const BasePaths& basePaths, FileFinder& files) {
  D3DCAPS9 caps;
  caps.MaxTextureWidth = UINT32_MAX;
  if (model.device != nullptr) model.device->GetDeviceCaps(&caps);
  return {model.device, std::max(caps.MaxTextureWidth, 1u), basePaths, files};
}

/// Finds and loads the texture that the material names; without a device the picture is only tried. A picture
/// too large for the device is halved until it fits; `levels` of 0 means as many as the file has.
void loadTexture(Material& material, const TextureLoad& load, uint32_t levels) {
  const auto file = resolveTextureFile(material.textureName, load.basePaths, load.files);
  if (!file) return;
  const ImageResult result = loadImage(*file);
  if (!result.image) return;
  if (load.device != nullptr) {
    const D3DXIMAGE_INFO& info = result.image->info;
    uint32_t width = info.Width, height = info.Height;
    while (width > load.maxTextureWidth || height > load.maxTextureWidth) {
      width = std::max(width >> 1, 1u);
      height = std::max(height >> 1, 1u);
    }
    material.texture =
        createTexture(*load.device, *result.image, width, height, levels == 0 ? info.MipLevels : levels);
    if (material.texture == nullptr) return;
  }
  material.hasTexture = 1;
  material.textureFile = file->generic_string();
}

/// A random colour between 129 and 192 in each channel; green is drawn first, then red, then blue.
template <class Random>
std::array<float, 4> randomColor(Random& random) {
  constexpr float perByte = 0.003921569f;
  const auto draw = [&] { return static_cast<float>(192 - static_cast<int>(random() % 64)) * perByte; };
  const float green = draw();
  const float red = draw();
  const float blue = draw();
  return {red, green, blue, 1.0f};
}

template <class Random>
void drawColorsFrom(Model& model, Random& random) {
  for (uint32_t i = 0; i + skyMaterialCount < model.materialCount; ++i)
    model.materials[i].color = randomColor(random);
}

void appendSkyMaterials(Model& model, const TextureLoad& load) {
  for (uint32_t n = 0; n < skyMaterialCount; ++n) {
    Material& material = growArray(model.materials, model.materialCount);
    material.textureName = "sky\\sky" + std::to_string(n);
    material.shaderName = "default";
    loadTexture(material, load, 1);
    ++model.materialCount;
  }
}

}  // namespace

std::optional<std::filesystem::path> resolveTextureFile(std::string_view textureName,
                                                        const BasePaths& basePaths, FileFinder& files) {
  if (contains(textureName, "prop_fake") || contains(textureName, "_fuflo")) return {};
  static const BasePaths noPrefix = {""};
  for (const std::string& base : basePaths.empty() ? noPrefix : basePaths) {
    for (const std::string_view extension : textureExtensions) {
      const bool dropBase = isRooted(textureName) && extension == ".dds";
      std::string candidate = dropBase ? std::string() : base;
      candidate += textureName;
      candidate += extension;
      if (auto file = files.find(candidate); file && openFile(*file)) return file;
    }
  }
  return {};
}

uint8_t classifyMaterial(std::string_view textureName, std::string_view shaderName) {
  const auto shaderHas = [&](std::string_view part) { return contains(shaderName, part); };
  if (shaderHas("selflightl")) return renderAlphaTest;
  uint8_t flags = 0;
  if (!shaderHas("default") && !shaderHas("def_vertex") && !contains(textureName, "terrain") &&
      shaderName != "models\\model" && shaderName != "model")
    flags |= renderAlphaTest;
  if (shaderHas("trans") || shaderHas("wallmark") || shaderHas("window") || shaderHas("weapons"))
    flags |= renderBlend;
  if (shaderHas("lightplanes") || shaderHas("water")) flags |= renderLightPlane;
  if (shaderHas("selflight") || shaderHas("pautina")) flags |= renderSelfLight;
  if (shaderHas("light")) flags |= renderNeedsLight;
  return flags;
}

void loadMaterials(Model& model, const BasePaths& basePaths, FileFinder& files) {
  const TextureLoad load = beginTextures(model, basePaths, files);
  std::unordered_map<std::string_view, uint32_t> firstOfName;
  for (uint32_t i = 0; i < model.materialCount; ++i) {
    Material& material = model.materials[i];
    statusPrint("Loading material #%u of %u '%s' '%s'", i + 1, model.materialCount,
                material.shaderName.c_str(), material.textureName.c_str());
    const auto [first, isNew] = firstOfName.try_emplace(material.textureName, i);
    if (isNew) {
      loadTexture(material, load, 0);
    } else {
      const Material& earlier = model.materials[first->second];
      material.hasTexture = earlier.hasTexture;
      material.texture = earlier.texture;
      material.textureFile = earlier.textureFile;
    }
    if (material.hasTexture != 0)
      material.renderFlags = classifyMaterial(material.textureName, material.shaderName);
  }
  appendSkyMaterials(model, load);
  drawColorsFrom(model, std::rand);
}

void drawColors(Model& model, uint32_t seed) {
  std::mt19937 random(seed);
  drawColorsFrom(model, random);
}

}  // namespace facet
