#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

// A float to six decimals, as an integer. Scaling by a million is exact in double precision (a significand of
// 24 bits times 15625 has 38), so the only rounding is the one to an integer, to even as printf does it.

namespace facet {

/// True for the numbers that roundedMillionths takes: magnitudes below 2^32.
inline bool hasMillionths(float value) {
  return std::fabs(value) < 0x1p32F;
}

/// |value| x 1,000,000 as a double that holds an integer. Adding 2^52 leaves no bits for a fraction.
inline double roundedMillionthsAsDouble(float value) {
  return (std::fabs(static_cast<double>(value)) * 1e6 + 0x1p52) - 0x1p52;
}

/// The same as an integer: the low bits of the sum with 2^52.
inline uint64_t roundedMillionths(float value) {
  constexpr uint64_t fractionBits = (uint64_t{1} << 52) - 1;
  return std::bit_cast<uint64_t>(std::fabs(static_cast<double>(value)) * 1e6 + 0x1p52) & fractionBits;
}

}  // namespace facet
