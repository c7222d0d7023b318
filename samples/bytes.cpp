#include "bytes.h"

#include <stdexcept>

#include "platform/output.h"

namespace facet::sample {

void writeFile(const std::filesystem::path& path, std::string_view content) {
  std::error_code failure;
  std::filesystem::create_directories(path.parent_path(), failure);
  OutputFile file(path);
  file.write(content);
  if (!file.commit()) throw std::runtime_error(path.string() + ": " + file.error());
}

}  // namespace facet::sample
