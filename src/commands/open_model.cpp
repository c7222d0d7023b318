#include "commands/open_model.h"

#include <algorithm>
#include <set>
#include <utility>

#include "commands/current_directory.h"
#include "render/frame.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

/// What browsing looks for in file names: anywhere in them, in this letter case.
constexpr std::string_view browsedExtensions[] = {".vxm",  ".object", ".msh",  ".dds",
                                                  ".mesh", ".model",  ".ds2md"};

FileDialogRequest openRequest(const std::string& directory) {
  FileDialogRequest request;
  request.title = "Load model file";
  request.types.push_back({"All supported files", allModelPatterns});
  for (const ModelFileType& type : modelFileTypes())
    request.types.push_back({type.description, type.pattern});
  request.types.push_back({"All Files (*.*)", "*.*"});
  request.initialDirectory = directory;
  request.defaultExtension = "vxm";
  request.flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_CREATEPROMPT;
  return request;
}

/// The cursor is busy while this lives.
class BusyCursor {
 public:
  BusyCursor() { set(true); }
  ~BusyCursor() { set(false); }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;

 private:
  static void set(bool busy) {
    if (Desktop* desktop = currentDesktop()) desktop->setBusy(busy);
  }
};

/// Puts the model of `path` in place of the one before; the title names it by `titleName`. False when it does
/// not load.
bool replaceModel(Viewer& viewer, const std::string& path, std::string_view titleName) {
  ModelView& view = viewer.view;
  closeModel(view);
  view.modelPath = path;
  LoadResult loaded;
  {
    const BusyCursor busy;
    loaded = loadModel(path, view.texturePath, view.p_device.get());
  }
  if (!loaded.model) {
    const std::string name(fileName(path));
    statusPrint("%s: %s", (name.empty() ? path : name).c_str(), loaded.error.c_str());
    return false;
  }
  view.model = std::move(loaded.model);
  view.model->name = view.modelPath;
  view.buffersBuilt = false;
  setWindowTitle(std::string(applicationTitle) + " - [" + std::string(titleName) + "]");
  renderFrame(view);
  return true;
}


bool isBrowsed(const std::string& name) {
  return std::ranges::any_of(browsedExtensions, [&](auto text) { return name.find(text) != name.npos; });
}

/// Upper-case letters stand before '_' and the lower-case ones after it: folders are listed by the former.
std::string listingKey(std::string_view name) {
  std::string key(name);
  for (char& c : key)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return key;
}

/// The names of a folder's model files, in the order of listing. A folder that cannot be read has none.
std::vector<std::string> modelFiles(const fs::path& folder) {
  std::set<std::pair<std::string, std::string>> sorted;
  std::error_code error, unreadable;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::string name = entry->path().filename().string();
    if (isBrowsed(name) && entry->is_regular_file(unreadable)) {
      std::string key = listingKey(name);
      sorted.emplace(std::move(key), std::move(name));
    }
  }
  std::vector<std::string> names;
  for (const auto& [key, name] : sorted) names.push_back(name);
  return names;
}

/// Browses the files of `folder`; their paths are `prefix` and the name.
void browseFolder(Viewer& viewer, const fs::path& folder, const std::string& prefix, int32_t target) {
  const std::vector<std::string> names = modelFiles(folder);
  if (names.empty()) return statusPrint("No model files in this folder");
  const auto count = static_cast<int32_t>(names.size());
  const auto opens = [&](int32_t index) {
    viewer.view.fileIndex = index;
    return replaceModel(viewer, prefix + names[index], names[index]);
  };
  const int32_t start = target < 0 || target >= count ? count - 1 : target;
  for (int32_t i = start; i < count; ++i)
    if (opens(i)) return;
  for (int32_t i = start - 1; i >= 0; --i)
    if (opens(i)) return;
}

/// The folder that a path up to its last separator means.
fs::path folderOf(const std::string& path, const std::string& prefix) {
  fs::path folder;
  if (const auto found = FileFinder().find(path)) {
    folder = found->parent_path();
  } else {  // the file went away
    std::string unified = prefix;
    std::ranges::replace(unified, '\\', '/');
    folder = unified;
  }
  return folder.empty() ? fs::path(".") : folder;
}

}  // namespace

void openModelFile(Viewer& viewer) {
  if (!std::exchange(viewer.commandLineUsed, true) && !viewer.commandLine.empty()) {
    std::error_code error;
    viewer.lastOpenDirectory = fs::current_path(error).string();
    replaceModel(viewer, viewer.commandLine, viewer.commandLine);
    return;
  }
  Desktop* desktop = currentDesktop();
  if (desktop == nullptr) return;
  const KeptDirectory kept;
  const auto chosen = desktop->openFileDialog(openRequest(viewer.lastOpenDirectory));
  if (chosen) openPath(viewer, chosen->path);
}

void openPath(Viewer& viewer, const std::string& path) {
  const KeptDirectory kept;
  std::error_code error;
  const bool folder = fs::is_directory(path, error);
  const std::string inside = folder && !path.ends_with('/') ? path + '/' : path;
  viewer.lastOpenDirectory = enterFolderOf(inside);
  if (folder)
    browseFolder(viewer, inside, inside, 0);
  else
    replaceModel(viewer, path, path);
}

void browseModelFile(Viewer& viewer, int32_t target) {
  const std::string path = viewer.view.modelPath;
  const std::string prefix = path.substr(0, path.size() - fileName(path).size());
  browseFolder(viewer, folderOf(path, prefix), prefix, target);
}

}  // namespace facet
