#include "commands/commands.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <utility>

#include "export/export.h"
#include "picture/image.h"
#include "platform/output.h"
#include "platform/progress.h"
#include "platform/text.h"
#include "render/camera.h"
#include "render/navigation.h"
#include "render/picture_view.h"
#include "render/scene.h"
#include "render/view.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

/// Puts the process's current directory back when it goes.
class KeptDirectory {
 public:
  KeptDirectory() : kept_(fs::current_path(error_)) {}
  ~KeptDirectory() {
    if (!error_) fs::current_path(kept_, error_);
  }
  KeptDirectory(const KeptDirectory&) = delete;
  KeptDirectory& operator=(const KeptDirectory&) = delete;

 private:
  std::error_code error_;  // before kept_, which reports to it
  fs::path kept_;
};

/// Makes the folder of a file the current one, as file dialogs leave it on some desktops but not on all, and
/// returns it. A folder that cannot be entered changes nothing.
std::string enterFolderOf(const std::string& path) {
  std::error_code error;
  fs::current_path(fs::path(path).parent_path(), error);
  return fs::current_path(error).string();
}

FileDialogRequest dialogRequest(const char* title, const std::string& directory, const char* extension) {
  FileDialogRequest request;
  request.title = title;
  request.initialDirectory = directory;
  request.defaultExtension = extension;
  request.flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_CREATEPROMPT;
  return request;
}

void setBusyCursor(bool busy) {
  if (Desktop* desktop = currentDesktop()) desktop->setBusy(busy);
}

/// A relative name at the current directory: a picture shown as a model names itself as its texture, which
/// only a rooted path finds.
std::string absolutePath(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  return isRooted(path) || error ? path : absolute.string();
}

/// Loads a model with the view's base paths. A load that was cancelled may still run: all that it touches is
/// its own.
LoadResult loadFor(const Viewer& viewer, const std::string& path, IDirect3DDevice9* device) {
  struct Load {
    Progress progress;
    LoadResult result;
  };
  const auto load = std::make_shared<Load>();
  LoadOptions options(device);
  options.decodesTextures = device != nullptr;
  options.textures = std::make_shared<TextureSearch>(viewer.searchNear);  // sees the disk as it is now
  options.preloadsTextures =
      device == viewer.view.system.p_device.get() && viewer.view.settings.renderMode == renderTextured;
  options.progress = &load->progress;
  setBusyCursor(true);
  runLong([load, options, path = absolutePath(path),
           basePaths = viewer.view.scene.texturePath] { load->result = loadModel(path, basePaths, options); },
          {load, &load->progress});
  setBusyCursor(false);
  if (load->progress.cancelled()) return {nullptr, Cancelled().what(), true};
  return std::move(load->result);
}

/// The name in a path, or the path where it has none.
std::string shownName(const std::string& path) {
  const std::string name(fileName(path));
  return name.empty() ? path : name;
}

void tellLoadError(const std::string& path, const std::string& error) {
  statusPrint("%s: %s", shownName(path).c_str(), error.c_str());
}

void tellCancelled(Viewer& viewer, const std::string& path) {
  viewer.cancelled = true;
  viewer.note = "Cancelled: " + shownName(path);
  statusPrint("%s", idleStatusText.data());  // what it says of the load no longer holds
}

/// Puts the model of `path` in place of the one before; the title names it by `titleName`. False when it does
/// not load. A load that is cancelled changes nothing.
bool replaceModel(Viewer& viewer, const std::string& path, std::string_view titleName) {
  ModelView& view = viewer.view;
  viewer.cancelled = false;
  viewer.note.clear();
  LoadResult loaded = loadFor(viewer, path, view.system.p_device.get());
  if (loaded.cancelled) {
    tellCancelled(viewer, path);
    return true;
  }
  closeModel(view);
  view.scene.modelPath = path;
  std::error_code error;
  viewer.loadDirectory = fs::current_path(error).string();
  if (!loaded.model) {
    tellLoadError(path, loaded.error);
    return false;
  }
  setModel(view.scene, std::move(loaded.model));
  view.scene.model->name = view.scene.modelPath;
  setWindowTitle(std::string(applicationTitle) + " - [" + std::string(titleName) + "]");
  if (viewer.orbits && !viewer.keepCamera) frameVisible(view);
  renderFrame(view);
  return true;
}

/// Loads the shown model's file once more.
LoadResult loadAgain(const Viewer& viewer, IDirect3DDevice9* device) {
  const KeptDirectory kept;
  std::error_code error;
  fs::current_path(viewer.loadDirectory, error);
  LoadResult loaded = loadFor(viewer, viewer.view.scene.modelPath, device);
  const Model& shown = *viewer.view.scene.model;
  if (!loaded.model || loaded.model->materialCount != shown.materialCount) return loaded;
  for (uint32_t i = 0; i < shown.materialCount; ++i)  // the same, though they were drawn by lot
    loaded.model->materials[i].color = shown.materials[i].color;
  return loaded;
}

