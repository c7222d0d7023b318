#pragma once

#include <cstdint>
#include <span>

namespace facet {

/// How far two pictures are apart.
struct PictureDifference {
  double mean = 0;   ///< of a channel, of 255
  double share = 0;  ///< of the pixels in which a channel is off by more than 16
};

/// Compares R, G, B, A bytes of two pictures of one size; alpha does not count.
PictureDifference differenceOf(std::span<const uint8_t> a, std::span<const uint8_t> b);

}  // namespace facet
