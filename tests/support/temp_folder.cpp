#include "support/temp_folder.h"

#include <fstream>
#include <iterator>
#include <random>

namespace facet {

namespace fs = std::filesystem;

TempFolder::TempFolder() {
  std::random_device random;
  do {
    path_ = fs::temp_directory_path() / ("facet-test-" + std::to_string(random()));
  } while (!fs::create_directory(path_));
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TempFolder::write(std::string_view name, std::string_view bytes) const {
  const fs::path file = path_ / name;
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return file.string();
}

std::string readWholeFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace facet