/// Browsing looks for the extensions anywhere in a name, in this letter case.
bool isBrowsed(const std::string& name) {
  std::string_view patterns = allModelPatterns;
  while (!patterns.empty()) {
    const size_t end = std::min(patterns.find(';'), patterns.size());
    if (name.find(patterns.substr(1, end - 1)) != name.npos) return true;  // without its '*'
    patterns.remove_prefix(std::min(end + 1, patterns.size()));
  }
  return false;
}

/// The name as it is sorted by: in upper case, so that '_' stands behind the letters.
std::string listingKey(std::string_view name) {
  std::string key(name);
  for (char& c : key)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return key;
}

/// Browses the files of `folder`; their paths are `prefix` and the name.
void browseFolder(Viewer& viewer, const fs::path& folder, const std::string& prefix, int32_t target) {
  const std::vector<std::string> names = modelFiles(folder);
  if (names.empty()) return statusPrint("No model files in this folder");
  const auto count = static_cast<int32_t>(names.size());
  const auto opens = [&](int32_t index) {
    const bool done = replaceModel(viewer, prefix + names[index], names[index]);
    if (!viewer.cancelled) viewer.view.scene.fileIndex = index;
    return done;
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

constexpr std::string_view fileUrl = "file://";

/// The path of a file:// name: what stands behind the host, its "%20" as bytes.
std::string pathOfUrl(std::string_view url) {
  std::string path;
  for (size_t i = url.find('/', fileUrl.size()); i < url.size(); ++i) {
    uint8_t byte = 0;
    const char *digits = url.data() + i + 1, *end = url.data() + std::min(i + 3, url.size());
    const bool coded = url[i] == '%' && std::from_chars(digits, end, byte, 16).ptr == digits + 2;
    path += coded ? static_cast<char>(byte) : url[i];
    if (coded) i += 2;
  }
  return path;
}

void openCommandLine(Viewer& viewer) {
  const std::string& named = viewer.commandLine;
  std::error_code error;
  viewer.lastOpenDirectory = fs::current_path(error).string();
  if (named.starts_with(fileUrl))
    openPath(viewer, pathOfUrl(named));
  else if (fs::is_directory(named, error))
    openPath(viewer, absolutePath(named));
  else
    replaceModel(viewer, named, named);
}

}  // namespace

std::vector<std::string> modelFiles(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code error, unreadable;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::string name = entry->path().filename().string();
    if (isBrowsed(name) && entry->is_regular_file(unreadable)) names.push_back(std::move(name));
  }
  std::ranges::sort(names, {}, [](const std::string& name) { return std::pair(listingKey(name), name); });
  return names;
}

void openModelFile(Viewer& viewer) {
  if (!std::exchange(viewer.commandLineUsed, true) && !viewer.commandLine.empty())
    return openCommandLine(viewer);
  Desktop* desktop = currentDesktop();
  if (desktop == nullptr) return;
  const KeptDirectory kept;
  FileDialogRequest request = dialogRequest("Load model file", viewer.lastOpenDirectory, "vxm");
  request.types.push_back({"All supported files", allModelPatterns});
  for (const ModelFileType& type : modelFileTypes())
    request.types.push_back({type.description, type.pattern});
  request.types.push_back({"All Files (*.*)", "*.*"});
  const auto chosen = desktop->openFileDialog(request);
  if (chosen) openPath(viewer, chosen->path);
}

void openPath(Viewer& viewer, const std::string& path) {
  const KeptDirectory kept;
  std::error_code error;
  const bool folder = fs::is_directory(path, error);
  const std::string inside = folder && !path.ends_with('/') ? path + '/' : path;
  const std::string before = std::exchange(viewer.lastOpenDirectory, enterFolderOf(inside));
  viewer.cancelled = false;
  if (folder)
    browseFolder(viewer, inside, inside, 0);
  else
    replaceModel(viewer, path, path);
  if (viewer.cancelled) viewer.lastOpenDirectory = before;
}

void reloadModel(Viewer& viewer) {
  Scene& scene = viewer.view.scene;
  if (!scene.model) return;
  viewer.cancelled = false;
  LoadResult loaded = loadAgain(viewer, viewer.view.system.p_device.get());
  if (loaded.cancelled) return tellCancelled(viewer, scene.modelPath);
  const std::string name = shownName(scene.modelPath);
  const uint32_t before = scene.model->meshCount;
  if (loaded.model && loaded.model->meshCount == 0 && before > 0) {  // it was cut off
    loaded.model.reset();
    loaded.error = "there are no meshes in it";
  }
  if (!loaded.model) {
    viewer.note = name + ": " + loaded.error + "; the model shown is the one before";
    return tellLoadError(scene.modelPath, loaded.error);
  }
  const uint32_t now = loaded.model->meshCount;
  viewer.note = "Loaded anew: " + name;
  if (now != before) viewer.note += formatted(", %u meshes, %u before", now, before);
  for (uint32_t i = 0; now == before && i < now; ++i)
    loaded.model->meshes[i].hidden = scene.model->meshes[i].hidden;
  setModel(scene, std::move(loaded.model));
  scene.model->name = scene.modelPath;
}

