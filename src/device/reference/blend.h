#pragma once

#include <cstdint>

#include "device/reference/draw.h"

// What happens to the colour of a pixel after sampling. Colours are 0xAARRGGBB.

namespace facet {

/// The results of texture stage 0. What the state does not use may be anything.
Colors combine(const PixelState& state, const Colors& texels, const Colors& diffuse);

/// `value` compared with `reference`, as in alpha and depth tests.
template <class T>
bool passes(D3DCMPFUNC function, T value, T reference) {
  switch (function) {
    case D3DCMP_LESS:
      return value < reference;
    case D3DCMP_EQUAL:
      return value == reference;
    case D3DCMP_LESSEQUAL:
      return value <= reference;
    case D3DCMP_GREATER:
      return value > reference;
    case D3DCMP_NOTEQUAL:
      return value != reference;
    case D3DCMP_GREATEREQUAL:
      return value >= reference;
    case D3DCMP_ALWAYS:
      return true;
    default:
      return false;
  }
}

/// `source` blended over `dest`; alpha comes out opaque.
uint32_t blend(const PixelState& state, uint32_t source, uint32_t dest);

}  // namespace facet
