#include "commands/command_table.h"

#include <algorithm>

namespace facet {

namespace {

constexpr Command commands[] = {
    {ID_FILE_NEW, "&New...\tCtrl+N", "Close the model", "New"},
    {ID_FILE_OPEN, "&Open...\tCtrl+O, F3", "Open a model file", "Open", {VK_F3}},
    {ID_FILE_SAVE, "&Save", "", "", {}, false},
    {ID_FILE_SAVE_AS, "Save &As...\tCtrl+S, F2", "Save the model in another format", "Save as", {VK_F2}},
    {ID_PROPERTIES, "&Properties...", "Shows model properties", "Model properties"},
    {ID_APP_EXIT, "E&xit", "Close the program", ""},

    {ID_EDIT_UNDO, "&Undo\tCtrl+Z", "", "", {}, false},
    {ID_EDIT_CUT, "Cu&t\tCtrl+X", "", "", {}, false},
    {ID_EDIT_COPY, "&Copy\tCtrl+C", "", "", {}, false},
    {ID_EDIT_PASTE, "&Paste\tCtrl+V", "", "", {}, false},
    {ID_TOGGLE_GRID, "Toggle &grid\tF1, G", "Toggle grid", "Toggle grid", {VK_F1, 'G'}},
    {ID_TOGGLE_LIGHT, "Toggle &light\tF4, L", "Toggle light", "Toggle light", {VK_F4, 'L'}},
    {ID_DRAWING_MODE, "Change &drawing mode\tTab", "Change drawing mode", "Change drawing mode", {VK_TAB}},
    {ID_CHANGE_FOV, "Change FOV\tF5", "Change screen FOV", "Change FOV", {VK_F5}},
    {ID_DECREASE_ASPECT, "Decrease aspect\t5", "Decrease screen aspect ratio", "Decrease aspect", {'5'}},
    {ID_INCREASE_ASPECT, "Increase aspect\t6", "Increase screen aspect ratio", "Increase aspect", {'6'}},
    {ID_CENTER_CAMERA, "Center camera\tF12", "Center camera", "Center camera", {VK_F12}},
    {ID_RESET_ALL, "Reset all\tBackspace", "Reset all", "Reset all", {VK_BACK}},
    {ID_DISTANCE_CUT, "Toggle distance cut\tN", "Toggle distance cut", "Toggle distance cut", {'N'}},
    {ID_CHANGE_QUALITY, "Change quality\tF6", "Change quality", "Change quality", {VK_F6}},
    {ID_CHANGE_FILTERING,
     "Change texture filtering\tF9",
     "Change texture filtering",
     "Change texture filtering",
     {VK_F9}},
    {ID_CHANGE_BACKGROUND,
     "Change background\tB, <KPad *>",
     "Change background",
     "Change background",
     {VK_MULTIPLY, 'B'}},
    {ID_CHANGE_GAMMA, "Change gamma\t/, <KPad />", "Change gamma", "Change gamma", {VK_DIVIDE, VK_OEM_2}},
    {ID_SYSTEM_INFORMATION, "System information\tI", "System information", "System information", {'I'}},
    {ID_STATISTICS_LOG, "Dump object.log\tT", "", "", {'T'}},
    {ID_FULLSCREEN, "Fullscreen mode\tF11", "Fullscreen mode", "Fullscreen mode", {VK_F11}},

    {ID_VIEW_TOOLBAR, "&Toolbar", "Show or hide the toolbar", ""},
    {ID_VIEW_STATUS_BAR, "&Status Bar", "Show or hide the status bar", ""},
    {ID_INCREASE_TIME,
     "Increase time\t+, <KPad +>",
     "Increase time by 1 hour",
     "",
     {VK_ADD, '8', VK_OEM_PLUS}},
    {ID_DECREASE_TIME,
     "Decrease time\t-, <KPad ->",
     "Decrease time by 1 hour",
     "",
     {VK_SUBTRACT, '7', VK_OEM_MINUS}},
    {ID_STRAFE_LEFT, "Strafe Left\tDelete", "Strafe camera left", "Strafe camera left", {VK_DELETE}},
    {ID_STRAFE_RIGHT, "Strafe Right\tPgDown", "Strafe camera right", "Strafe camera right", {VK_NEXT}},
    {ID_MOVE_DOWN, "Move Down\tCtrl", "Move camera down", "Move camera down", {VK_CONTROL}},
    {ID_MOVE_UP, "Move Up\tShift", "Move camera up", "Move camera up", {VK_SHIFT}},
    // The hints of the next two name the wrong arrows; users know the texts as they are.
    {ID_MOVE_BACKWARD,
     "Move Backward\tS, UpArrow",
     "Move camera backward",
     "Move camera backward",
     {VK_DOWN, 'S'}},
    {ID_MOVE_FORWARD,
     "Move Forward\tW, DownArrow",
     "Move camera forward",
     "Move camera forward",
     {VK_UP, 'W'}},
    {ID_PITCH_UP, "Pitch Up\tHome", "Pitch camera up", "Pitch camera up", {VK_HOME}},
    {ID_PITCH_DOWN, "Pitch Down\tEnd", "Pitch camera down", "Pitch camera down", {VK_END}},
    {ID_YAW_LEFT, "Yaw Left\tA, LeftArrow", "Yaw camera left", "Yaw camera left", {VK_LEFT, 'A'}},
    {ID_YAW_RIGHT, "Yaw Right\tD, RightArrow", "Yaw camera right", "Yaw camera right", {VK_RIGHT, 'D'}},
    {ID_INCREASE_SPEED, "Increase move speed\tF7", "Increase move speed", "Increase move speed", {VK_F7}},
    {ID_DECREASE_SPEED, "Decrease move speed\tF8", "Decrease move speed", "Decrease move speed", {VK_F8}},

    {ID_BROWSE_FIRST, "First\tZ", "Browse first", "Browse first", {'Z'}},
    {ID_BROWSE_PREVIOUS, "Previous\tX", "Browse previous", "Browse previous", {'X'}},
    {ID_BROWSE_NEXT, "Next\tC", "Browse next", "Browse next", {'C'}},
    {ID_BROWSE_LAST, "Last\tV", "Browse last", "Browse last", {'V'}},

    {ID_HELP_KEYS, "&Keyboard and mouse...", "Show what keys and mouse do", ""},
    {ID_APP_ABOUT, "&About VXMViewer...", "About this program", "About"},
};

constexpr CommandId fileMenu[] = {
    ID_FILE_NEW,  ID_SEPARATOR,  ID_FILE_OPEN, ID_FILE_SAVE, ID_FILE_SAVE_AS,
    ID_SEPARATOR, ID_PROPERTIES, ID_SEPARATOR, ID_APP_EXIT,
};
constexpr CommandId editMenu[] = {
    ID_EDIT_UNDO,         ID_SEPARATOR,       ID_EDIT_CUT,           ID_EDIT_COPY,      ID_EDIT_PASTE,
    ID_SEPARATOR,         ID_TOGGLE_GRID,     ID_TOGGLE_LIGHT,       ID_DRAWING_MODE,   ID_SEPARATOR,
    ID_CHANGE_FOV,        ID_DECREASE_ASPECT, ID_INCREASE_ASPECT,    ID_SEPARATOR,      ID_CENTER_CAMERA,
    ID_RESET_ALL,         ID_SEPARATOR,       ID_DISTANCE_CUT,       ID_CHANGE_QUALITY, ID_CHANGE_FILTERING,
    ID_CHANGE_BACKGROUND, ID_CHANGE_GAMMA,    ID_SYSTEM_INFORMATION, ID_STATISTICS_LOG, ID_FULLSCREEN,
};
constexpr CommandId viewMenu[] = {
    ID_VIEW_TOOLBAR,  ID_VIEW_STATUS_BAR, ID_SEPARATOR,    ID_INCREASE_TIME,  ID_DECREASE_TIME,
    ID_SEPARATOR,     ID_STRAFE_LEFT,     ID_STRAFE_RIGHT, ID_MOVE_DOWN,      ID_MOVE_UP,
    ID_MOVE_BACKWARD, ID_MOVE_FORWARD,    ID_SEPARATOR,    ID_PITCH_UP,       ID_PITCH_DOWN,
    ID_YAW_LEFT,      ID_YAW_RIGHT,       ID_SEPARATOR,    ID_INCREASE_SPEED, ID_DECREASE_SPEED,
};
constexpr CommandId browseMenu[] = {ID_BROWSE_FIRST, ID_BROWSE_PREVIOUS, ID_BROWSE_NEXT, ID_BROWSE_LAST};
constexpr CommandId helpMenu[] = {ID_HELP_KEYS, ID_APP_ABOUT};

constexpr Popup popups[] = {
    {"&File", fileMenu},     {"&Edit", editMenu}, {"&View", viewMenu},
    {"&Browse", browseMenu}, {"&Help", helpMenu},
};

constexpr ToolbarEntry toolbarEntries[] = {
    {ID_FILE_NEW, "file-new"},
    {ID_FILE_OPEN, "file-open"},
    {ID_FILE_SAVE_AS, "file-save-as"},
    {ID_SEPARATOR, ""},
    {ID_DECREASE_ASPECT, "aspect-decrease"},
    {ID_INCREASE_ASPECT, "aspect-increase"},
    {ID_SEPARATOR, ""},
    {ID_PROPERTIES, "properties"},
    {ID_SEPARATOR, ""},
    {ID_TOGGLE_GRID, "grid"},
    {ID_TOGGLE_LIGHT, "light"},
    {ID_DRAWING_MODE, "drawing-mode"},
    {ID_CHANGE_FOV, "fov"},
    {ID_SEPARATOR, ""},
    {ID_DECREASE_SPEED, "speed-decrease"},
    {ID_INCREASE_SPEED, "speed-increase"},
    {ID_RESET_ALL, "reset"},
    {ID_SEPARATOR, ""},
    {ID_DISTANCE_CUT, "distance-cut"},
    {ID_CHANGE_QUALITY, "quality"},
    {ID_CHANGE_FILTERING, "filtering"},
    {ID_CHANGE_BACKGROUND, "background"},
    {ID_CHANGE_GAMMA, "gamma"},
    {ID_SYSTEM_INFORMATION, "system-information"},
    {ID_FULLSCREEN, "fullscreen"},
    {ID_SEPARATOR, ""},
    {ID_BROWSE_FIRST, "browse-first"},
    {ID_BROWSE_PREVIOUS, "browse-previous"},
    {ID_BROWSE_NEXT, "browse-next"},
    {ID_BROWSE_LAST, "browse-last"},
    {ID_SEPARATOR, ""},
    {ID_APP_ABOUT, "about"},
};

constexpr Accelerator acceleratorTable[] = {
    {'N', FCONTROL, ID_FILE_NEW},       {'O', FCONTROL, ID_FILE_OPEN},       {'S', FCONTROL, ID_FILE_SAVE_AS},
    {'C', FCONTROL, ID_EDIT_COPY},      {VK_INSERT, FCONTROL, ID_EDIT_COPY}, {'V', FCONTROL, ID_EDIT_PASTE},
    {VK_INSERT, FSHIFT, ID_EDIT_PASTE}, {'X', FCONTROL, ID_EDIT_CUT},        {VK_DELETE, FSHIFT, ID_EDIT_CUT},
    {'Z', FCONTROL, ID_EDIT_UNDO},      {VK_BACK, FALT, ID_EDIT_UNDO},       {'P', FCONTROL, ID_FILE_PRINT},
};

}  // namespace

std::span<const Command> commandTable() {
  return commands;
}

const Command* findCommand(uint32_t id) {
  const auto found = std::ranges::find(commands, id, &Command::id);
  return found == std::end(commands) ? nullptr : &*found;
}

std::span<const Popup> menuBar() {
  return popups;
}

std::span<const ToolbarEntry> toolbar() {
  return toolbarEntries;
}

std::span<const Accelerator> accelerators() {
  return acceleratorTable;
}

CommandId acceleratorCommand(uint32_t key, uint32_t modifiers) {
  for (const Accelerator& accelerator : acceleratorTable)
    if (accelerator.key == key && accelerator.modifiers == modifiers) return accelerator.id;
  return ID_SEPARATOR;
}

}  // namespace facet
