#include "app/native.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <memory>
#include <string_view>

#include "commands/commands.h"

// X's headers define macros of everyday words, so they come last.
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>
#include <X11/keysym.h>

namespace facet {

namespace {

/// The connection to the X server; the offscreen platform has the interface, but no display.
Display* display() {
  if (!qGuiApp) return nullptr;
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 ? x11->display() : nullptr;
}

/// Sets the ramp of one display; false when it has none or is not in use.
bool setCrtcRamp(Display* server, XRRScreenResources* resources, RRCrtc crtc, const GammaRamp& ramp) {
  const std::unique_ptr<XRRCrtcInfo, decltype(&XRRFreeCrtcInfo)> info(XRRGetCrtcInfo(server, resources, crtc),
                                                                      XRRFreeCrtcInfo);
  if (!info || info->mode == 0) return false;
  const int size = XRRGetCrtcGammaSize(server, crtc);
  if (size < 2) return false;
  const std::unique_ptr<XRRCrtcGamma, decltype(&XRRFreeGamma)> gamma(XRRAllocGamma(size), XRRFreeGamma);
  if (!gamma) return false;
  const size_t last = static_cast<size_t>(size) - 1;
  for (size_t i = 0; i <= last; ++i) {
    const size_t nearest = (i * 255 + last / 2) / last;
    gamma->red[i] = ramp.red[nearest];
    gamma->green[i] = ramp.green[nearest];
    gamma->blue[i] = ramp.blue[nearest];
  }
  XRRSetCrtcGamma(server, crtc, gamma.get());
  return true;
}

}  // namespace

unsigned lockKeys() {
  unsigned state = 0;
  if (Display* server = display()) XkbGetIndicatorState(server, XkbUseCoreKbd, &state);
  return state & 7;
}

bool setDisplayGammaRamp(const GammaRamp& ramp) {
  Display* server = display();
  int event = 0, error = 0, major = 0, minor = 0;
  if (!server || !XRRQueryExtension(server, &event, &error) || !XRRQueryVersion(server, &major, &minor))
    return false;
  if (major < 1 || (major == 1 && minor < 3)) return false;
  const std::unique_ptr<XRRScreenResources, decltype(&XRRFreeScreenResources)> resources(
      XRRGetScreenResourcesCurrent(server, DefaultRootWindow(server)), XRRFreeScreenResources);
  bool set = false;
  for (int i = 0; resources && i < resources->ncrtc; ++i)
    if (setCrtcRamp(server, resources.get(), resources->crtcs[i], ramp)) set = true;
  XFlush(server);
  return set;
}

namespace {

struct VirtualCode {
  int key;
  uint32_t code;
};

/// Keys of the numeric keypad while they give digits and signs.
constexpr VirtualCode keypadKeys[] = {
    {Qt::Key_Asterisk, VK_MULTIPLY}, {Qt::Key_Plus, VK_ADD}, {Qt::Key_Minus, VK_SUBTRACT},
    {Qt::Key_Period, 0x6E},          {Qt::Key_Comma, 0x6E},  {Qt::Key_Slash, VK_DIVIDE},
};

constexpr VirtualCode mainKeys[] = {
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
constexpr KeyRow keyRows[] = {{10, "1234567890"}, {24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};

/// False when the keyboard's current layout gives no Latin letter.
bool layoutHasLatinLetters() {
  Display* server = display();
  XkbStateRec state;
  if (!server || XkbGetState(server, XkbUseCoreKbd, &state) != Success) return true;
  constexpr KeyCode first = 24, last = 58;  // of the rows of letters
  for (KeyCode key = first; key <= last; ++key) {
    const KeySym symbol = XkbKeycodeToKeysym(server, key, state.group, 0);
    if (symbol >= XK_a && symbol <= XK_z) return true;
  }
  return false;
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
  for (const KeyRow& row : keyRows) {
    const uint32_t place = scan - row.first;  // wraps for keys before the row
    const bool digits = row.first == keyRows[0].first;
    if (place < row.codes.size() && (digits || standsForLetter(event))) return row.codes[place];
  }
  return {};
}

}  // namespace

std::optional<uint32_t> virtualKey(const QKeyEvent& event) {
  const int key = event.key();
  if (event.modifiers() & Qt::KeypadModifier) {
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return 0x60 + static_cast<uint32_t>(key - Qt::Key_0);
    for (const VirtualCode& row : keypadKeys)
      if (row.key == key) return row.code;
  } else if (const auto code = keyByPlace(event)) {
    return code;
  }
  if ((key >= Qt::Key_0 && key <= Qt::Key_9) || (key >= Qt::Key_A && key <= Qt::Key_Z))
    return static_cast<uint32_t>(key);
  if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return VK_F1 + static_cast<uint32_t>(key - Qt::Key_F1);
  for (const VirtualCode& row : mainKeys)
    if (row.key == key) return row.code;
  return {};
}

}  // namespace facet
