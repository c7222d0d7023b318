#pragma once

#include <memory>
#include <new>

#include "device/device.h"

namespace facet {

/// Creates an object of type T, leaving `created` none when memory runs out.
template <class T, class Interface, class... Arguments>
HRESULT createObject(std::shared_ptr<Interface>* created, Arguments... arguments) {
  try {
    *created = std::make_shared<T>(arguments...);
    return D3D_OK;
  } catch (const std::bad_alloc&) {
    return D3DERR_OUTOFVIDEOMEMORY;
  }
}

}  // namespace facet
