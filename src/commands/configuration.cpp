#include <algorithm>
#include <filesystem>

#include "commands/commands.h"
#include "platform/files.h"
#include "platform/output.h"

namespace facet {

namespace fs = std::filesystem;

BasePaths basePathsOf(std::vector<std::string> given) {
  for (std::string& base : given) {
    std::error_code error;
    const bool separated = base.ends_with('/') || base.ends_with('\\');
    if (!separated && fs::is_directory(base, error)) base += '/';
  }
  return given;
}

BasePaths defaultBasePaths() {
  return {"gamedata\\textures\\"};
}

BasePaths parseConfiguration(std::string_view bytes) {
  bytes = bytes.substr(0, configurationLimit);
  BasePaths paths;
  while (!bytes.empty() && bytes.front() != '\0') {
    const size_t length = std::min(bytes.find('\0'), bytes.size());
    paths.emplace_back(bytes.substr(0, length));
    bytes.remove_prefix(std::min(length + 1, bytes.size()));
  }
  return paths;
}

std::optional<BasePaths> readConfigurationFile(const std::string& path) {
  const auto found = FileFinder().find(path);
  const auto file = found ? openFile(*found) : nullptr;
  if (!file) return {};
  std::string bytes(std::min<uint64_t>(file->size(), configurationLimit), '\0');
  if (!file->read(bytes.data(), bytes.size())) return {};
  return parseConfiguration(bytes);
}

std::vector<std::string> configurationPlaces(std::string_view commandLine) {
  std::vector<std::string> places;
  commandLine.remove_prefix(std::min<size_t>(commandLine.size(), 1));  // the opening quotation mark
  const size_t separator = commandLine.find_last_of("\\/");
  if (separator != std::string_view::npos) {
    // Behind the closing quotation mark of the program and a blank stands the path of a model.
    std::string_view folder = commandLine.substr(0, separator);
    const size_t closing = folder.find("\" ");
    if (closing != std::string_view::npos) folder.remove_prefix(closing + 2);
    places.push_back(std::string(folder) + "\\" + std::string(configurationName));
  }
  places.emplace_back(configurationName);
  return places;
}

BasePaths readConfiguration(std::string_view commandLine) {
  for (const std::string& place : configurationPlaces(commandLine))
    if (auto paths = readConfigurationFile(place)) return *paths;
  messageBox(configurationName, "Can't open file", MB_OK | MB_ICONEXCLAMATION | MB_SYSTEMMODAL);
  return defaultBasePaths();
}

std::string configurationToWrite(std::string_view commandLine, std::string model) {
  std::error_code error;
  for (const std::string& place : configurationPlaces(commandLine))
    if (const auto found = FileFinder().find(place)) return fs::absolute(*found, error).string();
  std::ranges::replace(model, '\\', '/');
  const fs::path folder = fs::path(model).parent_path();
  const bool beside = fs::is_directory(folder, error);
  return fs::absolute((beside ? folder : fs::path()) / configurationName, error).string();
}

std::string writeConfiguration(const std::string& path, const BasePaths& basePaths) {
  std::string bytes;
  for (const std::string& base : basePaths)
    bytes += (base.empty() ? "./" : base) + '\0';  // an empty text would end the list
  bytes.resize(std::max<size_t>(bytes.size() + 1, 2));
  if (bytes.size() > configurationLimit)
    return std::string(configurationName) + " holds " + std::to_string(configurationLimit) +
           " bytes, and these take " + std::to_string(bytes.size()) + ": remove some, or do not write it";
  OutputFile file(path);
  file.write(bytes);
  return file.commit() ? "" : path + ": " + file.error();
}

}  // namespace facet
