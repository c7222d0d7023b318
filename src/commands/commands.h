#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "device/device.h"
#include "export/modern.h"
#include "import/load.h"
#include "model/model.h"
#include "platform/desktop.h"
#include "render/picture_view.h"
#include "render/view.h"

// The commands of the window as one table: menus, toolbar, accelerators, status prompts, the sheet of
// shortcuts and the handler of keys are made from it. A command does the same from keyboard, menu and
// toolbar.

// The files that the window works with: its configuration, and the models that it opens, steps through and
// saves. Opening loads, and then puts the model in place of the one before, sets the window's title and
// draws. A file that does not load leaves the view empty and tells its reason on the status line; a load that
// is cancelled leaves everything as it was.

// What the commands tell about the model, the graphics adapter and the display.

namespace facet {

/// A file to be written in a modern format.
struct ModernExport {
  const ModernFormat* format = nullptr;
  std::string path;  ///< absolute
  ModernOptions options;
  float scale = 1;
  bool visibleOnly = false;  ///< hidden meshes, and materials that only those have, are left out
};

/// A picture to be made of the view, in pixels of the screen.
struct PictureWish {
  uint32_t width = 0, height = 0;  ///< 0: as large as the view
  bool transparent = false;
};

/// A view and what its commands remember from one to the next. Whoever hosts the view owns this record, and
/// has set the view's device up before the first command.
struct Viewer {
  ModelView view;
  std::string commandLine;        ///< the program's arguments as one text: what to open first, or empty
  bool commandLineUsed = false;   ///< the first openModelFile has been
  std::string lastOpenDirectory;  ///< of the last file or folder that was opened or dropped
  std::string lastSaveDirectory;  ///< of the last accepted save dialog
  ModernExport lastExport;
  PictureWish lastPicture;
  bool fullscreenMode = false;
  bool searchNear = true;     ///< textures that no base path has are looked for near the model
  std::string loadDirectory;  ///< the current one when the model was loaded: relative names start there
  std::string configuration;  ///< the file that base paths are written to
  std::string failure;        ///< of the last save or export: why, or what it left out, a line each
  bool cancelled = false;     ///< the last load was
  std::string note;           ///< what the last command left, where the status line does not say it
  bool orbits = false;        ///< the mouse turns about the pivot, and a model that is opened is framed
  bool keepCamera = false;    ///< models that are opened are not framed
  bool watchesFile = false;   ///< the model is loaded anew when its files have been written
};

/// Keys by Windows' virtual-key codes and names; letters and digits of the main keyboard are their ASCII
/// codes, letters upper case. Shift and Control are keys of their own.
enum VirtualKey : uint8_t {
  VK_BACK = 0x08,
  VK_TAB = 0x09,
  VK_SHIFT = 0x10,
  VK_CONTROL = 0x11,
  VK_SPACE = 0x20,
  VK_PRIOR = 0x21,  ///< Page Up
  VK_NEXT = 0x22,   ///< Page Down
  VK_END = 0x23,
  VK_HOME = 0x24,
  VK_LEFT = 0x25,
  VK_UP = 0x26,
  VK_RIGHT = 0x27,
  VK_DOWN = 0x28,
  VK_INSERT = 0x2D,
  VK_DELETE = 0x2E,
  VK_MULTIPLY = 0x6A,  ///< of the keypad, like the next three
  VK_ADD = 0x6B,
  VK_SUBTRACT = 0x6D,
  VK_DIVIDE = 0x6F,
  VK_F1 = 0x70,  ///< the other function keys follow
  VK_F2,
  VK_F3,
  VK_F4,
  VK_F5,
  VK_F6,
  VK_F7,
  VK_F8,
  VK_F9,
  VK_F10,
  VK_F11,
  VK_F12,
  VK_OEM_PLUS = 0xBB,   ///< = + of the main keyboard
  VK_OEM_MINUS = 0xBD,  ///< - _ of the main keyboard
  VK_OEM_2 = 0xBF,      ///< / ? of the main keyboard
};

/// Keys held with another one; bits can be added.
enum KeyModifiers : uint8_t { FSHIFT = 4, FCONTROL = 8, FALT = 16 };

/// The commands that the main window carries out itself.
enum WindowCommand : uint16_t {
  ID_APP_ABOUT = 57664,
  ID_APP_EXIT = 57665,
  ID_HELP_KEYS = 57666,  ///< shows shortcutSheet()
  ID_FILE_EXPORT = 58000,
  ID_FILE_TEXTURES = 58001,
  ID_FILE_RELOAD = 58005,  ///< the view's
  ID_FILE_SAVE_PICTURE = 58006,
  ID_FILE_RECENT = 58008,  ///< a menu of its own
  ID_EDIT_COPY_CAMERA = 58009,
  ID_EDIT_PASTE_CAMERA = 58051,
  ID_EDIT_COPY_PICTURE = 58052,
  ID_VIEW_MODEL_PANEL = 58060,
  ID_VIEW_FOLDER_PANEL = 58061,
  ID_VIEW_TOOLBAR = 59392,
  ID_VIEW_STATUS_BAR = 59393,
};

/// Commands of the view that tell what they left, and those beside the classic ones.
enum ViewCommand : uint16_t {
  ID_EDIT_GRID = 57400,
  ID_EDIT_LIGHT = 57401,
  ID_EDIT_DRAWING_MODE = 57402,
  ID_EDIT_FOV = 57403,
  ID_VIEW_LATER = 57404,
  ID_VIEW_EARLIER = 57405,
  ID_VIEW_SLOWER = 57418,
  ID_VIEW_FASTER = 57419,
  ID_EDIT_DISTANCE_CUT = 57422,
  ID_EDIT_QUALITY = 57423,
  ID_EDIT_BACKGROUND = 57425,
  ID_EDIT_GAMMA = 57426,
  ID_VIEW_UNTEXTURED = 58002,
  ID_VIEW_SEARCH_NEAR = 58003,
  ID_FILE_WATCH = 58007,
  ID_VIEW_CLASSIC = 58010,
  ID_VIEW_ORBIT = 58011,
  ID_VIEW_FRAME = 58012,
  ID_VIEW_FRONT = 58013,
  ID_VIEW_BACK = 58014,
  ID_VIEW_RIGHT = 58015,
  ID_VIEW_LEFT = 58016,
  ID_VIEW_TOP = 58017,
  ID_VIEW_BOTTOM = 58018,
  ID_VIEW_ISOMETRIC = 58019,
  ID_VIEW_ORTHOGRAPHIC = 58020,
  ID_VIEW_WIRES = 58030,
  ID_VIEW_BOXES = 58031,
  ID_VIEW_NORMALS = 58032,
  ID_VIEW_UV_CHECKER = 58033,
  ID_VIEW_AXES = 58034,
  ID_VIEW_DISTANCE = 58035,
  ID_VIEW_HIDE_SELECTED = 58040,
  ID_VIEW_ONLY_SELECTED = 58041,
  ID_VIEW_SHOW_ALL = 58042,
  ID_VIEW_KEEP_CAMERA = 58050,
};

/// A key that sends a command from anywhere in the window, when exactly these modifiers are held with it.
struct Accelerator {
  uint8_t key = 0, modifiers = 0;
};

/// A button of the toolbar.
struct ToolbarButton {
  uint8_t place = 0;         ///< from 1; places between buttons are separators; 0: there is no button
  std::string_view icon;     ///< file name of a picture of 16 x 16, without folder and extension
  std::string_view tooltip;  ///< empty: the prompt of the command
};

/// One row: what a command is called, where it is found, and what it does. A row without menu text is a
/// separator of the menu. The fields stand in the order in which a row is read.
struct Command {                  // NOLINT(clang-analyzer-optin.performance.Padding)
  uint16_t id = 0;                ///< 0: no menu sends it
  std::string_view menuText{};    ///< label, '&' before the mnemonic; then perhaps a tab and a shortcut hint
  std::string_view prompt{};      ///< on the status bar while the menu entry is highlighted
  std::array<uint8_t, 3> keys{};  ///< virtual keys that do the same wherever the view has the focus
  /// True: the picture is to be drawn again. None: the main window carries it out, or nothing does.
  bool (*run)(Viewer& viewer) = nullptr;
  ToolbarButton button{};
  std::array<Accelerator, 2> accelerators{};
  bool (*checked)(const Viewer& viewer) = nullptr;  ///< whether its menu entry has a mark; none: never
  std::string_view submenu{};  ///< neighbours with the same text stand in a menu of that name

