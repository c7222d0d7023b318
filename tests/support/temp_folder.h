#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace facet {

/// A fresh folder that goes away with everything in it.
class TempFolder {
 public:
  explicit TempFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path())
      : path_((parent / "facet-XXXXXX").string()) {
    if (!mkdtemp(path_.data())) throw std::runtime_error("cannot make a folder in " + parent.string());
    std::filesystem::permissions(path_, std::filesystem::perms(0755));  // tests may go on as another user
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::filesystem::path path() const { return path_; }
  std::string operator/(std::string_view name) const { return (path() / name).string(); }

  /// Writes a file, with the folders it stands in, and returns its path.
  std::string write(std::string_view name, std::string_view bytes) const {
    const std::filesystem::path file = path() / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return file.string();
  }

 private:
  std::string path_;
};

inline std::string readWholeFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Makes a folder the current one while it lives.
class CurrentFolder {
 public:
  explicit CurrentFolder(const std::filesystem::path& folder) : previous_(std::filesystem::current_path()) {
    std::filesystem::current_path(folder);
  }
  ~CurrentFolder() { std::filesystem::current_path(previous_); }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;

 private:
  std::filesystem::path previous_;
};

}  // namespace facet
