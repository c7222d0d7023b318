#include "device/gl/gl_session.h"

#include <epoxy/gl.h>

namespace facet {

GlSession::~GlSession() {
  if ((!droppedBuffers.empty() || !droppedTextures.empty()) && context->makeCurrent()) sweep();
}

void GlSession::sweep() {
  if (!droppedBuffers.empty())
    glDeleteBuffers(static_cast<GLsizei>(droppedBuffers.size()), droppedBuffers.data());
  if (!droppedTextures.empty())
    glDeleteTextures(static_cast<GLsizei>(droppedTextures.size()), droppedTextures.data());
  droppedBuffers.clear();
  droppedTextures.clear();
}

void GlSession::startGeneration() {
  ++generation;
  droppedBuffers.clear();
  droppedTextures.clear();
}

}  // namespace facet
