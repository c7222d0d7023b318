#include "export/modern.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <stdexcept>

#include "export/modern_pictures.h"
#include "export/modern_scene.h"
#include "platform/files.h"
#include "platform/text.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

constexpr std::array<ModernFormat, 5> formats{{
    {.name = "obj",
     .description = "Wavefront OBJ with material library and textures (*.obj)",
     .companion = "mtl",
     .up = UpAxis::y,
     .takesPictures = true,
     .embedsPictures = false,
     .write = writeModernObj,
     .snapsModel = true},
    {.name = "glb",
     .description = "glTF binary with textures inside (*.glb)",
     .companion = {},
     .up = UpAxis::y,
     .takesPictures = true,
     .embedsPictures = true,
     .write = writeModernGlb,
     .pngOnly = true},
    {.name = "gltf",
     .description = "glTF with buffer and textures beside it (*.gltf)",
     .companion = "bin",
     .up = UpAxis::y,
     .takesPictures = true,
     .embedsPictures = false,
     .write = writeModernGltf,
     .pngOnly = true},
    {.name = "dae",
     .description = "COLLADA with textures (*.dae)",
     .companion = {},
     .up = UpAxis::y,
     .takesPictures = true,
     .embedsPictures = false,
     .write = writeModernDae},
    {.name = "stl",
     .description = "Stereolithography, binary (*.stl)",
     .companion = {},
     .up = UpAxis::z,
     .takesPictures = false,
     .embedsPictures = false,
     .write = writeModernStl},
}};

}  // namespace

std::span<const ModernFormat> modernFormats() {
  return formats;
}

const ModernFormat* findModernFormat(std::string_view name) {
  const auto found = std::ranges::find(formats, lowerCase(name), &ModernFormat::name);
  return found == formats.end() ? nullptr : &*found;
}

fs::path companionPath(const ModernFormat& format, const fs::path& path) {
  if (format.companion.empty()) return {};
  const std::string extension = '.' + std::string(format.companion);
  fs::path companion = path;
  if (lowerExtension(path.string()) == extension) return companion += extension;  // "model.mtl", an OBJ
  return companion.replace_extension(extension);
}

std::string percentEncoded(std::string_view path) {
  constexpr std::string_view plain = "-._~/";
  constexpr char digits[] = "0123456789ABCDEF";
  std::string uri;
  for (const char c : path) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    const auto byte = static_cast<uint8_t>(c);
    if (letter || plain.find(c) != std::string_view::npos)
      uri += c;
    else
      uri += {'%', digits[byte >> 4], digits[byte & 15]};
  }
  return uri;
}

// Looks.

