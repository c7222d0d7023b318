#include "app/x11.h"

#include <QGuiApplication>
#include <functional>
#include <memory>

#if QT_CONFIG(xcb)
// X's headers define macros of everyday words, so they come last.
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>
#endif

namespace facet {

namespace {

/// The ramp that changes nothing.
GammaRamp straightRamp() {
  GammaRamp ramp;
  for (size_t i = 0; i < 256; ++i)
    ramp.red[i] = ramp.green[i] = ramp.blue[i] = static_cast<uint16_t>(i * 257);
  return ramp;
}

#if QT_CONFIG(xcb)

/// The connection to the X server; the offscreen platform has the interface, but no display.
Display* display() {
  if (!qGuiApp) return nullptr;
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 ? x11->display() : nullptr;
}

/// Calls `visit` with each display in use that has a ramp, until it returns false.
void visitDisplays(const std::function<bool(Display*, RRCrtc, int size)>& visit) {
  Display* server = display();
  int event = 0, error = 0, major = 0, minor = 0;
  if (!server || !XRRQueryExtension(server, &event, &error) || !XRRQueryVersion(server, &major, &minor))
    return;
  if (major < 1 || (major == 1 && minor < 3)) return;
  const std::unique_ptr<XRRScreenResources, decltype(&XRRFreeScreenResources)> resources(
      XRRGetScreenResourcesCurrent(server, DefaultRootWindow(server)), XRRFreeScreenResources);
  if (!resources) return;
  for (int i = 0; i < resources->ncrtc; ++i) {
    const std::unique_ptr<XRRCrtcInfo, decltype(&XRRFreeCrtcInfo)> info(
        XRRGetCrtcInfo(server, resources.get(), resources->crtcs[i]), XRRFreeCrtcInfo);
    if (!info || info->mode == 0) continue;
    const int size = XRRGetCrtcGammaSize(server, resources->crtcs[i]);
    if (size > 1 && !visit(server, resources->crtcs[i], size)) return;
  }
}

using CrtcGamma = std::unique_ptr<XRRCrtcGamma, decltype(&XRRFreeGamma)>;

/// The place in a ramp of `size` that belongs to place `i` of one of `of`.
size_t nearest(size_t i, size_t of, size_t size) {
  return (i * (size - 1) + (of - 1) / 2) / (of - 1);
}

#endif

}  // namespace

#if QT_CONFIG(xcb)

unsigned lockKeys() {
  unsigned state = 0;
  if (Display* server = display()) XkbGetIndicatorState(server, XkbUseCoreKbd, &state);
  return state & 7;
}

bool hasGammaRamp() {
  bool found = false;
  visitDisplays([&](Display*, RRCrtc, int) {
    found = true;
    return false;
  });
  return found;
}

GammaRamp displayGammaRamp() {
  GammaRamp ramp = straightRamp();
  visitDisplays([&](Display* server, RRCrtc crtc, int) {
    const CrtcGamma gamma(XRRGetCrtcGamma(server, crtc), XRRFreeGamma);
    if (!gamma || gamma->size < 2) return true;
    for (size_t i = 0; i < 256; ++i) {
      const size_t at = nearest(i, 256, static_cast<size_t>(gamma->size));
      ramp.red[i] = gamma->red[at];
      ramp.green[i] = gamma->green[at];
      ramp.blue[i] = gamma->blue[at];
    }
    return false;
  });
  return ramp;
}

void setDisplayGammaRamp(const GammaRamp& ramp) {
  visitDisplays([&](Display* server, RRCrtc crtc, int size) {
    const CrtcGamma gamma(XRRAllocGamma(size), XRRFreeGamma);
    if (!gamma) return true;
    for (size_t i = 0; i < static_cast<size_t>(size); ++i) {
      const size_t at = nearest(i, static_cast<size_t>(size), 256);
      gamma->red[i] = ramp.red[at];
      gamma->green[i] = ramp.green[at];
      gamma->blue[i] = ramp.blue[at];
    }
    XRRSetCrtcGamma(server, crtc, gamma.get());
    return true;
  });
  if (Display* server = display()) XFlush(server);
}

#else

unsigned lockKeys() {
  return 0;
}
bool hasGammaRamp() {
  return false;
}
GammaRamp displayGammaRamp() {
  return straightRamp();
}
void setDisplayGammaRamp(const GammaRamp&) {}

#endif

}  // namespace facet