void browseModelFile(Viewer& viewer, int32_t target) {
  const std::string path = viewer.view.scene.modelPath;
  const std::string prefix = path.substr(0, path.size() - fileName(path).size());
  browseFolder(viewer, folderOf(path, prefix), prefix, target);
}

void saveModelFile(Viewer& viewer) {
  Desktop* desktop = currentDesktop();
  if (!viewer.view.scene.model || desktop == nullptr) return;
  const KeptDirectory kept;
  FileDialogRequest request = dialogRequest("Save model file", viewer.lastSaveDirectory, "obj");
  for (const ExportFormat& format : saveDialogFormats())
    request.types.push_back({format.description, format.pattern});
  const auto chosen = desktop->saveFileDialog(request);
  if (!chosen) return;
  viewer.lastSaveDirectory = enterFolderOf(chosen->path);
  desktop->setStatusText(idleStatusText);  // what it says of an older save no longer holds
  const Restored idle(viewer.view.frameIdle);
  viewer.view.frameIdle = false;  // a frame would read the values that some formats snap
  runLong([&] { viewer.failure = saveModelAs(chosen->filterIndex, chosen->path, *viewer.view.scene.model); });
}

namespace {

/// True where the file belongs to the shown model: is its own, a texture or a listed mesh file.
bool belongsToModel(const fs::path& file, const Model& model, const std::string& modelPath) {
  std::error_code error;
  const auto same = [&](const fs::path& other) { return fs::equivalent(file, other, error); };
  return same(FileFinder().find(modelPath).value_or("")) || std::ranges::any_of(model.listedFiles, same) ||
         std::ranges::any_of(model.materials, same, &Material::textureFile);
}

/// "ship.obj, ship.mtl and 12 pictures written to /a/b"
std::string exportSummary(const ModernResult& result, const fs::path& folder) {
  std::string names;
  size_t pictures = 0;
  for (auto file = result.files.rbegin(); file != result.files.rend(); ++file) {
    if (fs::path(*file).parent_path() != folder)
      ++pictures;
    else
      names += (names.empty() ? "" : ", ") + std::string(fileName(*file));
  }
  if (pictures > 0) names += " and " + std::to_string(pictures) + (pictures == 1 ? " picture" : " pictures");
  return names + " written to " + folder.string();
}

/// The shown model's file, loaded once more to be written or drawn elsewhere. While it loads, the user may
/// hide or show meshes: `hidden` are those from before. Throws LoadError, also where a file that is to be
/// written belongs to the model.
std::unique_ptr<Model> modelFor(const Viewer& viewer, IDirect3DDevice9* device,
                                const std::vector<fs::path>& outputs) {
  LoadResult loaded = loadAgain(viewer, device);
  if (!loaded.model) throw LoadError(loaded.error);
  const fs::path own = fs::path(viewer.loadDirectory) / viewer.view.scene.modelPath;
  for (const fs::path& file : outputs)
    if (belongsToModel(file, *loaded.model, own.string()))
      throw LoadError(file.filename().string() + " belongs to the model; choose another name or folder");
  return std::move(loaded.model);
}

std::vector<bool> hiddenMeshes(const Model& model) {
  std::vector<bool> hidden;
  for (const Mesh& mesh : model.meshes) hidden.push_back(mesh.hidden);
  return hidden;
}

ModernResult exportFor(const Viewer& viewer, const ModernExport& wanted, const std::vector<bool>& hidden) {
  const auto loaded = modelFor(viewer, nullptr, {wanted.path, companionPath(*wanted.format, wanted.path)});
  Model& model = *loaded;
  if (wanted.visibleOnly && model.meshes.size() == hidden.size()) removeMeshes(model, hidden);
  if (model.meshes.empty() && !hidden.empty()) throw LoadError("no mesh is visible");
  scaleModel(model, wanted.scale);
  PictureStore pictures(fs::path(wanted.path).parent_path() / "textures");
  return exportModern(*wanted.format, wanted.path, model, wanted.options, pictures);
}

/// Does a long work, and returns why it failed, or an empty text.
std::string runBusy(const std::function<void()>& work) {
  setBusyCursor(true);
  std::string error;
  runLong([&] {
    try {
      work();
    } catch (const LoadError& failure) {
      error = failure.what();
    } catch (const std::bad_alloc&) {
      error = "out of memory";
    }
  });
  setBusyCursor(false);
  return error;
}

}  // namespace

