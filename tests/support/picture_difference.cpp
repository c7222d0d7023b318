#include "support/picture_difference.h"

#include <algorithm>
#include <cstdlib>

namespace facet {

PictureDifference differenceOf(std::span<const uint8_t> a, std::span<const uint8_t> b) {
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
