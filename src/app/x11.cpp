#include "app/x11.h"

#include <QGuiApplication>
#include <memory>

#if QT_CONFIG(xcb)
// X's headers define macros of everyday words, so they come last.
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>
#include <X11/keysym.h>
#endif

namespace facet {

namespace {

#if QT_CONFIG(xcb)

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

#endif

}  // namespace

#if QT_CONFIG(xcb)

unsigned lockKeys() {
  unsigned state = 0;
  if (Display* server = display()) XkbGetIndicatorState(server, XkbUseCoreKbd, &state);
  return state & 7;
}

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

#else

unsigned lockKeys() {
  return 0;
}
bool layoutHasLatinLetters() {
  return true;
}
bool setDisplayGammaRamp(const GammaRamp&) {
  return false;
}

#endif

}  // namespace facet