  /// False: nothing handles it, menus show it greyed.
  bool enabled() const { return run != nullptr || (id >= ID_APP_ABOUT && id <= ID_VIEW_STATUS_BAR); }
};

struct Menu {
  std::string_view text;
  std::span<const Command> commands;
};

/// All commands: the drop-down menus of the menu bar, and last, without a text, what has keys alone.
std::span<const Menu> commandMenus();

/// The toolbar from left to right; null is a separator.
std::vector<const Command*> toolbarCommands();

// Each finds a command in the table, or none.
const Command* commandOfId(uint32_t id);
const Command* commandOfKey(uint32_t key);
const Command* commandOfAccelerator(uint32_t key, uint32_t modifiers);

/// True for what reads or changes the model itself or its file, and so has to wait while another one loads.
bool waitsForLoad(const Command& command);

/// Carries a row's command out, without a frame. True: the picture is to be drawn again. A command that is
/// the main window's does nothing here.
bool carryOut(Viewer& viewer, const Command& command);

/// A key went down, or repeats while it is held. Carries out its command and draws a frame where the command
/// changes the picture. Keys without a command do nothing. Neither accelerators nor keys held with Alt come
/// here; other modifiers do not matter.
void OnKeyDown(Viewer& viewer, uint32_t key);

/// Offers a command of menu, toolbar or accelerator to the view. False when it is left to the main window.
bool OnCommand(Viewer& viewer, uint32_t id);

struct Shortcut {
  std::string keys;    ///< "Up Arrow, W"
  std::string effect;  ///< "Move Forward"
};

/// The keys of a command as people read them: "Ctrl+O, F3"; empty where it has none.
std::string keysOf(const Command& command);

/// What every key and the mouse do, in the order of the menus, for people to read.
std::vector<Shortcut> shortcutSheet();

/// The status bar: its message pane's text while there is nothing to say, and its lock-key panes.
inline constexpr std::string_view idleStatusText = "Ready";
inline constexpr std::array<std::string_view, 3> lockIndicators = {"CAP", "NUM", "SCRL"};

inline constexpr std::string_view configurationName = "VXMViewer.cfg";

/// How many bytes of a configuration file count.
inline constexpr size_t configurationLimit = 260;

/// Base paths as people give them: a folder gets its separator.
BasePaths basePathsOf(std::vector<std::string> given);

/// What is searched when there is no configuration file: "gamedata\textures\" under the current directory.
BasePaths defaultBasePaths();

/// Base paths from the bytes of a configuration file: texts separated by single NULs, closed by an empty one
/// or by the end. Bytes are taken as they are; a line end would become part of a path.
BasePaths parseConfiguration(std::string_view bytes);

/// The base paths of a configuration file, none when it cannot be opened.
std::optional<BasePaths> readConfigurationFile(const std::string& path);

/// Where the window looks for its configuration file, in this order: beside the last separator of the command
/// line (the quoted program path, a blank, the arguments), whatever that separates, then in the current
/// directory.
std::vector<std::string> configurationPlaces(std::string_view commandLine);

/// The configuration of the window: that of the first place whose file opens; without one, a warning box and
/// the default.
BasePaths readConfiguration(std::string_view commandLine);

/// The file that readConfiguration() reads; where there is none, one beside the model that the command line
/// names, or in the current directory.
std::string configurationToWrite(std::string_view commandLine, std::string model);

/// Writes base paths to a configuration file, whole or not at all; the reason where that fails, and where
/// they do not fit.
std::string writeConfiguration(const std::string& path, const BasePaths& basePaths);

/// Opens what the command line names, on the first call: a model, or like openPath() a folder or file://
/// name. Otherwise the file chosen in the dialog, which is loaded while its folder is the current directory,
/// the same as before afterwards. A cancelled dialog changes nothing.
void openModelFile(Viewer& viewer);

/// Opens a file, or the first model file of a folder, that a person pointed at. The folder becomes the one
/// that the next dialog opens in, and is the current directory while the model loads, for relative base
/// paths. `path` is absolute.
void openPath(Viewer& viewer, const std::string& path);

/// Loads the model anew, with the base paths and the search that hold now; camera, title and, where the
/// meshes are as many as before, the hidden ones stay. One that does not load any more, or has lost all its
/// meshes, is told of on the status line and in the note, and the view keeps the one it has.
void reloadModel(Viewer& viewer);

/// The names of a folder's model files, in the order that browsing takes them. A folder that cannot be read
/// has none.
std::vector<std::string> modelFiles(const std::filesystem::path& folder);

/// Loads the model file at this place among those of the current model's folder, in the order of their names
/// (letter case ignored); any place outside, -1 too, means the last. Where a file does not load, the next
/// ones are tried and then, backwards, the ones before, each once. The view's fileIndex tells the place of
/// the one loaded. A folder without model files changes nothing.
void browseModelFile(Viewer& viewer, int32_t target);

/// Asks where to and writes the model in the format of the chosen file type, whatever extension was typed.
/// The current directory is the same afterwards. Without a model, does nothing.
void saveModelFile(Viewer& viewer);

/// Loads the shown model's file anew and writes it in a modern format; the model shown stays as it is. The
/// status line tells what was written, `failure` what was not. Files of the model itself are not written
/// over.
void exportModelFile(Viewer& viewer, const ModernExport& wanted);

/// A picture of the view, or the reason why there is none. The software device draws the model's file, loaded
/// anew, as the view shows it, without the texts, the selection and the measured distance; where no lines are
/// drawn over it, as `facetbench render` does with cameraOptions(). A picture of another shape than the view
/// shows more or less at its sides.
struct DrawnPicture {
  Picture picture;
  std::string error;
};
DrawnPicture drawPicture(const Viewer& viewer, const PictureWish& wish);

/// Writes such a picture as a PNG file; the note tells of it, or `failure` why not. Files of the model itself
/// are not written over.
void savePicture(Viewer& viewer, const PictureWish& wish, const std::string& path);

/// A model, its materials (those of the sky included) and its meshes with their figures, as texts.
ListAndTree modelData(const Model& model);

/// Which textures a model lacks and why, and where they were looked for; a line each, some thirty at most.
std::string missingTexturesDetails(const Model& model);

/// The statistics of a model as text: totals, own materials with their flags and whether their texture was
/// found, and memory estimates. Counts and products are 32-bit and wrap. Lines end with a line feed.
std::string statisticsLog(const Model& model, const BasePaths& basePaths);

/// The command "Dump object.log": writes the statistics to "object.log" in the current directory and shows
/// "object.log created"; the status line tells when not all could be written. False, showing nothing, when
/// the file cannot be created.
bool writeStatisticsLog(const Model& model, const BasePaths& basePaths);

/// Identity and capabilities of the graphics adapter; lines end with a carriage return.
std::string systemInformation(IDirect3D9& direct3D, IDirect3DDevice9& device);

/// The gamma after this one: 0.1 more, and from 3.0 back to 1.0.
float nextGamma(float gamma);

/// The ramp of a gamma above 0, equal for the three channels. 1.0 gives 0, 256, .. 65280.
GammaRamp rampOfGamma(float gamma);

}  // namespace facet
