#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace facet {

/// A fresh folder that goes away with everything in it.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string operator/(std::string_view name) const { return (path_ / name).string(); }

  /// Writes a file, with the folders it stands in, and returns its path.
  std::string write(std::string_view name, std::string_view bytes) const;

 private:
  std::filesystem::path path_;
};

std::string readWholeFile(const std::filesystem::path& path);

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
