#pragma once

#include <cstdint>
#include <map>

#include "device/device.h"
#include "device/states.h"

namespace facet {

/// The programs of the fixed-function pipeline, one for each combination of what changes their text, made
/// when they are first asked for. Attributes are position 0, normal 1, colour 2 and texture coordinates 3.
class GlPrograms {
 public:
  /// Most samples that anisotropic filtering takes.
  static constexpr uint32_t largestAnisotropy = 16;

  /// Makes the program for these states current and sets its uniforms. False when the driver refuses it.
  bool use(const DeviceStates& states, uint32_t fvf, bool textured, uint32_t targetWidth,
           uint32_t targetHeight);

  /// Deletes all programs; OpenGL's context is current.
  void release();

 private:
  std::map<uint64_t, uint32_t> programs_;
};

}  // namespace facet
