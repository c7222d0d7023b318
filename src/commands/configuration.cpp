#include "commands/configuration.h"

#include <algorithm>

namespace facet {

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

}  // namespace facet
