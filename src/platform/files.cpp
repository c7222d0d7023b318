#include "platform/files.h"

#include <algorithm>
#include <vector>

#include "platform/system.h"
#include "platform/text.h"

namespace facet {

namespace fs = std::filesystem;

namespace {
constexpr std::string_view separators = "\\/";

bool isFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

}  // namespace

/// The names of one folder, by their lower-case form.
struct FileFinder::Listing {
  std::multimap<std::string, std::string, std::less<>> names;
};

FileFinder::FileFinder() = default;
FileFinder::~FileFinder() = default;

const FileFinder::Listing& FileFinder::listing(const fs::path& folder) {
  auto& known = listings_[folder.string()];
  if (!known) {
    auto read = std::make_unique<Listing>();
    std::vector<FolderEntry> entries;
    listFolder(folder, entries);  // a folder that cannot be read has no names
    for (FolderEntry& entry : entries) {
      std::string key = lowerCase(entry.name);
      read->names.emplace(std::move(key), std::move(entry.name));
    }
    known = std::move(read);
  }
  return *known;
}

std::optional<fs::path> FileFinder::find(std::string_view name) {
  if (name.find('\0') != std::string_view::npos) return {};
  if (isFile(fs::path(name))) return fs::path(name);
  std::string unified(name);
  std::replace(unified.begin(), unified.end(), '\\', fs::path::preferred_separator == '\\' ? '\\' : '/');
  const fs::path asGiven(unified);
  if (isFile(asGiven)) return asGiven;

  // Folder by folder, each by its listing: the exact name, else the first that differs in case only.
  std::vector<fs::path> candidates = {asGiven.root_path()};
  for (const fs::path& part : asGiven.relative_path()) {
    std::vector<fs::path> next;
    for (const fs::path& folder : candidates) {
      if (part == "." || part == "..") {
        next.push_back(folder / part);
        continue;
      }
      const Listing& known = listing(folder.empty() ? fs::path(".") : folder);
      const auto [first, last] = known.names.equal_range(lowerCase(part.string()));
      for (auto match = first; match != last; ++match) {
        const bool exact = match->second == part.string();
        next.insert(exact ? next.begin() : next.end(), folder / match->second);
      }
    }
    candidates = std::move(next);
  }
  const auto found = std::find_if(candidates.begin(), candidates.end(), isFile);
  if (found == candidates.end()) return {};
  return *found;
}

std::string_view fileName(std::string_view path) {
  const size_t last = path.find_last_of(separators);
  return last == std::string_view::npos ? path : path.substr(last + 1);
}

std::string lowerExtension(std::string_view path) {
  const std::string_view name = fileName(path);
  const size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string() : lowerCase(name.substr(dot));
}

bool isRooted(std::string_view path) {
  return path.starts_with('/') || (path.size() > 1 && path[1] == ':');
}

}  // namespace facet
