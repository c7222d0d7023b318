#pragma once

#include <array>
#include <cstdint>

// Pixels of a row are worked on in blocks. Every step is a loop over the lanes of a block, so that the
// compiler can take several at once. That it does only where no comparison hides in the branch of another.

namespace facet {

inline constexpr uint32_t laneCount = 8;

/// The colours of a block, 0xAARRGGBB.
using Colors = std::array<uint32_t, laneCount>;

/// `value` cut to low .. high; what is no number becomes `low`.
inline float cut(float value, float low, float high) {
  const float raised = value > low ? value : low;
  return raised < high ? raised : high;
}

}  // namespace facet
