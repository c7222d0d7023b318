#pragma once

#include <cstdint>

#include "device/device.h"

namespace facet {

/// Vertices that `count` primitives take; 0 for a type that device.h does not name.
inline uint64_t verticesOf(D3DPRIMITIVETYPE type, uint64_t count) {
  switch (type) {
    case D3DPT_LINELIST:
      return count * 2;
    case D3DPT_TRIANGLELIST:
      return count * 3;
    case D3DPT_TRIANGLESTRIP:
      return count > 0 ? count + 2 : 0;
  }
  return 0;
}

/// Primitives that `vertices` suffice for.
inline uint64_t primitivesOf(D3DPRIMITIVETYPE type, uint64_t vertices) {
  switch (type) {
    case D3DPT_LINELIST:
      return vertices / 2;
    case D3DPT_TRIANGLELIST:
      return vertices / 3;
    case D3DPT_TRIANGLESTRIP:
      return vertices > 2 ? vertices - 2 : 0;
  }
  return 0;
}

}  // namespace facet
