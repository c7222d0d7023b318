#include "commands/commands.h"

#include <algorithm>

#include "commands/looking.h"
#include "platform/desktop.h"
#include "render/camera.h"
#include "render/closer_look.h"
#include "render/navigation.h"
#include "render/view.h"

namespace facet {

namespace {

// What the commands do; each returns true where the picture is to be drawn again.

template <class Index>
void cycle(Index& index, size_t count) {
  index = static_cast<Index>((index + 1u) % count);
}

void rebuildProjection(ModelView& view) {
  OnSize(view, view.clientWidth, view.clientHeight);
}

template <bool ViewSettings::*setting>
bool toggle(Viewer& viewer) {
  viewer.view.settings.*setting = !(viewer.view.settings.*setting);
  return true;
}

bool toggleUntextured(Viewer& viewer) {
  viewer.view.settings.showUntextured = !viewer.view.settings.showUntextured;
  viewer.view.scene.buffersBuilt = false;
  return true;
}

bool showsUntextured(const Viewer& viewer) {
  return viewer.view.settings.showUntextured;
}

bool searchesNear(const Viewer& viewer) {
  return viewer.searchNear;
}

bool toggleSearch(Viewer& viewer) {
  viewer.searchNear = !viewer.searchNear;
  reloadModel(viewer);
  return true;
}

bool stepLight(Viewer& viewer) {
  ModelView& view = viewer.view;
  cycle(view.settings.lightMode, 3);
  if (view.settings.renderMode == renderTextured) setTextureStage(view, view.settings.lightMode != lightOff);
  return true;
}

bool stepDrawingMode(Viewer& viewer) {
  ModelView& view = viewer.view;
  view.scene.buffersBuilt = false;
  cycle(view.settings.renderMode, 3);
  view.settings.lightMode = lightOff;
  return true;
}

bool stepFov(Viewer& viewer) {
  ModelView& view = viewer.view;
  view.camera.fovDegrees += 5;
  if (view.camera.fovDegrees >= 100) view.camera.fovDegrees = 47.5f;
  rebuildProjection(view);
  return true;
}

template <int direction>
bool stepAspect(Viewer& viewer) {
  ModelView& view = viewer.view;
  constexpr int count = monitorAspects.size();
  view.settings.aspectIndex = static_cast<int8_t>((view.settings.aspectIndex + direction + count) % count);
  statusPrint("> Aspect ratio: %s", monitorAspects[view.settings.aspectIndex].name);
  rebuildProjection(view);
  return true;
}

bool centerCamera(Viewer& viewer) {
  if (viewer.view.scene.model) viewer.view.camera.eyePosition = viewer.view.scene.model->center;
  return true;
}

bool resetAll(Viewer& viewer) {
  ModelView& view = viewer.view;
  view.settings.backgroundIndex = 2;  // clearColor stays: the next background step goes on from here
  view.settings.noDistanceCut = false;
  view.settings.lightMode = lightOff;
  view.settings.envMode = false;
  view.settings.envTime = 0;
  view.camera = Camera{.fovDegrees = 47.5f};
  rebuildProjection(view);
  return true;
}

bool toggleQuality(Viewer& viewer) {
  setQuality(viewer.view, !viewer.view.settings.smoothShading);
  return true;
}

bool stepFiltering(Viewer& viewer) {
  ModelView& view = viewer.view;
  if (!view.scene.model || view.settings.renderMode != renderTextured) return true;
  cycle(view.settings.filterMode, filterModes.size());
  statusPrint("%s", filterModes[view.settings.filterMode].statusText);
  applyFiltering(view, view.settings.filterMode);
  return true;
}

bool stepBackground(Viewer& viewer) {
  ModelView& view = viewer.view;
  cycle(view.settings.backgroundIndex, backgroundTable.size());
  view.settings.clearColor = backgroundColor(view.settings.backgroundIndex);
  return true;
}

bool stepGamma(Viewer& viewer) {
  viewer.view.settings.gamma = nextGamma(viewer.view.settings.gamma);
  if (Desktop* desktop = currentDesktop()) desktop->setGammaRamp(rampOfGamma(viewer.view.settings.gamma));
  return false;
}

bool showSystemInformation(Viewer& viewer) {
  messageBox(systemInformation(*viewer.view.system.p_d3d, *viewer.view.system.p_device),
             "DirectX Caps Info Panel", MB_OK | MB_ICONINFORMATION | MB_SYSTEMMODAL);
  return true;
}

bool dumpStatistics(Viewer& viewer) {
  return !viewer.view.scene.model ||
         writeStatisticsLog(*viewer.view.scene.model, viewer.view.scene.texturePath);
}

bool showProperties(Viewer& viewer) {
  Desktop* desktop = currentDesktop();
  if (viewer.view.scene.model && desktop != nullptr)
    desktop->showListAndTree(modelData(*viewer.view.scene.model));
  return false;
}

/// Makes the main window maximised, without bars and borders; or gives them back, in the normal size.
bool toggleFullscreen(Viewer& viewer) {
  viewer.fullscreenMode = !viewer.fullscreenMode;
  if (Desktop* desktop = currentDesktop()) {
    desktop->showBars(!viewer.fullscreenMode);
    desktop->decorateFrame(!viewer.fullscreenMode);
    desktop->showFrame(viewer.fullscreenMode);
  }
  return false;
}

template <int hours>
bool changeTime(Viewer& viewer) {
  float& time = viewer.view.settings.envTime;
  time += hours;
  if (time > 24) time = 0;
  if (time < 0) time = 23;
  return true;
}

bool sunriseOrSunset(Viewer& viewer) {
  viewer.view.settings.envTime = viewer.view.settings.envTime == 6 ? 18 : 6;
  return true;
}

bool noon(Viewer& viewer) {
  viewer.view.settings.envTime = 12;
  return true;
}

template <float Camera::*move, int direction>
bool step(Viewer& viewer) {
  viewer.view.camera.*move += direction * viewer.view.camera.moveSpeed;
  return true;
}

template <float Camera::*angle, int degrees>
bool turn(Viewer& viewer) {
  viewer.view.camera.*angle += degrees;
  return true;
}

template <int times, int parts>
bool changeSpeed(Viewer& viewer) {
  viewer.view.camera.moveSpeed *= static_cast<float>(times) / parts;
  return false;
}

/// Browses to a place, or by steps from where the view is. Before the first file, the picture alone is drawn.
template <int32_t place, int32_t steps>
bool browse(Viewer& viewer) {
  if (!viewer.view.scene.model) return false;
  if (steps == 0)
    browseModelFile(viewer, place);
  else if (viewer.view.scene.fileIndex + steps >= 0)
    browseModelFile(viewer, viewer.view.scene.fileIndex + steps);
  return true;
}

// Beside the classic commands.

template <bool ViewSettings::*setting>
bool isOn(const Viewer& viewer) {
  return viewer.view.settings.*setting;
}

bool toggleChecker(Viewer& viewer) {
  viewer.view.settings.uvChecker = !viewer.view.settings.uvChecker;
  viewer.view.scene.buffersBuilt = false;
  return true;
}

bool toggleMeasuring(Viewer& viewer) {
  viewer.view.settings.measuring = !viewer.view.settings.measuring;
  viewer.view.scene.measured.clear();
  return true;
}

bool orbits(const Viewer& viewer) {
  return viewer.orbits;
}

bool doesNotOrbit(const Viewer& viewer) {
  return !viewer.orbits;
}

bool keepsCamera(const Viewer& viewer) {
  return viewer.keepCamera;
}

bool toggleKeepCamera(Viewer& viewer) {
  viewer.keepCamera = !viewer.keepCamera;
  return false;
}

bool watchesFile(const Viewer& viewer) {
  return viewer.watchesFile;
}

bool toggleWatching(Viewer& viewer) {
  viewer.watchesFile = !viewer.watchesFile;
  return false;
}

bool navigateClassic(Viewer& viewer) {
  viewer.orbits = false;
  return false;
}

/// The pivot is the model's middle until another is chosen; the picture stays as it is.
bool toggleOrbit(Viewer& viewer) {
  viewer.orbits = !viewer.orbits;
  if (viewer.orbits && viewer.view.scene.model)
    viewer.view.camera.pivot = boundingSphere(*viewer.view.scene.model).center;
  return false;
}

// Without a model there is nothing to be seen whole.

bool frame(Viewer& viewer) {
  frameVisible(viewer.view);
  return viewer.view.scene.model != nullptr;
}

template <int yaw, int pitch>
bool look(Viewer& viewer) {
  lookFrom(viewer.view, {yaw, pitch});
  return viewer.view.scene.model != nullptr;
}

/// Along the diagonal of a cube: all three axes are equally long.
bool lookIsometric(Viewer& viewer) {
  lookFrom(viewer.view, {-45, 35.264390f});
  return viewer.view.scene.model != nullptr;
}

bool switchProjection(Viewer& viewer) {
  toggleOrthographic(viewer.view);
  return true;
}

bool isParallel(const Viewer& viewer) {
  return viewer.view.camera.orthoHeight > 0;
}

bool hideSelected(Viewer& viewer) {
  const std::vector<uint32_t> selected = viewer.view.scene.selected;
  setHidden(viewer, selected, true);
  return true;
}

bool showSelectedOnly(Viewer& viewer) {
  showOnly(viewer, viewer.view.scene.selected);
  return true;
}

bool showAllMeshes(Viewer& viewer) {
  showAll(viewer);
  return true;
}

bool reload(Viewer& viewer) {
  reloadModel(viewer);
  return true;
}

bool close(Viewer& viewer) {
  closeModel(viewer.view);
  return false;
}

template <void (*handler)(Viewer&), bool draws>
bool handle(Viewer& viewer) {
  handler(viewer);
  return draws;
}

// The table. Columns: id, menu text, prompt, keys, what it does, toolbar button, accelerators, mark.

constexpr std::array<uint8_t, 3> keys(uint8_t first = 0, uint8_t second = 0, uint8_t third = 0) {
  return {first, second, third};
}
constexpr ToolbarButton button(uint8_t place = 0, std::string_view icon = "", std::string_view tooltip = "") {
  return {place, icon, tooltip};
}
constexpr std::array<Accelerator, 2> accelerators(Accelerator first, Accelerator second = {}) {
  return {first, second};
}
constexpr Accelerator held(uint8_t modifiers, uint8_t key) {
  return {key, modifiers};
}
constexpr auto handledByWindow = nullptr, unhandled = nullptr;

/// A row beside the classic ones.
constexpr Command added(uint16_t id, std::string_view menuText, std::string_view prompt, uint8_t key,
                        bool (*run)(Viewer&), std::string_view submenu = "",
                        bool (*checked)(const Viewer&) = nullptr, Accelerator accelerator = {}) {
  return {id, menuText, prompt, keys(key), run, button(), accelerators(accelerator), checked, submenu};
}

constexpr Command fileMenu[] = {
    {57600, "&New...\tCtrl+N", "Close the model", keys(), close, button(1, "file-new", "New"),
     accelerators(held(FCONTROL, 'N'))},
    {},
    {57601, "&Open...\tCtrl+O, F3", "Open a model file", keys(VK_F3), handle<openModelFile, false>,
     button(2, "file-open", "Open"), accelerators(held(FCONTROL, 'O'))},
    added(ID_FILE_RECENT, "Recent &files", "Open a model that was open before", 0, handledByWindow),
    {57603, "&Save"},
    {57604, "Save &As...\tCtrl+S, F2", "Save the model in another format", keys(VK_F2),
     handle<saveModelFile, true>, button(3, "file-save-as", "Save as"), accelerators(held(FCONTROL, 'S'))},
    {ID_FILE_EXPORT, "&Export...\tE", "Write the model with its textures for other programs", keys('E'),
     handledByWindow},
    {},
    added(ID_FILE_SAVE_PICTURE, "Save p&icture...\tP", "Write what is seen as a PNG file", 'P',
          handledByWindow),
    {},
    added(ID_FILE_RELOAD, "&Reload\tR", "Load the model anew", 'R', reload),
    added(ID_FILE_WATCH, "&Watch the file\tAlt+R", "Load the model anew whenever it was written", 0,
          toggleWatching, "", watchesFile, held(FALT, 'R')),
    {},
    {57429, "&Properties...", "Shows model properties", keys(), showProperties,
     button(8, "properties", "Model properties")},
    {},
    {ID_FILE_TEXTURES, "&Texture folders...\tO", "Choose where textures are looked for", keys('O'),
     handledByWindow},
    {},
    {ID_APP_EXIT, "E&xit", "Close the program"},
};

constexpr Command editMenu[] = {
    {57643, "&Undo\tCtrl+Z", "", keys(), unhandled, button(),
     accelerators(held(FCONTROL, 'Z'), held(FALT, VK_BACK))},
    {},
    {57635, "Cu&t\tCtrl+X", "", keys(), unhandled, button(),
     accelerators(held(FCONTROL, 'X'), held(FSHIFT, VK_DELETE))},
    {57634, "&Copy\tCtrl+C", "", keys(), unhandled, button(),
     accelerators(held(FCONTROL, 'C'), held(FCONTROL, VK_INSERT))},
    {57637, "&Paste\tCtrl+V", "", keys(), unhandled, button(),
     accelerators(held(FCONTROL, 'V'), held(FSHIFT, VK_INSERT))},
    added(ID_EDIT_COPY_PICTURE, "Copy p&icture\tAlt+P", "Put what is seen on the clipboard", 0,
          handledByWindow, "", nullptr, held(FALT, 'P')),
    added(ID_EDIT_COPY_CAMERA, "Copy c&amera\tAlt+C",
          "Put the camera on the clipboard, as options of facetbench", 0, handledByWindow, "", nullptr,
          held(FALT, 'C')),
    added(ID_EDIT_PASTE_CAMERA, "Pa&ste camera\tAlt+L", "Look from where the clipboard says", 0,
          handledByWindow, "", nullptr, held(FALT, 'L')),
    {},
    {ID_EDIT_GRID, "Toggle &grid\tF1, G", "Toggle grid", keys(VK_F1, 'G'), toggle<&ViewSettings::envMode>,
     button(10, "grid")},
    {ID_EDIT_LIGHT, "Toggle &light\tF4, L", "Toggle light", keys(VK_F4, 'L'), stepLight, button(11, "light")},
    {ID_EDIT_DRAWING_MODE, "Change &drawing mode\tTab", "Change drawing mode", keys(VK_TAB), stepDrawingMode,
     button(12, "drawing-mode")},
    {},
    {ID_EDIT_FOV, "Change FOV\tF5", "Change screen FOV", keys(VK_F5), stepFov,
     button(13, "fov", "Change FOV")},
    {57434, "Decrease aspect\t5", "Decrease screen aspect ratio", keys('5'), stepAspect<-1>,
     button(5, "aspect-decrease", "Decrease aspect")},
    {57435, "Increase aspect\t6", "Increase screen aspect ratio", keys('6'), stepAspect<1>,
     button(6, "aspect-increase", "Increase aspect")},
    {},
    {57420, "Center camera\tF12", "Center camera", keys(VK_F12), centerCamera},
    {57421, "Reset all\tBackspace", "Reset all", keys(VK_BACK), resetAll, button(17, "reset")},
    {},
    {ID_EDIT_DISTANCE_CUT, "Toggle distance cut\tN", "Toggle distance cut", keys('N'),
     toggle<&ViewSettings::noDistanceCut>, button(19, "distance-cut")},
    {ID_EDIT_QUALITY, "Change quality\tF6", "Change quality", keys(VK_F6), toggleQuality,
     button(20, "quality")},
    {57424, "Change texture filtering\tF9", "Change texture filtering", keys(VK_F9), stepFiltering,
     button(21, "filtering")},
    {ID_EDIT_BACKGROUND, "Change background\tB, <KPad *>", "Change background", keys(VK_MULTIPLY, 'B'),
     stepBackground, button(22, "background")},
    {ID_EDIT_GAMMA, "Change gamma\t/, <KPad />", "Change gamma", keys(VK_DIVIDE, VK_OEM_2), stepGamma,
     button(23, "gamma")},
    {57427, "System information\tI", "System information", keys('I'), showSystemInformation,
     button(24, "system-information")},
    {57436, "Dump object.log\tT", "", keys('T'), dumpStatistics},
    {57428, "Fullscreen mode\tF11", "Fullscreen mode", keys(VK_F11), toggleFullscreen,
     button(25, "fullscreen")},
};

constexpr Command viewMenu[] = {
    {ID_VIEW_TOOLBAR, "&Toolbar", "Show or hide the toolbar"},
    {ID_VIEW_STATUS_BAR, "&Status Bar", "Show or hide the status bar"},
    {},
    {ID_VIEW_LATER, "Increase time\t+, <KPad +>", "Increase time by 1 hour", keys(VK_ADD, '8', VK_OEM_PLUS),
     changeTime<1>},
    {ID_VIEW_EARLIER, "Decrease time\t-, <KPad ->", "Decrease time by 1 hour",
     keys(VK_SUBTRACT, '7', VK_OEM_MINUS), changeTime<-1>},
    {},
    {57406, "Strafe Left\tDelete", "Strafe camera left", keys(VK_DELETE), step<&Camera::moveSide, 1>},
    {57407, "Strafe Right\tPgDown", "Strafe camera right", keys(VK_NEXT), step<&Camera::moveSide, -1>},
    {57408, "Move Down\tCtrl", "Move camera down", keys(VK_CONTROL), step<&Camera::moveUp, 1>},
    {57409, "Move Up\tShift", "Move camera up", keys(VK_SHIFT), step<&Camera::moveUp, -1>},
    // Each of the next two hints names the other's arrow. The texts are part of the program as they stand;
    // the keys move the way their arrows point.
    {57410, "Move Backward\tS, UpArrow", "Move camera backward", keys(VK_DOWN, 'S'),
     step<&Camera::moveForward, 1>},
    {57411, "Move Forward\tW, DownArrow", "Move camera forward", keys(VK_UP, 'W'),
     step<&Camera::moveForward, -1>},
    {},
    {57412, "Pitch Up\tHome", "Pitch camera up", keys(VK_HOME), turn<&Camera::pitch, -5>},
    {57413, "Pitch Down\tEnd", "Pitch camera down", keys(VK_END), turn<&Camera::pitch, 5>},
    {57414, "Yaw Left\tA, LeftArrow", "Yaw camera left", keys(VK_LEFT, 'A'), turn<&Camera::yaw, -5>},
    {57415, "Yaw Right\tD, RightArrow", "Yaw camera right", keys(VK_RIGHT, 'D'), turn<&Camera::yaw, 5>},
    {},
    {ID_VIEW_FASTER, "Increase move speed\tF7", "Increase move speed", keys(VK_F7), changeSpeed<4, 1>,
     button(16, "speed-increase")},
    {ID_VIEW_SLOWER, "Decrease move speed\tF8", "Decrease move speed", keys(VK_F8), changeSpeed<1, 4>,
     button(15, "speed-decrease")},
    {},
    {ID_VIEW_UNTEXTURED,
     "Show &untextured meshes\tU",
     "Draw meshes without a texture in their colours",
     keys('U'),
     toggleUntextured,
     button(),
     {},
     showsUntextured},
    {ID_VIEW_SEARCH_NEAR,
     "Search for textures &near the model\tK",
     "Find the textures that no texture folder has",
     keys('K'),
     toggleSearch,
     button(),
     {},
     searchesNear},
    {},
    added(ID_VIEW_CLASSIC, "&Classic", "The mouse flies the camera", 0, navigateClassic, "Navigation",
          doesNotOrbit),
    added(ID_VIEW_ORBIT, "&Orbit\tSpace", "The mouse turns about the model", VK_SPACE, toggleOrbit,
          "Navigation", orbits),
    added(ID_VIEW_KEEP_CAMERA, "&Keep the camera\tAlt+K",
          "While orbiting, do not frame models that are opened", 0, toggleKeepCamera, "Navigation",
          keepsCamera, held(FALT, 'K')),
    added(ID_VIEW_FRAME, "&Frame\tF", "See the selected meshes, or the whole model", 'F', frame, "Look from"),
    added(ID_VIEW_FRONT, "F&ront\t1", "Look along +z", '1', look<0, 0>, "Look from"),
    added(ID_VIEW_BACK, "&Back\tAlt+1", "Look along -z", 0, look<180, 0>, "Look from", nullptr,
          held(FALT, '1')),
    added(ID_VIEW_RIGHT, "R&ight\t2", "Look along -x", '2', look<-90, 0>, "Look from"),
    added(ID_VIEW_LEFT, "&Left\tAlt+2", "Look along +x", 0, look<90, 0>, "Look from", nullptr,
          held(FALT, '2')),
    added(ID_VIEW_TOP, "&Top\t3", "Look down", '3', look<0, 90>, "Look from"),
    added(ID_VIEW_BOTTOM, "B&ottom\tAlt+3", "Look up", 0, look<0, -90>, "Look from", nullptr,
          held(FALT, '3')),
    added(ID_VIEW_ISOMETRIC, "I&sometric\t4", "Look along the diagonal of a cube", '4', lookIsometric,
          "Look from"),
    added(ID_VIEW_ORTHOGRAPHIC, "Ort&hographic\tAlt+4", "Parallel projection", 0, switchProjection,
          "Look from", isParallel, held(FALT, '4')),
    added(ID_VIEW_WIRES, "&Wires over shaded\tY", "Draw the edges of the triangles", 'Y',
          toggle<&ViewSettings::wires>, "Look closer", isOn<&ViewSettings::wires>),
    added(ID_VIEW_BOXES, "&Bounding boxes\tAlt+X", "Draw a box around each mesh", 0,
          toggle<&ViewSettings::boxes>, "Look closer", isOn<&ViewSettings::boxes>, held(FALT, 'X')),
    added(ID_VIEW_NORMALS, "Vertex &normals\tAlt+N", "Draw the normal of each vertex", 0,
          toggle<&ViewSettings::normals>, "Look closer", isOn<&ViewSettings::normals>, held(FALT, 'N')),
    added(ID_VIEW_UV_CHECKER, "&UV checker\tAlt+U", "Draw a checker board in place of the textures", 0,
          toggleChecker, "Look closer", isOn<&ViewSettings::uvChecker>, held(FALT, 'U')),
    added(ID_VIEW_AXES, "&Axes in the corner\tAlt+A", "Show where x, y and z point", 0,
          toggle<&ViewSettings::gizmo>, "Look closer", isOn<&ViewSettings::gizmo>, held(FALT, 'A')),
    added(ID_VIEW_DISTANCE, "&Distance\tAlt+D", "Tell how far two clicked points are apart", 0,
          toggleMeasuring, "Look closer", isOn<&ViewSettings::measuring>, held(FALT, 'D')),
    added(ID_VIEW_HIDE_SELECTED, "&Hide selected\tH", "Hide the selected meshes", 'H', hideSelected,
          "Meshes"),
    added(ID_VIEW_ONLY_SELECTED, "Show &only selected\tQ", "Hide all meshes but the selected ones", 'Q',
          showSelectedOnly, "Meshes"),
    added(ID_VIEW_SHOW_ALL, "Show &all\tAlt+Q", "Show all meshes again", 0, showAllMeshes, "Meshes", nullptr,
          held(FALT, 'Q')),
    added(ID_VIEW_MODEL_PANEL, "&Model\tM", "Show what the model is made of", 'M', handledByWindow, "Panels"),
    added(ID_VIEW_FOLDER_PANEL, "&Folder\tJ", "Show the models of the folder", 'J', handledByWindow,
          "Panels"),
};

constexpr Command browseMenu[] = {
    {57430, "First\tZ", "Browse first", keys('Z'), browse<0, 0>, button(27, "browse-first")},
    {57431, "Previous\tX", "Browse previous", keys('X'), browse<0, -1>, button(28, "browse-previous")},
    {57432, "Next\tC", "Browse next", keys('C'), browse<0, 1>, button(29, "browse-next")},
    {57433, "Last\tV", "Browse last", keys('V'), browse<-1, 0>, button(30, "browse-last")},
};

constexpr Command helpMenu[] = {
    {ID_HELP_KEYS, "&Keyboard and mouse...", "Show what keys and mouse do"},
    {ID_APP_ABOUT, "&About VXMViewer...", "About this program", keys(), handledByWindow,
     button(32, "about", "About")},
};

constexpr Command keysAlone[] = {
    {0, "Switch time between 6 and 18 o'clock", "", keys('9'), sunriseOrSunset},
    {0, "Set time to 12 o'clock", "", keys('0'), noon},
    {0, "Decrease roll angle", "", keys(VK_PRIOR), turn<&Camera::roll, -5>},
    {0, "Increase roll angle", "", keys(VK_INSERT), turn<&Camera::roll, 5>},
    {57607, "Print", "", keys(), unhandled, button(), accelerators(held(FCONTROL, 'P'))},
};

constexpr Menu menus[] = {
    {"&File", fileMenu},     {"&Edit", editMenu}, {"&View", viewMenu},
    {"&Browse", browseMenu}, {"&Help", helpMenu}, {"", keysAlone},
};

template <class Matches>
const Command* find(Matches matches) {
  for (const Menu& menu : menus) {
    const auto found = std::ranges::find_if(menu.commands, matches);
    if (found != menu.commands.end()) return &*found;
  }
  return nullptr;
}

bool run(Viewer& viewer, const Command* command) {
  if (command == nullptr || command->run == nullptr) return false;
  if (carryOut(viewer, *command)) renderFrame(viewer.view);
  return true;
}

}  // namespace

std::span<const Menu> commandMenus() {
  return menus;
}

const Command* commandOfId(uint32_t id) {
  return find([&](const Command& command) { return id != 0 && command.id == id; });
}

const Command* commandOfKey(uint32_t key) {
  return find([&](const Command& command) { return key != 0 && std::ranges::count(command.keys, key) != 0; });
}

const Command* commandOfAccelerator(uint32_t key, uint32_t modifiers) {
  const auto pressed = [&](const Accelerator& a) {
    return key != 0 && a.key == key && a.modifiers == modifiers;
  };
  return find([&](const Command& command) { return std::ranges::any_of(command.accelerators, pressed); });
}

bool waitsForLoad(const Command& command) {
  constexpr bool (*ofOtherMenus[])(Viewer&) = {centerCamera, dumpStatistics, toggleSearch};
  const auto isIn = [&](std::span<const Command> menu) {
    return &command >= menu.data() && &command < menu.data() + menu.size();
  };
  return isIn(fileMenu) || isIn(browseMenu) || std::ranges::count(ofOtherMenus, command.run) != 0 ||
         command.submenu == "Look from" || command.submenu == "Meshes";
}

std::vector<const Command*> toolbarCommands() {
  std::vector<const Command*> buttons;
  for (const Menu& menu : menus)
    for (const Command& command : menu.commands) {
      const uint8_t place = command.button.place;
      if (place > buttons.size()) buttons.resize(place);
      if (place != 0) buttons[place - 1u] = &command;
    }
  return buttons;
}

bool carryOut(Viewer& viewer, const Command& command) {
  if (command.run == nullptr) return false;
  viewer.note.clear();
  const bool draws = command.run(viewer);
  if (std::string state = stateText(viewer, command.id); !state.empty()) viewer.note = std::move(state);
  return draws;
}

void OnKeyDown(Viewer& viewer, uint32_t key) {
  run(viewer, commandOfKey(key));
}

bool OnCommand(Viewer& viewer, uint32_t id) {
  return run(viewer, commandOfId(id));
}

// The sheet of shortcuts.

namespace {

struct KeyName {
  uint8_t key;
  const char* name;
};
constexpr KeyName keyNames[] = {
    {VK_BACK, "Backspace"},    {VK_TAB, "Tab"},         {VK_SHIFT, "Shift"},       {VK_CONTROL, "Ctrl"},
    {VK_PRIOR, "Page Up"},     {VK_NEXT, "Page Down"},  {VK_END, "End"},           {VK_HOME, "Home"},
    {VK_LEFT, "Left Arrow"},   {VK_UP, "Up Arrow"},     {VK_RIGHT, "Right Arrow"}, {VK_DOWN, "Down Arrow"},
    {VK_INSERT, "Insert"},     {VK_DELETE, "Delete"},   {VK_MULTIPLY, "Keypad *"}, {VK_ADD, "Keypad +"},
    {VK_SUBTRACT, "Keypad -"}, {VK_DIVIDE, "Keypad /"}, {VK_OEM_PLUS, "+"},        {VK_OEM_MINUS, "-"},
    {VK_OEM_2, "/"},           {VK_SPACE, "Space"},
};

/// "Ctrl+Insert"
std::string keyName(uint8_t key, uint8_t modifiers = 0) {
  std::string name;
  if ((modifiers & FCONTROL) != 0) name += "Ctrl+";
  if ((modifiers & FALT) != 0) name += "Alt+";
  if ((modifiers & FSHIFT) != 0) name += "Shift+";
  const auto named = std::ranges::find(keyNames, key, &KeyName::key);
  if (named != std::end(keyNames)) return name + named->name;
  if (key >= VK_F1 && key <= VK_F12) return name + "F" + std::to_string(key - VK_F1 + 1);
  return name + static_cast<char>(key);
}

}  // namespace

std::string keysOf(const Command& command) {
  std::string names;
  const auto append = [&](const std::string& name) { names += (names.empty() ? "" : ", ") + name; };
  for (const uint8_t key : command.keys)
    if (key != 0) append(keyName(key));
  for (const Accelerator& accelerator : command.accelerators)
    if (accelerator.key != 0) append(keyName(accelerator.key, accelerator.modifiers));
  return names;
}

namespace {

/// A menu text without mnemonic, dots and hint.
std::string label(std::string_view menuText) {
  std::string text(menuText.substr(0, menuText.find('\t')));
  std::erase(text, '&');
  return text.substr(0, text.find("..."));
}

}  // namespace

std::vector<Shortcut> shortcutSheet() {
  std::vector<Shortcut> sheet;
  for (const Menu& menu : menus)
    for (const Command& command : menu.commands) {
      std::string names = keysOf(command);
      const std::string where = command.submenu.empty() ? "" : std::string(command.submenu) + ": ";
      if (command.enabled() && !names.empty())
        sheet.push_back({std::move(names), where + label(command.menuText)});
    }
  const Shortcut mouse[] = {
      {"Left button", "Drag to turn the camera"},
      {"Right button", "Drag to move the camera forward and backward"},
      {"Middle button", "Drag to move the camera sideways, forward and backward"},
      {"Wheel", "Move the camera forward and backward by the move speed"},
      {"Click", "Select the mesh under the pointer, or set the end of a distance"},
      {"Left button, orbiting", "Drag to turn about the pivot"},
      {"Right or middle button, orbiting", "Drag to move sideways and up"},
      {"Wheel, orbiting", "Come nearer to what is under the pointer"},
      {"Double click, orbiting", "Turn about what is under the pointer"},
  };
  sheet.insert(sheet.end(), std::begin(mouse), std::end(mouse));
  return sheet;
}

}  // namespace facet
