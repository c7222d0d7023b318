#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "device/device.h"

namespace facet {

/// An OpenGL context of 3.3 core or more that a device draws with. Headless ones come from
/// createEglContext(); a window brings its own. All calls come from the thread that draws.
class GlContext {
 public:
  /// Where a window shows its pictures: a framebuffer (0 or an object's name) without
  /// multisampling, and its size in pixels.
  struct Window {
    uint32_t framebuffer = 0;
    uint32_t width = 0, height = 0;
  };

  virtual ~GlContext() = default;

  /// Makes this the thread's context; cheap when it already is. False when the context is lost.
  virtual bool makeCurrent() = 0;

  /// Replaces a lost context by a new one, which knows none of the old one's objects. False when that cannot
  /// be now.
  virtual bool restore() = 0;

  /// The window's framebuffer, asked for at each present; none when there is no window to show pictures in.
  virtual std::optional<Window> window() { return std::nullopt; }

  /// The picture is in the window's framebuffer.
  virtual void presented() {}
};

/// A context without window or display server, from EGL's device or surfaceless platform. None where the
/// system has no EGL, no OpenGL library, or no driver that gives OpenGL 3.3 core.
std::shared_ptr<GlContext> createEglContext();

/// Creates a device that draws with `context` into a back buffer apart from any window. Depth formats that
/// OpenGL does not have, sizes beyond its limits and a context that is none or does not work give
/// D3DERR_NOTAVAILABLE. Buffers and textures live on through Reset and through a lost context. The context is
/// held until the last resource of the device is gone.
HRESULT createGlDevice(std::shared_ptr<GlContext> context, const D3DPRESENT_PARAMETERS& parameters,
                       std::shared_ptr<IDirect3DDevice9>* created);

/// The last presented picture of a device of createGlDevice() as R, G, B, A bytes, top row first, alpha 255.
/// Empty for any other device, within a frame and while the context is lost.
std::vector<uint8_t> readGlBackBuffer(IDirect3DDevice9& device);

/// What there is to know about the adapter behind `context`. D3DERR_NOTAVAILABLE when it does not work.
HRESULT describeGlAdapter(GlContext& context, D3DADAPTER_IDENTIFIER9* identifier, D3DCAPS9* caps);

}  // namespace facet
