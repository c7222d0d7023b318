#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

// The commands of the window as data: from these tables menu bar, toolbar, accelerators, status prompts and
// the key handler are made. What a command does stands in key_handler.h.

namespace facet {

/// Keys by Windows' virtual-key codes and names; letters and digits of the main keyboard are their ASCII
/// codes, letters upper case. Shift and Control are keys of their own.
enum VirtualKey : uint8_t {
  VK_BACK = 0x08,
  VK_TAB = 0x09,
  VK_SHIFT = 0x10,
  VK_CONTROL = 0x11,
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
  VK_F1 = 0x70,
  VK_F2 = 0x71,
  VK_F3 = 0x72,
  VK_F4 = 0x73,
  VK_F5 = 0x74,
  VK_F6 = 0x75,
  VK_F7 = 0x76,
  VK_F8 = 0x77,
  VK_F9 = 0x78,
  VK_F11 = 0x7A,
  VK_F12 = 0x7B,
  VK_OEM_PLUS = 0xBB,   ///< = + of the main keyboard
  VK_OEM_MINUS = 0xBD,  ///< - _ of the main keyboard
  VK_OEM_2 = 0xBF,      ///< / ? of the main keyboard
};

/// Keys held with another one; bits can be added.
enum KeyModifiers : uint8_t { FSHIFT = 4, FCONTROL = 8, FALT = 16 };

enum CommandId : uint16_t {
  ID_SEPARATOR = 0,  ///< in menus and the toolbar

  ID_TOGGLE_GRID = 57400,
  ID_TOGGLE_LIGHT = 57401,
  ID_DRAWING_MODE = 57402,
  ID_CHANGE_FOV = 57403,
  ID_INCREASE_TIME = 57404,
  ID_DECREASE_TIME = 57405,
  ID_STRAFE_LEFT = 57406,
  ID_STRAFE_RIGHT = 57407,
  ID_MOVE_DOWN = 57408,
  ID_MOVE_UP = 57409,
  ID_MOVE_BACKWARD = 57410,
  ID_MOVE_FORWARD = 57411,
  ID_PITCH_UP = 57412,
  ID_PITCH_DOWN = 57413,
  ID_YAW_LEFT = 57414,
  ID_YAW_RIGHT = 57415,
  ID_DECREASE_SPEED = 57418,
  ID_INCREASE_SPEED = 57419,
  ID_CENTER_CAMERA = 57420,
  ID_RESET_ALL = 57421,
  ID_DISTANCE_CUT = 57422,
  ID_CHANGE_QUALITY = 57423,
  ID_CHANGE_FILTERING = 57424,
  ID_CHANGE_BACKGROUND = 57425,
  ID_CHANGE_GAMMA = 57426,
  ID_SYSTEM_INFORMATION = 57427,
  ID_FULLSCREEN = 57428,
  ID_PROPERTIES = 57429,
  ID_BROWSE_FIRST = 57430,
  ID_BROWSE_PREVIOUS = 57431,
  ID_BROWSE_NEXT = 57432,
  ID_BROWSE_LAST = 57433,
  ID_DECREASE_ASPECT = 57434,
  ID_INCREASE_ASPECT = 57435,
  ID_STATISTICS_LOG = 57436,

  ID_FILE_NEW = 57600,
  ID_FILE_OPEN = 57601,
  ID_FILE_SAVE = 57603,
  ID_FILE_SAVE_AS = 57604,
  ID_FILE_PRINT = 57607,
  ID_EDIT_COPY = 57634,
  ID_EDIT_CUT = 57635,
  ID_EDIT_PASTE = 57637,
  ID_EDIT_UNDO = 57643,
  ID_APP_ABOUT = 57664,
  ID_APP_EXIT = 57665,
  ID_HELP_KEYS = 57666,  ///< the sheet of shortcuts (shortcut_sheet.h)
  ID_VIEW_TOOLBAR = 59392,
  ID_VIEW_STATUS_BAR = 59393,
};

struct Command {
  CommandId id;
  std::string_view menuText;      ///< label ('&' before the mnemonic), then perhaps a tab and a shortcut hint
  std::string_view prompt;        ///< on the status bar while the menu entry is highlighted
  std::string_view tooltip;       ///< of the toolbar button
  std::array<uint8_t, 3> keys{};  ///< virtual keys that do the same; a command of the view sends the first
  bool enabled = true;            ///< false: nothing handles it, menus show it greyed
};

/// Every command that a menu or the toolbar holds.
std::span<const Command> commandTable();

/// The command of this id, or none.
const Command* findCommand(uint32_t id);

/// One drop-down menu of the menu bar.
struct Popup {
  std::string_view text;
  std::span<const CommandId> entries;
};
std::span<const Popup> menuBar();

/// The name of an icon, without folder and extension, stands for a picture of 16 x 16.
struct ToolbarEntry {
  CommandId id;
  std::string_view icon;
};
std::span<const ToolbarEntry> toolbar();

/// A key that sends a command from anywhere in the window, when exactly these modifiers are held with it. It
/// does not reach OnKeyDown, even where the command is not enabled.
struct Accelerator {
  uint8_t key;
  uint8_t modifiers;
  CommandId id;
};
std::span<const Accelerator> accelerators();

/// The command of an accelerator, ID_SEPARATOR when there is none for these keys.
CommandId acceleratorCommand(uint32_t key, uint32_t modifiers);

/// The status bar: its message pane's text while there is nothing to say, and its lock-key panes.
inline constexpr std::string_view idleStatusText = "Ready";
inline constexpr std::array<std::string_view, 3> lockIndicators = {"CAP", "NUM", "SCRL"};

}  // namespace facet
