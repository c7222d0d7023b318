#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "device/device.h"
#include "device/gl/gl_context.h"

namespace facet {

/// Creates a device that draws with `context` into a back buffer apart from any window. Depth formats that
/// OpenGL does not have, sizes beyond its limits and a context that is none or does not work give
/// D3DERR_NOTAVAILABLE. Buffers and textures live on through Reset and through a lost context. The context is
/// held until the last resource of the device is gone.
HRESULT createGlDevice(std::shared_ptr<GlContext> context, const D3DPRESENT_PARAMETERS& parameters,
                       std::shared_ptr<IDirect3DDevice9>* created);

/// The last presented picture of a device of createGlDevice() as R, G, B, A bytes, top row first, alpha 255.
/// Empty for any other device, within a frame and while the context is lost.
std::vector<uint8_t> readGlBackBuffer(IDirect3DDevice9& device);

/// What there is to know about the adapter behind `context`. D3DERR_NOTAVAILABLE when it does not work.
HRESULT describeGlAdapter(GlContext& context, D3DADAPTER_IDENTIFIER9* identifier, D3DCAPS9* caps);

}  // namespace facet
