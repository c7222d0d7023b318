#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "model/model.h"
#include "platform/output.h"

// The formats as other programs read them best: right-handed, with names in UTF-8, and with their pictures in
// files that exist. The formats of export.h keep to fixed bytes; these need not.

namespace facet {

/// The axis that points up in a file.
enum class UpAxis : uint8_t { y, z };

/// What becomes of the model's pictures.
enum class TexturesOut : uint8_t {
  png,   ///< a PNG file of each
  copy,  ///< the files as they are, where the format can hold them
  none   ///< nothing, and no file names one
};

struct ModernOptions {
  std::optional<UpAxis> up;  ///< none: the format's own
  TexturesOut textures = TexturesOut::png;
};

struct ModernScene;

/// Writes a scene; `companion` gets the second file of a format that has one.
using WriteModern = void(const ModernScene& scene, Output& out, Output& companion);

/// One modern format: a row of the tool's --to and of the Export dialog.
struct ModernFormat {
  std::string_view name;         ///< "obj": what the tool calls it, also the extension without its dot
  std::string_view description;  ///< "Wavefront OBJ with material library and textures (*.obj)"
  std::string_view companion;    ///< extension of its second file, empty where it has none
  UpAxis up;
  bool takesPictures, embedsPictures;
  WriteModern* write;       ///< throws std::exception where a model cannot be written after all
  bool snapsModel = false;  ///< the model's values stay snapped to six decimals
  bool pngOnly = false;     ///< pictures of other kinds are no part of the format
};

std::span<const ModernFormat> modernFormats();

/// The format of this name in any letter case, or none.
const ModernFormat* findModernFormat(std::string_view name);

/// Where the second file of `path` stands; empty for a format without one.
std::filesystem::path companionPath(const ModernFormat& format, const std::filesystem::path& path);

/// True for a PNG file without transparency, as encodePng() writes it.
bool isOpaquePng(std::string_view file);

/// How a picture is made of its source.
enum class PictureKind : uint8_t {
  png,   ///< a PNG file stands as it is, of others the first level is encoded
  copy,  ///< the file as it is
  // PNG files that show with usual blending what the screen shows of these materials:
  lightPlane,  ///< adds its colours where its alpha is 0
  selfLight    ///< adds its colours where its alpha is 1
};
struct PictureKey {
  std::string file;
  PictureKind kind;
  bool operator<(const PictureKey& other) const {
    return std::tie(file, kind) < std::tie(other.file, other.kind);
  }
};

/// The folder of pictures beside all outputs of one run: gives each picture its name and knows which stand
/// there. What is not ours is never overwritten. Shared by threads, none of which waits for another's
/// picture.
class PictureStore {
 public:
  /// The folder is made with the first picture.
  explicit PictureStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

  const std::filesystem::path& folder() const { return folder_; }

  /// A picture and who refers to it. Only the store changes it.
  struct Picture {
    std::string name;     ///< of its file in the folder
    bool opaque = false;  ///< nothing shows through it
    uint32_t users = 0;   ///< exports that are under way
    bool stands = false;
    bool made = false;  ///< by this run
    bool kept = false;  ///< a finished output refers to it
  };

  /// The picture if it stands, with one more user; else none.
  Picture* use(const PictureKey& key);

  /// The picture for these bytes with one more user, and a file to write where it does not stand yet; the
  /// extension has its dot.
  struct Reserved {
    Picture* picture;
    std::unique_ptr<OutputFile> file;
  };
  Reserved reserve(const PictureKey& key, std::string_view extension, std::string_view bytes);

  /// Moves a closed file to its place unless another export was first. True when this one made it stand.
  bool commit(Picture& picture, OutputFile& file);

  /// Ends a use. The last user removes a picture of this run that no finished output refers to.
  void release(Picture& picture, bool keep);

 private:
  void chooseName(Picture& picture, const PictureKey& key, std::string_view extension,
                  std::string_view bytes);
  std::optional<std::string> standing(const std::string& name);

  const std::filesystem::path folder_;
  std::mutex mutex_;
  std::map<PictureKey, Picture> pictures_;
  std::set<std::string> given_;  ///< names of pictures_ in lower case
  std::optional<std::map<std::string, std::string>>
      listing_;  ///< names in lower case, and as they stand there
  bool madeFolder_ = false;
};

struct ModernResult {
  uint64_t bytes = 0;                 ///< of all files that are new
  std::string error;                  ///< empty when all files stand; else none of them does
  std::vector<std::string> warnings;  ///< a line for each picture that was left out
  std::vector<std::string> files;  ///< that stand now because of it: pictures, companion, the main one last
};

/// Writes the model to `path`, its companion beside it and its new pictures into the store's folder: all of
/// them or none.
ModernResult exportModern(const ModernFormat& format, const std::string& path, Model& model,
                          const ModernOptions& options, PictureStore& store);

/// True where the whole output is a single file.
bool isOneFile(const ModernFormat& format, const ModernOptions& options);

/// The same to an output that somebody else opened and closes, for formats that are a single file; `name` is
/// what that would be called.
ModernResult exportModern(const ModernFormat& format, std::string_view name, Model& model,
                          const ModernOptions& options, Output& out);

/// Multiplies positions, bounds and radii.
void scaleModel(Model& model, float factor);

WriteModern writeModernObj, writeModernGlb, writeModernGltf, writeModernDae, writeModernStl;

}  // namespace facet
