#pragma once

#include <memory>

#include "device/gl/gl_context.h"

namespace facet {

/// A context without window or display server, from EGL's device or surfaceless platform. None where the
/// system has no EGL, no OpenGL library, or no driver that gives OpenGL 3.3 core.
std::shared_ptr<GlContext> createEglContext();

}  // namespace facet
