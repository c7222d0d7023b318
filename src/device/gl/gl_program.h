#pragma once

#include <cstdint>
#include <map>

#include "device/fixed_function.h"

namespace facet {

/// The programs of the fixed-function pipeline, one for each combination of what changes their text, made
/// when they are first asked for. Attributes are position 0, normal 1, colour 2 and texture coordinates 3.
class GlPrograms {
 public:
  /// Most samples that anisotropic filtering takes.
  static constexpr uint32_t largestAnisotropy = 16;

  /// Makes the program for this state and these vertices current and sets its uniforms. False when the driver
  /// refuses it.
  bool use(const DeviceState& state, const VertexShape& shape, uint32_t targetWidth, uint32_t targetHeight);

  /// Deletes all programs; OpenGL's context is current.
  void release();

 private:
  std::map<uint32_t, uint32_t> programs_;  ///< by the bits of what they depend on
};

}  // namespace facet