namespace {

/// The last part of a texture's name as UTF-8, without what OBJ and XML cannot hold in a name.
std::string lookName(std::string_view textureName) {
  std::string name(fileName(textureName));
  for (char& c : name) {
    const auto byte = static_cast<uint8_t>(c);
    if (byte <= ' ' || c == '#' || (byte >= 0x7F && byte <= 0xA0)) c = '_';  // 0xA0 is a blank, too
  }
  return name.empty() ? "material" : utf8FromBytes(name);
}

/// Makes the name differ from all of `taken` in any letter case.
std::string uniqueName(const std::string& name, std::set<std::string>& taken) {
  std::string unique = name;
  for (size_t number = 2; !taken.insert(lowerCase(unique)).second; ++number)
    unique = name + '_' + std::to_string(number);
  return unique;
}

bool hasPicture(const Material& material) {
  return material.hasTexture != 0 && !material.textureFile.empty();
}

/// The look, but for its name and picture.
Look lookOf(const Material& material, TexturesOut textures) {
  constexpr uint8_t blending = renderBlend | renderLightPlane;
  const uint8_t flags = material.renderFlags;
  Look look;
  if (!hasPicture(material) || textures != TexturesOut::none) look.color = material.color;
  if ((flags & blending) != 0)
    look.alpha = Look::blend;
  else if ((flags & renderAlphaTest) != 0)
    look.alpha = Look::test;
  look.cutoff = flags == renderAlphaTest ? 128 / 255.0 : 1 / 255.0;  // the test is "above 0"
  look.twoSided = (flags & (blending | renderAlphaTest)) != 0;
  look.unlit = (flags & renderLightPlane) != 0;
  return look;
}

std::vector<Look> looksOf(const Model& model, TexturesOut textures) {
  std::vector<Look> looks;
  std::set<std::string> names;
  for (const Material& material : ownMaterials(model)) {
    looks.push_back(lookOf(material, textures));
    looks.back().name = uniqueName(lookName(material.textureName), names);
  }
  const auto hasNone = [&](const Mesh& mesh) { return mesh.materialIndex >= looks.size(); };
  if (std::ranges::any_of(model.meshes, hasNone)) looks.emplace_back().name = uniqueName("material", names);
  return looks;
}

PictureKind pictureKind(const ModernFormat& format, const Material& material, TexturesOut textures) {
  // A PNG file is copied in either way; as one picture it gets one name.
  const bool isPng = lowerExtension(material.textureFile) == ".png";
  if (textures == TexturesOut::copy && !format.pngOnly) return isPng ? PictureKind::png : PictureKind::copy;
  if ((material.renderFlags & renderLightPlane) == 0) return PictureKind::png;
  return (material.renderFlags & renderBlend) == 0 ? PictureKind::lightPlane : PictureKind::selfLight;
}

/// The pictures that the looks show, each once; the looks get their numbers among these.
std::vector<PictureKey> choosePictures(const ModernFormat& format, TexturesOut textures, ModernScene& scene) {
  std::vector<PictureKey> keys;
  if (!format.takesPictures || textures == TexturesOut::none) return keys;
  std::map<PictureKey, uint32_t> numbers;
  const auto materials = ownMaterials(scene.model);
  for (size_t i = 0; i < materials.size(); ++i) {
    if (!hasPicture(materials[i])) continue;
    const PictureKey key{materials[i].textureFile, pictureKind(format, materials[i], textures)};
    const auto [place, isNew] = numbers.try_emplace(key, static_cast<uint32_t>(keys.size()));
    if (isNew) keys.push_back(key);
    scene.looks[i].picture = place->second;
  }
  return keys;
}

/// Puts the pictures into the scene, to be shown as they are; looks of those that could not be read keep
/// their colour.
void addPictures(ScenePictures pictures, ModernScene& scene) {
  std::vector<std::optional<uint32_t>> numbers(pictures.size());
  for (size_t i = 0; i < pictures.size(); ++i) {
    if (!pictures[i]) continue;
    numbers[i] = static_cast<uint32_t>(scene.pictures.size());
    scene.pictures.push_back(std::move(*pictures[i]));
  }
  for (Look& look : scene.looks) {
    if (look.picture) look.picture = numbers[*look.picture];
    const ScenePicture* picture = scene.pictureOf(look);
    if (picture == nullptr) continue;
    look.color = {1, 1, 1, 1};
    if (look.unlit && picture->opaque) look.alpha = Look::opaque;
  }
}

ModernScene sceneOf(const ModernFormat& format, Model& model, const ModernOptions& options) {
  return {.model = model,
          .companion = {},
          .up = options.up.value_or(format.up),
          .looks = looksOf(model, options.textures),
          .pictures = {}};
}

// Writing.

/// The store's folder as an output at `path` names it.
std::string folderFrom(const fs::path& path, const fs::path& folder) {
  const fs::path to = fs::weakly_canonical(fs::absolute(folder));
  const fs::path from = fs::weakly_canonical(fs::absolute(path).parent_path());
  const fs::path relative = to.lexically_relative(from);
  if (relative == ".") return {};
  return (relative.empty() ? to : relative).generic_string() + '/';
}

/// The second file of an output. A new one is removed again unless it is kept.
class Companion {
 public:
  explicit Companion(fs::path path) : path_(std::move(path)), isNew_(!fs::exists(path_)), file_(path_) {}
  ~Companion() {
    std::error_code ignored;
    if (committed_ && isNew_ && !kept_) fs::remove(path_, ignored);
  }
  Companion(const Companion&) = delete;
  Companion& operator=(const Companion&) = delete;

