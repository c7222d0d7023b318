#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/files.h"

namespace facet {

/// Texture base paths, each glued in front of a texture name without a separator.
using BasePaths = std::vector<std::string>;

/// The file that a texture name means: under each base path in turn ".dds", ".tga", ".png", ".bmp"; a name
/// with a drive letter or a leading separator drops the base path for its ".dds" candidate. Names that
/// contain "prop_fake" or "_fuflo" are never looked for. An empty list counts as one empty prefix. The first
/// file that opens for reading is the answer.
std::optional<std::filesystem::path> resolveTextureFile(std::string_view textureName,
                                                        const BasePaths& basePaths, FileFinder& files);

/// Where the textures of a batch are, for all its models, which all have the same base paths; several threads
/// may share it. The disk is seen as it was when a name was first looked for.
class TextureSearch {
 public:
  /// Without `near`, only the base paths count.
  explicit TextureSearch(bool near = true);
  ~TextureSearch();

  /// What resolveTextureFile() finds; else what stands near the model, whose folder is given as an absolute
  /// path.
  std::optional<std::filesystem::path> find(const std::string& textureName, const BasePaths& basePaths,
                                            const std::filesystem::path& modelFolder);

  /// Where find() looks for the textures of such a model, a line each, for people.
  std::vector<std::string> places(const BasePaths& basePaths, const std::filesystem::path& modelFolder);

 private:
  struct Folder;
  struct Place;

  const Folder* folder(const std::filesystem::path& path);
  const Folder* below(const Folder* at, const std::filesystem::path& relative);
  const std::vector<Place>& placesNear(const std::filesystem::path& modelFolder, const BasePaths& basePaths);
  std::optional<std::filesystem::path> findIn(const Place& place, const std::string& name);
  std::optional<std::filesystem::path> findNearModel(std::string name, const std::vector<Place>& places);

  const bool near_;
  std::mutex mutex_;
  FileFinder files_;
  std::unordered_map<std::string, std::optional<std::filesystem::path>> stated_;
  std::unordered_map<std::string, std::optional<std::filesystem::path>> nearModel_;  // by folder and name
  std::map<std::filesystem::path, std::unique_ptr<Folder>> folders_;
  std::map<std::filesystem::path, std::vector<Place>> places_;  // by the model's folder
};

}  // namespace facet
