#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace facet {

/// Finds files by names as model files hold them: both separators divide folders, and letter case does not
/// count where the exact name is missing. Names are single bytes; only ASCII letters have a case.
/// Keeps the listings it has read, so one object serves one load and sees the disk as it was then.
class FileFinder {
 public:
  FileFinder();
  ~FileFinder();

  /// The path of the existing regular file that `name` means, or none. A relative name starts at the current
  /// directory. Of several names that differ in case only, the exact one wins, then the first in byte order.
  std::optional<std::filesystem::path> find(std::string_view name);

 private:
  struct Listing;
  const Listing& listing(const std::filesystem::path& folder);
  std::map<std::string, std::unique_ptr<Listing>> listings_;
};

/// The text after the last separator ('\\' or '/') of a path.
std::string_view fileName(std::string_view path);

/// The text from the last '.' of a path's file name on, in lower case (".obj"), or an empty one.
std::string lowerExtension(std::string_view path);

/// True for a path that starts with '/' or with a drive letter and a colon.
bool isRooted(std::string_view path);

}  // namespace facet
