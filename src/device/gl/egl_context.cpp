#include "device/gl/gl_device.h"

#include <epoxy/egl.h>

#include <array>
#include <vector>

#include "platform/system.h"

namespace facet {
namespace {

/// libepoxy ends the process when a library it needs is missing, so they are looked for first.
bool librariesExist() {
  return epoxy_has_egl() &&
         (loadLibraryEntry("libOpenGL.so.0", "glGetString") || loadLibraryEntry("libGL.so.1", "glGetString"));
}

/// The displays that need no display server, in the order in which they are tried. They belong to the
/// process, not to the caller: contexts share them, and none is ever terminated.
std::vector<EGLDisplay> displays() {
  std::vector<EGLDisplay> result;
  const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  if (!epoxy_extension_in_string(extensions, "EGL_EXT_platform_base")) return result;
  const auto add = [&](EGLenum platform, void* native) {
    const EGLDisplay display = eglGetPlatformDisplayEXT(platform, native, nullptr);
    if (display != EGL_NO_DISPLAY) result.push_back(display);
  };
  if (epoxy_extension_in_string(extensions, "EGL_EXT_platform_device") &&
      epoxy_extension_in_string(extensions, "EGL_EXT_device_enumeration")) {
    std::array<EGLDeviceEXT, 16> devices;
    EGLint count = 0;
    eglQueryDevicesEXT(static_cast<EGLint>(devices.size()), devices.data(), &count);
    for (EGLint i = 0; i < count; ++i) add(EGL_PLATFORM_DEVICE_EXT, devices[static_cast<size_t>(i)]);
  }
  if (epoxy_extension_in_string(extensions, "EGL_MESA_platform_surfaceless"))
    add(EGL_PLATFORM_SURFACELESS_MESA, nullptr);
  return result;
}

class EglContext final : public GlContext {
 public:
  EglContext() = default;
  EglContext(const EglContext&) = delete;
  EglContext& operator=(const EglContext&) = delete;
  ~EglContext() override { release(); }

  bool makeCurrent() override {
    if (context_ == EGL_NO_CONTEXT) return false;
    // Each thread has its own idea of the interface; OpenGL ES is what it starts with.
    return eglBindAPI(EGL_OPENGL_API) && (eglGetCurrentContext() == context_ ||
                                          eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_));
  }

  bool restore() override {
    release();
    for (const EGLDisplay display : displays())
      if (create(display)) return true;
    return false;
  }

 private:
  bool create(EGLDisplay display) {
    if (!eglInitialize(display, nullptr, nullptr) || !eglBindAPI(EGL_OPENGL_API)) return false;
    const char* extensions = eglQueryString(display, EGL_EXTENSIONS);
    if (!epoxy_extension_in_string(extensions, "EGL_KHR_surfaceless_context") ||
        !(epoxy_extension_in_string(extensions, "EGL_KHR_no_config_context") ||
          epoxy_extension_in_string(extensions, "EGL_MESA_configless_context")))
      return false;
    constexpr EGLint wanted[][2] = {{EGL_CONTEXT_MAJOR_VERSION, 3},
                                    {EGL_CONTEXT_MINOR_VERSION, 3},
                                    {EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT},
                                    {EGL_NONE, EGL_NONE}};
    display_ = display;
    context_ = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, wanted[0]);
    if (makeCurrent()) return true;
    release();
    return false;
  }

  void release() {
    if (context_ == EGL_NO_CONTEXT) return;
    eglBindAPI(EGL_OPENGL_API);
    if (eglGetCurrentContext() == context_)
      eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display_, context_);
    context_ = EGL_NO_CONTEXT;
  }

  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLContext context_ = EGL_NO_CONTEXT;
};

}  // namespace

std::shared_ptr<GlContext> createEglContext() {
  if (!librariesExist()) return nullptr;
  auto context = std::make_shared<EglContext>();
  return context->restore() ? context : nullptr;
}

}  // namespace facet
