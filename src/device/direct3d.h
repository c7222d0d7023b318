#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "device/device.h"
#include "device/gl/gl_device.h"
#include "picture/image.h"

namespace facet {

/// The formats that textures are made in, on every device.
std::span<const D3DFORMAT> textureFormats();

/// Creates a texture of this size, within the device's largest, with up to `levels` levels, as
/// D3DXCreateTextureFromFileEx does with point filters. The levels of the picture are copied as they are when
/// size, count and format allow. Otherwise the texture is D3DFMT_A8R8G8B8: levels beyond the picture's, and
/// all levels of a picture that is resized, are point-sampled. None when the device refuses.
std::shared_ptr<IDirect3DTexture9> createTexture(IDirect3DDevice9& device, const Image& image, uint32_t width,
                                                 uint32_t height, uint32_t levels);

/// What the devices of this program stand on.
struct DevicePlatform {
  D3DDISPLAYMODE displayMode;  ///< what the desktop is said to show
  /// Where the hardware device's OpenGL comes from, asked once; may be none, and may give none.
  std::function<std::shared_ptr<GlContext>()> createContext;
};

/// The root of the devices: hardware rows draw with OpenGL, the reference row draws in software on any
/// machine, and software rows fail, since no rasteriser plug-in is understood. None for another SDK version
/// than D3D_SDK_VERSION.
std::shared_ptr<IDirect3D9> Direct3DCreate9(uint32_t sdkVersion, DevicePlatform platform);

/// The last presented picture of a device of Direct3DCreate9() as R, G, B, A bytes, top row first, alpha 255;
/// empty when there is none or it cannot be read.
std::vector<uint8_t> readBackBuffer(IDirect3DDevice9& device);

}  // namespace facet
