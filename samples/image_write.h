#pragma once

#include <string>

#include "paint.h"

namespace facet::sample {

/// The picture as a file of that kind. DDS files get all mip levels; BMP and, without transparency, TGA hold
/// 24 bits a pixel.
std::string encodePicture(const Picture& picture, PictureFile kind);

}  // namespace facet::sample
