#include "export/glb_images.h"

#include <algorithm>
#include <map>
#include <new>
#include <string>

#include "picture/image.h"
#include "platform/byte_source.h"
#include "platform/parallel.h"

namespace facet {

namespace {

std::vector<std::byte> wholeFile(const std::string& path) {
  const std::unique_ptr<ByteSource> file = openFile(path);
  std::vector<std::byte> bytes(file ? file->size() : 0);
  if (!file || !file->read(bytes.data(), bytes.size())) bytes.clear();
  return bytes;
}

/// Empty when the file holds no picture.
std::vector<std::byte> pngOf(const std::string& path) {
  try {
    const ImageResult result = loadImage(path);
    if (!result.image) return {};
    if (result.image->info.ImageFileFormat == D3DXIFF_PNG) return wholeFile(path);
    const ImageLevel& first = result.image->levels.front();
    return encodePng(imagePixels(*result.image, 0), first.width, first.height);
  } catch (const std::bad_alloc&) {
    return {};
  }
}

}  // namespace

EmbeddedImages embedImages(std::span<const Material> materials) {
  std::map<std::string, size_t> places;
  std::vector<const std::string*> paths;
  for (const Material& material : materials) {
    if (material.hasTexture == 0 || material.textureFile.empty()) continue;
    const auto [place, isNew] = places.try_emplace(material.textureFile, paths.size());
    if (isNew) paths.push_back(&place->first);
  }
  std::vector<std::vector<std::byte>> pictures(paths.size());
  parallelFor(paths.size(), [&](size_t i) { pictures[i] = pngOf(*paths[i]); });

  EmbeddedImages images;
  std::vector<std::optional<uint32_t>> kept(paths.size());
  for (size_t i = 0; i < pictures.size(); ++i) {
    if (pictures[i].empty()) continue;
    kept[i] = static_cast<uint32_t>(images.files.size());
    images.files.push_back(std::move(pictures[i]));
  }
  for (const Material& material : materials) {
    const auto place = places.find(material.textureFile);
    const bool shown = material.hasTexture != 0 && place != places.end();
    images.ofMaterial.push_back(shown ? kept[place->second] : std::nullopt);
  }
  return images;
}

}  // namespace facet
