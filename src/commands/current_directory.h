#pragma once

#include <filesystem>
#include <string>

namespace facet {

/// Puts the process's current directory back when it goes.
class KeptDirectory {
 public:
  KeptDirectory() : kept_(std::filesystem::current_path(error_)) {}
  ~KeptDirectory() {
    if (!error_) std::filesystem::current_path(kept_, error_);
  }
  KeptDirectory(const KeptDirectory&) = delete;
  KeptDirectory& operator=(const KeptDirectory&) = delete;

 private:
  std::error_code error_;  // before kept_, which reports to it
  std::filesystem::path kept_;
};

/// Makes the folder of a file the current one, as file dialogs leave it on some desktops but not on all, and
/// returns it. A folder that cannot be entered changes nothing.
inline std::string enterFolderOf(const std::string& path) {
  std::error_code error;
  std::filesystem::current_path(std::filesystem::path(path).parent_path(), error);
  return std::filesystem::current_path(error).string();
}

}  // namespace facet
