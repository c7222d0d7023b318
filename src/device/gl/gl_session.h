#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "device/gl/gl_context.h"

namespace facet {

/// What a device and its resources share. It lives as long as the longest-lived of them.
struct GlSession {
  std::shared_ptr<GlContext> context;
  uint32_t generation = 1;  ///< counts the contexts; names made in an earlier one mean nothing

  explicit GlSession(std::shared_ptr<GlContext> own) : context(std::move(own)) {}
  GlSession(const GlSession&) = delete;
  GlSession& operator=(const GlSession&) = delete;
  ~GlSession();

  /// Names of dropped resources, which may go when no context is current, wait here until one is.
  std::vector<uint32_t> droppedBuffers, droppedTextures;

  /// Deletes the dropped names; the context is current.
  void sweep();

  /// The old context is gone and took its objects along.
  void startGeneration();
};

/// The OpenGL name of one resource, valid in the context it was made in.
struct GlName {
  uint32_t name = 0;
  uint32_t generation = 0;

  bool validIn(const GlSession& session) const { return name != 0 && generation == session.generation; }
};

}  // namespace facet