  OutputFile& file() { return file_; }
  void commit(ModernResult& result) {
    if (file_.bytesWritten() == 0) return;  // nothing names an empty one
    if (!file_.commit()) throw std::runtime_error(fileNameText() + ": " + file_.error());
    committed_ = true;
    result.bytes += file_.bytesWritten();
    result.files.push_back(path_.string());
  }
  void keep() { kept_ = true; }
  std::string fileNameText() const { return path_.filename().string(); }

 private:
  const fs::path path_;
  const bool isNew_;
  OutputFile file_;
  bool committed_ = false, kept_ = false;
};

void needNoError(const OutputFile& file, const std::string& name = {}) {
  if (!file.error().empty()) throw std::runtime_error((name.empty() ? "" : name + ": ") + file.error());
}

/// All files are written before the first is moved to its place; what is not kept at the end is removed.
void writeFiles(const ModernFormat& format, const std::string& path, Model& model,
                const ModernOptions& options, PictureStore& store, ModernResult& result) {
  OutputFile file(path);
  needNoError(file);
  std::optional<Companion> companion;
  if (!format.companion.empty()) {
    companion.emplace(companionPath(format, path));
    needNoError(companion->file(), companion->fileNameText());
  }

  ModernScene scene = sceneOf(format, model, options);
  const std::vector<PictureKey> keys = choosePictures(format, options.textures, scene);
  StoredPictures stored(store, folderFrom(path, store.folder()));
  EmbeddedPictures embedded;
  addPictures(
      format.embedsPictures ? embedded.make(keys, result.warnings) : stored.make(keys, result.warnings),
      scene);
  scene.embedded = embedded.file();
  OutputString none;
  if (companion) scene.companion = companion->fileNameText();
  format.write(scene, file, companion ? static_cast<Output&>(companion->file()) : none);

  file.close();
  needNoError(file);
  if (companion) {
    companion->file().close();
    needNoError(companion->file(), companion->fileNameText());
  }
  stored.commit(result);
  if (companion) companion->commit(result);
  file.commit();
  needNoError(file);
  stored.keep();
  if (companion) companion->keep();
  result.bytes += file.bytesWritten();
  result.files.push_back(path);
}

/// Runs the work; what it throws becomes the error, and nothing stands then.
template <class Work>
ModernResult resultOf(Work work) {
  ModernResult result;
  try {
    work(result);
    return result;
  } catch (const std::bad_alloc&) {
    result.error = "out of memory";
  } catch (const std::exception& error) {
    result.error = error.what();
  }
  result.bytes = 0;
  result.files.clear();
  return result;
}

}  // namespace

ModernResult exportModern(const ModernFormat& format, const std::string& path, Model& model,
                          const ModernOptions& options, PictureStore& store) {
  return resultOf([&](ModernResult& result) { writeFiles(format, path, model, options, store, result); });
}

bool isOneFile(const ModernFormat& format, const ModernOptions& options) {
  const bool takesFiles = format.takesPictures && options.textures != TexturesOut::none;
  return format.companion.empty() && (format.embedsPictures || !takesFiles);
}

ModernResult exportModern(const ModernFormat& format, std::string_view, Model& model,
                          const ModernOptions& options, Output& out) {
  return resultOf([&](ModernResult& result) {
    if (!isOneFile(format, options))
      throw std::runtime_error(std::string(format.name) + " is more than one file");
    ModernScene scene = sceneOf(format, model, options);
    EmbeddedPictures embedded;
    addPictures(embedded.make(choosePictures(format, options.textures, scene), result.warnings), scene);
    scene.embedded = embedded.file();
    OutputString none;
    format.write(scene, out, none);
    if (!out.error().empty()) throw std::runtime_error(out.error());
    result.bytes = out.bytesWritten();
  });
}

void scaleModel(Model& model, float factor) {
  const auto scale = [&](Vector3& v) { v = {v.x * factor, v.y * factor, v.z * factor}; };
  for (Mesh& mesh : model.meshes) {
    for (Vertex& v : std::span(mesh.vertices.get(), mesh.vertexCount)) {
      v.x *= factor;
      v.y *= factor;
      v.z *= factor;
    }
    for (Vector3* v : {&mesh.boundsMin, &mesh.boundsMax, &mesh.center}) scale(*v);
    mesh.radius *= factor;
  }
  scale(model.center);
}

}  // namespace facet
