#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "device/device.h"
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

}  // namespace facet
