#include "device/gl/gl_vertices.h"

#include <epoxy/gl.h>

#include "device/device.h"

namespace facet {
namespace {

/// The parts of a vertex in the order in which they lie in memory; a part's row is its attribute's number.
struct VertexPart {
  uint32_t flag, bytes;
  GLint components;
  GLenum type;
};

constexpr VertexPart parts[] = {
    {D3DFVF_XYZ, 12, 3, GL_FLOAT},
    {D3DFVF_NORMAL, 12, 3, GL_FLOAT},
    {D3DFVF_DIFFUSE, 4, GL_BGRA, GL_UNSIGNED_BYTE},
    {D3DFVF_TEX1, 8, 2, GL_FLOAT},
};

}  // namespace

void applyVertexFormat(uint32_t fvf, uint32_t offset, uint32_t stride) {
  uintptr_t place = offset;
  GLuint attribute = 0;
  for (const VertexPart& part : parts) {
    if (fvf & part.flag) {
      glEnableVertexAttribArray(attribute);
      glVertexAttribPointer(attribute, part.components, part.type, part.type == GL_UNSIGNED_BYTE,
                            static_cast<GLsizei>(stride), reinterpret_cast<const void*>(place));
      place += part.bytes;
    } else {
      glDisableVertexAttribArray(attribute);
    }
    ++attribute;
  }
}

}  // namespace facet
