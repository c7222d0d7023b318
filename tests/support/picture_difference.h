#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace facet {

/// How far two pictures are apart.
struct PictureDifference {
  double mean = 0;   ///< of a channel, of 255
  double share = 0;  ///< of the pixels in which a channel is off by more than 16
};

/// Compares R, G, B, A bytes of two pictures of one size; alpha does not count.
inline PictureDifference differenceOf(std::span<const uint8_t> a, std::span<const uint8_t> b) {
  uint64_t sum = 0, off = 0;
  for (size_t i = 0; i < a.size(); i += 4) {
    int most = 0;
    for (size_t channel = i; channel < i + 3; ++channel) {
      const int apart = std::abs(a[channel] - b[channel]);
      sum += static_cast<uint64_t>(apart);
      most = std::max(most, apart);
    }
    off += most > 16;
  }
  const double pixels = static_cast<double>(a.size()) / 4;
  return {static_cast<double>(sum) / pixels / 3, static_cast<double>(off) / pixels};
}

}  // namespace facet
