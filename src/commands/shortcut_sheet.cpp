#include "commands/shortcut_sheet.h"

#include <algorithm>

#include "commands/command_table.h"

namespace facet {

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
    {VK_OEM_2, "/"},
};

std::string keyName(uint8_t key) {
  const auto named = std::ranges::find(keyNames, key, &KeyName::key);
  if (named != std::end(keyNames)) return named->name;
  if (key >= VK_F1 && key <= VK_F12) return "F" + std::to_string(key - VK_F1 + 1);
  return {static_cast<char>(key)};
}

std::string acceleratorName(const Accelerator& accelerator) {
  std::string name;
  if ((accelerator.modifiers & FCONTROL) != 0) name += "Ctrl+";
  if ((accelerator.modifiers & FALT) != 0) name += "Alt+";
  if ((accelerator.modifiers & FSHIFT) != 0) name += "Shift+";
  return name + keyName(accelerator.key);
}

void append(std::string& list, const std::string& name) {
  list += (list.empty() ? "" : ", ") + name;
}

std::string keysOf(const Command& command) {
  std::string keys;
  for (const uint8_t key : command.keys)
    if (key != 0) append(keys, keyName(key));
  for (const Accelerator& accelerator : accelerators())
    if (accelerator.id == command.id) append(keys, acceleratorName(accelerator));
  return keys;
}

/// A menu text without mnemonic, dots and hint.
std::string label(std::string_view menuText) {
  std::string text(menuText.substr(0, menuText.find('\t')));
  std::erase(text, '&');
  return text.substr(0, text.find("..."));
}

/// Keys that no command sends, and the mouse.
const Shortcut furtherShortcuts[] = {
    {"9", "Switch time between 6 and 18 o'clock"},
    {"0", "Set time to 12 o'clock"},
    {"Page Up", "Decrease roll angle"},
    {"Insert", "Increase roll angle"},
    {"Left button", "Drag to turn the camera"},
    {"Right button", "Drag to move the camera forward and backward"},
    {"Middle button", "Drag to move the camera sideways, forward and backward"},
    {"Wheel", "Move the camera forward and backward by the move speed"},
};

}  // namespace

std::vector<Shortcut> shortcutSheet() {
  std::vector<Shortcut> sheet;
  for (const Command& command : commandTable()) {
    std::string keys = keysOf(command);
    if (command.enabled && !keys.empty()) sheet.push_back({std::move(keys), label(command.menuText)});
  }
  sheet.insert(sheet.end(), std::begin(furtherShortcuts), std::end(furtherShortcuts));
  return sheet;
}

}  // namespace facet
