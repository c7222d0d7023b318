#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_TGA
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#define STBI_NO_FAILURE_STRINGS
#include <stb_image.h>

#include <climits>
#include <memory>

#include "picture/decoders.h"

namespace facet {

std::vector<std::byte> decodeByStb(Bytes file, uint32_t width, uint32_t height) {
  if (file.size() > INT_MAX) return {};
  int decodedWidth = 0, decodedHeight = 0, channels = 0;
  const std::unique_ptr<stbi_uc, void (*)(void*)> pixels(
      stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(file.data()), static_cast<int>(file.size()),
                            &decodedWidth, &decodedHeight, &channels, STBI_rgb_alpha),
      stbi_image_free);
  if (!pixels || decodedWidth != static_cast<int>(width) || decodedHeight != static_cast<int>(height))
    return {};
  const auto* bytes = reinterpret_cast<const std::byte*>(pixels.get());
  return {bytes, bytes + size_t{width} * height * 4};
}

}  // namespace facet
