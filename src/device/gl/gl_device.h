#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "device/device.h"
#include "device/gl/gl_context.h"

namespace facet {

/// Creates a device that draws with `context` into a back buffer of the asked size (0 x 0 means the
/// window's). Depth formats that OpenGL does not have, sizes beyond its limits and a context that is none or
/// does not work give D3DERR_NOTAVAILABLE. Buffers and textures live on through Reset and through a lost
/// context; states go back to Direct3D's defaults in Reset. The context is held until the last resource of
/// the device is gone.
HRESULT createGlDevice(std::shared_ptr<GlContext> context, const D3DPRESENT_PARAMETERS& parameters,
                       std::shared_ptr<IDirect3DDevice9>* created);

/// The back buffer of a device of createGlDevice() as R, G, B, A bytes, top row first, alpha 255. Empty for
/// any other device and while the context is lost.
std::vector<uint8_t> readGlBackBuffer(IDirect3DDevice9& device);

/// What there is to know about the adapter behind `context`. D3DERR_NOTAVAILABLE when it does not work.
HRESULT describeGlAdapter(GlContext& context, D3DADAPTER_IDENTIFIER9* identifier, D3DCAPS9* caps);

}  // namespace facet
