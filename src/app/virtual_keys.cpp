#include "app/virtual_keys.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <string_view>

#include "app/x11.h"

namespace facet {

namespace {

struct KeyCode {
  int key;
  uint32_t code;
};

/// Keys of the numeric keypad while they give digits and signs.
constexpr KeyCode keypadKeys[] = {
    {Qt::Key_Asterisk, 0x6A}, {Qt::Key_Plus, 0x6B},  {Qt::Key_Minus, 0x6D},
    {Qt::Key_Period, 0x6E},   {Qt::Key_Comma, 0x6E}, {Qt::Key_Slash, 0x6F},
};

constexpr KeyCode mainKeys[] = {
    {Qt::Key_Backspace, 0x08},  {Qt::Key_Tab, 0x09},    {Qt::Key_Backtab, 0x09},  {Qt::Key_Return, 0x0D},
    {Qt::Key_Enter, 0x0D},      {Qt::Key_Shift, 0x10},  {Qt::Key_Control, 0x11},  {Qt::Key_Escape, 0x1B},
    {Qt::Key_Space, 0x20},      {Qt::Key_PageUp, 0x21}, {Qt::Key_PageDown, 0x22}, {Qt::Key_End, 0x23},
    {Qt::Key_Home, 0x24},       {Qt::Key_Left, 0x25},   {Qt::Key_Up, 0x26},       {Qt::Key_Right, 0x27},
    {Qt::Key_Down, 0x28},       {Qt::Key_Insert, 0x2D}, {Qt::Key_Delete, 0x2E},   {Qt::Key_Equal, 0xBB},
    {Qt::Key_Plus, 0xBB},       {Qt::Key_Comma, 0xBC},  {Qt::Key_Less, 0xBC},     {Qt::Key_Minus, 0xBD},
    {Qt::Key_Underscore, 0xBD}, {Qt::Key_Period, 0xBE}, {Qt::Key_Greater, 0xBE},  {Qt::Key_Slash, 0xBF},
    {Qt::Key_Question, 0xBF},
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
  if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return 0x70 + static_cast<uint32_t>(key - Qt::Key_F1);
  for (const KeyCode& row : mainKeys)
    if (row.key == key) return row.code;
  return {};
}

}  // namespace facet
