#include "app/virtual_keys.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <string_view>

#include "app/x11.h"
#include "commands/commands.h"

namespace facet {

namespace {

struct KeyCode {
  int key;
  uint32_t code;
};

/// Keys of the numeric keypad while they give digits and signs.
constexpr KeyCode keypadKeys[] = {
    {Qt::Key_Asterisk, VK_MULTIPLY}, {Qt::Key_Plus, VK_ADD}, {Qt::Key_Minus, VK_SUBTRACT},
    {Qt::Key_Period, 0x6E},          {Qt::Key_Comma, 0x6E},  {Qt::Key_Slash, VK_DIVIDE},
};

constexpr KeyCode mainKeys[] = {
    {Qt::Key_Backspace, VK_BACK},
    {Qt::Key_Tab, VK_TAB},
    {Qt::Key_Backtab, VK_TAB},
    {Qt::Key_Return, 0x0D},
    {Qt::Key_Enter, 0x0D},
    {Qt::Key_Shift, VK_SHIFT},
    {Qt::Key_Control, VK_CONTROL},
    {Qt::Key_Escape, 0x1B},
    {Qt::Key_Space, 0x20},
    {Qt::Key_PageUp, VK_PRIOR},
    {Qt::Key_PageDown, VK_NEXT},
    {Qt::Key_End, VK_END},
    {Qt::Key_Home, VK_HOME},
    {Qt::Key_Left, VK_LEFT},
    {Qt::Key_Up, VK_UP},
    {Qt::Key_Right, VK_RIGHT},
    {Qt::Key_Down, VK_DOWN},
    {Qt::Key_Insert, VK_INSERT},
    {Qt::Key_Delete, VK_DELETE},
    {Qt::Key_Equal, VK_OEM_PLUS},
    {Qt::Key_Plus, VK_OEM_PLUS},
    {Qt::Key_Comma, 0xBC},
    {Qt::Key_Less, 0xBC},
    {Qt::Key_Minus, VK_OEM_MINUS},
    {Qt::Key_Underscore, VK_OEM_MINUS},
    {Qt::Key_Period, 0xBE},
    {Qt::Key_Greater, 0xBE},
    {Qt::Key_Slash, VK_OEM_2},
    {Qt::Key_Question, VK_OEM_2},
};

/// A row of keys by their numbers under X11 and Wayland, with the codes that they have by their place.
struct KeyRow {
  uint32_t first;
  std::string_view codes;
};
constexpr KeyRow digitRow = {10, "1234567890"};
constexpr KeyRow letterRows[] = {{24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};

std::optional<uint32_t> codeInRow(uint32_t scan, const KeyRow& row) {
  if (scan < row.first || scan - row.first >= row.codes.size()) return {};
  return row.codes[scan - row.first];
}

/// True when a key stands where a US keyboard has a Latin letter and the layout has none anywhere. Some such
/// layouts put signs there (Hebrew: a slash on Q), as do Latin ones that have the letter elsewhere.
bool standsForLetter(const QKeyEvent& event) {
  constexpr int lastLatin = 0x24F;
  if (event.key() >= Qt::Key_Escape) return false;
  if (event.key() > lastLatin) return true;
  return (event.key() < Qt::Key_A || event.key() > Qt::Key_Z) && !layoutHasLatinLetters();
}

/// The code of a key by its place: for digits, wherever the layout puts its characters, and for letters of
/// layouts without Latin ones.
std::optional<uint32_t> keyByPlace(const QKeyEvent& event) {
  const QString platform = QGuiApplication::platformName();
  if (platform != "xcb" && !platform.startsWith("wayland")) return {};
  const uint32_t scan = event.nativeScanCode();
  if (const auto digit = codeInRow(scan, digitRow)) return digit;
  for (const KeyRow& row : letterRows)
    if (const auto letter = codeInRow(scan, row); letter && standsForLetter(event)) return letter;
  return {};
}

}  // namespace

std::optional<uint32_t> virtualKey(const QKeyEvent& event) {
  const int key = event.key();
  if (event.modifiers() & Qt::KeypadModifier) {
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return 0x60 + static_cast<uint32_t>(key - Qt::Key_0);
    for (const KeyCode& row : keypadKeys)
      if (row.key == key) return row.code;
  } else if (const auto code = keyByPlace(event)) {
    return code;
  }
  if ((key >= Qt::Key_0 && key <= Qt::Key_9) || (key >= Qt::Key_A && key <= Qt::Key_Z))
    return static_cast<uint32_t>(key);
  if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return VK_F1 + static_cast<uint32_t>(key - Qt::Key_F1);
  for (const KeyCode& row : mainKeys)
    if (row.key == key) return row.code;
  return {};
}

}  // namespace facet
