#include "import/texture_search.h"

#include <algorithm>
#include <iterator>

#include "platform/system.h"
#include "platform/text.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view textureExtensions[] = {".dds", ".tga", ".png", ".bmp"};

bool isNeverLookedFor(std::string_view textureName) {
  return textureName.find("prop_fake") != textureName.npos || textureName.find("_fuflo") != textureName.npos;
}

}  // namespace

std::optional<fs::path> resolveTextureFile(std::string_view textureName, const BasePaths& basePaths,
                                           FileFinder& files) {
  if (isNeverLookedFor(textureName)) return {};
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

/// What a folder holds, read once: a model of thousands of textures that are nowhere asks each folder near it
/// for each of them.
struct TextureSearch::Folder {
  fs::path path;
  std::unordered_map<std::string, std::vector<std::string>> pictures;  ///< by their stems in lower case
  /// By their names, and by those in lower case. Links are among them: they may lead to folders.
  std::unordered_map<std::string, std::string> folders;
};

/// A folder near a model, and what of a base path stands behind its last separator: it is glued in front of
/// names there.
struct TextureSearch::Place {
  const Folder* folder;
  std::string prefix;
  bool operator==(const Place&) const = default;
};

TextureSearch::TextureSearch(bool near) : near_(near) {}
TextureSearch::~TextureSearch() = default;

/// None where there is no such folder, or it cannot be read.
const TextureSearch::Folder* TextureSearch::folder(const fs::path& path) {
  const auto [known, isNew] = folders_.try_emplace(path);
  if (!isNew) return known->second.get();
  std::vector<FolderEntry> entries;
  if (listFolder(path, entries)) return nullptr;
  known->second = std::make_unique<Folder>();
  Folder& read = *known->second;
  read.path = path;
  for (const FolderEntry& entry : entries) {
    const std::string key = lowerCase(entry.name);
    if (entry.kind != FolderEntry::file)
      read.folders.insert_or_assign(entry.name, entry.name), read.folders.try_emplace(key, entry.name);
    else if (std::ranges::count(textureExtensions, lowerExtension(key)) != 0)
      read.pictures[key.substr(0, key.rfind('.'))].push_back(entry.name);
  }
  return &read;
}

/// Goes down from a folder, by names in any letter case; none where there is no such folder.
const TextureSearch::Folder* TextureSearch::below(const Folder* at, const fs::path& relative) {
  for (const fs::path& part : relative) {
    if (at == nullptr) return nullptr;
    if (part.empty() || part == ".") continue;
    auto name = at->folders.find(part.string());
    if (name == at->folders.end()) name = at->folders.find(lowerCase(part.string()));
    at = part == ".."                ? folder(at->path.parent_path())
         : name == at->folders.end() ? nullptr
                                     : folder(at->path / name->second);
  }
  return at;
}

const std::vector<TextureSearch::Place>& TextureSearch::placesNear(const fs::path& modelFolder,
                                                                   const BasePaths& basePaths) {
  const auto [known, isNew] = places_.try_emplace(modelFolder);
  std::vector<Place>& places = known->second;
  if (!isNew) return places;
  BasePaths bases;
  std::ranges::copy_if(basePaths, std::back_inserter(bases),
                       [](const auto& base) { return !isRooted(base); });
  bases.insert(bases.end(), {"textures/", "gamedata/textures/", ""});

  constexpr int levelsUp = 8;
  fs::path level = modelFolder;
  for (int up = 0; up <= levelsUp; ++up) {
    const Folder* at = folder(level);
    for (std::string base : bases) {
      std::ranges::replace(base, '\\', '/');
      const size_t end = base.rfind('/') + 1;  // 0 where there is none
      const Place place{below(at, base.substr(0, end)), base.substr(end)};
      if (place.folder != nullptr && !std::ranges::count(places, place)) places.push_back(place);
    }
    if (level == level.parent_path()) break;
    level = level.parent_path();
  }
  return places;
}

/// A picture of this name in the place or, where the name has folders, below it.
std::optional<fs::path> TextureSearch::findIn(const Place& place, const std::string& name) {
  const std::string glued = place.prefix + name;
  const size_t end = glued.rfind('/') + 1;
  const Folder* at = below(place.folder, glued.substr(0, end));
  if (at == nullptr) return {};
  const std::string stem = glued.substr(end);
  const auto found = at->pictures.find(lowerCase(stem));
  if (found == at->pictures.end()) return {};
  for (const std::string_view extension : textureExtensions) {
    std::optional<fs::path> anyCase;
    for (const std::string& file : found->second) {
      if (lowerExtension(file) != extension || !openFile(at->path / file)) continue;
      if (file.starts_with(stem)) return at->path / file;
      if (!anyCase) anyCase = at->path / file;
    }
    if (anyCase) return anyCase;
  }
  return {};
}

/// By the whole name, and only where that is nowhere by its last part: the same word may name a door in each
/// of ten folders.
std::optional<fs::path> TextureSearch::findNearModel(std::string name, const std::vector<Place>& places) {
  if (isNeverLookedFor(name) || name.find('\0') != name.npos) return {};
  std::ranges::replace(name, '\\', '/');
  const std::string last(fileName(name));
  if (last.empty()) return {};
  for (const std::string& wanted : {isRooted(name) ? last : name, last})
    for (const Place& place : places)
      if (auto file = findIn(place, wanted)) return file;
  return {};
}

std::optional<fs::path> TextureSearch::find(const std::string& textureName, const BasePaths& basePaths,
                                            const fs::path& modelFolder) {
  const std::lock_guard lock(mutex_);
  const auto [stated, isNew] = stated_.try_emplace(textureName);
  if (isNew) stated->second = resolveTextureFile(textureName, basePaths, files_);
  if (stated->second || !near_) return stated->second;
  const auto [near, isNewHere] = nearModel_.try_emplace(modelFolder.string() + '\n' + textureName);
  if (isNewHere) near->second = findNearModel(textureName, placesNear(modelFolder, basePaths));
  return near->second;
}

std::vector<std::string> TextureSearch::places(const BasePaths& basePaths, const fs::path& modelFolder) {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> places;
  std::error_code error;
  for (std::string base : basePaths.empty() ? BasePaths{""} : basePaths) {
    std::ranges::replace(base, '\\', '/');
    places.push_back(isRooted(base) ? base : (fs::current_path(error) / base).string());
  }
  if (!near_) return places;
  for (const Place& place : placesNear(modelFolder, basePaths))
    places.push_back((place.folder->path / place.prefix).string());
  return places;
}

}  // namespace facet
