#include "import/load.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <unordered_map>

#include "device/direct3d.h"
#include "platform/files.h"

namespace facet {

namespace {

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

/// What the textures of one load are made with.
struct TextureLoad {
  IDirect3DDevice9* device;
  ImageCache* images;        // none: a file that is there is enough
  uint32_t maxTextureWidth;  // bounds both dimensions
  const BasePaths& basePaths;
  const std::filesystem::path& modelFolder;
  TextureSearch& textures;
};

/// The picture as a texture, halved until it fits the device.
std::shared_ptr<IDirect3DTexture9> textureOf(const Image& image, const TextureLoad& load, uint32_t levels) {
  uint32_t width = image.info.Width, height = image.info.Height;
  while (width > load.maxTextureWidth || height > load.maxTextureWidth) {
    width = std::max(width >> 1, 1u);
    height = std::max(height >> 1, 1u);
  }
  return createTexture(*load.device, image, width, height, levels == 0 ? image.info.MipLevels : levels);
}

/// Finds the texture that the material names, and loads it where there is a device and pictures are decoded;
/// without a device the picture is only tried. `levels` of 0 means as many as the file has. The reason where
/// there is none, or an empty text.
std::string loadTexture(Material& material, const TextureLoad& load, uint32_t levels) {
  const auto file = load.textures.find(material.textureName, load.basePaths, load.modelFolder);
  if (!file) return "not found";
  const std::string path = file->generic_string();
  if (load.device != nullptr && load.images != nullptr) {
    const ImageResult result = load.images->image(path);
    if (!result.image) return path + ": " + result.error;
    material.texture = textureOf(*result.image, load, levels);
    if (!material.texture) return path + ": the graphics device does not take it";
  } else if (load.images != nullptr) {
    if (const std::string reason = load.images->whyNoPicture(path); !reason.empty())
      return path + ": " + reason;
  }
  material.hasTexture = 1;
  material.textureFile = path;
  return {};
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

void loadMaterials(Model& model, const BasePaths& basePaths, TextureSearch& textures,
                   const std::filesystem::path& modelFolder, const LoadOptions& options) {
  D3DCAPS9 caps;
  caps.MaxTextureWidth = UINT32_MAX;
  if (model.device != nullptr) model.device->GetDeviceCaps(&caps);
  ImageCache ownImages(0);
  ImageCache* images = model.images ? model.images.get() : &ownImages;
  if (!options.decodesTextures) images = nullptr;
  const TextureLoad load{model.device, images,      std::max(caps.MaxTextureWidth, 1u),
                         basePaths,    modelFolder, textures};
  std::unordered_map<std::string_view, uint32_t> firstOfName;
  for (uint32_t i = 0; i < model.materialCount; ++i) {
    Material& material = model.materials[i];
    const float share = static_cast<float>(i) / static_cast<float>(model.materialCount);
    if (options.progress != nullptr) options.progress->reach(readingShare + (1 - readingShare) * share);
    statusPrint("Loading material #%u of %u '%s' '%s'", i + 1, model.materialCount,
                material.shaderName.c_str(), material.textureName.c_str());
    const auto [first, isNew] = firstOfName.try_emplace(material.textureName, i);
    if (isNew) {
      const std::string whyNot = loadTexture(material, load, 0);
      if (material.texture && options.preloadsTextures) material.texture->PreLoad();
      if (!whyNot.empty() && !material.textureName.empty())
        model.missingTextures.push_back({material.textureName, whyNot});
    } else {
      const Material& earlier = model.materials[first->second];
      material.hasTexture = earlier.hasTexture;
      material.texture = earlier.texture;
      material.textureFile = earlier.textureFile;
    }
    model.texturesNamed += material.textureName.empty() ? 0 : 1;
    model.texturesFound += material.textureName.empty() ? 0 : material.hasTexture;
    if (material.hasTexture != 0)
      material.renderFlags = classifyMaterial(material.textureName, material.shaderName);
  }
  if (!model.missingTextures.empty()) model.texturePlaces = textures.places(basePaths, modelFolder);
  appendSkyMaterials(model, load);
  drawColorsFrom(model, std::rand);
}

void drawColors(Model& model, uint32_t seed) {
  std::mt19937 random(seed);
  drawColorsFrom(model, random);
}

}  // namespace facet
