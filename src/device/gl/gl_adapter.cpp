#include "device/gl/gl_adapter.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <string>

#include "device/gl/gl_device.h"
#include "device/gl/gl_program.h"

namespace facet {

D3DCAPS9 readGlCaps() {
  D3DCAPS9 caps;
  GLint side = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &side);
  caps.MaxTextureWidth = caps.MaxTextureHeight = static_cast<uint32_t>(std::max(side, 0));
  caps.MaxAnisotropy = GlPrograms::largestAnisotropy;
  caps.VertexShaderVersion = 0xFFFE0300;  // OpenGL 3.3 runs on what Direct3D calls shader model 3.0
  caps.PixelShaderVersion = 0xFFFF0300;
  return caps;
}

uint32_t readGlTextureMemory() {
  GLint kib[4] = {512 << 10};
  if (epoxy_has_gl_extension("GL_NVX_gpu_memory_info")) {
    glGetIntegerv(GL_GPU_MEMORY_INFO_CURRENT_AVAILABLE_VIDMEM_NVX, kib);
  } else if (epoxy_has_gl_extension("GL_ATI_meminfo")) {
    glGetIntegerv(GL_TEXTURE_FREE_MEMORY_ATI, kib);
  }
  const uint64_t bytes = uint64_t{static_cast<uint32_t>(kib[0])} << 10;
  return static_cast<uint32_t>(std::min<uint64_t>(bytes, 0xFFF00000));
}

HRESULT describeGlAdapter(GlContext& context, D3DADAPTER_IDENTIFIER9* identifier, D3DCAPS9* caps) {
  if (!context.makeCurrent()) return D3DERR_NOTAVAILABLE;
  const auto text = [](GLenum name) {
    const auto* value = reinterpret_cast<const char*>(glGetString(name));
    return std::string(value ? value : "");
  };
  *identifier = {};
  identifier->Description = text(GL_RENDERER);
  identifier->Driver = text(GL_VENDOR) + ", OpenGL " + text(GL_VERSION);
  GLint major = 0, minor = 0;
  glGetIntegerv(GL_MAJOR_VERSION, &major);
  glGetIntegerv(GL_MINOR_VERSION, &minor);
  identifier->DriverVersion =
      uint64_t{static_cast<uint32_t>(major)} << 48 | uint64_t{static_cast<uint32_t>(minor)} << 32;
  *caps = readGlCaps();
  return D3D_OK;
}

}  // namespace facet
