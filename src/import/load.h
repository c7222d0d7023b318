#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "import/texture_search.h"
#include "model/model.h"
#include "platform/files.h"
#include "platform/progress.h"

namespace facet {

/// What a reader may know besides the open file.
struct LoadContext {
  const std::string& path;  ///< as it was given to the load
  FileFinder& files;
  Progress* progress = nullptr;  ///< told how far the reading of listed files has come, or none
};

/// A model, or none and the reason: one line without the path.
struct LoadResult {
  std::unique_ptr<Model> model;
  std::string error;
  bool cancelled = false;  ///< by the user, and not for a fault of the file
};

/// How much of a load's progress is reading; the textures are the rest.
inline constexpr float readingShare = 0.5f;

/// What a load does besides reading the model.
struct LoadOptions {
  LoadOptions(IDirect3DDevice9* drawnOn = nullptr) : device(drawnOn) {}

  IDirect3DDevice9* device;                 ///< makes buffers and textures; none: they are left out
  std::shared_ptr<ImageCache> images;       ///< decodes the textures' files; a load of its own without one
  std::shared_ptr<TextureSearch> textures;  ///< likewise for the search, which also looks near the model
  /// False: a texture whose file is there counts as found, and none is made. For those who look at no
  /// texture: decoding takes many times as long as reading a model.
  bool decodesTextures = true;
  bool preloadsTextures = false;  ///< for a first frame that shows them: it need not make them ready
  Progress* progress = nullptr;   ///< none: nobody looks on
};

/// Opens a model file, recognises its format by its first eight bytes, reads it, finishes it and runs the
/// material pass. Progress goes to the status line. Without a device the model gets no buffers and no texture
/// objects, but everything else, hasTexture included.
LoadResult loadModel(const std::string& path, const BasePaths& basePaths, const LoadOptions& options = {});

/// One kind of file that the program opens, as file dialogs, folders and desktops know it.
struct ModelFileType {
  std::string_view description;  ///< "Orion engine v1 mesh (*.MSH)"
  std::string_view pattern;      ///< "*.msh"; several divided by semicolons
};

/// In the order of the Open dialog; pictures, which are opened as models of their own, come last.
std::span<const ModelFileType> modelFileTypes();

/// The patterns of all of them, and the extensions in the same order, each with its dot.
inline constexpr std::string_view allModelPatterns = "*.object;*.vxm;*.msh;*.model;*.mesh;*.ds2md;*.dds";

/// What a model type is called: "Vantor VXM, version 4".
std::string_view modelTypeName(uint32_t modelType);

/// True when the name ends in one of the extensions of models, whatever its letter case. Pictures do not
/// count: in a folder they are the models' textures.
bool hasModelExtension(std::string_view path);

/// The flags of a material that has a texture, from its two names.
uint8_t classifyMaterial(std::string_view textureName, std::string_view shaderName);

/// The last step of a load: finds, loads and shares the textures, classifies the materials, appends the six
/// sky materials, draws the display colours and lists what is missing. A texture that the device refuses
/// counts as missing; without a device one whose file holds no picture, unless nothing is decoded. Of the
/// options, those about textures, the search aside, and the progress count.
void loadMaterials(Model& model, const BasePaths& basePaths, TextureSearch& textures,
                   const std::filesystem::path& modelFolder, const LoadOptions& options = {});

/// Gives each of a loaded model's own materials another display colour: the same for the same seed,
/// everywhere.
void drawColors(Model& model, uint32_t seed);

}  // namespace facet
