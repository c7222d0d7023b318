#pragma once

#include <cstdint>
#include <memory>
#include <optional>

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

}  // namespace facet