void exportModelFile(Viewer& viewer, const ModernExport& wanted) {
  const fs::path path = wanted.path;
  viewer.lastExport = wanted;
  viewer.lastSaveDirectory = path.parent_path().string();
  ModernResult result;
  const std::vector<bool> hidden = hiddenMeshes(*viewer.view.scene.model);
  const std::string error = runBusy([&] { result = exportFor(viewer, wanted, hidden); });
  if (!error.empty()) result.error = error;
  viewer.failure = result.error.empty() ? "" : path.filename().string() + ": " + result.error;
  for (const std::string& warning : result.warnings)
    viewer.failure += (viewer.failure.empty() ? "" : "\n") + warning;
  if (result.error.empty())
    statusPrint("%s", exportSummary(result, path.parent_path()).c_str());
  else
    statusPrint("%s", viewer.failure.c_str());
}

// Pictures.

namespace {

/// A view's look and camera as they were when a picture of it was asked for.
struct Shot {
  explicit Shot(const ModelView& view)
      : settings(view.settings), camera(view.camera), hidden(hiddenMeshes(*view.scene.model)) {
    picture.filter = settings.filterMode;
    picture.pixelAspect =
        viewAspect(view) * static_cast<float>(view.clientHeight) / static_cast<float>(view.clientWidth);
  }

  ViewSettings settings;
  Camera camera;
  std::vector<bool> hidden;
  PictureSettings picture;
};

/// Has the view of a picture show what was asked for.
void applyShot(const Shot& shot, ModelView& view) {
  const int8_t noMonitor = view.settings.aspectIndex;
  view.settings = shot.settings;
  view.settings.aspectIndex = noMonitor;  // the shape of the pixels says it
  view.settings.clearColor[3] = 1;
  view.camera = shot.camera;
  view.camera.moveSide = view.camera.moveUp = view.camera.moveForward = 0;
  std::vector<Mesh>& meshes = view.scene.model->meshes;
  for (size_t i = 0; meshes.size() == shot.hidden.size() && i < meshes.size(); ++i)
    meshes[i].hidden = shot.hidden[i];
  setTextureStage(view, shot.settings.renderMode == renderTextured && shot.settings.lightMode != lightOff);
  if (std::exchange(view.settings.flatShading, false)) setQuality(view, false);
  if (std::exchange(view.settings.smoothShading, false)) setQuality(view, true);
  setProjection(view);
}

Picture drawShot(const Viewer& viewer, const Shot& shot, const std::vector<fs::path>& outputs) {
  const Quiet quiet;
  PictureView view(shot.picture);
  if (view.device() == nullptr) throw LoadError("the software device cannot be set up");
  view.show(modelFor(viewer, view.device(), outputs));
  applyShot(shot, view.view());
  Picture picture = view.draw();
  if (picture.pixels.empty()) throw LoadError("the software device gives no picture");
  return picture;
}

DrawnPicture drawPictureFor(const Viewer& viewer, const PictureWish& wish,
                            const std::vector<fs::path>& outputs) {
  const ModelView& view = viewer.view;
  if (!view.scene.model) return {{}, "there is no model"};
  if (view.clientWidth <= 0 || view.clientHeight <= 0) return {{}, "there is no view"};
  Shot shot(view);
  shot.picture.width = wish.width > 0 ? wish.width : static_cast<uint32_t>(view.clientWidth);
  shot.picture.height = wish.height > 0 ? wish.height : static_cast<uint32_t>(view.clientHeight);
  shot.picture.transparent = wish.transparent;
  DrawnPicture drawn;
  drawn.error = runBusy([&] { drawn.picture = drawShot(viewer, shot, outputs); });
  return drawn;
}

}  // namespace

DrawnPicture drawPicture(const Viewer& viewer, const PictureWish& wish) {
  return drawPictureFor(viewer, wish, {});
}

void savePicture(Viewer& viewer, const PictureWish& wish, const std::string& path) {
  viewer.lastPicture = wish;
  viewer.lastSaveDirectory = fs::path(path).parent_path().string();
  const DrawnPicture drawn = drawPictureFor(viewer, wish, {path});
  std::string error = drawn.error;
  if (error.empty()) {
    const auto png = encodePng(drawn.picture.pixels, drawn.picture.width, drawn.picture.height);
    OutputFile file(path);
    file.write({reinterpret_cast<const char*>(png.data()), png.size()});
    if (!file.commit()) error = file.error();
  }
  const std::string name(fileName(path));
  viewer.failure = error.empty() ? "" : name + ": " + error;
  viewer.note = error.empty()
                    ? formatted("%s written, %ux%u", name.c_str(), drawn.picture.width, drawn.picture.height)
                    : "";
}

}  // namespace facet
