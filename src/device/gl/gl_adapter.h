#pragma once

#include "device/device.h"

namespace facet {

/// What a device on OpenGL's current context can do.
D3DCAPS9 readGlCaps();

/// Bytes for textures as the driver of the current context tells them; 512 MiB where it does not.
uint32_t readGlTextureMemory();

}  // namespace facet
